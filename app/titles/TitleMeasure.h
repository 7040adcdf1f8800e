#pragma once

#include "app/titles/TitleFont.h"

#include <QFontMetricsF>
#include <QHash>

#include <vector>

/// How wide text is in the style of one `Options`, cheaply enough to ask for every cue of a long track.
///
/// Widths are advance widths in pixels of the document's frame, without stroke and shadow. The font is looked up once;
/// the advances of Han characters and kana are remembered one by one, and everything between them as shaped runs. Keep
/// one measure per style and thread: it is not to be shared between threads.
class TitleMeasure
{
public:
    explicit TitleMeasure(const Options &options);

    double widthOf(QStringView line);                ///< Of one line.
    double widestOf(QStringView text);               ///< Of the widest of the lines between line feeds.
    double safeWidth() const { return m_safeWidth; } ///< As TitleFrame::titleSafeWidth.

    /// Whether some line of `text` is wider than the title-safe width.
    bool isWiderThanSafe(QStringView text) { return widestOf(text) > m_safeWidth; }

    double ascent() const { return m_ascent; }           ///< Of the font, above the baseline.
    double descent() const { return m_descent; }         ///< Of the font, below the baseline.
    double lineSpacing() const { return m_lineSpacing; } ///< From baseline to baseline.
    const TitleFont::Choice &font() const { return m_font; }

private:
    double ideographWidth(char16_t character);
    double runWidth(QStringView run, bool followsIdeograph);

    TitleFont::Choice m_font;
    QFontMetricsF m_metrics;
    double m_pixelsPerUnit; ///< Document pixels in a pixel of the measured font.
    double m_safeWidth;
    double m_ascent;
    double m_descent;
    double m_lineSpacing;
    std::vector<float> m_ideographs; ///< In units of the measured font; negative where not yet asked for.
    QHash<QString, double> m_runs;   ///< In the same.
};
