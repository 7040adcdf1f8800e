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
    : TitleView(QStringLiteral("字幕画面预览"), parent)
{}

/// The options of a smaller frame that is cut from the document's, over its lower edge or as high as the title stands.
Options TitlePreview::shownPart()
{
    const QSizeF room = QSizeF(size()) * devicePixelRatio();
    const auto width = double(options().width);
    const auto height = double(options().height);
    const double em = TitleFrame::emOf(options());
    const double whole = std::min(room.width() / width, room.height() / height);
    const double readable = readableSize * devicePixelRatio() / em;
    if (!(em > 0 && width >= 1 && height >= 1) || room.isEmpty() || whole >= readable)
        return options();
    const double widest = std::min(measure().widestOf(text()), measure().safeWidth());
    const double scale = std::max(whole, widest > 0 ? std::min(readable, 0.94 * room.width() / widest) : readable);
    Options part = options();
    part.width = std::max(qint64(1), qint64(room.width() / scale));
    part.height = std::max(qint64(1), qint64(room.height() / scale));
    const double shown = double(part.height);
    const double lines = double(text().count(u'\n'));
    const double highest = shown - lines * measure().lineSpacing() - measure().ascent();
    const double baseline = std::min(options().bottomPercent / 100 * height, highest);
    part.bottomPercent = 100 * std::max(baseline, measure().descent()) / shown;
    return part;
}

void TitlePreview::setBackdrop(const QImage &picture)
{
    if (picture.isNull() && m_backdrop.isNull())
        return;
    m_backdrop = picture;
    drawSoon();
}

void TitlePreview::draw()
{
    if (!m_backdrop.isNull()) {
        TitlePicture::drawInto(picture(), text(), options(), size() * devicePixelRatio(),
                               {.kind = TitleBackdrop::Kind::still, .still = m_backdrop}, TitlePicture::Guides::none,
                               measure());
        picture().setDevicePixelRatio(devicePixelRatio());
        return;
    }
    // The measure is the document's: lines break as they do there, whatever part of the frame is shown.
    TitlePicture::drawInto(picture(), text(), shownPart(), size() * devicePixelRatio(), {}, TitlePicture::Guides::none,
                           measure());
    picture().setDevicePixelRatio(devicePixelRatio());
}

void TitlePreview::paintEvent(QPaintEvent * /*event*/)
{
    QPainter painter(this);
    QRectF frame({}, picture().deviceIndependentSize());
    frame.moveCenter(QRectF(rect()).center());
    painter.drawImage(frame.topLeft(), picture());
}
