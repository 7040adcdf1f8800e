#include "app/Lintora/controls/ValueEdit.h"

#include "app/Lintora/controls/Theme.h"

#include <QKeyEvent>
#include <QLocale>
#include <QStyle>

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

ValueEdit::ValueEdit(Kind kind, QWidget *parent)
    : LineEdit(parent)
    , m_kind(std::move(kind))
{
    setAccessibleName(m_kind.name);
    if (!m_kind.read)
        m_kind.read = [unit = m_kind.unit](const QString &text) { return readNumber(text, unit); };
    if (!m_kind.write)
        m_kind.write = writeNumber;
    if (m_kind.sentence.isEmpty())
        m_kind.sentence =
            u"请输入 %1 到 %2 之间的数值。"_s.arg(writeNumber(m_kind.lowest), writeNumber(m_kind.highest));
    setText(m_kind.write(m_value));
    connect(this, &QLineEdit::textEdited, this, [this] {
        m_isTyped = true;
        judge();
    });
    connect(this, &QLineEdit::editingFinished, this, &ValueEdit::commit);
}

std::optional<double> ValueEdit::readNumber(const QString &text, const QString &unit)
{
    QString number = text.normalized(QString::NormalizationForm_KC).trimmed();
    if (!unit.isEmpty() && number.endsWith(unit, Qt::CaseInsensitive))
        number = number.chopped(unit.size()).trimmed();
    number.replace(u'−', u'-');
    bool isNumber = false;
    const double value = QLocale::c().toDouble(number, &isNumber);
    return isNumber && std::isfinite(value) ? std::optional(value) : std::nullopt;
}

QString ValueEdit::writeNumber(double value)
{
    return QString::number(std::round(value * 100) / 100, 'f', QLocale::FloatingPointShortest);
}

void ValueEdit::setValue(double value)
{
    if (value == m_value && m_isTyped)
        return;
    m_value = value;
    revert();
}

std::optional<double> ValueEdit::typed() const
{
    const auto value = m_kind.read(text());
    return value && *value >= m_kind.lowest && *value <= m_kind.highest ? value : std::nullopt;
}

void ValueEdit::judge()
{
    setSentence(typed() ? QString() : m_kind.sentence);
}

void ValueEdit::commit()
{
    if (!m_isTyped)
        return;
    const auto value = typed();
    if (!value)
        return;
    m_isTyped = false;
    const bool isAnother = *value != m_value;
    m_value = *value;
    revert();
    if (isAnother)
        Q_EMIT edited(*value);
}

/// Shows the value instead of what is typed.
void ValueEdit::revert()
{
    m_isTyped = false;
    const QString shown = m_kind.write(m_value);
    if (text() != shown)
        setText(shown);
    setSentence({});
}

void ValueEdit::step(double by)
{
    const double next = std::clamp(typed().value_or(m_value) + by, m_kind.lowest, m_kind.highest);
    m_isTyped = false;
    if (next == m_value)
        return;
    m_value = next;
    revert();
    selectAll();
    Q_EMIT edited(next);
}

void ValueEdit::setSentence(const QString &sentence)
{
    if (sentence == m_sentence)
        return;
    m_sentence = sentence;
    setProperty("invalid", !sentence.isEmpty());
    setAccessibleDescription(sentence);
    style()->unpolish(this);
    style()->polish(this);
    Q_EMIT sentenceChanged();
}

void ValueEdit::keyPressEvent(QKeyEvent *event)
{
    const bool isStep = m_kind.step > 0 && (event->key() == Qt::Key_Up || event->key() == Qt::Key_Down);
    if (isStep) {
        if (!event->isAutoRepeat() && !m_isGesture) {
            m_isGesture = true;
            Q_EMIT gestureBegan();
        }
        const double size = event->modifiers() & Qt::ShiftModifier ? 10 * m_kind.step : m_kind.step;
        step(event->key() == Qt::Key_Up ? size : -size);
    } else if (event->key() == Qt::Key_Escape && m_isTyped) {
        revert();
        selectAll();
    } else if (!m_isTyped && (event->matches(QKeySequence::Undo) || event->matches(QKeySequence::Redo))) {
        event->ignore(); // With nothing typed here, it is the last change of the value that is meant.
    } else {
        const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
        LineEdit::keyPressEvent(event);
        if (isReturn)
            selectAll();
    }
}

void ValueEdit::keyReleaseEvent(QKeyEvent *event)
{
    if (!event->isAutoRepeat())
        endGesture();
    LineEdit::keyReleaseEvent(event);
}

void ValueEdit::focusOutEvent(QFocusEvent *event)
{
    endGesture();
    LineEdit::focusOutEvent(event);
}

void ValueEdit::endGesture()
{
    if (!m_isGesture)
        return;
    m_isGesture = false;
    Q_EMIT gestureEnded();
}
