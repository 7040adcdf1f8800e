#include "ai/AIKeychain.h"

#include "core/ConversionError.h"

#include <QDirIterator>
#include <QFile>
#include <QThread>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

// keychain.sh runs these twice: with a secret service of their own, and without any.

TEST(AIKeychainWithService, keeps_a_key_for_each_purpose_replaces_and_removes_it)
{
    EXPECT_EQ(AIKeychain::read(AIKeychain::textAccount), QString());
    AIKeychain::save({}, AIKeychain::textAccount);
    AIKeychain::save(u"text-密钥-1"_s, AIKeychain::textAccount);
    AIKeychain::save(u"speech-1"_s, AIKeychain::speechAccount);
    AIKeychain::save(u"text-密钥-2"_s, AIKeychain::textAccount);
    EXPECT_EQ(AIKeychain::read(AIKeychain::textAccount), u"text-密钥-2"_s);
    EXPECT_EQ(AIKeychain::read(AIKeychain::speechAccount), u"speech-1"_s);
    AIKeychain::save({}, AIKeychain::textAccount);
    EXPECT_EQ(AIKeychain::read(AIKeychain::textAccount), QString());
    EXPECT_EQ(AIKeychain::read(AIKeychain::speechAccount), u"speech-1"_s);
}

TEST(AIKeychainWithService, serves_threads_that_come_and_go)
{
    for (const QString &key : {u"one"_s, u"two"_s, QString()}) {
        QString kept = u"unread"_s;
        const std::unique_ptr<QThread> worker(QThread::create([&] {
            AIKeychain::save(key, AIKeychain::textAccount);
            kept = AIKeychain::read(AIKeychain::textAccount);
        }));
        worker->start();
        ASSERT_TRUE(worker->wait());
        EXPECT_EQ(kept, key);
    }
}

TEST(AIKeychainWithoutService, says_so_with_the_reason_and_writes_the_key_nowhere)
{
    try {
        AIKeychain::save(u"top-secret-key"_s, AIKeychain::textAccount);
        ADD_FAILURE();
    } catch (const ConversionError &error) {
        EXPECT_EQ(error.message(), u"钥匙串未能保存密钥。"_s);
        EXPECT_FALSE(error.detail().isEmpty());
    }
    EXPECT_EQ(AIKeychain::read(AIKeychain::textAccount), QString());
    try {
        AIKeychain::save({}, AIKeychain::textAccount);
        ADD_FAILURE();
    } catch (const ConversionError &error) {
        EXPECT_EQ(error.message(), u"钥匙串未能移除密钥。"_s);
    }
    QDirIterator files(qEnvironmentVariable("HOME"), QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        QFile file(files.next());
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        EXPECT_FALSE(file.readAll().contains("top-secret")) << file.fileName().toStdString();
    }
}
