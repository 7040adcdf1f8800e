#include "app/Lintora/sound/Transport.h"

#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;

Transport::Transport(LintoraModel &model, Player &player, QObject *parent)
    : QObject(parent)
    , m_model(model)
    , m_player(player)
{
    connect(&model, &LintoraModel::itemsChanged, this, &Transport::followCues);
    connect(&model.sound(), &Sound::mediumChanged, &player, &Player::pause);
}

void Transport::perform(PlayCommand command)
{
    const Subtitle *const cue = current();
    switch (command) {
    case PlayCommand::playOrStop:
        return playOrStop();
    case PlayCommand::playCue:
        return playCue();
    case PlayCommand::playFirst:
        return cue ? playStretch(cue->start, std::min(cue->end, cue->start + halfSecond)) : void();
    case PlayCommand::playLast:
        return cue ? playStretch(std::max(cue->start, cue->end - halfSecond), cue->end) : void();
    case PlayCommand::goBack:
        return m_player.seek(std::max<qint64>(0, m_player.positionMS() - backStep));
    case PlayCommand::stop:
        return m_player.isPlaying() ? m_player.pause() : m_player.setRate(1);
    case PlayCommand::playFaster:
        return playFaster();
    case PlayCommand::loop:
        m_loops = !m_loops;
        if (m_player.isPlaying() && m_playsCue)
            playCue();
        return Q_EMIT modeChanged();
    case PlayCommand::review:
        m_reviews = !m_reviews;
        if (m_reviews)
            playCue();
        return Q_EMIT modeChanged();
    case PlayCommand::startHere:
        return setBorder(&CueTiming::setStart);
    case PlayCommand::endHere:
        return setBorder(&CueTiming::setEnd);
    case PlayCommand::cutHere:
        return cut();
    }
}

/// Null where the cue is not there any more, or none is current.
const Subtitle *Transport::current() const
{
    return m_cue && *m_cue < m_model.items().size() ? &m_model.items().at(*m_cue) : nullptr;
}

void Transport::goTo(qsizetype cue)
{
    m_cue = cue;
    if (m_reviews)
        playCue();
    else if (const Subtitle *const chosen = current(); chosen && !m_player.isPlaying())
        m_player.seek(chosen->start);
}

bool Transport::playsOn() const
{
    const qint64 now = m_player.positionMS();
    const bool isWithin = m_stretch.start < m_stretch.end && now >= m_stretch.start && now <= m_stretch.end;
    return m_player.isPlaying() && !isWithin;
}

void Transport::playCue()
{
    if (const Subtitle *const cue = current()) {
        playStretch(cue->start, cue->end);
        m_playsCue = true;
    }
}

void Transport::playStretch(qint64 startMS, qint64 endMS)
{
    if (!m_model.sound().hasMedium())
        return;
    m_stretch = {.start = startMS, .end = endMS};
    m_playsCue = false;
    m_player.playStretch(startMS, endMS, m_loops ? Player::Repeat::forever : Player::Repeat::once);
}

void Transport::playOrStop()
{
    if (m_player.isPlaying())
        return m_player.pause();
    if (!m_model.sound().hasMedium())
        return;
    m_stretch = {};
    m_playsCue = false;
    m_player.play();
}

/// From one speed to the next.
void Transport::playFaster()
{
    constexpr std::array speeds{1.0, 1.5, Player::fastest};
    if (!m_player.isPlaying())
        return playOrStop();
    const auto next = std::ranges::upper_bound(speeds, m_player.rate());
    if (next != speeds.end())
        m_player.setRate(*next);
}

void Transport::setBorder(bool (CueTiming::*set)(qsizetype cue, qint64 timeMS))
{
    if (m_cue)
        (m_model.cueTiming().*set)(*m_cue, m_player.positionMS());
}

/// What is being typed is part of the text that is cut.
void Transport::cut()
{
    const auto &keepTyped = m_model.window().keepTyped;
    if (!m_cue || (keepTyped && !keepTyped()))
        return;
    if (const auto second = m_model.cueTiming().cut(*m_cue, m_player.positionMS()))
        Q_EMIT cueCut(*second);
}

void Transport::followCues()
{
    if (m_player.isLooping() && m_playsCue)
        playCue();
}
