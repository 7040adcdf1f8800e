#include "app/Lintora/sound/TransportBar.h"

#include "app/Lintora/controls/CheckBox.h"
#include "app/Lintora/controls/ChoiceBox.h"
#include "app/Lintora/controls/Controls.h"
#include "app/Lintora/controls/ElidedLabel.h"
#include "core/SRT.h"

#include <QHBoxLayout>
#include <QSignalBlocker>

#include <cmath>

using namespace Qt::StringLiterals;

namespace {

constexpr double offeredRates[] = {Player::slowest, 0.75, 1, 1.25, 1.5, Player::fastest};

} // namespace

TransportBar::TransportBar(LintoraModel &model, Player &player, Transport &transport, QWidget *parent)
    : QWidget(parent)
    , m_model(model)
    , m_player(player)
    , m_transport(transport)
    , m_play(Controls::signButton(VELTheme::Glyph::play, u"播放或停止"_s, this, u"播放或停止（空格）"_s))
    , m_cue(Controls::quietButton(u"播放这一条"_s, this))
    , m_loop(Controls::signButton(VELTheme::Glyph::loop, u"循环播放"_s, this, u"反复播放所选字幕（⌘L）"_s))
    , m_rate(new ChoiceBox(u"播放速度"_s, this))
    , m_time(new ElidedLabel(this))
    , m_sound(new ElidedLabel(this))
    , m_review(new CheckBox(u"逐条播放"_s, this))
{
    m_cue->setProperty("tight", true);
    m_cue->setToolTip(u"播放所选字幕（⌘P）"_s);
    m_loop->setCheckable(true);
    m_review->setToolTip(u"到哪一条就播放哪一条，便于逐条校对（⌘⇧P）"_s);
    m_review->setAccessibleDescription(m_review->toolTip());
    for (const double rate : offeredRates)
        m_rate->addItem(u"%1×"_s.arg(rate), rate);
    m_rate->setFixedWidth(18 * VELTheme::step);
    m_time->setFont(VELTheme::figureFont());
    m_time->setFixedWidth(QFontMetrics(m_time->font()).horizontalAdvance(u"00:00:00,000"_s) + VELTheme::step);
    m_time->setAccessibleName(u"播放头"_s);
    m_sound->setFont(VELTheme::smallFont());
    m_sound->setElideMode(Qt::ElideMiddle);
    m_sound->setAlignment(Qt::AlignVCenter | Qt::AlignRight);
    m_sound->setAccessibleName(u"声音"_s);
    m_sound->setProperty("secondary", true);

    auto *const row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(VELTheme::step);
    row->addWidget(m_play);
    row->addWidget(m_cue);
    row->addWidget(m_loop);
    row->addWidget(m_rate);
    row->addSpacing(VELTheme::step);
    row->addWidget(m_time);
    row->addWidget(m_sound, 1);
    row->addSpacing(VELTheme::step);
    row->addWidget(m_review);

    connect(m_play, &QToolButton::clicked, this, [this] { m_transport.perform(PlayCommand::playOrStop); });
    connect(m_cue, &QPushButton::clicked, this, [this] { m_transport.perform(PlayCommand::playCue); });
    connect(m_loop, &QToolButton::clicked, this, [this] { m_transport.perform(PlayCommand::loop); });
    connect(m_review, &CheckBox::clicked, this, [this] { m_transport.perform(PlayCommand::review); });
    connect(m_rate, &QComboBox::activated, this, [this] { m_player.setRate(m_rate->currentData().toDouble()); });
    connect(&player, &Player::playingChanged, this, &TransportBar::followPlaying);
    connect(&player, &Player::positionChanged, this, &TransportBar::followPosition);
    connect(&player, &Player::rateChanged, this, &TransportBar::followRate);
    connect(&transport, &Transport::modeChanged, this, &TransportBar::followModes);
    for (const auto signal : {&Sound::mediumChanged, &Sound::readingChanged, &Sound::troubleChanged})
        connect(&model.sound(), signal, this, &TransportBar::followSound);
    followPlaying();
    followPosition();
    followRate();
    followModes();
    followSound();
}

void TransportBar::followPlaying()
{
    m_play->setIcon(VELTheme::icon(m_player.isPlaying() ? VELTheme::Glyph::stop : VELTheme::Glyph::play, *m_play));
    followPosition();
}

void TransportBar::followModes()
{
    m_loop->setChecked(m_transport.loops());
    m_review->setChecked(m_transport.reviews());
}

void TransportBar::followRate()
{
    int nearest = 0;
    for (int i = 1; i < m_rate->count(); ++i) {
        const auto distance = [this](int index) {
            return std::abs(m_rate->itemData(index).toDouble() - m_player.rate());
        };
        nearest = distance(i) < distance(nearest) ? i : nearest;
    }
    m_rate->setCurrentIndex(nearest);
}

void TransportBar::followPosition()
{
    m_time->setText(SRT::stamp(m_player.positionMS()));
}

void TransportBar::followSound()
{
    const Sound &sound = m_model.sound();
    for (QWidget *const each : std::initializer_list<QWidget *>{m_play, m_cue, m_loop, m_rate, m_review})
        each->setEnabled(sound.hasMedium());
    QString text = sound.trouble().isEmpty() ? sound.title() : sound.trouble();
    if (sound.trouble().isEmpty() && sound.isReading()) {
        const auto share = sound.share();
        text = share ? u"正在读取声音 %1%"_s.arg(int(*share * 100)) : u"正在读取声音…"_s;
    }
    m_sound->setText(text);
    Controls::showAsFailure(m_sound, !sound.trouble().isEmpty());
}
