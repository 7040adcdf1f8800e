#pragma once

#include <QHBoxLayout>
#include <QWidget>

class ChoiceBox;
class QLabel;

/// A row of a form: what it is about, the controls for it, and below, while there is something to say, a sentence.
class FieldRow : public QWidget
{
    Q_OBJECT

public:
    explicit FieldRow(const QString &name, QWidget *parent = nullptr);

    QHBoxLayout *controls() const { return m_controls; }
    QLabel *label() const { return m_label; }

    /// Adds a box of choices that takes the room there is, and is called as the row is.
    ChoiceBox *addChoice();

    void setNote(const QString &note);         ///< Always there; empty for none.
    void setSentence(const QString &sentence); ///< What is wrong, in the note's place; empty when nothing is.

    static constexpr int labelWidth = 64; ///< So that the controls of all rows begin at the same place.

private:
    void update();

    QHBoxLayout *m_controls;
    QLabel *m_label;
    QLabel *m_below;
    QString m_note;
    QString m_sentence;
};
