#include "app/Lintora/look/StylePreview.h"

#include "app/Lintora/controls/Theme.h"
#include "app/titles/TitleMeasure.h"
#include "app/titles/TitlePicture.h"

#include <QPainter>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

constexpr int magnification = 3;

} // namespace

StylePreview::StylePreview(QWidget *parent)
    : QWidget(parent)
{
    setAccessibleName(u"字幕样式预览"_s);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    m_drawing.setSingleShot(true);
    m_drawing.setInterval(0);
    connect(&m_drawing, &QTimer::timeout, this, &StylePreview::draw);
}

StylePreview::~StylePreview() = default;

QSize StylePreview::sizeHint() const
{
    return {120 * VELTheme::step, 60 * VELTheme::step};
}

void StylePreview::show(const QString &text, const Options &options)
{
    if (options != m_options)
        m_measure.reset();
    else if (text == m_text && !m_picture.isNull())
        return;
    m_text = text;
    m_options = options;
    m_drawing.start();
}

void StylePreview::setBackdrop(const TitleBackdrop &backdrop)
{
    m_backdrop = backdrop;
    m_fitted = {};
    m_drawing.start();
}

void StylePreview::setGuidesVisible(bool visible)
{
    m_hasGuides = visible;
    m_drawing.start();
}

void StylePreview::setMagnified(bool magnified)
{
    m_isMagnified = magnified;
    m_drawing.start();
}

void StylePreview::draw()
{
    if (!m_measure)
        m_measure = std::make_unique<TitleMeasure>(m_options);
    const QSize room = size() * devicePixelRatio() * (m_isMagnified ? magnification : 1);
    const QSize pixels = TitlePicture::fittedSize(m_options, room);
    // A still is scaled once for a size, not with every picture.
    if (m_backdrop.kind != TitleBackdrop::Kind::still)
        m_fitted = m_backdrop;
    else if (m_fitted.still.size() != pixels)
        m_fitted = TitleBackdrops::fitted(m_backdrop, pixels);
    TitlePicture::drawInto(m_picture, m_text, m_options, room, m_fitted,
                           m_hasGuides ? TitlePicture::Guides::safeAreas : TitlePicture::Guides::none, *m_measure);
    m_shown = m_picture.rect();
    if (m_isMagnified)
        placeMagnified();
    setRemark(describe());
    update();
}

/// The title in the middle, as far as the frame goes.
void StylePreview::placeMagnified()
{
    const QSizeF room = QSizeF(size() * devicePixelRatio()).boundedTo(m_picture.size());
    const TitlePicture::Layout layout = TitlePicture::layout(m_text, m_options, m_picture.size(), *m_measure);
    const QPointF centre = layout.bounds.isEmpty() ? QRectF(m_picture.rect()).center() : layout.bounds.center();
    const double left = std::clamp(centre.x() - room.width() / 2, 0.0, m_picture.width() - room.width());
    const double top = std::clamp(centre.y() - room.height() / 2, 0.0, m_picture.height() - room.height());
    m_shown = QRectF(QPointF(left, top), room);
}

QString StylePreview::describe()
{
    QStringList remarks;
    if (m_measure->isWiderThanSafe(m_text.trimmed()))
        remarks += u"此条超出字幕安全区，需要换行"_s;
    const TitleFont::Choice &font = m_measure->font();
    if (font.isSubstitute)
        remarks += u"未安装“%1”，预览以“%2”代替"_s.arg(m_options.font, font.family);
    else if (font.isFaceSubstitute)
        remarks +=
            u"“%1”没有“%2”字形，预览以相近字形代替"_s.arg(m_options.font, m_options.fontFace.value_or(u"Regular"_s));
    return remarks.join(u" · "_s);
}

void StylePreview::setRemark(const QString &remark)
{
    if (remark == m_remark)
        return;
    m_remark = remark;
    setAccessibleDescription(remark);
    Q_EMIT remarkChanged();
}

void StylePreview::resizeEvent(QResizeEvent * /*event*/)
{
    m_drawing.start();
}

void StylePreview::paintEvent(QPaintEvent * /*event*/)
{
    if (m_picture.isNull())
        return;
    QPainter painter(this);
    QRectF frame({}, m_shown.size() / devicePixelRatio());
    frame.moveCenter(QRectF(rect()).center());
    frame.moveTopLeft(QPointF(frame.topLeft().toPoint()));
    painter.drawImage(frame, m_picture, m_shown);
    // Black on a dark window and white on a light one have an edge all the same.
    painter.setPen(VELTheme::colors(*this).border);
    painter.drawRect(frame.adjusted(0, 0, -1, -1));
}
