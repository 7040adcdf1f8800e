#include "app/Lintora/controls/TitleView.h"

#include "app/titles/TitleMeasure.h"

TitleView::TitleView(const QString &name, QWidget *parent)
    : QWidget(parent)
{
    setAccessibleName(name);
    m_drawing.setSingleShot(true);
    m_drawing.setInterval(0);
    connect(&m_drawing, &QTimer::timeout, this, [this] {
        draw();
        update();
    });
}

TitleView::~TitleView() = default;

void TitleView::show(const QString &text, const Options &options)
{
    if (options != m_options)
        m_measure.reset();
    else if (text == m_text && !m_picture.isNull())
        return;
    m_text = text;
    m_options = options;
    drawSoon();
}

TitleMeasure &TitleView::measure()
{
    if (!m_measure)
        m_measure = std::make_unique<TitleMeasure>(m_options);
    return *m_measure;
}

void TitleView::resizeEvent(QResizeEvent * /*event*/)
{
    drawSoon();
}
