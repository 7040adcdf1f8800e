#include "app/Lintora/ai/AISettingsSheet.h"

#include "app/Lintora/ai/ModelsPage.h"
#include "app/Lintora/ai/ServicePage.h"
#include "app/Lintora/controls/Controls.h"
#include "app/Lintora/controls/QuestionSheet.h"

#include <QStackedWidget>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

using Tab = WindowState::AISettingsTab;

AISettingsSheet::AISettingsSheet(LintoraModel &model, QWidget *content)
    : Sheet(Extent::whole, content)
    , m_model(model)
    , m_tabs(Controls::tabs(u"AI 设置"_s, {u"本地模型"_s, u"文字服务"_s, u"语音服务"_s}, this))
    , m_pages(new QStackedWidget(this))
    , m_models(new ModelsPage(model, this))
    , m_text(new ServicePage(model, AISettings::Service::text, this))
    , m_speech(new ServicePage(model, AISettings::Service::speech, this))
    , m_questions(new QuestionSheet(this))
{
    addHeading(u"AI 设置"_s);
    for (QWidget *const page :
         {static_cast<QWidget *>(m_models), static_cast<QWidget *>(m_text), static_cast<QWidget *>(m_speech)})
        m_pages->addWidget(Controls::scrolling(page, m_pages));
    body()->addWidget(m_tabs);
    body()->addWidget(m_pages, 1);

    connect(this, &Sheet::closeRequested, &model, [&model] { model.window().setAISettingsPresented(false); });
    connect(m_tabs, &QTabBar::currentChanged, &model, [&model](int tab) { model.window().setAISettingsTab(Tab(tab)); });
    connect(&model.window(), &WindowState::aiSettingsTabChanged, this, &AISettingsSheet::followTab);
    connect(m_models, &ModelsPage::removalRequested, this, &AISettingsSheet::confirmRemoval);
    connect(m_text, &ServicePage::forgettingRequested, this, &AISettingsSheet::confirmForgetting);
    connect(m_speech, &ServicePage::forgettingRequested, this, &AISettingsSheet::confirmForgetting);
    followTab();
}

void AISettingsSheet::present()
{
    if (isVisible())
        return;
    followTab();
    open(m_tabs);
}

void AISettingsSheet::followTab()
{
    const int tab = int(m_model.window().aiSettingsTab());
    m_tabs->setCurrentIndex(tab);
    m_pages->setCurrentIndex(tab);
}

void AISettingsSheet::confirmRemoval(const LocalModel &model)
{
    m_questions->ask({.title = u"删除模型“%1”？"_s.arg(model.title),
                      .text = u"将从磁盘删除 %1。再次使用需要重新下载 %2。"_s.arg(model.filename, model.sizeLabel()),
                      .answer = u"删除"_s,
                      .losesWork = true},
                     [this, id = model.id] { m_model.modelDownloads().remove(id); });
}

void AISettingsSheet::confirmForgetting()
{
    m_questions->ask({.title = u"清除暂存的答复？"_s,
                      .text = u"没有做完的任务重做时，会从头请求，在线服务可能再次计费。字幕不受影响。"_s,
                      .answer = u"清除"_s,
                      .losesWork = true},
                     [this] { m_model.aiServices().forgetAnswers(); });
}
