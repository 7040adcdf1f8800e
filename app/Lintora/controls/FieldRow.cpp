#include "app/Lintora/controls/FieldRow.h"

#include "app/Lintora/controls/Controls.h"

#include <QStyle>
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
    if (m_below->property("failure").toBool() == isFailure)
        return;
    m_below->setProperty("failure", isFailure);
    m_below->setProperty("secondary", !isFailure);
    m_below->style()->unpolish(m_below);
    m_below->style()->polish(m_below);
}
