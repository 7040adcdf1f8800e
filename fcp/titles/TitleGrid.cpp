#include "fcp/titles/TitleGrid.h"

#include "core/ConversionError.h"
#include "core/text/Characters.h"

#include <algorithm>
#include <cmath>
#include <limits>

using namespace Qt::StringLiterals;

namespace TitleGrid {

namespace {

bool isBetween(double value, double lowest, double highest)
{
    // False for what is not a number.
    return value >= lowest && value <= highest;
}

/// The published document type gives times denominators of 32 bits.
bool isUsable(const FrameRate &rate)
{
    constexpr qint64 largest = std::numeric_limits<qint32>::max();
    return rate.numerator > 0 && rate.numerator <= largest && rate.denominator > 0 && rate.denominator <= largest;
}

bool areWritable(const Options &options)
{
    const QString texts[] = {options.name,
                             options.font,
                             options.fontColor,
                             options.strokeColor,
                             options.shadowColor,
                             options.titleRole.value_or(QString()),
                             options.fontFace.value_or(QString())};
    return std::all_of(std::begin(texts), std::end(texts), Characters::isWritable);
}

void checkOptions(const Options &options)
{
    const auto require = [](bool valid, QStringView detail) {
        if (!valid)
            throw ConversionError(u"画面或字体设置无效。"_s, detail.toString());
    };
    require(std::isfinite(options.fontSize) && options.fontSize > 0, u"字号须大于 0。");
    require(isBetween(options.strokeWidth, 0, 20), u"描边宽度须在 0 到 20 之间。");
    require(isBetween(options.shadowBlur, 0, 30), u"阴影模糊须在 0 到 30 之间。");
    require(isBetween(options.bottomPercent, 0, 40), u"底部距离须在 0 到 40 之间。");
    require(options.width >= 1 && options.height >= 1, u"画面宽高须至少为 1。");
    require(isUsable(options.rate), u"帧率无效。");
    require(areWritable(options), u"名称、字体、颜色或角色中有无效控制字符。");
}

Title placeCue(const Subtitle &cue, const Options &options)
{
    const auto invalid = [&] { return ConversionError::aboutCue(cue.id, u" 条字幕内容或时间无效。"); };
    const QStringView text = QStringView(cue.text).trimmed();
    if (text.isEmpty() || cue.start >= cue.end)
        throw invalid();
    if (!Characters::isWritable(cue.text))
        throw ConversionError::aboutCue(cue.id, u" 条字幕含无效控制字符。");
    qint64 start = 0;
    qint64 end = 0;
    if (__builtin_add_overflow(cue.start, options.shiftMS, &start) ||
        __builtin_add_overflow(cue.end, options.shiftMS, &end))
        throw invalid();
    const auto startFrame = options.rate.frame(start);
    const auto endFrame = options.rate.frame(end);
    if (start < 0 || (startFrame && *startFrame < 0))
        throw ConversionError(
            u"时间偏移后有字幕早于项目起点，请调整偏移。"_s,
            u"第 %1 条字幕从 %2 毫秒开始，偏移 %3 毫秒。"_s.arg(cue.id).arg(cue.start).arg(options.shiftMS));
    if (!startFrame || !endFrame || *startFrame == std::numeric_limits<qint64>::max())
        throw invalid();
    const qint64 lastFrame = std::max(*endFrame, *startFrame + 1);
    if (!isWritable(lastFrame, options.rate))
        throw invalid();
    return {.cueID = cue.id, .text = text, .startFrame = *startFrame, .endFrame = lastFrame};
}

} // namespace

std::vector<Title> place(const QList<Subtitle> &cues, const Options &options, const Check &check)
{
    if (cues.isEmpty())
        throw ConversionError(u"请先打开 SRT。"_s);
    checkOptions(options);
    std::vector<Title> titles;
    titles.reserve(static_cast<size_t>(cues.size()));
    SparseCheck goOn(check);
    for (const Subtitle &cue : cues) {
        goOn();
        titles.push_back(placeCue(cue, options));
    }
    const auto startsEarlier = [](const Title &a, const Title &b) { return a.startFrame < b.startFrame; };
    std::stable_sort(titles.begin(), titles.end(), startsEarlier);
    return titles;
}

bool isWritable(qint64 frames, const FrameRate &rate)
{
    constexpr qint64 headroom = 1'000'000;
    constexpr qint64 largest = std::numeric_limits<qint64>::max() / headroom;
    qint64 ticks = 0;
    return !__builtin_mul_overflow(frames, rate.denominator, &ticks) && ticks <= largest && ticks >= -largest;
}

} // namespace TitleGrid
