#include "app/Lintora/controls/TextField.h"

#include "app/Lintora/controls/LineEdit.h"

#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QStyle>

TextField::TextField(const QString &name, std::function<QString(const QString &)> judge, QWidget *parent)
    : FieldRow(name, parent)
    , m_judge(std::move(judge))
    , m_edit(new LineEdit(this))
{
    m_edit->setAccessibleName(name);
    m_edit->installEventFilter(this);
    label()->setBuddy(m_edit);
    controls()->addWidget(m_edit, 1);
    connect(m_edit, &QLineEdit::textEdited, this, [this](const QString &text) {
        m_isTyped = true;
        setSentence(m_judge(text));
    });
    connect(m_edit, &QLineEdit::editingFinished, this, &TextField::commit);
}

void TextField::setText(const QString &text)
{
    if (text == m_text && m_isTyped)
        return;
    m_text = text;
    revert();
    if (!m_edit->hasFocus())
        m_edit->setCursorPosition(0); // so that a long one is seen from its start
}

void TextField::commit()
{
    const QString text = m_edit->text();
    if (!m_isTyped || !m_judge(text).isEmpty())
        return;
    m_isTyped = false;
    if (text == m_text)
        return;
    m_text = text;
    Q_EMIT edited(text);
}

void TextField::revert()
{
    m_isTyped = false;
    if (m_edit->text() != m_text)
        m_edit->setText(m_text);
    setSentence({});
}

bool TextField::eventFilter(QObject *watched, QEvent *event)
{
    if (watched != m_edit || event->type() != QEvent::KeyPress)
        return FieldRow::eventFilter(watched, event);
    const auto &key = static_cast<const QKeyEvent &>(*event);
    if (!m_isTyped && (key.matches(QKeySequence::Undo) || key.matches(QKeySequence::Redo))) {
        event->ignore(); // With nothing typed here, it is the last change that is meant.
        return true;
    }
    if (!m_isTyped || key.key() != Qt::Key_Escape)
        return false;
    revert();
    m_edit->selectAll();
    return true;
}
