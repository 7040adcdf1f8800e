#include "cli/Commands.h"
#include "cli/Interrupt.h"
#include "cli/Result.h"
#include "core/SRT.h"
#include "core/text/ChineseScript.h"
#include "core/text/SubtitleCleanup.h"

#include <memory>

using namespace Qt::StringLiterals;

namespace Commands {

namespace {

struct ConvertScriptArguments
{
    std::string input;
    std::string to;
    std::optional<std::string> kept;
    Arguments::Output output;
};

ChineseScript::Target targetOf(const std::string &name)
{
    if (name == "simplified")
        return ChineseScript::Target::simplified;
    if (name == "traditional")
        return ChineseScript::Target::traditional;
    throw Arguments::WrongUse(u"--to 须为 simplified 或 traditional"_s);
}

void runConvertScript(const ConvertScriptArguments &arguments)
{
    if (arguments.input == "-" && arguments.kept == "-")
        throw Arguments::WrongUse(u"字幕与词表不能同时来自标准输入"_s);
    const ChineseScript::Target to = targetOf(arguments.to);
    const QStringList kept =
        arguments.kept ? SubtitleCleanup::words(Arguments::readText(*arguments.kept)) : QStringList();
    const QList<Subtitle> cues = SRT::decode(Arguments::readInput(arguments.input));
    const QList<Subtitle> converted = ChineseScript::converted(cues, to, kept, Interrupt::check);
    Result::deliver(
        arguments.output, [&](Utf8Writer &out) { SRT::serialize(converted, out); },
        [&](JsonWriter &json) { writeSubtitles(json, converted); });
    qsizetype changed = 0;
    for (qsizetype i = 0; i < cues.size(); ++i)
        changed += cues[i].text != converted[i].text;
    arguments.output.report(changed == 0 ? u"没有需要转换的内容"_s : u"已转换 %1 条字幕"_s.arg(changed));
}

} // namespace

void addConvertScript(CLI::App &app, Work &run)
{
    auto *const command = app.add_subcommand("convert-script", "繁简转换（按词组）");
    const auto arguments = std::make_shared<ConvertScriptArguments>();
    Arguments::addCues(*command, arguments->input);
    command->add_option("--to", arguments->to, "simplified（转为简体）或 traditional（转为繁体）")->required();
    command->add_option("--keep", arguments->kept, "保持原样的专名：以换行、逗号、分号或顿号分隔")
        ->check(Arguments::notEmpty)
        ->type_name("文件");
    arguments->output.addPath(*command);
    arguments->output.addJson(*command);
    arguments->output.addProgress(*command);
    command->footer("示例：\n  lintora-cli convert-script 访谈-繁体.srt --to simplified -o 访谈.srt");
    command->callback([&run, arguments] { run = [arguments] { runConvertScript(*arguments); }; });
}

} // namespace Commands
