#include "app/Lintora/drag/DragSubtitleCard.h"

#include "app/Lintora/drag/CardFrame.h"
#include "app/model/FCPPasteboard.h"
#include "app/model/TitleTracks.h"
#include "app/platform/Platform.h"

#include <QClipboard>
#include <QContextMenuEvent>
#include <QDrag>
#include <QGuiApplication>
#include <QMenu>
#include <QPainter>
#include <QPointer>
#include <QStyleHints>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

Q_LOGGING_CATEGORY(logger, "SubtitleDrag")

constexpr int padding = 12;     // points, on either side of the text
constexpr int leastHeight = 36; // points

/// What a drag leaves to be said and done. Card, window and model may have gone while it was under way.
class Aftermath
{
public:
    Aftermath(LintoraModel &model, QWidget &window)
        : m_model(&model)
        , m_window(&window)
        , m_frame(window.frameGeometry())
    {
        model.window().subtitleDragInProgress = true;
    }

    void finish(Qt::DropAction action) const
    {
        const bool stayed = m_window && m_window->frameGeometry() == m_frame;
        Platform::log(logger(), u"End subtitle drag: operation=%1"_s.arg(int(action)));
        Platform::log(logger(), u"Subtitle drag window stayed still: %1"_s.arg(stayed ? u"true" : u"false"));
        if (!m_model)
            return;
        m_model->window().subtitleDragInProgress = false;
        m_model->report(action == Qt::IgnoreAction ? u"未放入时间线，请把字幕卡片拖到 FCP 时间线区域"_s
                                                   : u"已发送字幕片段，请在 FCP 中检查位置"_s);
        // Once the system is done with the drag. Forgotten when the model goes before.
        QMetaObject::invokeMethod(
            m_model,
            [model = m_model.get()] {
                if (model->window().raisePinnedWindow)
                    model->window().raisePinnedWindow();
            },
            Qt::QueuedConnection);
    }

private:
    const QPointer<LintoraModel> m_model;
    const QPointer<QWidget> m_window;
    const QRect m_frame;
};

} // namespace

DragSubtitleCard::DragSubtitleCard(LintoraModel &model, std::optional<QUuid> trackID, QWidget *parent)
    : DragSubtitleCard(model, trackID, false, parent)
{}

DragSubtitleCard::DragSubtitleCard(LintoraModel &model, AllTracks /*all*/, QWidget *parent)
    : DragSubtitleCard(model, std::nullopt, true, parent)
{}

DragSubtitleCard::DragSubtitleCard(LintoraModel &model, std::optional<QUuid> trackID, bool carriesAll, QWidget *parent)
    : QAbstractButton(parent)
    , m_model(model)
    , m_trackID(trackID)
    , m_carriesAll(carriesAll)
{
    setFocusPolicy(Qt::StrongFocus);
    setCursor(Qt::OpenHandCursor);
    setAttribute(Qt::WA_Hover);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    connect(this, &QAbstractButton::clicked, this, [this] { showMenu(rect().bottomLeft()); });
    connect(&model, &LintoraModel::tracksChanged, this, &DragSubtitleCard::showTrack);
    connect(&model, &LintoraModel::selectedTrackIDChanged, this, &DragSubtitleCard::showTrack);
    showTrack();
}

std::optional<QString> DragSubtitleCard::label() const
{
    if (m_carriesAll)
        return u"全部语言"_s;
    const SubtitleTrack *const shown = track();
    return shown ? std::optional(shown->label) : std::nullopt;
}

QString DragSubtitleCard::help() const
{
    const QString help = u"拖入 FCP 时间线，生成可独立编辑的字幕片段"_s;
    if (!m_carriesAll)
        return help;
    const QString covering = TitleTracks::covering(m_model.visibleTracks());
    const QString lanes = help + u"\n每种语言各占一层，保留各自的样式"_s;
    return covering.isEmpty() ? lanes : lanes + u'\n' + covering;
}

qsizetype DragSubtitleCard::cueCount() const
{
    if (!m_carriesAll) {
        const SubtitleTrack *const dragged = track();
        return dragged ? dragged->items.size() : 0;
    }
    qsizetype count = 0;
    for (const SubtitleTrack &each : m_model.visibleTracks())
        count += each.items.size();
    return count;
}

std::optional<QByteArray> DragSubtitleCard::payload()
{
    return m_carriesAll ? m_model.payloadOfAll() : m_model.payload(m_trackID);
}

const SubtitleTrack *DragSubtitleCard::track() const
{
    const auto id = m_trackID ? m_trackID : m_model.selectedTrackID();
    const auto &tracks = m_model.tracks();
    const auto found = std::ranges::find_if(tracks, [&](const SubtitleTrack &track) { return track.id == id; });
    return found == tracks.end() ? nullptr : &*found;
}

void DragSubtitleCard::showTrack()
{
    setToolTip(help());
    setAccessibleDescription(toolTip());
    const std::optional<QString> shown = this->label();
    if (!shown && !m_caption.isEmpty())
        return; // closed: the card keeps its name for as long as it is there
    const QString label = shown.value_or(QString());
    const QString text = u"↗  拖回 FCP 时间线    ·    "_s + label;
    if (text == m_caption)
        return;
    m_caption = text;
    m_label = label;
    setAccessibleName(label.isEmpty() ? u"拖到 FCP 时间线"_s : u"拖到 FCP 时间线 · %1"_s.arg(label));
    updateGeometry();
    update();
}

QSize DragSubtitleCard::sizeHint() const
{
    return {fontMetrics().horizontalAdvance(m_caption) + 2 * padding,
            std::max(leastHeight, fontMetrics().height() + 8)};
}

QSize DragSubtitleCard::minimumSizeHint() const
{
    return {fontMetrics().averageCharWidth() * 12 + 2 * padding, sizeHint().height()};
}

void DragSubtitleCard::paintEvent(QPaintEvent * /*event*/)
{
    QPainter painter(this);
    CardFrame::paint(painter, rect(), palette(), CardFrame::Edge::solid,
                     {.highlighted = underMouse(), .focused = hasFocus()});
    const QRect room = rect().adjusted(padding, 0, -padding, 0);
    painter.setPen(palette().color(QPalette::Text));
    painter.drawText(room, Qt::AlignVCenter | Qt::AlignLeft, shownCaption(room.width()));
}

/// Where there is no room for all of it, the language stays: it tells the cards apart.
QString DragSubtitleCard::shownCaption(int width) const
{
    const QString shorter = u"↗  %1"_s.arg(m_label);
    for (const QString &caption : {m_caption, u"↗  拖回 FCP · %1"_s.arg(m_label)}) {
        if (fontMetrics().horizontalAdvance(caption) <= width)
            return caption;
    }
    return fontMetrics().elidedText(shorter, Qt::ElideMiddle, width);
}

QPixmap DragSubtitleCard::dragImage() const
{
    const QString text = u"VELMORA 字幕助手 · %1 条字幕"_s.arg(cueCount());
    QPixmap image(size() * devicePixelRatioF());
    image.setDevicePixelRatio(devicePixelRatioF());
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(palette().color(QPalette::Base));
    painter.drawRoundedRect(rect(), CardFrame::radius, CardFrame::radius);
    const QRect room = rect().adjusted(padding, 0, -padding, 0);
    painter.setFont(QGuiApplication::font());
    painter.setPen(palette().color(QPalette::Text));
    painter.drawText(room, Qt::AlignCenter, painter.fontMetrics().elidedText(text, Qt::ElideRight, room.width()));
    return image;
}

void DragSubtitleCard::mousePressEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton)
        return;
    m_dragStarted = false;
    m_pressed = event->position().toPoint();
    setCursor(Qt::ClosedHandCursor);
}

void DragSubtitleCard::mouseMoveEvent(QMouseEvent *event)
{
    const int distance = (event->position().toPoint() - m_pressed).manhattanLength();
    if (!event->buttons().testFlag(Qt::LeftButton) || m_dragStarted ||
        distance < QGuiApplication::styleHints()->startDragDistance())
        return;
    m_dragStarted = true; // one press starts one drag, also when that is refused
    drag();
}

void DragSubtitleCard::mouseReleaseEvent(QMouseEvent * /*event*/)
{
    m_dragStarted = true; // moving counts only after a press of our own
    setCursor(Qt::OpenHandCursor);
}

void DragSubtitleCard::drag()
{
    const std::optional<QByteArray> document = payload();
    if (!document)
        return;
    // Of the application and not of the card: events go on during the drag, and may close the card's track.
    auto *const drag = new QDrag(qGuiApp);
    drag->setMimeData(FCPPasteboard::offering(*document).release());
    drag->setPixmap(dragImage());
    drag->setHotSpot(m_pressed);
    Platform::log(logger(), u"Begin subtitle drag: cues=%1 bytes=%2"_s.arg(cueCount()).arg(document->size()));
    const QPointer<DragSubtitleCard> card(this);
    const Aftermath aftermath(m_model, *window());
    aftermath.finish(drag->exec(Qt::CopyAction));
    if (card)
        card->setCursor(Qt::OpenHandCursor); // the release went to where the card was dropped
}

void DragSubtitleCard::copy()
{
    const std::optional<QByteArray> document = payload();
    if (!document)
        return;
    QGuiApplication::clipboard()->setMimeData(FCPPasteboard::offering(*document).release());
    m_model.report(u"已复制到剪贴板"_s);
}

void DragSubtitleCard::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter || event->key() == Qt::Key_Space)
        click();
    else
        QAbstractButton::keyPressEvent(event);
}

void DragSubtitleCard::contextMenuEvent(QContextMenuEvent *event)
{
    showMenu(event->reason() == QContextMenuEvent::Mouse ? event->pos() : rect().bottomLeft());
}

void DragSubtitleCard::showMenu(const QPoint &at)
{
    auto *const menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->addAction(u"复制到剪贴板"_s, this, &DragSubtitleCard::copy);
    menu->popup(mapToGlobal(at));
}

bool DragSubtitleCard::event(QEvent *event)
{
    if (event->type() == QEvent::HoverEnter || event->type() == QEvent::HoverLeave)
        update();
    return QAbstractButton::event(event);
}
