#include "app/Lintora/look/FontSamples.h"

#include <QFont>
#include <QFontMetrics>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace {

constexpr int mostSamples = 400;
constexpr int mostWaiting = 40; ///< More rows than a window shows.
constexpr int widest = 600;     ///< Pixels.

QImage draw(const QString &family, const QString &text, const FontSamples::Look &look)
{
    QFont font(family);
    font.setPixelSize(look.pixels);
    const QFontMetrics metrics(font);
    // Some fonts draw far beyond their line: what is shown is as high as a row.
    const QSize size(std::clamp(metrics.horizontalAdvance(text) + look.pixels, 1, widest), 2 * look.pixels);
    QImage image(QSizeF(size * look.ratio).toSize(), QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(look.ratio);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setFont(font);
    painter.setPen(look.color);
    painter.drawText(QRect({}, size), Qt::AlignVCenter | Qt::AlignLeft | Qt::TextSingleLine, text);
    return image;
}

} // namespace

FontSamples::FontSamples(QObject *parent)
    : QObject(parent)
    , m_samples(mostSamples)
{
    m_drawing.setInterval(0);
    connect(&m_drawing, &QTimer::timeout, this, &FontSamples::drawNext);
}

const QImage *FontSamples::sample(const QString &family, const QString &text, const Look &look)
{
    if (look != m_look) {
        m_look = look;
        m_samples.clear();
    }
    if (const QImage *const known = m_samples.object(family))
        return known;
    const bool isWaiting = std::ranges::any_of(m_wanted, [&](const Wanted &each) { return each.family == family; });
    if (!isWaiting)
        m_wanted.append({family, text});
    if (m_wanted.size() > mostWaiting)
        m_wanted.removeFirst();
    m_drawing.start();
    return nullptr;
}

void FontSamples::drawNext()
{
    if (m_wanted.isEmpty()) {
        m_drawing.stop();
        return;
    }
    const Wanted next = m_wanted.takeLast();
    m_samples.insert(next.family, new QImage(draw(next.family, next.text, m_look)));
    Q_EMIT drawn();
}
