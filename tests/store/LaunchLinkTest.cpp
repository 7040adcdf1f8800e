#include "store/LaunchLink.h"

#include "core/ConversionError.h"
#include "store/Locations.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

const QString name = u"0f1e2d3c-4B5A-6978-8796-a5b4c3d2e1f0.json"_s;
const QString invalidLink = u"悬浮窗口链接无效。"_s;
const QString invalidLocation = u"字幕会话位置无效。"_s;

/// A home folder of its own, with Chinese characters and a blank in its path.
class LaunchLinkTest : public ::testing::Test
{
protected:
    LaunchLinkTest()
    {
        QDir().mkpath(m_folder.filePath(u"张 三"_s));
        qputenv("HOME", m_folder.filePath(u"张 三"_s).toUtf8());
        QDir().mkpath(sessions());
    }

    ~LaunchLinkTest() override { qputenv("HOME", m_formerHome); }

    QString folder() const { return QDir(m_folder.path()).canonicalPath(); }
    QString sessions() const { return Locations::sessions(); }
    QString session() const { return sessions() + u'/' + name; }

    /// The location that the link leads to, or the message of its refusal.
    static QString outcome(const QUrl &link)
    {
        try {
            return LaunchLink::sessionFile(link);
        } catch (const ConversionError &error) {
            return error.message();
        }
    }

    static QString outcome(const QByteArray &link) { return outcome(QUrl::fromEncoded(link, QUrl::StrictMode)); }
    static QString outcomeOfPath(const QString &path) { return outcome(LaunchLink::launchURL(path)); }

    QByteArray escaped(const QString &path) const { return path.toUtf8().toPercentEncoding("/"); }

private:
    QTemporaryDir m_folder;
    QByteArray m_formerHome = qgetenv("HOME");
};

} // namespace

TEST_F(LaunchLinkTest, a_link_names_the_path_percent_encoded)
{
    const auto link = [](const QString &path) { return LaunchLink::launchURL(path).toEncoded().toStdString(); };
    EXPECT_EQ(link(u"/Users/ann/A.json"_s), "lintora://floating?session=/Users/ann/A.json");
    EXPECT_EQ(link(u"/张/a b+c&d=e#f%g;h?i.json"_s),
              "lintora://floating?session=/%E5%BC%A0/a%20b%2Bc%26d%3De%23f%25g%3Bh?i.json");
}

TEST_F(LaunchLinkTest, accepts)
{
    QDir().mkpath(sessions() + u"/sub"_s);
    ASSERT_TRUE(QFile::link(sessions(), folder() + u"/link"_s));
    const QByteArray prefix = "lintora://floating?";
    const QByteArray item = "session=" + escaped(session());
    EXPECT_EQ(outcome(LaunchLink::launchURL(session())), session()) << "no such file yet";
    QFile file(session());
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    EXPECT_EQ(outcome(LaunchLink::launchURL(session())), session());
    EXPECT_EQ(outcome(prefix + item), session());
    EXPECT_EQ(outcome(prefix + "a=1&" + item + "&session=/dev/null"), session()) << "the first of several counts";
    EXPECT_EQ(outcome(prefix + "a&" + item), session());
    EXPECT_EQ(outcome(prefix + "%73ession=" + escaped(session())), session());
    EXPECT_EQ(outcome("LINTORA://Floating?" + item), session()) << "scheme and host know no case";
    EXPECT_EQ(outcomeOfPath(sessions() + u"/./"_s + name), session());
    EXPECT_EQ(outcomeOfPath(sessions() + u"/sub/../"_s + name), session());
    EXPECT_EQ(outcomeOfPath(sessions() + u"/../Sessions/"_s + name), session());
    EXPECT_EQ(outcomeOfPath(folder() + u"/link/"_s + name), session()) << "through a symbolic link";
    QDir::setCurrent(sessions());
    EXPECT_EQ(outcomeOfPath(name), session()) << "relative";
    QDir::setCurrent(u"/"_s);
}

TEST_F(LaunchLinkTest, refuses_links_of_another_form)
{
    const QByteArray item = "session=" + escaped(session());
    for (const QByteArray &link : QList<QByteArray>{{},
                                                    "lintora:" + item,
                                                    "lintora://floating",
                                                    "lintora://floating?",
                                                    "http://floating?" + item,
                                                    "lintora://other?" + item,
                                                    "lintora://?" + item,
                                                    "lintora://floating?Session=" + escaped(session()),
                                                    "lintora://floating?session",
                                                    "lintora://floating?session&" + item,
                                                    "lintora://floating#" + item,
                                                    "lintora://floating/" + item,
                                                    "lintora://floating?session=%FF%FE",
                                                    "lintora://[floating?" + item})
        EXPECT_EQ(outcome(link), invalidLink) << link.constData();
}

TEST_F(LaunchLinkTest, refuses_every_other_location)
{
    QDir().mkpath(sessions() + u"/sub"_s);
    for (const QString &path : {sessions() + u"/sub/"_s + name,
                                sessions() + u"/draft.json"_s,
                                sessions() + u"/"_s + name.chopped(5),
                                sessions() + u"/"_s + name.chopped(5) + u".JSON"_s,
                                sessions() + u"/"_s + name.chopped(5) + u".txt"_s,
                                sessions() + u"/"_s + name + u".json"_s,
                                sessions() + u"/{"_s + name.chopped(5) + u"}.json"_s,
                                sessions() + u"/../"_s + name,
                                folder() + u'/' + name,
                                name,
                                u"/"_s,
                                u""_s,
                                u"/dev/zero"_s,
                                u":/"_s + name,
                                sessions(),
                                QString(5'000, u'/') + session(),
                                u'/' + QString(40'000, u'x'),
                                session() + u"/x"_s,
                                session() + QChar::Null + u".json"_s,
                                sessions().toLower() + u'/' + name})
        EXPECT_EQ(outcomeOfPath(path), invalidLocation) << path.toStdString();
    EXPECT_EQ(outcome("lintora://floating?session=" + escaped(session()).replace("%20", "+")), invalidLocation)
        << "a plus sign is a plus sign";
}

TEST_F(LaunchLinkTest, refuses_a_session_that_is_a_link_to_somewhere_else)
{
    ASSERT_TRUE(QFile::link(u"/dev/zero"_s, session()));
    EXPECT_EQ(outcomeOfPath(session()), invalidLocation);
    ASSERT_TRUE(QFile::remove(session()));
    ASSERT_TRUE(QFile::link(folder() + u"/nothing-yet.json"_s, session()));
    EXPECT_EQ(outcomeOfPath(session()), invalidLocation) << "writing would create what it leads to";
}
