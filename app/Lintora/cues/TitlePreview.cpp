#include "app/Lintora/cues/TitlePreview.h"

#include "app/Lintora/controls/Theme.h"
#include "app/titles/TitleMeasure.h"
#include "app/titles/TitlePicture.h"

#include <QPainter>

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

void TitlePreview::draw()
{
    if (!m_measure)
        m_measure = std::make_unique<TitleMeasure>(m_options);
    TitlePicture::drawInto(m_picture, m_text, m_options, size() * devicePixelRatio(), {}, TitlePicture::Guides::none,
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
