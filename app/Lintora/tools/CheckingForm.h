#pragma once

#include "app/model/LintoraModel.h"

#include <QWidget>

#include <functional>
#include <utility>
#include <vector>

class CheckBox;
class ChoiceBox;
class QVBoxLayout;
class TextField;
class ValueField;

/// The limits that cues are checked by: which set, what is asked of it most, and on a page of its own all of it.
class CheckingForm : public QWidget
{
    Q_OBJECT

public:
    /// `model` must live as long as this.
    explicit CheckingForm(LintoraModel &model, QWidget *parent);

    QWidget *first() const { return m_first; } ///< What is typed into first.

    /// All limits and rules, for the place of the findings.
    QWidget *page() const { return m_page; }

Q_SIGNALS:
    void pageRequested(bool shown); ///< The page, or the findings again.

private:
    void addNumber(QVBoxLayout &form, ValueField *field, std::function<double(const CheckLimits &)> get,
                   std::function<void(CheckLimits &, double)> set);
    QWidget *makeSet();
    QWidget *makePage();
    void addNumbers(QVBoxLayout &form, QWidget *page);
    QWidget *makeRules(QWidget *page);
    void choose(int index);
    void change(const std::function<void(CheckLimits &)> &change);
    void put(const CheckLimits &limits);
    void follow();
    const CheckLimits &limits() const { return m_tools.settings().limits; }

    LintoraModel &m_model;
    CueTools &m_tools;
    ChoiceBox *m_set = nullptr;
    TextField *m_terms = nullptr;
    QWidget *m_first = nullptr;
    QWidget *m_page = nullptr;
    std::vector<std::pair<ValueField *, std::function<double(const CheckLimits &)>>> m_numbers;
    std::vector<std::pair<CheckBox *, CheckRule>> m_rules;
};
