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
    : TitleView(u"字幕样式预览"_s, parent)
{
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
}

QSize StylePreview::sizeHint() const
{
    return {120 * VELTheme::step, 60 * VELTheme::step};
}

void StylePreview::setBackdrop(const TitleBackdrop &backdrop)
{
    m_backdrop = backdrop;
    m_fitted = {};
    drawSoon();
}

void StylePreview::setGuidesVisible(bool visible)
{
    m_hasGuides = visible;
    drawSoon();
}

void StylePreview::setMagnified(bool magnified)
{
    m_isMagnified = magnified;
    drawSoon();
}

void StylePreview::draw()
{
    const QSize room = size() * devicePixelRatio() * (m_isMagnified ? magnification : 1);
    const QSize pixels = TitlePicture::fittedSize(options(), room);
    // A still is scaled once for a size, not with every picture.
    if (m_backdrop.kind != TitleBackdrop::Kind::still)
        m_fitted = m_backdrop;
    else if (m_fitted.still.size() != pixels)
        m_fitted = TitleBackdrops::fitted(m_backdrop, pixels);
    TitlePicture::drawInto(picture(), text(), options(), room, m_fitted,
                           m_hasGuides ? TitlePicture::Guides::safeAreas : TitlePicture::Guides::none, measure());
    m_shown = picture().rect();
    if (m_isMagnified)
        placeMagnified();
    setRemark(describe());
}

/// The title in the middle, as far as the frame goes.
void StylePreview::placeMagnified()
{
    const QSizeF room = QSizeF(size() * devicePixelRatio()).boundedTo(picture().size());
    const TitlePicture::Layout layout = TitlePicture::layout(text(), options(), picture().size(), measure());
    const QPointF centre = layout.bounds.isEmpty() ? QRectF(picture().rect()).center() : layout.bounds.center();
    const double left = std::clamp(centre.x() - room.width() / 2, 0.0, picture().width() - room.width());
    const double top = std::clamp(centre.y() - room.height() / 2, 0.0, picture().height() - room.height());
    m_shown = QRectF(QPointF(left, top), room);
}

QString StylePreview::describe()
{
    QStringList remarks;
    if (measure().isWiderThanSafe(text().trimmed()))
        remarks += u"此条超出字幕安全区，需要换行"_s;
    const TitleFont::Choice &font = measure().font();
    if (font.isSubstitute)
        remarks += u"未安装“%1”，预览以“%2”代替"_s.arg(options().font, font.family);
    else if (font.isFaceSubstitute)
        remarks +=
            u"“%1”没有“%2”字形，预览以相近字形代替"_s.arg(options().font, options().fontFace.value_or(u"Regular"_s));
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

void StylePreview::paintEvent(QPaintEvent * /*event*/)
{
    if (picture().isNull())
        return;
    QPainter painter(this);
    QRectF frame({}, m_shown.size() / devicePixelRatio());
    frame.moveCenter(QRectF(rect()).center());
    frame.moveTopLeft(QPointF(frame.topLeft().toPoint()));
    painter.drawImage(frame, picture(), m_shown);
    // Black on a dark window and white on a light one have an edge all the same.
    painter.setPen(VELTheme::colors(*this).border);
    painter.drawRect(frame.adjusted(0, 0, -1, -1));
}
