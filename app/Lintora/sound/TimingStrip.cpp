#include "app/Lintora/sound/TimingStrip.h"

#include "app/Lintora/controls/Controls.h"
#include "app/Lintora/sound/StripHandle.h"
#include "app/Lintora/sound/StripPainter.h"
#include "app/Lintora/sound/StripView.h"
#include "app/Lintora/sound/TransportBar.h"

#include <QScopedValueRollback>
#include <QVBoxLayout>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

constexpr int usualHeight = 40 * VELTheme::step;
constexpr int highest = 100 * VELTheme::step;
constexpr int lowestView = 14 * VELTheme::step;

} // namespace

TimingStrip::TimingStrip(LintoraModel &model, Player &player, QWidget *parent)
    : QWidget(parent)
    , m_model(model)
    , m_player(player)
    , m_transport(new Transport(model, player, this))
    , m_view(new StripView(model, player, this))
    , m_height(model.preferences().stripHeight() > 0 ? model.preferences().stripHeight() : usualHeight)
{
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Maximum);
    auto *const handle = new StripHandle(u"时间条高度"_s, this);
    connect(handle, &StripHandle::moved, this, &TimingStrip::changeHeight);
    connect(handle, &StripHandle::letGo, this, [this] {
        m_height = height();
        m_model.preferences().setStripHeight(m_height);
    });
    auto *const column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(VELTheme::step);
    column->addWidget(handle);
    column->addWidget(new TransportBar(model, player, *m_transport, this));
    column->addWidget(m_view, 1);
    m_view->setMinimumHeight(lowestView);
    makeNote();

    connect(m_view, &StripView::cueRequested, this,
            [this](qsizetype cue) { request(cue, &TimingStrip::cueRequested); });
    connect(m_view, &StripView::cueStepped, this, &TimingStrip::cueRequested);
    connect(m_view, &StripView::editRequested, this, &TimingStrip::editRequested);
    connect(m_view, &StripView::cueDrawn, this, &TimingStrip::editRequested);
    connect(m_transport, &Transport::cueCut, this, [this](qsizetype cue) { request(cue, &TimingStrip::cueRequested); });
    connect(&player, &Player::positionChanged, this, &TimingStrip::followPlayhead);
    connect(&model.window(), &WindowState::playRequested, this, [this](PlayCommand command) {
        if (isVisible())
            m_transport->perform(command);
    });
    for (const auto signal :
         {&Sound::mediumChanged, &Sound::readingChanged, &Sound::troubleChanged, &Sound::waveformChanged})
        connect(&model.sound(), signal, this, &TimingStrip::followSound);
    followSound();
}

void TimingStrip::makeNote()
{
    m_note = new QFrame(m_view);
    m_note->setProperty("sheet", true);
    m_noteText = Controls::note({}, m_note);
    m_noteText->setWordWrap(false);
    m_choose = Controls::button(u"选择音视频…"_s, m_note, u"选择这些字幕所属的录音或视频"_s);
    m_again = Controls::button(u"重新读取"_s, m_note);
    auto *const row = new QHBoxLayout(m_note);
    row->setContentsMargins(VELTheme::gap, VELTheme::step, VELTheme::gap, VELTheme::step);
    row->setSpacing(VELTheme::gap);
    row->addWidget(m_noteText);
    row->addWidget(m_choose);
    row->addWidget(m_again);
    connect(m_choose, &QPushButton::clicked, &m_model, &LintoraModel::chooseMedia);
    connect(m_again, &QPushButton::clicked, &m_model.sound(), &Sound::readAgain);
}

QSize TimingStrip::sizeHint() const
{
    return {0, std::clamp(m_height, minimumSizeHint().height(), highest)};
}

void TimingStrip::changeHeight(int by)
{
    m_height = std::clamp(height() + by, minimumSizeHint().height(), highest);
    updateGeometry();
    parentWidget()->layout()->activate(); // How high it becomes is known at once.
}

// What is shown

void TimingStrip::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    m_model.sound().setShown(true);
}

void TimingStrip::hideEvent(QHideEvent *event)
{
    QWidget::hideEvent(event);
    m_player.pause();
    m_model.sound().setShown(false);
}

void TimingStrip::show(std::optional<qsizetype> cue)
{
    const bool isThere = cue && *cue < m_model.items().size();
    const Shown next =
        isThere ? Shown{.track = m_model.selectedTrackID(), .position = *cue, .id = m_model.items().at(*cue).id}
                : Shown();
    m_view->setCurrent(cue);
    m_transport->setCue(cue);
    if (std::exchange(m_shown, next) == next || !isThere || m_isRequesting || !isVisible())
        return;
    m_view->bring(*cue);
    m_transport->goTo(*cue);
}

void TimingStrip::request(qsizetype cue, void (TimingStrip::*signal)(qsizetype cue))
{
    const QScopedValueRollback rollback(m_isRequesting, true);
    Q_EMIT(this->*signal)(cue);
}

/// The table follows what plays, from cue to cue.
void TimingStrip::followPlayhead(qint64 ms)
{
    if (!isVisible() || !m_transport->playsOn())
        return;
    if (const auto cue = m_view->cues().at(ms); cue && cue != m_view->current())
        request(*cue, &TimingStrip::cueReached);
}

void TimingStrip::followSound()
{
    const Sound &sound = m_model.sound();
    const bool isMissing = !sound.hasMedium();
    const bool isRefused = !isMissing && !sound.trouble().isEmpty();
    m_noteText->setText(isMissing ? u"还没有可以对照的声音"_s : isRefused ? sound.trouble() : u"正在读取声音…"_s);
    const QWidget *const focused = window()->focusWidget();
    if (focused && m_note->isAncestorOf(focused) && !isMissing && !isRefused)
        m_view->setFocus(); // before it goes by itself to whatever comes next
    m_choose->setVisible(isMissing || isRefused);
    m_again->setVisible(isRefused);
    m_note->setVisible(sound.waveform().isEmpty() && (isMissing || isRefused || sound.isReading()));
    placeNote();
}

void TimingStrip::resizeEvent(QResizeEvent * /*event*/)
{
    placeNote();
}

/// In the middle of where the sound would be.
void TimingStrip::placeNote()
{
    layout()->activate();
    m_note->adjustSize();
    const QRect area = m_view->rect().adjusted(0, StripPainter::rulerHeight, 0, -StripPainter::laneHeight);
    QRect place(QPoint(), m_note->size());
    place.moveCenter(area.center());
    m_note->move(std::max(0, place.left()), std::max(0, place.top()));
}
