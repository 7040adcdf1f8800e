#include "app/Lintora/QuitQuestion.h"

#include "app/Lintora/controls/Controls.h"

#include <QHBoxLayout>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

QuitQuestion::QuitQuestion(LintoraModel &model, QWidget *content)
    : Sheet(Extent::compact, content)
    , m_model(model)
    , m_reason(Controls::note({}, this))
    , m_note(Controls::note({}, this))
    , m_export(Controls::primaryButton(u"导出全部 SRT…"_s, this))
{
    auto *const title = Controls::heading(u"字幕没有保存，仍要退出？"_s, this);
    auto *const quit = Controls::button(u"仍要退出"_s, this);
    auto *const cancel = Controls::button(u"取消"_s, this);
    auto *const buttons = new QHBoxLayout;
    buttons->setSpacing(VELTheme::gap);
    buttons->addWidget(quit);
    buttons->addStretch();
    buttons->addWidget(cancel);
    buttons->addWidget(m_export);
    setAccessibleName(title->text());
    m_reason->setProperty("secondary", false);
    m_reason->setProperty("failure", true);
    body()->addWidget(title);
    body()->addWidget(m_reason);
    body()->addWidget(m_note);
    body()->addSpacing(VELTheme::gap);
    body()->addLayout(buttons);
    connect(this, &Sheet::closeRequested, &model, [&model] { model.answerQuit(false); });
    connect(cancel, &QPushButton::clicked, &model, [&model] { model.answerQuit(false); });
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
    m_reason->setText(*m_model.quitQuestion());
    m_note->setText(u"退出后，未保存的修改将丢失。可先把全部字幕导出为 SRT 文件。"_s);
    open(m_export);
}
