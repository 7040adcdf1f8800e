#include "app/Lintora/QuitQuestion.h"

#include "app/Lintora/controls/Controls.h"

#include <QHBoxLayout>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

QuitQuestion::QuitQuestion(LintoraModel &model, QWidget *content)
    : Sheet(Extent::compact, content)
    , m_model(model)
    , m_title(Controls::heading({}, this))
    , m_reason(Controls::note({}, this))
    , m_note(Controls::note({}, this))
    , m_cancel(Controls::button(u"取消"_s, this))
    , m_export(Controls::primaryButton(u"导出全部 SRT…"_s, this))
{
    auto *const quit = Controls::button(u"仍要退出"_s, this);
    auto *const buttons = new QHBoxLayout;
    buttons->setSpacing(VELTheme::gap);
    buttons->addWidget(quit);
    buttons->addStretch();
    buttons->addWidget(m_cancel);
    buttons->addWidget(m_export);
    body()->addWidget(m_title);
    body()->addWidget(m_reason);
    body()->addWidget(m_note);
    body()->addSpacing(VELTheme::gap);
    body()->addLayout(buttons);
    connect(this, &Sheet::closeRequested, &model, [&model] { model.answerQuit(false); });
    connect(m_cancel, &QPushButton::clicked, &model, [&model] { model.answerQuit(false); });
    connect(quit, &QPushButton::clicked, &model, [&model] { model.answerQuit(true); });
    // The question stays, and tells what was exported: the status tells what cannot be saved.
    connect(m_export, &QPushButton::clicked, &model, &LintoraModel::exportAllSRT);
    connect(&model, &LintoraModel::messageChanged, this, [this] {
        if (!m_model.message().isEmpty() && m_model.message() != m_model.quitQuestion())
            m_note->setText(m_model.message());
    });
    connect(&model, &LintoraModel::quitQuestionChanged, this, &QuitQuestion::follow);
    follow();
}

void QuitQuestion::follow()
{
    if (!m_model.quitQuestion()) {
        dismiss();
        return;
    }
    const bool losesCues = !m_model.quitStopsWork();
    m_title->setText(losesCues ? u"字幕没有保存，仍要退出？"_s : u"任务还没有完成，仍要退出？"_s);
    setAccessibleName(m_title->text());
    m_reason->setText(*m_model.quitQuestion());
    Controls::showAsFailure(m_reason, losesCues);
    m_note->setText(u"退出后，未保存的修改将丢失。可先把全部字幕导出为 SRT 文件。"_s);
    m_note->setVisible(losesCues);
    m_export->setVisible(losesCues);
    open(losesCues ? m_export : m_cancel);
}
