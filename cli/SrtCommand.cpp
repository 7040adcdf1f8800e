#include "cli/Commands.h"
#include "cli/Result.h"
#include "core/SRT.h"

#include <memory>

using namespace Qt::StringLiterals;

namespace Commands {

namespace {

struct SrtArguments
{
    std::string input;
    Arguments::Output output;
};

void runSrt(const SrtArguments &arguments)
{
    const QList<Subtitle> cues = SRT::decode(Arguments::readInput(arguments.input));
    Result::deliver(
        arguments.output, [&](Utf8Writer &out) { SRT::serialize(cues, out); },
        [&](JsonWriter &json) { writeSubtitles(json, cues); });
    arguments.output.report(u"已检查 %1 条字幕"_s.arg(cues.size()));
}

} // namespace

void addSrt(CLI::App &app, Work &run)
{
    auto *const command = app.add_subcommand("srt", "读取、检查并写出 SRT 字幕");
    const auto arguments = std::make_shared<SrtArguments>();
    command->add_option("input", arguments->input, "SRT 文件，- 表示标准输入")
        ->required()
        ->type_name("IN.srt")
        ->check(Arguments::notEmpty);
    arguments->output.addPath(*command);
    arguments->output.addJson(*command);
    arguments->output.addProgress(*command);
    command->footer("示例：\n  lintora-cli srt 访谈.srt -o 访谈-已检查.srt");
    command->callback([&run, arguments] { run = [arguments] { runSrt(*arguments); }; });
}

} // namespace Commands
