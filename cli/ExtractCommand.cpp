#include "cli/Commands.h"
#include "cli/Interrupt.h"
#include "cli/Result.h"
#include "cli/SrtFolder.h"
#include "core/ConversionError.h"
#include "core/SRT.h"
#include "fcp/FCPXML.h"
#include "fcp/texts/ProjectTexts.h"

#include <algorithm>
#include <memory>

using namespace Qt::StringLiterals;

namespace Commands {

namespace {

using ProjectTexts::Track;

struct ExtractArguments
{
    std::string input;
    std::string project;
    std::optional<std::string> folder;
    Arguments::Output output;
};

void writeTrack(JsonWriter &json, const Track &track)
{
    json.beginObject();
    json.key("items");
    writeSubtitles(json, track.items);
    json.key("label").text(track.label);
    json.key("lane").integer(track.lane);
    json.key("role").text(track.role);
    json.key("skipped").beginArray();
    for (const auto &[name, reason] : track.skipped) {
        json.beginObject();
        json.key("name").text(name);
        json.key("reason").text(reason);
        json.endObject();
    }
    json.endArray();
    json.endObject();
}

void writeTracks(JsonWriter &json, const std::vector<Track> &tracks)
{
    json.beginArray();
    for (const Track &track : tracks)
        writeTrack(json, track);
    json.endArray();
}

std::vector<Track> readTracks(const ExtractArguments &arguments)
{
    const XmlDocument document = Arguments::readProjectTexts(arguments.input);
    const QString name = Arguments::toText(arguments.project);
    const bool holdsClipsOnly = name.isEmpty() && FCPXML::projects(document).empty();
    return ProjectTexts::read(document, holdsClipsOnly ? nullptr : FCPXML::project(document, name), Interrupt::check);
}

std::vector<const Track *> withCues(const std::vector<Track> &tracks)
{
    std::vector<const Track *> found;
    for (const Track &track : tracks) {
        if (!track.items.isEmpty())
            found.push_back(&track);
    }
    return found;
}

std::vector<SrtFolder::File> toFiles(const std::vector<const Track *> &tracks)
{
    std::vector<SrtFolder::File> files;
    for (const Track *const track : tracks) {
        QString name = SrtFolder::fileName(track->label);
        // Labels differ, but some file systems take letters of either case for the same.
        const auto isTaken = [&](const SrtFolder::File &file) {
            return file.name.compare(name, Qt::CaseInsensitive) == 0;
        };
        for (int i = 2; std::ranges::any_of(files, isTaken); ++i)
            name = SrtFolder::fileName(track->label + u' ' + QString::number(i));
        files.push_back({.name = name, .items = track->items});
    }
    return files;
}

void deliver(const ExtractArguments &arguments, const std::vector<Track> &tracks)
{
    const auto sayJson = [&](JsonWriter &json) { writeTracks(json, tracks); };
    if (arguments.output.json && arguments.output.path.empty() && !arguments.folder)
        return Result::writeJson(sayJson);
    const auto found = withCues(tracks);
    if (found.empty())
        throw ConversionError(u"项目中没有可读取的字幕。"_s);
    if (arguments.folder) {
        SrtFolder::write(QDir(Arguments::toPath(*arguments.folder)), toFiles(found), [&] {
            if (arguments.output.json)
                Result::writeJson(sayJson);
        });
        return;
    }
    if (found.size() > 1)
        throw ConversionError(u"项目中有 %1 条字幕轨，请用 --into 分别写入文件夹。"_s.arg(found.size()));
    Result::deliver(
        arguments.output, [&](Utf8Writer &out) { SRT::serialize(found.front()->items, out); }, sayJson);
}

void runExtract(const ExtractArguments &arguments)
{
    if (arguments.folder && !arguments.output.path.empty())
        throw Arguments::WrongUse(u"--into 与 -o 不能同时使用"_s);
    const std::vector<Track> tracks = readTracks(arguments);
    deliver(arguments, tracks);
    for (const Track &track : tracks) {
        arguments.output.report(u"%1：%2 条字幕"_s.arg(track.label, QString::number(track.items.size())));
        for (const auto &[name, reason] : track.skipped)
            arguments.output.report(u"%1：跳过“%2”，%3"_s.arg(track.label, name.simplified(), reason));
    }
}

} // namespace

void addExtract(CLI::App &app, Work &run)
{
    auto *const command = app.add_subcommand("extract", "读取项目中已有的标题与说明字幕");
    const auto arguments = std::make_shared<ExtractArguments>();
    Arguments::addProject(*command, arguments->input);
    command->add_option("--project", arguments->project, "文件中有多个项目时，读取此名称的项目")
        ->type_name("名称")
        ->check(Arguments::notEmpty)
        ->take_last();
    arguments->output.addPath(*command);
    command->add_option("--into", arguments->folder, "在此文件夹中为每条字幕轨写入一个 SRT 文件")
        ->type_name("文件夹")
        ->check(Arguments::notEmpty);
    arguments->output.addJson(*command);
    arguments->output.addProgress(*command);
    command->footer("示例：\n"
                    "  lintora-cli extract 成片.fcpxmld -o 字幕.srt\n"
                    "  lintora-cli extract 成片.fcpxml --into 字幕 --json");
    command->callback([&run, arguments] { run = [arguments] { runExtract(*arguments); }; });
}

} // namespace Commands
