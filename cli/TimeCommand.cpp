#include "ai/LocalAIJob.h"
#include "ai/Workspace.h"
#include "ai/speech/WordTimes.h"
#include "cli/CancelOnInterrupt.h"
#include "cli/Commands.h"
#include "cli/Interrupt.h"
#include "cli/ProgressLines.h"
#include "cli/ProjectAudio.h"
#include "cli/Result.h"
#include "cli/SpeechArguments.h"
#include "cli/StandardStreams.h"
#include "core/SRT.h"
#include "fcp/Options.h"
#include "fcp/render/HeardSound.h"

#include <memory>

using namespace Qt::StringLiterals;

namespace Commands {

namespace {

struct TimeArguments
{
    std::string script;
    std::string input;
    std::string words;
    int columns = 16;
    std::optional<std::string> rate;
    ProjectAudio audio; ///< Where the input is a project.
    SpeechArguments speech;
    Arguments::Output output;
};

/// What was heard, and on which frames the cues shall lie.
struct Heard
{
    HeardSound sound;
    FrameRate rate = Options().rate;
};

Heard readWords(const std::string &path)
{
    constexpr qint64 largest = 256 * 1024 * 1024; // bytes
    return {.sound = {.words = SubtitleAI::parseWordTimes(Arguments::readInput(path, largest))}};
}

Heard listen(const TimeArguments &arguments)
{
    SpeechTask task = arguments.speech.task(true);
    arguments.speech.service.hideKey();
    Workspace::removeLeftovers();
    LocalAIJob job;
    const CancelOnInterrupt cancelling(job);
    ProgressLines lines(arguments.output);
    task.source = Arguments::toPath(arguments.input);
    Heard heard;
    if (ProjectAudio::isProject(arguments.input)) {
        const FCPAudioPlan plan = arguments.audio.plan(arguments.input);
        ProjectAudio::tellNotices(plan, arguments.output);
        heard.rate = plan.settings.value_or(Options()).rate;
        task.source = plan;
    }
    heard.sound = HeardSound::of(task, job, [&](const Progress &now) { lines.show(now); });
    return heard;
}

void writeResult(JsonWriter &json, const ScriptTimingResult &result)
{
    json.beginObject();
    json.key("items").beginArray();
    for (const TimedCue &each : result.cues) {
        json.beginObject();
        json.key("confidence").number(each.confidence);
        json.key("end").integer(each.cue.end);
        json.key("id").integer(each.cue.id);
        json.key("start").integer(each.cue.start);
        json.key("text").text(each.cue.text);
        json.key("unsure").boolean(each.isUnsure);
        json.endObject();
    }
    json.endArray();
    json.key("unscripted").beginArray();
    for (const Subtitle &passage : result.unscripted) {
        json.beginObject();
        json.key("end").integer(passage.end);
        json.key("start").integer(passage.start);
        json.key("text").text(passage.text);
        json.endObject();
    }
    json.endArray();
    json.key("unspoken").beginArray();
    for (const UnspokenPassage &passage : result.unspoken) {
        json.beginObject();
        json.key("cue").integer(passage.cueID);
        json.key("text").text(passage.text);
        json.endObject();
    }
    json.endArray();
    json.endObject();
}

/// What a person has to look at, and where it is.
void tellDoubts(const ScriptTimingResult &result, const Arguments::Output &output)
{
    for (const UnspokenPassage &passage : result.unspoken)
        output.report(u"文稿中未听到（自第 %1 条）：%2"_s.arg(QString::number(passage.cueID),
                                                              QString(passage.text).replace(u'\n', u' ')));
    for (const Subtitle &passage : result.unscripted)
        output.report(u"文稿外的内容 %1：%2"_s.arg(SRT::stamp(passage.start), passage.text.simplified()));
}

void runTime(const TimeArguments &arguments)
{
    if (arguments.words.empty() == arguments.input.empty())
        throw Arguments::WrongUse(u"请给出音视频或项目，或用 --words 给出识别结果，二者选一"_s);
    if (arguments.script == "-" && (arguments.words == "-" || arguments.input == "-"))
        throw Arguments::WrongUse(u"文稿与声音不能同时来自标准输入"_s);
    std::optional<FrameRate> rate;
    if (arguments.rate)
        rate = Arguments::toRate(*arguments.rate);
    const QString script = Arguments::readText(arguments.script);
    const Heard heard = arguments.words.empty() ? listen(arguments) : readWords(arguments.words);
    const FrameGrid grid{.numerator = rate.value_or(heard.rate).numerator,
                         .denominator = rate.value_or(heard.rate).denominator};
    const ScriptTimingResult result =
        heard.sound.timed(script, {.columns = arguments.columns, .grid = grid}, Interrupt::check);
    const QList<Subtitle> cues = result.subtitles();
    Result::deliver(
        arguments.output, [&](Utf8Writer &out) { SRT::serialize(cues, out); },
        [&](JsonWriter &json) { writeResult(json, result); });
    heard.sound.forget();
    tellDoubts(result, arguments.output);
    arguments.output.report(u"已定时 %1 条字幕，其中 %2 条请核对"_s.arg(cues.size()).arg(result.unsureCount()));
}

} // namespace

void addTime(CLI::App &app, Work &run)
{
    auto *const command = app.add_subcommand("time", "按文稿生成字幕：文字取自文稿，时间取自声音");
    const auto arguments = std::make_shared<TimeArguments>();
    command->add_option("script", arguments->script, "文稿（纯文本，一行一句），- 表示标准输入")
        ->required()
        ->type_name("SCRIPT.txt");
    command->add_option("input", arguments->input, "音频或视频文件，或项目（.fcpxml、.fcpxmld）")
        ->type_name("MEDIA|PROJECT")
        ->check(Arguments::notEmpty);
    command->add_option("--words", arguments->words, "不听声音，读取识别引擎的完整 JSON（含每个词的时间）")
        ->type_name("FILE.json")
        ->check(Arguments::notEmpty);
    arguments->output.addPath(*command);
    command->add_option("--width", arguments->columns, "每条宽度，以全角字计，半角算半个（缺省 16；竖屏宜用 10）")
        ->check(CLI::Range(1, 1'000))
        ->type_name("列");
    command->add_option("--rate", arguments->rate, "帧率：时间落在整帧上（缺省为项目的帧率，否则 30）")
        ->type_name("帧率");
    arguments->speech.add(*command);
    arguments->audio.addSwitches(*command);
    arguments->output.addJson(*command);
    arguments->output.addProgress(*command);
    command->footer("示例：\n  lintora-cli time 文稿.txt 访谈.mov -o 访谈.srt\n"
                    "  lintora-cli time 文稿.txt --words 识别.json --json");
    command->callback([&run, arguments] { run = [arguments] { runTime(*arguments); }; });
}

} // namespace Commands
