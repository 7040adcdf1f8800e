#include "cli/Commands.h"
#include "cli/Interrupt.h"
#include "cli/Result.h"
#include "cli/StyleArguments.h"
#include "core/SRT.h"
#include "fcp/FCPXML.h"
#include "fcp/titles/NewDocument.h"

#include <memory>

using namespace Qt::StringLiterals;

namespace Commands {

namespace {

struct TitlesArguments
{
    std::string input;
    std::string base;
    bool clip = false;
    StyleArguments style;
    Arguments::Output output;
};

TitleDocument makeDocument(const TitlesArguments &arguments, const QList<Subtitle> &cues)
{
    if (arguments.clip)
        return NewDocument::clip(cues, arguments.style.applied(Options()));
    if (arguments.base.empty())
        return FCPXML::convert(cues, std::nullopt, arguments.style.applied(Options()));
    XmlDocument base = Arguments::readProject(arguments.base);
    const Options options = arguments.style.applied(FCPXML::settings(Options(), base));
    return FCPXML::convert(cues, std::move(base), options);
}

void runTitles(const TitlesArguments &arguments)
{
    if (arguments.clip && !arguments.base.empty())
        throw Arguments::WrongUse(u"--base 与 --clip 不能同时使用"_s);
    if (arguments.input == "-" && arguments.base == "-")
        throw Arguments::WrongUse(u"字幕与项目不能同时来自标准输入"_s);
    const QList<Subtitle> cues = SRT::decode(Arguments::readInput(arguments.input));
    Interrupt::check();
    const TitleDocument document = makeDocument(arguments, cues);
    Result::write(arguments.output, [&](Utf8Writer &out) { document.write(out); });
    arguments.output.report(u"已写入 %1 条字幕标题"_s.arg(cues.size()));
}

} // namespace

void addTitles(CLI::App &app, Work &run)
{
    auto *const command = app.add_subcommand("titles", "把 SRT 字幕变成 Final Cut Pro 标题（FCPXML）");
    const auto arguments = std::make_shared<TitlesArguments>();
    command->add_option("input", arguments->input, "SRT 文件，- 表示标准输入")
        ->required()
        ->type_name("IN.srt")
        ->check(Arguments::notEmpty);
    arguments->output.addPath(*command);
    command->add_option("--base", arguments->base, "把标题连接到此项目（.fcpxml 或 .fcpxmld）")
        ->type_name("项目")
        ->check(Arguments::notEmpty)
        ->take_last();
    command->add_flag("--clip", arguments->clip, "生成拖放用的片段文档");
    arguments->output.addProgress(*command);
    arguments->style.add(*command);
    command->footer("示例：\n"
                    "  lintora-cli titles 访谈.srt -o 访谈.fcpxml --rate 25 --size 1920x1080\n"
                    "  lintora-cli titles 访谈.srt -o 成片.fcpxml --base 粗剪.fcpxmld");
    command->callback([&run, arguments] { run = [arguments] { runTitles(*arguments); }; });
}

} // namespace Commands
