#include "cli/Commands.h"
#include "cli/Interrupt.h"
#include "cli/Result.h"
#include "cli/SoundInput.h"
#include "core/SRT.h"

#include <memory>

using namespace Qt::StringLiterals;

namespace Commands {

namespace {

constexpr int finest = int(1'000 / Waveform::peakMS); ///< Peaks a second.

struct PeaksArguments
{
    SoundInput sound;
    int perSecond = 20;
    Arguments::Output output;
};

qint64 startOf(qint64 index, int perSecond)
{
    return index * 1'000 / perSecond;
}

void writePeaks(JsonWriter &json, const Waveform &waveform, int perSecond)
{
    constexpr qint64 checkedEach = 4'096;
    json.beginObject();
    json.key("duration").integer(waveform.lengthMS());
    json.key("peaks").beginArray();
    for (qint64 i = 0; startOf(i, perSecond) < waveform.lengthMS(); ++i) {
        if (i % checkedEach == 0)
            Interrupt::check();
        const Peak peak = waveform.between(startOf(i, perSecond), startOf(i + 1, perSecond));
        json.beginArray();
        json.integer(peak.low);
        json.integer(peak.high);
        json.endArray();
    }
    json.endArray();
    json.key("rate").integer(perSecond);
    json.endObject();
}

/// How long, how loud, how much of it is speech.
QString summary(const Waveform &waveform)
{
    const Peak whole = waveform.between(0, waveform.lengthMS());
    constexpr int fullScale = 127;
    const int highest = std::max(-whole.low, int(whole.high)) * 100 / fullScale;
    return u"时长 %1\n最高峰值 %2%\n语音 %3 段，共 %4\n"_s.arg(
        SRT::stamp(waveform.lengthMS()), QString::number(highest), QString::number(waveform.speech().count()),
        SRT::stamp(waveform.speech().totalMS()));
}

void runPeaks(const PeaksArguments &arguments)
{
    const Waveform waveform = arguments.sound.waveform(arguments.output);
    if (arguments.output.json)
        return Result::writeJson([&](JsonWriter &json) { writePeaks(json, waveform, arguments.perSecond); });
    Result::write(arguments.output, [&](Utf8Writer &out) { out.bytes(summary(waveform).toUtf8()); });
}

} // namespace

void addPeaks(CLI::App &app, Work &run)
{
    auto *const command = app.add_subcommand("peaks", "声音的波形：每段的最低与最高采样");
    const auto arguments = std::make_shared<PeaksArguments>();
    arguments->sound.add(*command);
    command->add_option("--per-second", arguments->perSecond, "每秒几段（缺省 20，最多 200）")
        ->check(CLI::Range(1, finest).description("1-200"))
        ->type_name("N");
    arguments->output.addJson(*command);
    arguments->output.addProgress(*command);
    command->footer("--json：duration 为毫秒；peaks 每段 [最低, 最高]，以满幅的 1/127 计；rate 为每秒段数。\n\n"
                    "示例：\n  lintora-cli peaks 访谈.mov --json");
    command->callback([&run, arguments] { run = [arguments] { runPeaks(*arguments); }; });
}

} // namespace Commands
