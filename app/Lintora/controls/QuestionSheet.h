#pragma once

#include "app/Lintora/controls/Sheet.h"

#include <functional>

class QLabel;
class QLineEdit;
class QPushButton;

/// A question over a workspace: to be confirmed, or to be answered with a name.
class QuestionSheet : public Sheet
{
    Q_OBJECT

public:
    explicit QuestionSheet(QWidget *content);

    struct Question
    {
        QString title;
        QString text;
        QString answer;         ///< On the button that does it.
        bool losesWork = false; ///< Whether work is lost by it: the keyboard is then on the button that does nothing.
    };

    void ask(const Question &question, const std::function<void()> &confirmed);

    /// `judge` says what is wrong with a name, or nothing; only a name with nothing wrong is answered.
    void askName(const Question &question, const QString &suggestion,
                 const std::function<QString(const QString &)> &judge,
                 const std::function<void(const QString &)> &answered);

private:
    void show(const Question &question);
    void answer();
    void judge();

    QLabel *m_title;
    QLabel *m_text;
    QLineEdit *m_name;
    QLabel *m_wrong;
    QPushButton *m_cancel;
    QPushButton *m_answer;
    std::function<void()> m_confirmed;
    std::function<QString(const QString &)> m_judge;
};
