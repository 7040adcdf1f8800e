#include "app/Lintora/controls/QuestionSheet.h"

#include "app/Lintora/controls/Controls.h"
#include "app/Lintora/controls/LineEdit.h"

#include <QHBoxLayout>
#include <QLineEdit>

using namespace Qt::StringLiterals;

QuestionSheet::QuestionSheet(QWidget *content)
    : Sheet(Extent::compact, content)
    , m_title(Controls::heading({}, this))
    , m_text(Controls::note({}, this))
    , m_name(new LineEdit(this))
    , m_wrong(Controls::note({}, this))
    , m_cancel(Controls::button(u"取消"_s, this))
    , m_answer(Controls::primaryButton({}, this))
{
    auto *const buttons = new QHBoxLayout;
    buttons->setSpacing(VELTheme::gap);
    buttons->addStretch();
    buttons->addWidget(m_cancel);
    buttons->addWidget(m_answer);
    m_name->setAccessibleName(u"名称"_s);
    m_name->setPlaceholderText(u"名称"_s);
    m_wrong->setProperty("secondary", false);
    m_wrong->setProperty("failure", true);
    body()->addWidget(m_title);
    body()->addWidget(m_text);
    body()->addWidget(m_name);
    body()->addWidget(m_wrong);
    body()->addSpacing(VELTheme::gap);
    body()->addLayout(buttons);
    connect(this, &Sheet::closeRequested, this, &Sheet::dismiss);
    connect(m_cancel, &QPushButton::clicked, this, &Sheet::dismiss);
    connect(m_answer, &QPushButton::clicked, this, &QuestionSheet::answer);
    connect(m_name, &QLineEdit::returnPressed, this, &QuestionSheet::answer);
    connect(m_name, &QLineEdit::textChanged, this, &QuestionSheet::judge);
}

void QuestionSheet::ask(const Question &question, const std::function<void()> &confirmed)
{
    m_judge = nullptr;
    m_confirmed = confirmed;
    m_name->hide();
    m_wrong->hide();
    show(question);
    open(question.losesWork ? m_cancel : m_answer);
}

void QuestionSheet::askName(const Question &question, const QString &suggestion,
                            const std::function<QString(const QString &)> &judge,
                            const std::function<void(const QString &)> &answered)
{
    m_judge = judge;
    m_confirmed = [this, answered] { answered(m_name->text()); };
    m_name->show();
    m_wrong->show();
    m_wrong->clear();
    m_name->setText(suggestion);
    show(question);
    m_name->selectAll();
    open(m_name);
}

void QuestionSheet::show(const Question &question)
{
    m_title->setText(question.title);
    m_text->setText(question.text);
    m_text->setVisible(!question.text.isEmpty());
    m_answer->setText(question.answer);
    m_answer->setAccessibleName(question.answer);
    setAccessibleName(question.title);
}

void QuestionSheet::judge()
{
    if (m_judge)
        m_wrong->setText(m_judge(m_name->text()));
}

void QuestionSheet::answer()
{
    judge();
    if (m_judge && !m_wrong->text().isEmpty())
        return;
    const auto confirmed = m_confirmed; // It may ask the next question.
    dismiss();
    confirmed();
}
