#include "cli/Commands.h"
#include "cli/Interrupt.h"
#include "cli/Result.h"
#include "core/SRT.h"
#include "fcp/texts/Retext.h"

#include <memory>

using namespace Qt::StringLiterals;

namespace Commands {

namespace {

using Retext::Receipt;

struct RetextArguments
{
    std::string input;
    std::string cues;
    std::string project;
    std::string track;
    bool moves = false;
    Arguments::Output output;
};

void writeChanged(JsonWriter &json, const Retext::Changed &each)
{
    json.beginObject();
    json.key("after").text(each.after);
    json.key("before").text(each.before);
    json.key("cue").integer(each.cue);
    json.key("styles").boolean(each.styles);
    json.endObject();
}

void writeMoved(JsonWriter &json, const Retext::Moved &each)
{
    json.beginObject();
    json.key("cue").integer(each.cue.id);
    json.key("end").integer(each.cue.end);
    json.key("fromEnd").integer(each.end);
    json.key("fromStart").integer(each.start);
    json.key("start").integer(each.cue.start);
    json.endObject();
}

void writeRefused(JsonWriter &json, const Retext::Refused &each)
{
    json.beginObject();
    json.key("cue").integer(each.cue);
    json.key("reason").text(each.reason);
    json.endObject();
}

template <class List, class Write>
void writeList(JsonWriter &json, const List &list, Write &&write)
{
    json.beginArray();
    for (const auto &each : list)
        write(json, each);
    json.endArray();
}

void writeReceipt(JsonWriter &json, const Receipt &receipt)
{
    json.beginObject();
    json.key("added");
    writeSubtitles(json, receipt.added);
    json.key("changed");
    writeList(json, receipt.changed, writeChanged);
    json.key("moved");
    writeList(json, receipt.moved, writeMoved);
    json.key("refused");
    writeList(json, receipt.refused, writeRefused);
    json.key("removed");
    writeSubtitles(json, receipt.removed);
    json.endObject();
}

void report(const RetextArguments &arguments, const Receipt &receipt)
{
    const auto say = [&](const QString &line) { arguments.output.report(line); };
    say(u"已修改 %1 条标题的文字，其他内容没有改动"_s.arg(receipt.changed.size()));
    for (const Retext::Changed &each : receipt.changed) {
        if (each.styles)
            say(u"第 %1 条：原标题含多种样式，改动的文字采用其中第一种"_s.arg(each.cue));
    }
    const QString note = arguments.moves ? QString() : u"（未写入，加 --moves 写入）"_s;
    const auto sayCount = [&](const QString &what, qsizetype count) {
        if (count > 0)
            say(what.arg(count) + note);
    };
    sayCount(u"时间不同 %1 条"_s, receipt.moved.size());
    sayCount(u"项目中没有 %1 条"_s, receipt.added.size());
    sayCount(u"SRT 中没有 %1 条"_s, receipt.removed.size());
    for (const Retext::Refused &each : receipt.refused)
        say(u"第 %1 条没有写入：%2"_s.arg(QString::number(each.cue), each.reason));
}

void runRetext(const RetextArguments &arguments)
{
    if (arguments.input == "-" && arguments.cues == "-")
        throw Arguments::WrongUse(u"字幕与项目不能同时来自标准输入"_s);
    const QByteArray project = Arguments::readProjectBytes(arguments.input);
    const QList<Subtitle> cues = SRT::decode(Arguments::readInput(arguments.cues));
    Interrupt::check();
    const Retext::Result result =
        Retext::apply(project,
                      {.project = Arguments::toText(arguments.project),
                       .track = Arguments::toText(arguments.track),
                       .cues = cues,
                       .origins = {},
                       .scope = arguments.moves ? Retext::Scope::everything : Retext::Scope::texts},
                      Interrupt::check);
    Result::deliver(
        arguments.output, [&](Utf8Writer &out) { out.bytes(result.document); },
        [&](JsonWriter &json) { writeReceipt(json, result.receipt); });
    report(arguments, result.receipt);
}

} // namespace

void addRetext(CLI::App &app, Work &run)
{
    auto *const command = app.add_subcommand("retext", "把改好或译好的字幕写回项目中原来的标题");
    const auto arguments = std::make_shared<RetextArguments>();
    Arguments::addProject(*command, arguments->input);
    Arguments::addCues(*command, arguments->cues);
    arguments->output.addPath(*command);
    command->add_option("--project", arguments->project, "文件中有多个项目时，写入此名称的项目")
        ->type_name("名称")
        ->check(Arguments::notEmpty)
        ->take_last();
    command->add_option("--track", arguments->track, "写入此字幕轨（名称见 extract --json）")
        ->type_name("名称")
        ->check(Arguments::notEmpty)
        ->take_last();
    command->add_flag("--moves", arguments->moves, "时间的改动、新增与删除也写入，不只是文字");
    arguments->output.addJson(*command);
    arguments->output.addProgress(*command);
    command->footer("示例：\n  lintora-cli retext 成片.fcpxmld 校对.srt -o 成片_校对.fcpxml --json");
    command->callback([&run, arguments] { run = [arguments] { runRetext(*arguments); }; });
}

} // namespace Commands
