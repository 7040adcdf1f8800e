#include "cli/Commands.h"
#include "cli/Interrupt.h"
#include "cli/Result.h"
#include "core/SRT.h"
#include "core/repair/SubtitleRepair.h"

#include <memory>

using namespace Qt::StringLiterals;

namespace Commands {

namespace {

struct SrtArguments
{
    std::string input;
    bool repair = false;
    std::string encoding;
    Arguments::Output output;
};

void writeRepaired(JsonWriter &json, const RepairedFile &file)
{
    json.beginObject();
    json.key("certainty").number(file.certainty);
    json.key("encoding").text(file.encoding);
    json.key("items");
    writeSubtitles(json, file.items);
    json.key("repairs").beginArray();
    for (const FileRepair &repair : file.repairs) {
        json.beginObject();
        if (repair.cue)
            json.key("cue").integer(*repair.cue);
        json.key("line").integer(repair.line);
        json.key("what").text(repair.what);
        json.endObject();
    }
    json.endArray();
    json.endObject();
}

void runRepair(const SrtArguments &arguments)
{
    const RepairedFile file = SubtitleRepair::read(Arguments::readInput(arguments.input),
                                                   Arguments::toText(arguments.encoding), Interrupt::check);
    Result::deliver(
        arguments.output, [&](Utf8Writer &out) { SRT::serialize(file.items, out); },
        [&](JsonWriter &json) { writeRepaired(json, file); });
    for (const FileRepair &repair : file.repairs)
        arguments.output.report(u"第 %1 行：%2"_s.arg(repair.line).arg(repair.what));
    arguments.output.report(u"已读取 %1 条字幕，修复 %2 处；编码 %3（把握 %4%）"_s.arg(file.items.size())
                                .arg(file.repairs.size())
                                .arg(file.encoding)
                                .arg(qRound(file.certainty * 100)));
}

void runSrt(const SrtArguments &arguments)
{
    if (arguments.repair)
        return runRepair(arguments);
    if (!arguments.encoding.empty())
        throw Arguments::WrongUse(u"--encoding 只与 --repair 同用"_s);
    const QList<Subtitle> cues = SRT::decode(Arguments::readInput(arguments.input));
    Result::deliver(
        arguments.output, [&](Utf8Writer &out) { SRT::serialize(cues, out); },
        [&](JsonWriter &json) { writeSubtitles(json, cues); });
    arguments.output.report(u"已检查 %1 条字幕"_s.arg(cues.size()));
}

std::string encodings()
{
    return TextEncoding::names().join(u"、"_s).toStdString();
}

} // namespace

void addSrt(CLI::App &app, Work &run)
{
    auto *const command = app.add_subcommand("srt", "读取、检查并写出 SRT 字幕");
    const auto arguments = std::make_shared<SrtArguments>();
    Arguments::addCues(*command, arguments->input);
    arguments->output.addPath(*command);
    command->add_flag("--repair", arguments->repair,
                      "尽量读取有错误或其他编码的文件，也读取 WebVTT、ASS 和 "
                      "SSA；所做的改动逐条列出");
    command->add_option("--encoding", arguments->encoding, "文件的编码（缺省为自动判断）：" + encodings())
        ->type_name("名称");
    arguments->output.addJson(*command);
    arguments->output.addProgress(*command);
    command->footer("示例：\n  lintora-cli srt 访谈.srt -o 访谈-已检查.srt\n"
                    "  lintora-cli srt 客户.srt --repair -o 客户-已修复.srt");
    command->callback([&run, arguments] { run = [arguments] { runSrt(*arguments); }; });
}

} // namespace Commands
