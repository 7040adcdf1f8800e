#pragma once

#include "app/model/LintoraModel.h"

#include <QWidget>

class CheckBox;
class KeyField;
class QLabel;
class QPushButton;
class TextField;

/// How one of the online services is set up, whether it is used, and whether it answers.
class ServicePage : public QWidget
{
    Q_OBJECT

public:
    /// What the two services have under other names.
    struct Form;

    /// `model` must live as long as this.
    ServicePage(LintoraModel &model, AISettings::Service service, QWidget *parent = nullptr);

    QWidget *first() const; ///< What the keyboard goes to.

Q_SIGNALS:
    void forgettingRequested(); ///< Of what services have answered to unfinished work; to be confirmed.

private:
    QWidget *makeSwitch();
    QWidget *makeTrial();
    QWidget *makeAnswers();
    template <class Value>
    void choose(Value AIChoices::*field, const Value &value);
    void follow();
    void followTrial();

    LintoraModel &m_model;
    const Form &m_form;
    CheckBox *m_use;
    QLabel *m_leaving; ///< What leaves this machine, and to whom.
    TextField *m_address;
    TextField *m_name;
    KeyField *m_key;
    CheckBox *m_option;
    QPushButton *m_try;
    QLabel *m_verdict;
};
