#include "app/model/ai/AISettings.h"

#include "tests/support/Events.h"
#include "tests/support/ModelTest.h"

#include <QRegularExpression>

using namespace Qt::StringLiterals;
using Service = AISettings::Service;

namespace {

class AISettingsTest : public ModelTest
{
protected:
    AISettings &settings() { return model->aiSettings(); }
    const AIChoices &choices() { return settings().choices(); }

    void loadKeys()
    {
        settings().loadKeys();
        EXPECT_TRUE(Events::waitFor([&] { return settings().areKeysLoaded(); }));
    }

    /// Saves the key, and returns what was told: "saved", or the sentence with its detail.
    QString save(Service service)
    {
        QString told;
        const QObject context;
        QObject::connect(&settings(), &AISettings::keySaved, &context, [&](Service of) {
            if (of == service)
                told = u"saved"_s;
        });
        QObject::connect(&settings(), &AISettings::keyRefused, &context, [&](Service of, const Failure &failure) {
            if (of == service)
                told = failure.text();
        });
        settings().saveKey(service);
        EXPECT_TRUE(Events::waitFor([&] { return !told.isEmpty(); }));
        return told;
    }
};

} // namespace

TEST_F(AISettingsTest, begins_with_the_defaults)
{
    EXPECT_EQ(choices().aiSpeechModelID, u"speech"_s);
    EXPECT_EQ(choices().aiSpeechAPIModel, u"whisper-1"_s);
    EXPECT_TRUE(choices().aiAPIQuickReview);
    for (const bool off : {choices().aiUseCloudSpeech, choices().aiAutomaticReview, choices().aiSpeechWordTimestamps,
                           choices().aiUseOnline, choices().aiUseReference, choices().aiUseGlossary})
        EXPECT_FALSE(off);
    EXPECT_EQ(choices().aiSpeechBaseURL + choices().aiAPIBaseURL + choices().aiAPIModel, QString());
}

TEST_F(AISettingsTest, every_choice_is_kept_under_its_name_and_comes_back_after_a_restart)
{
    const AIChoices chosen{.aiSpeechModelID = u"base"_s,
                           .aiUseCloudSpeech = true,
                           .aiAutomaticReview = true,
                           .aiSpeechBaseURL = u"https://语音.example/v1"_s,
                           .aiSpeechAPIModel = u"large"_s,
                           .aiSpeechWordTimestamps = true,
                           .aiUseOnline = true,
                           .aiAPIBaseURL = u"https://text.example/v1"_s,
                           .aiAPIModel = u"chat"_s,
                           .aiAPIQuickReview = false,
                           .aiUseReference = true,
                           .aiUseGlossary = true,
                           .aiModelHosts = {u"https://a.example/"_s},
                           .aiSpeechModelFile = u"/模型/a.bin"_s,
                           .aiTextModelFile = u"/模型/b.gguf"_s};
    settings().choose(chosen);
    restart();
    EXPECT_EQ(choices(), chosen);
    const QSettings stored(home(u"settings.ini"_s), QSettings::IniFormat);
    EXPECT_EQ(stored.value(u"aiSpeechBaseURL"_s), chosen.aiSpeechBaseURL);
    EXPECT_EQ(stored.value(u"aiUseCloudSpeech"_s).toString(), u"true"_s);
    EXPECT_EQ(stored.value(u"aiAPIQuickReview"_s).toString(), u"false"_s);
    EXPECT_EQ(stored.allKeys().filter(QRegularExpression(u"^ai"_s)).size(), 15);
}

TEST_F(AISettingsTest, a_stored_value_of_another_type_counts_as_none)
{
    {
        QSettings stored(home(u"settings.ini"_s), QSettings::IniFormat);
        stored.setValue(u"aiAPIQuickReview"_s, u"vielleicht"_s);
        stored.setValue(u"aiUseOnline"_s, 7);
        stored.setValue(u"aiSpeechAPIModel"_s, QStringList{u"a"_s, u"b"_s});
        stored.setValue(u"aiModelHosts"_s, QStringList{u"https://a.example/"_s, u"https://b.example/"_s});
    }
    restart();
    EXPECT_TRUE(choices().aiAPIQuickReview);
    EXPECT_FALSE(choices().aiUseOnline);
    EXPECT_EQ(choices().aiSpeechAPIModel, u"whisper-1"_s);
    EXPECT_EQ(choices().aiModelHosts.size(), 2);
}

TEST_F(AISettingsTest, keys_are_read_once_and_only_when_they_are_wanted)
{
    keys.set(AIKeychain::textAccount, u"text-key"_s);
    keys.set(AIKeychain::speechAccount, u"speech-key"_s);
    restart();
    Events::handle();
    EXPECT_EQ(keys.reads(), 0);
    loadKeys();
    EXPECT_EQ(settings().aiAPIKey(), u"text-key"_s);
    EXPECT_EQ(settings().aiSpeechAPIKey(), u"speech-key"_s);
    settings().loadKeys();
    Events::handle();
    EXPECT_EQ(keys.reads(), 2);
    EXPECT_EQ(settings().keyForWork(Service::text)(), u"text-key"_s);
}

TEST_F(AISettingsTest, what_is_typed_while_the_keychain_is_read_stays)
{
    keys.set(AIKeychain::textAccount, u"old"_s);
    keys.set(AIKeychain::speechAccount, u"speech-key"_s);
    settings().loadKeys();
    settings().setKey(Service::text, u"  typed\n"_s);
    loadKeys();
    EXPECT_EQ(settings().aiAPIKey(), u"typed"_s);
    EXPECT_FALSE(settings().isSaved(Service::text));
    EXPECT_TRUE(settings().isSaved(Service::speech));
}

TEST_F(AISettingsTest, a_key_reaches_the_keychain_when_it_is_saved_and_never_the_settings)
{
    loadKeys();
    settings().setKey(Service::speech, u"top-secret"_s);
    EXPECT_EQ(keys.key(AIKeychain::speechAccount), QString());
    EXPECT_EQ(settings().keyForWork(Service::speech)(), u"top-secret"_s);
    EXPECT_EQ(save(Service::speech), u"saved"_s);
    EXPECT_TRUE(settings().isSaved(Service::speech));
    EXPECT_EQ(keys.key(AIKeychain::speechAccount), u"top-secret"_s);
    EXPECT_EQ(keys.key(AIKeychain::textAccount), QString());
    settings().setKey(Service::speech, {});
    EXPECT_EQ(save(Service::speech), u"saved"_s);
    EXPECT_EQ(keys.key(AIKeychain::speechAccount), QString());
    settings().setKey(Service::speech, u"top-secret"_s);
    restart();
    EXPECT_FALSE(QFile::exists(home(u"settings.ini"_s)) && read(home(u"settings.ini"_s)).contains("top-secret"));
    EXPECT_EQ(settings().aiSpeechAPIKey(), QString());
}

TEST_F(AISettingsTest, a_keychain_that_refuses_says_why_and_the_key_stays_in_memory)
{
    loadKeys();
    keys.lock();
    settings().setKey(Service::text, u"typed"_s);
    EXPECT_EQ(save(Service::text), (Failure{.sentence = u"钥匙串未能保存密钥。"_s, .detail = u"locked"_s}).text());
    EXPECT_EQ(settings().aiAPIKey(), u"typed"_s);
    EXPECT_FALSE(settings().isSaved(Service::text));
}

TEST_F(AISettingsTest, work_before_the_keychain_was_read_asks_it_itself)
{
    keys.set(AIKeychain::textAccount, u"text-key"_s);
    EXPECT_EQ(settings().keyForWork(Service::text)(), u"text-key"_s);
    EXPECT_EQ(settings().aiAPIKey(), QString());
}
