#include "app/Lintora/ai/ServicePage.h"

#include "ai/speech/SpeechAPIConfiguration.h"
#include "ai/text/OnlineAIConfiguration.h"
#include "app/Lintora/ai/KeyField.h"
#include "app/Lintora/controls/CheckBox.h"
#include "app/Lintora/controls/Controls.h"
#include "app/Lintora/controls/TextField.h"
#include "core/ConversionError.h"

#include <QHBoxLayout>
#include <QLineEdit>
#include <QUrl>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

struct ServicePage::Form
{
    AISettings::Service service;
    QString use;
    bool AIChoices::*isUsed;
    QString leaving; ///< What leaves this machine for a place that is named.
    QString staying; ///< What is so while the service is not used.
    QString AIChoices::*address;
    QString AIChoices::*model;
    QString modelHint;
    QString option;
    QString optionNote;
    bool AIChoices::*isOption;
    std::function<QUrl(const QString &address, const QString &model)> endpoint; ///< @throws ConversionError
};

namespace {

using Service = AISettings::Service;

/// What is wrong with the address itself, whatever the model; nothing to say of an empty one.
QString wrongAddress(const ServicePage::Form &form, const QString &address)
{
    if (address.trimmed().isEmpty())
        return {};
    try {
        form.endpoint(address, u"model"_s);
        return {};
    } catch (const ConversionError &error) {
        return error.message();
    }
}

const ServicePage::Form &formOf(Service service)
{
    static const ServicePage::Form text = {
        .service = Service::text,
        .use = u"用在线服务翻译和校对"_s,
        .isUsed = &AIChoices::aiUseOnline,
        .leaving = u"字幕文字会发送到 %1；音视频和项目文件不会。"_s,
        .staying = u"翻译和校对在本机完成，字幕不离开这台电脑。"_s,
        .address = &AIChoices::aiAPIBaseURL,
        .model = &AIChoices::aiAPIModel,
        .modelHint = u"服务商给出的模型名称，如 deepseek-flash"_s,
        .option = u"快速校对"_s,
        .optionNote = u"合并短字幕请求，在兼容的模型上关闭深度思考。"_s,
        .isOption = &AIChoices::aiAPIQuickReview,
        .endpoint =
            [](const QString &address, const QString &model) {
                return OnlineAIConfiguration{.baseURL = address, .model = model, .apiKey = {}}.endpoint();
            },
    };
    static const ServicePage::Form speech = {
        .service = Service::speech,
        .use = u"用在线服务识别语音"_s,
        .isUsed = &AIChoices::aiUseCloudSpeech,
        .leaving = u"音轨会上传到 %1；画面和项目文件不会。"_s,
        .staying = u"语音识别在本机完成，声音不离开这台电脑。"_s,
        .address = &AIChoices::aiSpeechBaseURL,
        .model = &AIChoices::aiSpeechAPIModel,
        .modelHint = u"支持时间戳的转写模型，如 whisper-1"_s,
        .option = u"要求逐词时间"_s,
        .optionNote = u"服务支持时，按词的时间组成短句字幕。"_s,
        .isOption = &AIChoices::aiSpeechWordTimestamps,
        .endpoint =
            [](const QString &address, const QString &model) {
                return SpeechAPIConfiguration{.baseURL = address, .model = model, .apiKey = {}}.endpoint();
            },
    };
    return service == Service::text ? text : speech;
}

QString host(const QString &address)
{
    const QString host = QUrl(address.trimmed()).host();
    return host.isEmpty() ? u"下面填写的地址"_s : host;
}

QWidget *column(QWidget *parent, QLayout *&layout)
{
    auto *const widget = new QWidget(parent);
    layout = new QVBoxLayout(widget);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    return widget;
}

} // namespace

ServicePage::ServicePage(LintoraModel &model, Service service, QWidget *parent)
    : QWidget(parent)
    , m_model(model)
    , m_form(formOf(service))
{
    QWidget *const use = makeSwitch();
    m_address = new TextField(
        u"API 地址"_s, [this](const QString &text) { return wrongAddress(m_form, text); }, this);
    m_address->edit()->setPlaceholderText(u"https://服务商域名/v1"_s);
    m_name = new TextField(
        u"模型"_s, [](const QString & /*text*/) { return QString(); }, this);
    m_name->edit()->setPlaceholderText(m_form.modelHint);
    m_key = new KeyField(model.aiSettings(), service, this);
    m_option = new CheckBox(m_form.option, this);
    m_option->setAccessibleName(m_form.option);
    m_option->setAccessibleDescription(m_form.optionNote);
    connect(m_option, &CheckBox::clicked, this, [this](bool on) { choose(m_form.isOption, on); });
    connect(m_address, &TextField::edited, this,
            [this](const QString &text) { choose(m_form.address, text.trimmed()); });
    connect(m_name, &TextField::edited, this, [this](const QString &text) { choose(m_form.model, text.trimmed()); });

    auto *const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 3 * VELTheme::step, 0);
    layout->setSpacing(VELTheme::gap);
    layout->addWidget(use);
    layout->addWidget(Controls::rule(this));
    layout->addWidget(m_address);
    layout->addWidget(m_name);
    layout->addWidget(m_key);
    QLayout *optionLayout = nullptr;
    QWidget *const option = column(this, optionLayout);
    optionLayout->addWidget(m_option);
    auto *const note = Controls::note(m_form.optionNote, option);
    note->setContentsMargins(CheckBox::boxSize + 2 * VELTheme::step, 0, 0, 0);
    optionLayout->addWidget(note);
    layout->addWidget(option);
    layout->addWidget(makeTrial());
    layout->addWidget(Controls::rule(this));
    layout->addWidget(makeAnswers());
    layout->addStretch();

    connect(&model.aiSettings(), &AISettings::choicesChanged, this, &ServicePage::follow);
    connect(&model.aiServices(), &AIServices::changed, this, &ServicePage::followTrial);
    follow();
    followTrial();
}

QWidget *ServicePage::first() const
{
    return m_use;
}

QWidget *ServicePage::makeSwitch()
{
    QLayout *layout = nullptr;
    QWidget *const row = column(this, layout);
    m_use = new CheckBox(m_form.use, row);
    m_use->setAccessibleName(m_form.use);
    m_leaving = Controls::note({}, row);
    m_leaving->setContentsMargins(CheckBox::boxSize + 2 * VELTheme::step, 0, 0, 0);
    layout->addWidget(m_use);
    layout->addWidget(m_leaving);
    connect(m_use, &CheckBox::clicked, this, [this](bool on) { choose(m_form.isUsed, on); });
    return row;
}

QWidget *ServicePage::makeTrial()
{
    auto *const row = new QWidget(this);
    m_try = Controls::button({}, row);
    m_verdict = Controls::note({}, row);
    m_verdict->setAccessibleName(u"测试结果"_s);
    m_verdict->setTextFormat(Qt::PlainText);
    m_verdict->setTextInteractionFlags(Qt::TextSelectableByMouse);
    auto *const layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(VELTheme::gap);
    layout->addWidget(m_try, 0, Qt::AlignTop);
    layout->addWidget(m_verdict, 1);
    connect(m_try, &QPushButton::clicked, this, [this] {
        if (m_model.aiServices().onTrial() == m_form.service)
            m_model.aiServices().cancelTrial();
        else
            m_model.aiServices().tryOut(m_form.service);
    });
    return row;
}

QWidget *ServicePage::makeAnswers()
{
    auto *const row = new QWidget(this);
    auto *const forget = Controls::button(u"清除暂存…"_s, row);
    auto *const layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(VELTheme::gap);
    layout->addWidget(
        Controls::note(u"没有做完的任务，已得到的答复暂存在本机，重做时不再重复请求；最多保留 30 天。"_s, row), 1);
    layout->addWidget(forget);
    connect(forget, &QPushButton::clicked, this, &ServicePage::forgettingRequested);
    return row;
}

template <class Value>
void ServicePage::choose(Value AIChoices::*field, const Value &value)
{
    AIChoices choices = m_model.aiSettings().choices();
    choices.*field = value;
    m_model.aiSettings().choose(choices);
}

void ServicePage::follow()
{
    const AIChoices &choices = m_model.aiSettings().choices();
    const bool isUsed = choices.*m_form.isUsed;
    m_use->setChecked(isUsed);
    m_leaving->setText(isUsed ? m_form.leaving.arg(host(choices.*m_form.address)) : m_form.staying);
    m_use->setAccessibleDescription(m_leaving->text());
    m_address->setText(choices.*m_form.address);
    m_name->setText(choices.*m_form.model);
    m_option->setChecked(choices.*m_form.isOption);
}

void ServicePage::followTrial()
{
    const AIServices &services = m_model.aiServices();
    const bool isOnTrial = services.onTrial() == m_form.service;
    const auto &verdict = services.verdict(m_form.service);
    const bool isFailure = verdict && !verdict->isGood;
    m_try->setText(isOnTrial ? u"取消测试"_s : u"测试连接"_s);
    m_try->setAccessibleName(m_try->text());
    m_verdict->setText(isOnTrial ? u"正在测试…"_s : verdict ? verdict->sentence : QString());
    m_verdict->setToolTip(isFailure ? Failure{.sentence = verdict->sentence, .detail = verdict->detail}.text()
                                    : QString());
    m_verdict->setAccessibleDescription(m_verdict->text());
    Controls::showAsFailure(m_verdict, isFailure);
}
