#include "app/Lintora/controls/FieldRow.h"

#include "app/Lintora/controls/ChoiceBox.h"
#include "app/Lintora/controls/Controls.h"

#include <QVBoxLayout>

FieldRow::FieldRow(const QString &name, QWidget *parent)
    : QWidget(parent)
    , m_controls(new QHBoxLayout)
    , m_label(new QLabel(name, this))
    , m_below(Controls::note({}, this))
{
    m_label->setFixedWidth(labelWidth);
    m_controls->setSpacing(VELTheme::gap);
    auto *const top = new QHBoxLayout;
    top->setSpacing(VELTheme::gap);
    top->addWidget(m_label);
    top->addLayout(m_controls, 1);
    m_below->setContentsMargins(labelWidth + VELTheme::gap, 0, 0, VELTheme::step);
    auto *const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(VELTheme::step);
    layout->addLayout(top);
    layout->addWidget(m_below);
    m_below->hide();
}

ChoiceBox *FieldRow::addChoice()
{
    auto *const box = new ChoiceBox(m_label->text(), this);
    // A long name of a file must not widen the window.
    box->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    m_label->setBuddy(box);
    m_controls->addWidget(box, 1);
    return box;
}

void FieldRow::setNote(const QString &note)
{
    m_note = note;
    update();
}

void FieldRow::setSentence(const QString &sentence)
{
    m_sentence = sentence;
    update();
}

void FieldRow::update()
{
    const bool isFailure = !m_sentence.isEmpty();
    m_below->setText(isFailure ? m_sentence : m_note);
    m_below->setVisible(!m_below->text().isEmpty());
    Controls::showAsFailure(m_below, isFailure);
}
