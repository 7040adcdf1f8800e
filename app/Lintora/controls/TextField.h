#pragma once

#include "app/Lintora/controls/FieldRow.h"

#include <functional>

class QLineEdit;

/// A line of text that is typed. It counts once the field is left, or at Return; Escape takes it back.
class TextField : public FieldRow
{
    Q_OBJECT

public:
    /// `judge` says what is wrong with a text, or nothing.
    TextField(const QString &name, std::function<QString(const QString &)> judge, QWidget *parent = nullptr);

    void setText(const QString &text); ///< Shows it. What is being typed stays unless the text is another.
    QLineEdit *edit() const { return m_edit; }

Q_SIGNALS:
    void edited(const QString &text); ///< By the person.

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void commit();
    void revert();

    std::function<QString(const QString &)> m_judge;
    QLineEdit *m_edit;
    QString m_text;
    bool m_isTyped = false;
};
