#pragma once

#include "ai/AIKeychain.h"
#include "app/model/BackgroundTask.h"
#include "app/model/ai/AIChoices.h"

#include <QObject>

#include <functional>
#include <memory>

/// Where the keys of services are kept between runs. Both calls block: they are made on a worker.
struct AIKeyStore
{
    std::function<QString(const QString &account)> read = AIKeychain::read; ///< Empty when there is none.

    /// An empty value removes the key. @throws ConversionError
    std::function<void(const QString &value, const QString &account)> save = AIKeychain::save;
};

/// What a person chose for recognition, translation and proofreading, and the keys of the services.
///
/// Choices are written to the settings as they are made. Keys are held in memory, and reach the system's keychain only
/// when the person asks for it.
class AISettings : public QObject
{
    Q_OBJECT

public:
    enum class Service
    {
        speech, ///< Transcription.
        text    ///< Translation and proofreading.
    };

    /// `settings` must not be null.
    AISettings(std::shared_ptr<QSettings> settings, AIKeyStore keys);

    const AIChoices &choices() const { return m_choices; }
    void choose(const AIChoices &choices);

    const QString &aiSpeechAPIKey() const { return m_speech.value; } ///< Empty until it is loaded or typed.
    const QString &aiAPIKey() const { return m_text.value; }

    /// Reads the keys from the keychain, once. What is typed meanwhile stays.
    void loadKeys();
    bool areKeysLoaded() const { return m_areLoaded; }

    void setKey(Service service, const QString &typedKey); ///< In memory; white space around it is no part of it.

    /// The key for an operation on a worker, which calls this once: the one in memory, or, where none has been loaded
    /// or typed, the keychain's. The call may wait for the keychain.
    std::function<QString()> keyForWork(Service service) const;

    bool isSaved(Service service) const; ///< Whether the key in memory is the keychain's.

    /// Brings the key to the keychain. What became of it is told by keySaved() or keyRefused().
    void saveKey(Service service);

Q_SIGNALS:
    void choicesChanged();
    void keysChanged();
    void keySaved(AISettings::Service service); ///< The key is in the keychain, or, an empty one, is gone from there.
    void keyRefused(AISettings::Service service, const Failure &failure);

private:
    struct Key
    {
        QString value;
        bool isTyped = false; ///< By the person, in this run.
        QString kept;         ///< What the keychain holds, as far as it is known.
    };

    Key &key(Service service) { return service == Service::speech ? m_speech : m_text; }
    const Key &key(Service service) const { return service == Service::speech ? m_speech : m_text; }
    static void take(Key &key, const QString &kept);

    std::shared_ptr<QSettings> m_settings;
    AIKeyStore m_keys;
    AIChoices m_choices;
    Key m_speech;
    Key m_text;
    bool m_areAsked = false; ///< Whether the keychain was.
    bool m_areLoaded = false;
    BackgroundTask m_task{BackgroundTask::Order::oneAfterAnother}; ///< Last, so that it ends first.
};
