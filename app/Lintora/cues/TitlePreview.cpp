#include "app/Lintora/cues/TitlePreview.h"

#include "app/Lintora/controls/Theme.h"
#include "app/titles/TitleFrame.h"
#include "app/titles/TitleMeasure.h"
#include "app/titles/TitlePicture.h"

#include <QPainter>

#include <algorithm>

namespace {

constexpr double readableSize = 13; // points, of the title's letters

} // namespace

TitlePreview::TitlePreview(QWidget *parent)
    : QWidget(parent)
{
    setAccessibleName(QStringLiteral("字幕画面预览"));
    m_drawing.setSingleShot(true);
    m_drawing.setInterval(0);
    connect(&m_drawing, &QTimer::timeout, this, &TitlePreview::draw);
}

TitlePreview::~TitlePreview() = default;

void TitlePreview::show(const QString &text, const Options &options)
{
    if (options != m_options)
        m_measure.reset();
    else if (text == m_text && !m_picture.isNull())
        return;
    m_text = text;
    m_options = options;
    m_drawing.start();
}

/// The options of a smaller frame that is cut from the document's, over its lower edge or as high as the title stands.
Options TitlePreview::shownPart() const
{
    const QSizeF room = QSizeF(size()) * devicePixelRatio();
    const auto width = double(m_options.width);
    const auto height = double(m_options.height);
    const double em = TitleFrame::emOf(m_options);
    const double whole = std::min(room.width() / width, room.height() / height);
    const double readable = readableSize * devicePixelRatio() / em;
    if (!(em > 0 && width >= 1 && height >= 1) || room.isEmpty() || whole >= readable)
        return m_options;
    const double widest = std::min(m_measure->widestOf(m_text), m_measure->safeWidth());
    const double scale = std::max(whole, widest > 0 ? std::min(readable, 0.94 * room.width() / widest) : readable);
    Options part = m_options;
    part.width = std::max(qint64(1), qint64(room.width() / scale));
    part.height = std::max(qint64(1), qint64(room.height() / scale));
    const double shown = double(part.height);
    const double lines = double(m_text.count(u'\n'));
    const double highest = shown - lines * m_measure->lineSpacing() - m_measure->ascent();
    const double baseline = std::min(m_options.bottomPercent / 100 * height, highest);
    part.bottomPercent = 100 * std::max(baseline, m_measure->descent()) / shown;
    return part;
}

void TitlePreview::draw()
{
    if (!m_measure)
        m_measure = std::make_unique<TitleMeasure>(m_options);
    // The measure is the document's: lines break as they do there, whatever part of the frame is shown.
    TitlePicture::drawInto(m_picture, m_text, shownPart(), size() * devicePixelRatio(), {}, TitlePicture::Guides::none,
                           *m_measure);
    m_picture.setDevicePixelRatio(devicePixelRatio());
    update();
}

void TitlePreview::resizeEvent(QResizeEvent * /*event*/)
{
    m_drawing.start();
}

void TitlePreview::paintEvent(QPaintEvent * /*event*/)
{
    QPainter painter(this);
    QRectF frame({}, m_picture.deviceIndependentSize());
    frame.moveCenter(QRectF(rect()).center());
    painter.drawImage(frame.topLeft(), m_picture);
}
