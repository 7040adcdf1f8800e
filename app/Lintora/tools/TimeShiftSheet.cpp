#include "app/Lintora/tools/TimeShiftSheet.h"

#include "app/Lintora/controls/ChoiceBox.h"
#include "app/Lintora/controls/Controls.h"
#include "app/Lintora/controls/CueTime.h"
#include "app/Lintora/controls/FieldRow.h"
#include "app/Lintora/controls/LineEdit.h"
#include "core/SRT.h"

#include <QHBoxLayout>
#include <QLineEdit>
#include <QVBoxLayout>

#include <numeric>

using namespace Qt::StringLiterals;

TimeShiftSheet::TimeShiftSheet(LintoraModel &model, QWidget *content)
    : Sheet(Extent::compact, content)
    , m_model(model)
    , m_row(new FieldRow(u"移动"_s, this))
    , m_distance(new LineEdit(this))
    , m_unit(new ChoiceBox(u"单位"_s, this))
    , m_scope(new ChoiceBox(u"范围"_s, this))
    , m_example(Controls::note({}, this))
    , m_move(Controls::primaryButton(u"移动"_s, this))
{
    addHeading(u"移动时间"_s);
    m_distance->setAccessibleName(u"移动多少"_s);
    m_distance->setPlaceholderText(u"0.5、-12 或 -00:00:01:12"_s);
    m_unit->addItem(u"秒"_s, int(CueTime::Unit::seconds));
    m_unit->addItem(u"帧"_s, int(CueTime::Unit::frames));
    m_row->controls()->addWidget(m_distance, 2);
    m_row->controls()->addWidget(m_unit, 1);
    m_row->setNote(u"负数提前，正数推后。"_s);
    auto *const scope = new FieldRow(u"范围"_s, this);
    scope->controls()->addWidget(m_scope);
    m_example->setAccessibleName(u"示例"_s);
    auto *const buttons = new QHBoxLayout;
    buttons->setSpacing(VELTheme::gap);
    buttons->addWidget(m_example, 1);
    buttons->addWidget(m_move);
    body()->addWidget(m_row);
    body()->addWidget(scope);
    body()->addSpacing(VELTheme::step);
    body()->addLayout(buttons);

    connect(this, &Sheet::closeRequested, this, &Sheet::dismiss);
    connect(m_distance, &QLineEdit::textChanged, this, &TimeShiftSheet::follow);
    connect(m_distance, &QLineEdit::returnPressed, this, &TimeShiftSheet::move);
    connect(m_unit, &ChoiceBox::currentIndexChanged, this, &TimeShiftSheet::follow);
    connect(m_scope, &ChoiceBox::currentIndexChanged, this, &TimeShiftSheet::follow);
    connect(m_move, &QPushButton::clicked, this, &TimeShiftSheet::move);
    // Positions would mean other cues.
    connect(&model, &LintoraModel::itemsChanged, this, &Sheet::dismiss);
    connect(&model, &LintoraModel::aiBusyChanged, this, &TimeShiftSheet::follow);
}

void TimeShiftSheet::present(const QList<qsizetype> &selected)
{
    m_selected = selected;
    listScopes();
    follow();
    m_distance->selectAll();
    open(m_distance);
}

/// Several selected cues are what is meant; one is selected always.
void TimeShiftSheet::listScopes()
{
    m_scope->clear();
    const auto track = m_model.items().size();
    if (!m_selected.isEmpty() && m_selected.size() < track)
        m_scope->addItem(u"所选 %1 条"_s.arg(m_selected.size()), int(Scope::selected));
    m_scope->addItem(u"全部 %1 条"_s.arg(track), int(Scope::track));
    if (m_model.visibleTracks().size() > 1)
        m_scope->addItem(u"所有语言组"_s, int(Scope::everything));
    m_scope->setCurrentIndex(m_scope->findData(int(m_selected.size() > 1 ? Scope::selected : Scope::track)));
    if (m_scope->currentIndex() < 0)
        m_scope->setCurrentIndex(0);
}

std::optional<CueShift::Distance> TimeShiftSheet::distance() const
{
    return CueTime::parseDistance(m_distance->text(), m_model.options().rate,
                                  CueTime::Unit(m_unit->currentData().toInt()));
}

QList<qsizetype> TimeShiftSheet::indices() const
{
    if (Scope(m_scope->currentData().toInt()) == Scope::selected)
        return m_selected;
    QList<qsizetype> all(m_model.items().size());
    std::iota(all.begin(), all.end(), 0);
    return all;
}

void TimeShiftSheet::follow()
{
    const auto far = distance();
    const bool isTyped = !m_distance->text().trimmed().isEmpty();
    m_row->setSentence(isTyped && !far ? u"写作 0.5、-12帧 或 -00:00:01:12；帧数须为整数。"_s : QString());
    m_move->setEnabled(far && far->count != 0 && !m_model.aiBusy());
    m_example->clear();
    const bool isThere = !m_model.items().isEmpty() && m_scope->currentIndex() >= 0;
    if (!far || !isThere)
        return;
    const qsizetype first = indices().first();
    const qint64 start = m_model.items().at(first).start;
    if (const auto moved = CueShift::moved(start, *far))
        m_example->setText(u"第 %1 条：%2 → %3"_s.arg(first + 1).arg(SRT::stamp(start), SRT::stamp(*moved)));
}

void TimeShiftSheet::move()
{
    const auto far = distance();
    if (!far || far->count == 0)
        return;
    const bool isEverything = Scope(m_scope->currentData().toInt()) == Scope::everything;
    if (m_model.moveTimes(isEverything ? std::nullopt : std::optional(indices()), *far))
        dismiss();
    else
        m_row->setSentence(m_model.failure().value_or(QString()) + m_model.failureDetail());
}
