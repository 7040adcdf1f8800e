#include "cli/Commands.h"
#include "cli/Interrupt.h"
#include "cli/Result.h"
#include "cli/StandardStreams.h"
#include "cli/StyleArguments.h"
#include "core/SRT.h"
#include "fcp/FCPXML.h"
#include "fcp/titles/NewDocument.h"
#include "fcp/titles/TitleFile.h"
#include "fcp/titles/WrittenTitles.h"

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

struct Titles
{
    TitleDocument document;
    TitleFile::Proof proof;
};

Titles makeTitles(const TitlesArguments &arguments, const QList<Subtitle> &cues)
{
    auto base = arguments.base.empty() ? std::nullopt : std::optional(Arguments::readProject(arguments.base));
    const Options options = arguments.style.applied(base ? FCPXML::settings(Options(), *base) : Options());
    TitleDocument document =
        arguments.clip ? NewDocument::clip(cues, options) : FCPXML::convert(cues, std::move(base), options);
    const auto verify = arguments.clip ? WrittenTitles::verifyClip : WrittenTitles::verify;
    const auto proof = [=, effectID = document.effectID()](QByteArrayView written) {
        verify(written, effectID, cues, options);
    };
    return {.document = std::move(document), .proof = proof};
}

void deliver(const Titles &titles, const Arguments::Output &output)
{
    const QString path = Arguments::toPath(output.path);
    if (!path.isEmpty() && !StandardStreams::isPipe(path)) {
        TitleFile::write(path, titles.document, titles.proof, Interrupt::check);
        return;
    }
    // What has left cannot be read back.
    const QByteArray bytes = titles.document.toUtf8();
    titles.proof(bytes);
    Result::write(output, [&](Utf8Writer &out) { out.bytes(bytes); });
}

void runTitles(const TitlesArguments &arguments)
{
    if (arguments.clip && !arguments.base.empty())
        throw Arguments::WrongUse(u"--base 与 --clip 不能同时使用"_s);
    if (arguments.input == "-" && arguments.base == "-")
        throw Arguments::WrongUse(u"字幕与项目不能同时来自标准输入"_s);
    const QList<Subtitle> cues = SRT::decode(Arguments::readInput(arguments.input));
    Interrupt::check();
    deliver(makeTitles(arguments, cues), arguments.output);
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
