#include "app/Lintora/SoundDesk.h"

#include "app/Lintora/controls/Theme.h"
#include "app/Lintora/cues/CueTable.h"
#include "app/Lintora/cues/Inspector.h"
#include "app/Lintora/sound/StripView.h"
#include "app/Lintora/sound/TimingStrip.h"
#include "app/Lintora/sound/TransportKeys.h"

#include <QApplication>
#include <QHeaderView>

namespace {

constexpr int fewestRows = 6; // of the table, beside the strip

} // namespace

SoundDesk::SoundDesk(LintoraModel &model, CueTable &table, Inspector &inspector, QWidget *place)
    : QObject(place)
    , m_model(model)
    , m_table(table)
    , m_strip(new TimingStrip(model, m_player, place))
{
    const auto showCurrent = [this] {
        const std::optional<int> cue = m_table.currentCue();
        m_strip->show(cue ? std::optional<qsizetype>(*cue) : std::nullopt);
    };
    connect(&table, &CueTable::currentCueChanged, m_strip, showCurrent);
    connect(m_strip, &TimingStrip::cueRequested, this, &SoundDesk::cueRequested);
    connect(m_strip, &TimingStrip::cueReached, this, [this](qsizetype cue) {
        if (!m_table.isEditing())
            m_table.goTo(cue); // One that is filtered out is passed over.
    });
    connect(m_strip, &TimingStrip::editRequested, this, [this](qsizetype cue) {
        Q_EMIT cueRequested(cue);
        m_table.editText(cue);
    });
    auto *const keys = new TransportKeys(m_strip->transport(), this);
    keys->giveTo(m_strip->view());
    keys->giveTo(table, [this] { return m_strip->isVisible() && !m_table.isEditing(); });
    showMedium(inspector);
    connect(&model.window(), &WindowState::stripShownChanged, this, &SoundDesk::followWindow);
    followWindow();
    showCurrent();
}

void SoundDesk::showMedium(Inspector &inspector)
{
    for (const auto signal : {&Sound::mediumChanged, &Sound::fileChanged, &Sound::readingChanged})
        connect(&m_model.sound(), signal, this, &SoundDesk::followSound);
    connect(&m_player, &Player::framed, &inspector,
            [this, &inspector](const QImage &frame) { inspector.showPicture(frame, m_player.positionMS()); });
    connect(&m_player, &Player::playingChanged, &inspector,
            [this, &inspector] { inspector.setPlaying(m_player.isPlaying()); });
    connect(&m_player, &Player::unavailable, &m_model, &LintoraModel::report);
    followSound();
}

/// What plays it may know less of its length than who has read it.
void SoundDesk::followSound()
{
    const Sound &sound = m_model.sound();
    m_player.setFile(sound.file());
    if (!sound.isReading())
        m_player.setLength(sound.waveform().lengthMS());
}

void SoundDesk::followWindow()
{
    const bool isShown = m_model.window().stripShown();
    const int header = m_table.horizontalHeader()->height();
    m_table.setMinimumHeight(isShown ? header + fewestRows * VELTheme::rowHeight + 2 * m_table.frameWidth() : 0);
    if (!isShown && m_strip->isAncestorOf(QApplication::focusWidget()))
        Q_EMIT keyboardFreed();
    m_strip->setVisible(isShown);
}
