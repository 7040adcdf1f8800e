#include "app/Lintora/sound/StripPainter.h"

#include "app/Lintora/controls/Theme.h"

#include <QFontMetrics>
#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

namespace StripPainter {

namespace {

constexpr int gripHalf = 5; // of the playhead's head, points

QColor faded(QColor colour, double share)
{
    colour.setAlphaF(colour.alphaF() * float(share));
    return colour;
}

/// What `share` of a colour over an opaque ground comes to. A see-through rectangle of this height is divided between
/// threads by the painter, which for a thousand of them takes ten times as long as an opaque one.
QColor mixed(const QColor &ground, const QColor &colour, double share)
{
    const auto part = float(colour.alphaF() * share);
    const auto mix = [part](float below, float above) { return below + (above - below) * part; };
    return QColor::fromRgbF(mix(ground.redF(), colour.redF()), mix(ground.greenF(), colour.greenF()),
                            mix(ground.blueF(), colour.blueF()));
}

/// A strip while it is drawn.
class Drawing
{
public:
    Drawing(QPainter &painter, const StripScene &scene, QSize size, const QRect &part, const VELTheme::Colors &colors)
        : m_painter(painter)
        , m_scene(scene)
        , m_size(size)
        , m_part(part)
        , m_colors(colors)
    {}

    void drawAll()
    {
        m_painter.fillRect(m_part, m_colors.surface);
        drawCues(&Drawing::drawShade);
        drawWaveform();
        drawFrames();
        drawCues(&Drawing::drawBlock);
        drawNewCue();
        drawRuler();
        drawPlayhead();
    }

private:
    /// Where a cue is drawn, in points.
    struct Span
    {
        double left;
        double right;
    };

    double x(qint64 ms) const { return m_scene.scale.x(ms); }
    static int waveTop() { return rulerHeight; }
    int waveBottom() const { return m_size.height() - laneHeight; }

    void drawWaveform()
    {
        const int middle = (waveTop() + waveBottom()) / 2;
        const double swing = double(waveBottom() - waveTop()) / 2 - 2;
        if (m_scene.waveform.isEmpty() || swing < 1)
            return;
        QList<QRect> speech;
        QList<QRect> silence;
        const int end = std::min(m_part.right() + 1, int(std::ceil(x(m_scene.waveform.lengthMS()))));
        for (int column = std::max(m_part.left(), 0); column < end; ++column) {
            const Peak peak = m_scene.waveform.between(m_scene.scale.time(column), m_scene.scale.time(column + 1));
            const int top = middle - int(std::lround(peak.high * swing / 127));
            const int bottom = middle - int(std::lround(peak.low * swing / 127));
            (peak.isSpeech ? speech : silence).append(QRect(column, top, 1, bottom - top + 1));
        }
        const auto fill = [this](const QList<QRect> &lines, const QColor &colour) {
            m_painter.setPen(Qt::NoPen);
            m_painter.setBrush(colour);
            m_painter.drawRects(lines);
        };
        fill(silence, m_colors.outline);
        fill(speech, mixed(m_colors.surface, m_colors.accent, 0.75));
    }

    void drawFrames()
    {
        const FrameGrid &grid = m_scene.grid;
        if (!TimeRuler::showsFrames(m_scene.scale.msPerPoint(), grid))
            return;
        m_painter.setPen(mixed(m_colors.surface, m_colors.outline, 0.45));
        const qint64 last = grid.frame(m_scene.scale.time(m_part.right() + 1)) + 1;
        for (qint64 frame = grid.frame(m_scene.scale.time(m_part.left())); frame <= last; ++frame) {
            const int at = int(std::floor(x(grid.time(frame))));
            m_painter.drawLine(at, waveTop(), at, waveBottom() - 1);
        }
    }

    using DrawCue = void (Drawing::*)(Span span, qsizetype cue, bool isCurrent);

    /// Cues that share a point are drawn as one: nobody could tell them apart.
    void drawCues(DrawCue draw)
    {
        const qint64 from = m_scene.scale.time(m_part.left() - 1);
        const qint64 to = m_scene.scale.time(m_part.right() + 2);
        const auto isMoved = [this](qsizetype cue) {
            return std::ranges::any_of(m_scene.moved, [&](const CueTimes &each) { return each.cue == cue; });
        };
        std::optional<CueTimes> current;
        double drawnTo = -1;
        for (const qsizetype cue : m_scene.cues.between(from, to)) {
            const Subtitle &item = m_scene.cues.items().at(cue);
            if (isMoved(cue))
                continue;
            if (cue == m_scene.current) {
                current = {.cue = cue, .start = item.start, .end = item.end};
                continue;
            }
            const Span span{.left = x(item.start), .right = x(item.end)};
            if (span.right < drawnTo + 1 && span.left >= drawnTo - 1)
                continue;
            (this->*draw)(span, cue, false);
            drawnTo = span.right;
        }
        for (const CueTimes &each : m_scene.moved)
            (this->*draw)({.left = x(each.start), .right = x(each.end)}, each.cue, each.cue == m_scene.current);
        if (current)
            (this->*draw)({.left = x(current->start), .right = x(current->end)}, current->cue, true);
    }

    void drawShade(Span span, qsizetype /*cue*/, bool isCurrent)
    {
        const QRectF shade(span.left, waveTop(), std::max(1.0, span.right - span.left), waveBottom() - waveTop());
        m_painter.fillRect(shade & QRectF(m_part), mixed(m_colors.surface, m_colors.selection, isCurrent ? 1 : 0.45));
    }

    void drawBlock(Span span, qsizetype cue, bool isCurrent)
    {
        constexpr double narrowest = 4; // of one that is more than a line
        if (span.right - span.left < narrowest) {
            m_painter.fillRect(
                QRectF(span.left, waveBottom() + 2, std::max(1.0, span.right - span.left), laneHeight - 4),
                isCurrent ? m_colors.accent : m_colors.outline);
            return;
        }
        const QColor line = isCurrent ? m_colors.accent : m_colors.outline;
        for (const double border : {span.left, span.right})
            m_painter.fillRect(QRectF(std::floor(border), waveTop(), 1, waveBottom() - waveTop()), line);
        // A half point of air on both sides tells neighbours apart.
        QRectF block(span.left + 0.5, waveBottom() + 2, std::max(1.0, span.right - span.left - 1), laneHeight - 4);
        m_painter.setRenderHint(QPainter::Antialiasing);
        m_painter.setPen(Qt::NoPen);
        m_painter.setBrush(isCurrent ? m_colors.accent : m_colors.selection);
        // Far outside of the strip nothing is drawn, however long the cue is.
        block.setLeft(std::max(block.left(), -double(VELTheme::radius) - 1));
        block.setRight(std::min(block.right(), double(m_size.width() + VELTheme::radius) + 1));
        const double radius = std::min<double>(VELTheme::step, block.width() / 2);
        m_painter.drawRoundedRect(block, radius, radius);
        m_painter.setRenderHint(QPainter::Antialiasing, false);
        drawText(block, cue, isCurrent);
    }

    void drawText(const QRectF &block, qsizetype cue, bool isCurrent)
    {
        constexpr double narrowest = 20;
        const QRectF seen = block & QRectF(0, block.top(), m_size.width(), block.height());
        const QRectF room = seen.adjusted(VELTheme::step, 0, -VELTheme::step, 0);
        if (room.width() < narrowest || !room.intersects(QRectF(m_part)))
            return;
        QString text = m_scene.cues.items().at(cue).text;
        text.replace(u'\n', u' ');
        m_painter.setPen(isCurrent ? m_colors.onAccent : m_colors.text);
        m_painter.drawText(room, Qt::AlignVCenter | Qt::AlignLeft | Qt::TextSingleLine,
                           m_metrics.elidedText(text, Qt::ElideRight, int(room.width())));
    }

    void drawNewCue()
    {
        if (!m_scene.newCue)
            return;
        const QRectF area(x(m_scene.newCue->start), waveTop(), x(m_scene.newCue->end) - x(m_scene.newCue->start),
                          m_size.height() - waveTop() - 2);
        m_painter.fillRect(area, faded(m_colors.added, 0.6));
        m_painter.setPen(m_colors.ready);
        m_painter.setBrush(Qt::NoBrush);
        m_painter.drawRect(area.adjusted(0, 0, -1, 0));
    }

    void drawRuler()
    {
        m_painter.fillRect(QRect(m_part.left(), 0, m_part.width(), rulerHeight), m_colors.window);
        m_painter.fillRect(QRect(m_part.left(), rulerHeight - 1, m_part.width(), 1), m_colors.border);
        const TimeRuler::Marks marks = TimeRuler::marks(m_scene.scale.msPerPoint());
        // A text begins at its line: what is drawn may belong to a line further left.
        const qint64 from = std::max<qint64>(0, m_scene.scale.time(m_part.left()) - marks.written);
        const qint64 to = m_scene.scale.time(m_part.right() + 1);
        for (qint64 ms = from - from % marks.lines; ms <= to; ms += marks.lines) {
            const bool isWritten = ms % marks.written == 0;
            const int at = int(std::lround(x(ms)));
            const int top = (isWritten ? 2 : 3) * VELTheme::step;
            m_painter.fillRect(QRect(at, top, 1, rulerHeight - top - 1), m_colors.outline);
            if (!isWritten)
                continue;
            m_painter.setPen(m_colors.secondary);
            m_painter.drawText(QPointF(at + 3, rulerHeight - 6), TimeRuler::text(ms, marks.written));
        }
    }

    void drawPlayhead()
    {
        const int at = int(std::floor(x(m_scene.playheadMS)));
        m_painter.fillRect(QRect(at, rulerHeight, 1, m_size.height()), m_colors.failure);
        QPainterPath head; // below the ruler, whose figures it would cover
        head.moveTo(at + 0.5 - gripHalf, rulerHeight);
        head.lineTo(at + 0.5 + gripHalf, rulerHeight);
        head.lineTo(at + 0.5, rulerHeight + 2 * gripHalf);
        head.closeSubpath();
        m_painter.setRenderHint(QPainter::Antialiasing);
        m_painter.fillPath(head, m_colors.failure);
        m_painter.setRenderHint(QPainter::Antialiasing, false);
    }

    QPainter &m_painter;
    const StripScene &m_scene;
    const QSize m_size;
    const QRect m_part;
    const VELTheme::Colors &m_colors;
    const QFontMetrics m_metrics{VELTheme::smallFont()};
};

} // namespace

void paint(QPainter &painter, const StripScene &scene, QSize size, const QRect &part, const VELTheme::Colors &colors)
{
    painter.setFont(VELTheme::smallFont());
    painter.setClipRect(part);
    Drawing(painter, scene, size, part, colors).drawAll();
}

QRect playheadAt(double x, int height)
{
    return {int(std::floor(x)) - gripHalf - 1, 0, 2 * gripHalf + 4, height};
}

} // namespace StripPainter
