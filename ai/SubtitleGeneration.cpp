#include "ai/SubtitleGeneration.h"

#include "core/ConversionError.h"
#include "core/PlatformError.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace SubtitleGeneration {

GeneratedSubtitles finish(const QList<Subtitle> &cues,
                          const std::function<QList<Subtitle>(const QList<Subtitle> &)> &review)
{
    if (!review)
        return {.cues = cues};
    const auto unreviewed = [&](const std::exception &error) {
        const Failure reason = Failure::of(error);
        const QString detail = Failure::joined(reason.sentence.simplified(), reason.detail);
        return GeneratedSubtitles{
            .cues = cues,
            .notice = Failure{.sentence = u"字幕已生成；自动校对未完成，已保留识别原稿。"_s, .detail = detail}};
    };
    QList<Subtitle> reviewed;
    try {
        reviewed = review(cues);
    } catch (const ConversionError &error) {
        return unreviewed(error);
    } catch (const PlatformError &error) {
        return unreviewed(error);
    }
    const auto sameTime = [](const Subtitle &a, const Subtitle &b) {
        return a.id == b.id && a.start == b.start && a.end == b.end;
    };
    if (!std::ranges::equal(cues, reviewed, sameTime))
        throw ConversionError(u"校对结果改变了字幕时间。"_s);
    return {.cues = reviewed, .unreviewed = cues};
}

} // namespace SubtitleGeneration
