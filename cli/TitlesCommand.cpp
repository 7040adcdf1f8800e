#include "cli/Commands.h"
#include "cli/Interrupt.h"
#include "cli/Result.h"
#include "cli/StandardStreams.h"
#include "cli/StyleArguments.h"
#include "core/ConversionError.h"
#include "core/SRT.h"
#include "fcp/FCPXML.h"
#include "fcp/titles/NewDocument.h"
#include "fcp/titles/TitleFile.h"
#include "fcp/titles/TitleFitting.h"
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
    std::string project;
    bool skipRetimed = false;
    std::optional<std::string> pastEnd;
    StyleArguments style;
    Arguments::Output output;
};

TitleFitting::Choice choice(const TitlesArguments &arguments)
{
    using enum TitleFitting::PastEnd;
    return {.skipRetimed = arguments.skipRetimed,
            .pastEnd = !arguments.pastEnd            ? refuse
                       : *arguments.pastEnd == "cut" ? cut
                                                     : drop};
}

/// The cues as far as the project can carry them; what is left out is told of.
QList<Subtitle> fitted(const TitlesArguments &arguments, const QList<Subtitle> &cues, const XmlDocument &base,
                       const Options &options)
{
    if (!arguments.skipRetimed && !arguments.pastEnd)
        return cues;
    const xmlNode *const project = FCPXML::project(base, Arguments::toText(arguments.project));
    const TitleFitting::Fitted result = TitleFitting::fit(cues, project, options, choice(arguments));
    for (const auto &[cue, reason] : result.leftOut)
        arguments.output.report(u"跳过第 %1 条字幕：%2"_s.arg(QString::number(cue.id), reason));
    if (result.cut > 0)
        arguments.output.report(u"%1 条字幕在项目结尾处截短"_s.arg(result.cut));
    if (result.cues.isEmpty() && !cues.isEmpty())
        throw ConversionError(u"没有可以写入项目的字幕。"_s);
    return result.cues;
}

struct Titles
{
    TitleDocument document;
    qsizetype count;
    TitleFile::Proof proof;
};

Titles makeTitles(const TitlesArguments &arguments, const QList<Subtitle> &cues)
{
    auto base = arguments.base.empty() ? std::nullopt : std::optional(Arguments::readProject(arguments.base));
    const QString project = Arguments::toText(arguments.project);
    const Options options = arguments.style.applied(base ? FCPXML::settings(Options(), *base, project) : Options());
    const QList<Subtitle> carried = base ? fitted(arguments, cues, *base, options) : cues;
    TitleDocument document = arguments.clip ? NewDocument::clip(carried, options)
                                            : FCPXML::convert(carried, std::move(base), options, project);
    // The project that was chosen bears the options' name by now.
    const QString written = project.isEmpty() ? QString() : options.name;
    const auto proof = [=, clip = arguments.clip, effectID = document.effectID()](QByteArrayView bytes) {
        if (clip)
            WrittenTitles::verifyClip(bytes, effectID, carried, options, Interrupt::check);
        else
            WrittenTitles::verify(bytes, effectID, carried, options, written, Interrupt::check);
    };
    return {.document = std::move(document), .count = carried.size(), .proof = proof};
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
    if (arguments.base.empty() && (!arguments.project.empty() || arguments.skipRetimed || arguments.pastEnd))
        throw Arguments::WrongUse(u"--project、--skip-retimed 与 --past-end 须与 --base 一起使用"_s);
    if (arguments.input == "-" && arguments.base == "-")
        throw Arguments::WrongUse(u"字幕与项目不能同时来自标准输入"_s);
    const QList<Subtitle> cues = SRT::decode(Arguments::readInput(arguments.input));
    Interrupt::check();
    const Titles titles = makeTitles(arguments, cues);
    deliver(titles, arguments.output);
    arguments.output.report(u"已写入 %1 条字幕标题"_s.arg(titles.count));
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
    command->add_option("--project", arguments->project, "--base 中有多个项目时，写入此名称的项目")
        ->type_name("名称")
        ->check(Arguments::notEmpty)
        ->take_last();
    command->add_flag("--skip-retimed", arguments->skipRetimed, "跳过位于变速片段上的字幕");
    command->add_option("--past-end", arguments->pastEnd, "超出项目时长的字幕：cut 截短，drop 跳过")
        ->type_name("cut|drop")
        ->check(CLI::IsMember({"cut", "drop"}))
        ->take_last();
    arguments->output.addProgress(*command);
    arguments->style.add(*command);
    command->footer("示例：\n"
                    "  lintora-cli titles 访谈.srt -o 访谈.fcpxml --rate 25 --size 1920x1080\n"
                    "  lintora-cli titles 访谈.srt -o 成片.fcpxml --base 粗剪.fcpxmld");
    command->callback([&run, arguments] { run = [arguments] { runTitles(*arguments); }; });
}

} // namespace Commands
