#pragma once

#include "app/Lintora/controls/LineEdit.h"

#include <functional>
#include <optional>

/// A field for a number that is typed. What is typed counts once the field is left, or at Return, and only when it is a
/// value; until then it stays as typed, and the field tells what is wrong with it. Escape takes it back. The arrow keys
/// up and down step, with Shift by ten.
class ValueEdit : public LineEdit
{
    Q_OBJECT

public:
    struct Kind
    {
        QString name; ///< What is typed, for who cannot see the field.
        double lowest = 0;
        double highest = 100;
        double step = 1; ///< Of the arrow keys; 0: they do nothing.
        QString unit = {};
        QString sentence = {}; ///< What is said of what is no value; empty: the limits are told.
        std::function<std::optional<double>(const QString &)> read = {}; ///< Empty: decimal numbers are read
        std::function<QString(double)> write = {};                       ///< and written.
    };

    explicit ValueEdit(Kind kind, QWidget *parent = nullptr);

    const Kind &kind() const { return m_kind; }
    double value() const { return m_value; }
    void setValue(double value); ///< Shows it. Something wrong that is being typed stays unless the value is another.

    /// What is wrong with what is typed; empty when nothing is.
    const QString &sentence() const { return m_sentence; }

    /// The number that `text` is, in narrow or wide digits, with or without `unit` behind it.
    static std::optional<double> readNumber(const QString &text, const QString &unit);
    static QString writeNumber(double value); ///< With two decimals at most.

Q_SIGNALS:
    void edited(double value);
    void sentenceChanged();
    void gestureBegan(); ///< A key that steps is held; always followed by the other.
    void gestureEnded();

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void keyReleaseEvent(QKeyEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;

private:
    std::optional<double> typed() const;
    void judge();
    void commit();
    void revert();
    void step(double by);
    void setSentence(const QString &sentence);
    void endGesture();

    Kind m_kind;
    double m_value = 0;
    QString m_sentence;
    bool m_isTyped = false; ///< Whether the text is the person's and not yet the value's.
    bool m_isGesture = false;
};
