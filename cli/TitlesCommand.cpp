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
#include "fcp/validation/DocumentCheck.h"

#include <algorithm>
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
    std::vector<std::string> tracks;
    std::vector<std::string> trackPresets;
    std::optional<std::string> captions;
    std::vector<std::string> languages;
    bool skipRetimed = false;
    std::optional<std::string> pastEnd;
    StyleArguments style;
    Arguments::Output output;
};

/// The version of a document behind its "1."; that of our own documents where it cannot be told.
int minorVersionOf(const XmlDocument &document)
{
    const QByteArray version = Xml::attribute(document.root(), "version").value_or(QByteArray());
    bool isNumber = false;
    const int minor = version.startsWith("1.") ? version.sliced(2).toInt(&isNumber) : 0;
    return isNumber ? minor : NewDocument::minorVersion;
}

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

/// The native captions that a track is to become, absent where titles were asked for.
std::optional<CaptionRole> captionRole(const TitlesArguments &arguments, size_t track)
{
    if (!arguments.captions)
        return std::nullopt;
    const QString tag = Arguments::toText(arguments.languages[track]);
    const auto language = CaptionRole::knownLanguage(tag);
    if (!language)
        throw Arguments::WrongUse(u"语言标签无效：%1"_s.arg(tag));
    return CaptionRole{.format = *arguments.captions == "srt" ? CaptionRole::Format::srt : CaptionRole::Format::itt,
                       .language = *language};
}

/// Cues that end before the template's last movement, which is then not seen.
void reportShort(const TitleTrack &track, const Arguments::Output &output)
{
    const double last = track.look ? track.look->lastKeyframe() : 0;
    const auto count = std::ranges::count_if(
        track.cues, [&](const Subtitle &cue) { return double(cue.end - cue.start) < last * 1000; });
    if (count > 0)
        output.report(
            u"模板的动画长 %1 秒，有 %2 条字幕更短，看不到结尾"_s.arg(QString::number(last, 'f', 1)).arg(count));
}

/// Gives a further track a style of its own.
void usePreset(const std::string &preset, TitleTrack &track)
{
    track.options = StyleArguments::withPreset(track.options, preset);
    if (!track.captions)
        track.look = StyleArguments::lookOfPreset(preset);
}

/// The tracks in the order of the command line, the input first; their looks are settled for `base`, which may be none.
std::vector<TitleTrack> readTracks(const TitlesArguments &arguments, const XmlDocument *base)
{
    const QString project = Arguments::toText(arguments.project);
    const Options options = arguments.style.applied(base ? FCPXML::settings(Options(), *base, project) : Options());
    std::vector<std::string> inputs{arguments.input};
    inputs.insert(inputs.end(), arguments.tracks.begin(), arguments.tracks.end());
    const std::optional<TitleTemplate> look =
        arguments.captions ? std::nullopt
                           : arguments.style.look(base ? minorVersionOf(*base) : NewDocument::minorVersion);
    std::vector<TitleTrack> tracks;
    for (size_t i = 0; i < inputs.size(); ++i) {
        TitleTrack track{.cues = SRT::decode(Arguments::readInput(inputs[i])),
                         .options = options,
                         .captions = captionRole(arguments, i),
                         .look = look};
        Interrupt::check();
        if (i > 0 && i <= arguments.trackPresets.size())
            usePreset(arguments.trackPresets[i - 1], track);
        if (base)
            track.cues = fitted(arguments, track.cues, *base, track.options);
        reportShort(track, arguments.output);
        tracks.push_back(std::move(track));
    }
    return tracks;
}

struct Titles
{
    TitleDocument document;
    std::vector<TitleTrack> tracks;
    TitleFile::Proof proof;
};

Titles makeTitles(const TitlesArguments &arguments)
{
    auto base = arguments.base.empty() ? std::nullopt : std::optional(Arguments::readProject(arguments.base));
    const QString project = Arguments::toText(arguments.project);
    const std::vector<TitleTrack> tracks = readTracks(arguments, base ? &*base : nullptr);
    TitleDocument document =
        arguments.clip ? NewDocument::clip(tracks) : FCPXML::convert(tracks, std::move(base), project);
    // The project that was chosen bears the options' name by now.
    const QString written = project.isEmpty() ? QString() : tracks.front().options.name;
    const auto proof = [=, clip = arguments.clip, marks = document.marks()](QByteArrayView bytes) {
        if (clip)
            WrittenTitles::verifyClip(bytes, marks, tracks, Interrupt::check);
        else
            WrittenTitles::verify(bytes, marks, tracks, written, Interrupt::check);
    };
    return {.document = std::move(document), .tracks = tracks, .proof = proof};
}

/// Writes the document. What is wrong with it is told where somebody listens: it may have been so in the base.
QList<Problem> deliver(const Titles &titles, const Arguments::Output &output)
{
    QList<Problem> problems;
    const auto proof = [&](QByteArrayView bytes) {
        titles.proof(bytes);
        if (output.isHeard())
            problems = DocumentCheck::problems(bytes, Interrupt::check);
    };
    const QString path = Arguments::toPath(output.path);
    if (!path.isEmpty() && !StandardStreams::isPipe(path)) {
        TitleFile::write(path, titles.document, proof, Interrupt::check);
        return problems;
    }
    // What has left cannot be read back.
    const QByteArray bytes = titles.document.toUtf8();
    proof(bytes);
    Result::write(output, [&](Utf8Writer &out) { out.bytes(bytes); });
    return problems;
}

void reportProblems(const QList<Problem> &problems, const Arguments::Output &output)
{
    if (problems.isEmpty())
        return output.report(u"文档检查：没有发现问题"_s);
    output.report(u"文档检查：%1 处，全部见 validate"_s.arg(problems.size()));
    for (const Problem &problem : problems.first(std::min(DocumentCheck::mostTold, problems.size())))
        output.report(u"  "_s + problem.toText());
}

void checkUse(const TitlesArguments &arguments)
{
    if (arguments.clip && !arguments.base.empty())
        throw Arguments::WrongUse(u"--base 与 --clip 不能同时使用"_s);
    if (arguments.base.empty() && (!arguments.project.empty() || arguments.skipRetimed || arguments.pastEnd))
        throw Arguments::WrongUse(u"--project、--skip-retimed 与 --past-end 须与 --base 一起使用"_s);
    if (arguments.trackPresets.size() > arguments.tracks.size())
        throw Arguments::WrongUse(u"--track-preset 多于 --track"_s);
    if (arguments.style.hasTemplate() && arguments.captions)
        throw Arguments::WrongUse(u"--template 与 --captions 不能同时使用"_s);
    if (arguments.captions && arguments.languages.size() != arguments.tracks.size() + 1)
        throw Arguments::WrongUse(u"--captions 须给每条字幕轨一个 --language"_s);
    if (!arguments.captions && !arguments.languages.empty())
        throw Arguments::WrongUse(u"--language 须与 --captions 一起使用"_s);
    const auto fromStandardInput =
        std::ranges::count(arguments.tracks, "-") + (arguments.input == "-" ? 1 : 0) + (arguments.base == "-" ? 1 : 0);
    if (fromStandardInput > 1)
        throw Arguments::WrongUse(u"字幕与项目不能同时来自标准输入"_s);
}

void runTitles(const TitlesArguments &arguments)
{
    checkUse(arguments);
    const Titles titles = makeTitles(arguments);
    const QList<Problem> problems = deliver(titles, arguments.output);
    qsizetype count = 0;
    for (const TitleTrack &track : titles.tracks)
        count += track.cues.size();
    arguments.output.report(arguments.captions ? u"已写入 %1 条说明字幕"_s.arg(count)
                                               : u"已写入 %1 条字幕标题"_s.arg(count));
    reportProblems(problems, arguments.output);
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
    const auto addMany = [&](const char *name, std::vector<std::string> &values, const char *type, const char *text) {
        command->add_option(name, values, text)
            ->type_name(type)
            ->check(Arguments::notEmpty)
            ->expected(1)
            ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
    };
    addMany("--track", arguments->tracks, "IN.srt", "再加一条字幕轨，占一条层；可多次使用");
    addMany("--track-preset", arguments->trackPresets, "名称", "依次为各条 --track 的样式预设；缺省与第一条相同");
    command->add_option("--captions", arguments->captions, "生成 Final Cut Pro 的说明字幕而不是标题：itt 或 srt")
        ->type_name("itt|srt")
        ->check(CLI::IsMember({"itt", "srt"}).description({}))
        ->take_last();
    addMany("--language", arguments->languages, "标签", "说明字幕的语言，例如 zh-Hans、en；每条字幕轨一个");
    command->add_flag("--skip-retimed", arguments->skipRetimed, "跳过位于变速片段上的字幕");
    command->add_option("--past-end", arguments->pastEnd, "超出项目时长的字幕：cut 截短，drop 跳过")
        ->type_name("cut|drop")
        ->check(CLI::IsMember({"cut", "drop"}).description({}))
        ->take_last();
    arguments->output.addProgress(*command);
    arguments->style.add(*command);
    command->footer("示例：\n"
                    "  lintora-cli titles 访谈.srt -o 访谈.fcpxml --rate 25 --size 1920x1080\n"
                    "  lintora-cli titles 访谈.srt -o 成片.fcpxml --base 粗剪.fcpxmld");
    command->callback([&run, arguments] { run = [arguments] { runTitles(*arguments); }; });
}

} // namespace Commands
