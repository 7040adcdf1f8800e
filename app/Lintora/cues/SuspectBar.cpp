#include "app/Lintora/cues/SuspectBar.h"

#include "app/Lintora/controls/CheckBox.h"
#include "app/Lintora/controls/Controls.h"
#include "app/Lintora/controls/ElidedLabel.h"

#include <QHBoxLayout>

using namespace Qt::StringLiterals;

SuspectBar::SuspectBar(LintoraModel &model, CueTable &table, QWidget *parent)
    : QWidget(parent)
    , m_model(model)
    , m_table(table)
    , m_text(new ElidedLabel(this))
    , m_tick(new CheckBox(u"移除这条"_s, this))
    , m_right(Controls::button(u"已核对"_s, this, u"这条的时间没有问题，去掉标记"_s))
    , m_next(Controls::button(u"下一处可疑"_s, this, u"转到下一条请您核对的字幕（⌘'）"_s))
    , m_remove(Controls::button({}, this, u"移除勾选的可疑字幕，可撤销"_s))
{
    m_text->setFont(VELTheme::smallFont());
    m_text->setAccessibleName(u"可疑字幕"_s);
    m_tick->setAccessibleName(m_tick->text());
    auto *const row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(VELTheme::gap);
    row->addWidget(m_text, 1);
    row->addWidget(m_tick);
    row->addWidget(m_right);
    row->addWidget(m_next);
    row->addWidget(m_remove);

    SuspectMarks &suspects = model.suspects();
    connect(&suspects, &SuspectMarks::changed, this, &SuspectBar::follow);
    connect(&model, &LintoraModel::selectedTrackIDChanged, this, &SuspectBar::follow);
    connect(&model, &LintoraModel::aiBusyChanged, this, &SuspectBar::follow);
    connect(&table, &CueTable::currentCueChanged, this, &SuspectBar::follow);
    connect(m_next, &QPushButton::clicked, this, &SuspectBar::goToNext);
    connect(m_right, &QPushButton::clicked, this, [this, &suspects] {
        if (const auto cue = currentCue()) {
            goToNext(); // first, so that the keyboard stays on this button
            suspects.dismiss(*cue);
        }
    });
    connect(m_tick, &CheckBox::clicked, this, [this, &suspects](bool ticked) {
        if (const auto cue = currentCue())
            suspects.setTicked(*cue, ticked);
    });
    connect(m_remove, &QPushButton::clicked, this, [this, &suspects] {
        if (m_table.commitEdit())
            suspects.removeTicked();
    });
    follow();
}

void SuspectBar::goToNext()
{
    if (const auto cue = m_model.suspects().next(m_table.currentCue().value_or(-1)))
        Q_EMIT cueRequested(*cue);
}

std::optional<Subtitle> SuspectBar::currentCue() const
{
    const auto current = m_table.currentCue();
    const QList<Subtitle> &items = m_model.items();
    return current && *current < items.size() ? std::optional(items.at(*current)) : std::nullopt;
}

void SuspectBar::follow()
{
    const SuspectMarks &suspects = m_model.suspects();
    const qsizetype count = suspects.count();
    setVisible(count > 0);
    if (count == 0)
        return;
    const auto cue = currentCue();
    const auto reasons = cue ? suspects.reasons(*cue) : std::nullopt;
    const bool areTimes = suspects.areAboutTimes();
    QString text = (areTimes ? u"%1 条时间待核对"_s : u"%1 条可能是识别臆造"_s).arg(count);
    if (reasons && !areTimes)
        text += u" · 这条："_s + SuspectCues::reason(*reasons);
    m_text->setText(text);
    m_tick->setVisible(!areTimes);
    m_remove->setVisible(!areTimes);
    m_right->setVisible(areTimes);
    m_right->setEnabled(reasons.has_value());
    m_tick->setEnabled(reasons.has_value());
    m_tick->setChecked(cue && suspects.isTicked(*cue));
    const qsizetype ticked = suspects.tickedCount();
    m_remove->setText(u"移除勾选 · %1"_s.arg(ticked));
    m_remove->setAccessibleName(m_remove->text());
    m_remove->setEnabled(ticked > 0 && !m_model.aiBusy());
}
