#include "app/titles/TitleMeasure.h"

#include "app/titles/TitleFrame.h"
#include "core/text/Characters.h"

#include <algorithm>

namespace {

constexpr char16_t firstIdeograph = 0x4E00;
constexpr char16_t lastIdeograph = 0x9FA5;
constexpr char16_t sampleIdeograph = u'中';
constexpr qsizetype mostRuns = 20'000; ///< Some megabytes; a long track holds fewer words than that.

} // namespace

TitleMeasure::TitleMeasure(const Options &options)
    : m_font(TitleFont::choose(options))
    , m_metrics(m_font.font)
    , m_pixelsPerUnit(TitleFrame::emOf(options) / TitleFont::em)
    , m_safeWidth(TitleFrame::titleSafeWidth(options))
    , m_ascent(m_metrics.ascent() * m_pixelsPerUnit)
    , m_descent(m_metrics.descent() * m_pixelsPerUnit)
    , m_lineSpacing(m_metrics.lineSpacing() * m_pixelsPerUnit)
    , m_ideographs(lastIdeograph - firstIdeograph + 1, -1.0F)
{}

double TitleMeasure::widthOf(QStringView line)
{
    double units = 0;
    const qsizetype size = line.size();
    for (qsizetype at = 0; at < size;) {
        const qsizetype begin = at;
        // A mark behind an ideograph may join it (variation selectors): the character in front of a run belongs to it.
        while (at < size && Characters::isCommonIdeograph(line[at].unicode()))
            ++at;
        const bool isRunAhead = at < size;
        const qsizetype run =
            isRunAhead && at > begin && line[at].unicode() >= 0xFE00 && line[at].unicode() <= 0xFE0F ? at - 1 : at;
        for (qsizetype i = begin; i < run; ++i)
            units += ideographWidth(line[i].unicode());
        if (!isRunAhead)
            break;
        while (at < size && !Characters::isCommonIdeograph(line[at].unicode()))
            ++at;
        units += runWidth(line.sliced(run, at - run), run > 0);
    }
    return units * m_pixelsPerUnit;
}

double TitleMeasure::widestOf(QStringView text)
{
    double widest = 0;
    for (qsizetype begin = 0; begin <= text.size();) {
        const qsizetype feed = text.indexOf(u'\n', begin);
        const qsizetype end = feed < 0 ? text.size() : feed;
        widest = std::max(widest, widthOf(text.sliced(begin, end - begin)));
        begin = end + 1;
    }
    return widest;
}

double TitleMeasure::ideographWidth(char16_t character)
{
    float &width = m_ideographs[static_cast<size_t>(character - firstIdeograph)];
    if (width < 0)
        width = static_cast<float>(m_metrics.horizontalAdvance(QString(QChar(character))));
    return static_cast<double>(width);
}

double TitleMeasure::runWidth(QStringView run, bool followsIdeograph)
{
    // Marks that several scripts share are shaped as those of the script in front of them.
    const QString key = followsIdeograph ? QString(QChar(sampleIdeograph)).append(run) : run.toString();
    const auto known = m_runs.constFind(key);
    if (known != m_runs.cend())
        return *known;
    if (m_runs.size() >= mostRuns)
        m_runs.clear();
    const double before = followsIdeograph ? ideographWidth(sampleIdeograph) : 0;
    return *m_runs.insert(key, m_metrics.horizontalAdvance(key) - before);
}
