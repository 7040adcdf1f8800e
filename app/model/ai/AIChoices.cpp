#include "app/model/ai/AIChoices.h"

#include "app/model/SettingsValues.h"

#include <tuple>

using namespace Qt::StringLiterals;

namespace {

template <class Field>
struct Entry
{
    const char *key;
    Field AIChoices::*field;
};

template <class Field>
Entry(const char *key, Field AIChoices::*field) -> Entry<Field>;

constexpr auto entries = std::tuple(
    Entry{"aiSpeechModelID", &AIChoices::aiSpeechModelID}, Entry{"aiUseCloudSpeech", &AIChoices::aiUseCloudSpeech},
    Entry{"aiAutomaticReview", &AIChoices::aiAutomaticReview}, Entry{"aiSpeechBaseURL", &AIChoices::aiSpeechBaseURL},
    Entry{"aiSpeechAPIModel", &AIChoices::aiSpeechAPIModel},
    Entry{"aiSpeechWordTimestamps", &AIChoices::aiSpeechWordTimestamps}, Entry{"aiUseOnline", &AIChoices::aiUseOnline},
    Entry{"aiAPIBaseURL", &AIChoices::aiAPIBaseURL}, Entry{"aiAPIModel", &AIChoices::aiAPIModel},
    Entry{"aiAPIQuickReview", &AIChoices::aiAPIQuickReview}, Entry{"aiUseReference", &AIChoices::aiUseReference},
    Entry{"aiUseGlossary", &AIChoices::aiUseGlossary}, Entry{"aiModelHosts", &AIChoices::aiModelHosts},
    Entry{"aiSpeechModelFile", &AIChoices::aiSpeechModelFile}, Entry{"aiTextModelFile", &AIChoices::aiTextModelFile});

void take(const QVariant &value, bool &field)
{
    field = SettingsValues::boolean(value).value_or(field);
}

void take(const QVariant &value, QString &field)
{
    if (value.typeId() == QMetaType::QString)
        field = value.toString();
}

/// A list of one is stored as that one.
void take(const QVariant &value, QStringList &field)
{
    if (value.typeId() == QMetaType::QString || value.typeId() == QMetaType::QStringList)
        field = value.toStringList();
}

template <class Visit>
void forEachEntry(const Visit &visit)
{
    std::apply([&](const auto &...entry) { (visit(entry), ...); }, entries);
}

} // namespace

AIChoices AIChoices::read(const QSettings &settings)
{
    AIChoices choices;
    forEachEntry(
        [&](const auto &entry) { take(settings.value(QString::fromLatin1(entry.key)), choices.*entry.field); });
    return choices;
}

void AIChoices::write(QSettings &settings, const AIChoices &before) const
{
    forEachEntry([&](const auto &entry) {
        if (this->*entry.field != before.*entry.field)
            settings.setValue(QString::fromLatin1(entry.key), this->*entry.field);
    });
}
