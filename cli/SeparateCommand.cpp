#include "cli/Commands.h"
#include "cli/Result.h"
#include "cli/SrtFolder.h"
#include "core/ConversionError.h"
#include "core/SRT.h"
#include "core/text/LanguageSeparation.h"

#include <QDir>
#include <QFileInfo>

#include <memory>
#include <optional>
#include <vector>

using namespace Qt::StringLiterals;

namespace Commands {

namespace {

using LanguageSeparation::GroupedCues;

struct SeparateArguments
{
    std::string input;
    std::optional<std::string> folder;
    Arguments::Output output;
};

std::vector<SrtFolder::File> toFiles(const QList<GroupedCues> &groups)
{
    std::vector<SrtFolder::File> files;
    for (const auto &[group, items] : groups)
        files.push_back({.name = LanguageSeparation::label(group) + u".srt"_s, .items = items});
    return files;
}

void writeGroups(JsonWriter &json, const QList<GroupedCues> &groups)
{
    json.beginArray();
    for (const auto &[group, items] : groups) {
        json.beginObject();
        json.key("group").text(LanguageSeparation::rawValue(group));
        json.key("items");
        writeSubtitles(json, items);
        json.key("label").text(LanguageSeparation::label(group));
        json.endObject();
    }
    json.endArray();
}

/// Nobody means to lose the bilingual original to one of its halves.
void refuseToReplaceInput(const SeparateArguments &arguments, const QDir &folder, const QList<GroupedCues> &groups)
{
    const QString input = QFileInfo(Arguments::toPath(arguments.input)).canonicalFilePath();
    for (const GroupedCues &cues : groups) {
        const QFileInfo target(folder.filePath(LanguageSeparation::label(cues.group) + u".srt"_s));
        if (!input.isEmpty() && target.canonicalFilePath() == input)
            throw Arguments::WrongUse(u"结果会覆盖原字幕 %1，请用 --into 指定其他文件夹"_s.arg(target.fileName()));
    }
}

void runSeparate(const SeparateArguments &arguments)
{
    const QList<Subtitle> cues = SRT::decode(Arguments::readInput(arguments.input));
    const QList<GroupedCues> groups = LanguageSeparation::split(cues);
    if (!LanguageSeparation::holdsBothLanguages(groups))
        throw ConversionError(LanguageSeparation::nothingToSeparate());
    const QDir folder(Arguments::toPath(arguments.folder.value_or(".")));
    const auto sayJson = [&] {
        if (arguments.output.json)
            Result::writeJson([&](JsonWriter &json) { writeGroups(json, groups); });
    };
    if (arguments.folder || !arguments.output.json) {
        refuseToReplaceInput(arguments, folder, groups);
        SrtFolder::write(folder, toFiles(groups), sayJson);
    } else {
        sayJson();
    }
    for (const auto &[group, items] : groups)
        arguments.output.report(u"%1：%2 条字幕"_s.arg(LanguageSeparation::label(group)).arg(items.size()));
}

} // namespace

void addSeparate(CLI::App &app, Work &run)
{
    auto *const command = app.add_subcommand("separate", "把双语字幕按语言分开，每种语言一个 SRT 文件");
    const auto arguments = std::make_shared<SeparateArguments>();
    Arguments::addCues(*command, arguments->input);
    command
        ->add_option("--into", arguments->folder,
                     "在此文件夹写入 中文.srt、English.srt、待归类.srt（缺省为当前文件夹；只有 --json 时不写文件）")
        ->type_name("文件夹")
        ->check(Arguments::notEmpty);
    arguments->output.addJson(*command);
    arguments->output.addProgress(*command);
    command->footer("示例：\n  lintora-cli separate 双语.srt --into 分离");
    command->callback([&run, arguments] { run = [arguments] { runSeparate(*arguments); }; });
}

} // namespace Commands
