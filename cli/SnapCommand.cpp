#include "cli/Commands.h"
#include "cli/Result.h"
#include "cli/SoundInput.h"
#include "core/SRT.h"
#include "core/timing/CueSnapping.h"
#include "fcp/Options.h"

#include <memory>

using namespace Qt::StringLiterals;

namespace Commands {

namespace {

struct SnapArguments
{
    std::string input;
    SoundInput sound;
    qint64 withinMS = CueSnapping::usualMS;
    std::optional<std::string> rate;
    Arguments::Output output;
};

void writeMoves(JsonWriter &json, const CueSnapping::Result &result)
{
    json.beginArray();
    for (const CueSnapping::Move &move : result.moves) {
        json.beginObject();
        json.key("cue").integer(result.cues[move.cue].id);
        json.key("endBy").integer(move.endBy);
        json.key("startBy").integer(move.startBy);
        json.endObject();
    }
    json.endArray();
}

/// One line for each cue that moved.
void tellMoves(const CueSnapping::Result &result, const Arguments::Output &output)
{
    const auto by = [](qint64 ms) {
        return ms == 0 ? u"不变"_s : u"%1%2 毫秒"_s.arg(ms > 0 ? u"+"_s : QString()).arg(ms);
    };
    for (const CueSnapping::Move &move : result.moves)
        output.report(u"第 %1 条：开始 %2，结束 %3"_s.arg(QString::number(result.cues[move.cue].id), by(move.startBy),
                                                          by(move.endBy)));
    output.report(result.moves.isEmpty()
                      ? u"没有可以确定的移动"_s
                      : u"已移动 %1 条字幕，共 %2 条"_s.arg(result.moves.size()).arg(result.cues.size()));
}

void runSnap(const SnapArguments &arguments)
{
    const FrameRate rate = arguments.rate ? Arguments::toRate(*arguments.rate) : Options().rate;
    const QList<Subtitle> cues = SRT::decode(Arguments::readInput(arguments.input));
    const Waveform waveform = arguments.sound.waveform(arguments.output);
    const CueSnapping::Result result = CueSnapping::snapped(
        cues, waveform.speech(), {.numerator = rate.numerator, .denominator = rate.denominator}, arguments.withinMS);
    Result::deliver(
        arguments.output, [&](Utf8Writer &out) { SRT::serialize(result.cues, out); },
        [&](JsonWriter &json) { writeMoves(json, result); });
    tellMoves(result, arguments.output);
}

} // namespace

void addSnap(CLI::App &app, Work &run)
{
    auto *const command = app.add_subcommand("snap", "把字幕的起止移到语音开始与结束处；拿不准的不动");
    const auto arguments = std::make_shared<SnapArguments>();
    Arguments::addCues(*command, arguments->input);
    arguments->sound.add(*command);
    arguments->output.addPath(*command);
    command->add_option("--within", arguments->withinMS, "最多移动多少毫秒（缺省 200，最多 1000）")
        ->check(CLI::Range(qint64(1), CueSnapping::furthestMS).description("1-1000"))
        ->type_name("MS");
    command->add_option("--rate", arguments->rate, "帧率：新的时间落在整帧上（缺省 30）")->type_name("帧率");
    arguments->output.addJson(*command);
    arguments->output.addProgress(*command);
    command->footer("附近没有语音起止、有两处差不多近、会碰到相邻字幕或剩不到一半的，保持原样。\n"
                    "--json：每条移动过的字幕移动了多少毫秒，向前为负。\n\n"
                    "示例：\n  lintora-cli snap 访谈.srt 访谈.mov --rate 25 -o 访谈-对齐.srt");
    command->callback([&run, arguments] { run = [arguments] { runSnap(*arguments); }; });
}

} // namespace Commands
