#include "app/model/ai/AIServices.h"

#include "ai/AnswerLedger.h"
#include "ai/LocalAIJob.h"
#include "ai/ServiceTrial.h"
#include "ai/speech/KeptAnswers.h"
#include "ai/speech/SpeechAPIConfiguration.h"
#include "ai/text/OnlineAIConfiguration.h"
#include "core/ConversionError.h"
#include "core/PlatformError.h"

#include <QElapsedTimer>
#include <QUrl>

#include <utility>

using namespace Qt::StringLiterals;

namespace {

using Service = AISettings::Service;

/// The network's own words are told with the host that they are about.
template <class Trial>
qint64 timed(const QString &address, const Trial &trial)
{
    QElapsedTimer clock;
    clock.start();
    try {
        trial();
    } catch (const PlatformError &error) {
        throw ConversionError(u"无法连接 %1：%2"_s.arg(QUrl(address.trimmed()).host(), error.description()),
                              error.detail());
    }
    return clock.elapsed();
}

/// What people need not be told of cues when none were sent.
QString withoutAssurance(QString sentence)
{
    return sentence.remove(u"\n原字幕已保留。"_s).remove(u"，原字幕已保留"_s).remove(u"原字幕已保留。"_s);
}

QString seconds(qint64 ms)
{
    constexpr double perSecond = 1'000;
    return QString::number(double(ms) / perSecond, 'f', 1);
}

std::function<qint64(LocalAIJob &, const ProgressReport &)> trial(Service service, const AISettings &settings)
{
    const AIChoices &choices = settings.choices();
    const auto key = settings.keyForWork(service);
    if (service == Service::speech) {
        SpeechAPIConfiguration speech{.baseURL = choices.aiSpeechBaseURL,
                                      .model = choices.aiSpeechAPIModel,
                                      .apiKey = {},
                                      .wordTimestamps = choices.aiSpeechWordTimestamps};
        return [=](LocalAIJob &job, const ProgressReport &progress) mutable {
            speech.apiKey = key();
            return timed(speech.baseURL, [&] { ServiceTrial::speech(speech, job, progress); });
        };
    }
    OnlineAIConfiguration text{.baseURL = choices.aiAPIBaseURL,
                               .model = choices.aiAPIModel,
                               .apiKey = {},
                               .quickReview = choices.aiAPIQuickReview};
    return [=](LocalAIJob &job, const ProgressReport &progress) mutable {
        text.apiKey = key();
        return timed(text.baseURL, [&] { ServiceTrial::text(text, job, progress); });
    };
}

} // namespace

AIServices::AIServices(AISettings &settings)
    : m_settings(settings)
    , m_choices(settings.choices())
    , m_keys{settings.aiSpeechAPIKey(), settings.aiAPIKey()}
    , m_wereKeysLoaded(settings.areKeysLoaded())
{
    connect(&settings, &AISettings::choicesChanged, this, &AIServices::followSettings);
    connect(&settings, &AISettings::keysChanged, this, &AIServices::followSettings);
}

void AIServices::tryOut(Service service)
{
    m_task.run<LocalAIJob>(
        u"正在测试连接…"_s, trial(service, m_settings),
        [this, service](qint64 ms) {
            judge(service, {.isGood = true, .sentence = u"连接正常，答复可用 · 用时 %1 秒"_s.arg(seconds(ms))});
        },
        [this, service](const Failure &failure) {
            judge(service, {.sentence = withoutAssurance(failure.sentence), .detail = failure.detail});
        });
    m_onTrial = service;
    m_verdicts.at(size_t(service)).reset();
    Q_EMIT changed();
}

void AIServices::cancelTrial()
{
    m_task.cancel();
    m_onTrial.reset();
    Q_EMIT changed();
}

void AIServices::judge(Service service, const Verdict &verdict)
{
    m_onTrial.reset();
    m_verdicts.at(size_t(service)) = verdict;
    Q_EMIT changed();
}

/// A verdict is about the service as it was asked.
void AIServices::followSettings()
{
    const AIChoices before = std::exchange(m_choices, m_settings.choices());
    const std::array<QString, 2> keys{m_settings.aiSpeechAPIKey(), m_settings.aiAPIKey()};
    const std::array<QString, 2> keysBefore = std::exchange(m_keys, keys);
    // A trial read the keychain itself.
    const bool isLoading = std::exchange(m_wereKeysLoaded, m_settings.areKeysLoaded()) != m_wereKeysLoaded;
    const auto about = [](const AIChoices &choices, Service service) {
        return service == Service::speech ? QStringList{choices.aiSpeechBaseURL, choices.aiSpeechAPIModel}
                                          : QStringList{choices.aiAPIBaseURL, choices.aiAPIModel};
    };
    for (const Service service : {Service::speech, Service::text}) {
        const auto index = size_t(service);
        if (about(before, service) == about(m_choices, service) &&
            (isLoading || keysBefore.at(index) == keys.at(index)))
            continue;
        m_verdicts.at(index).reset();
        if (m_onTrial == service)
            cancelTrial();
    }
    Q_EMIT changed();
}

void AIServices::forgetAnswers()
{
    m_forgetting.run(
        u"正在清除暂存答复…"_s,
        [](Job & /*job*/, const ProgressReport & /*report*/) {
            AnswerLedger::clear(AnswerLedger::defaultFolder());
            KeptAnswers::clear(KeptAnswers::defaultFolder());
            return true;
        },
        [this](bool /*cleared*/) { Q_EMIT done(u"已清除暂存的答复"_s); },
        [](const Failure & /*failure*/) {}); // what cannot be removed is left, and grows old
}
