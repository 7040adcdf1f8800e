#include "ai/models/LocalModelDownload.h"

#include "ai/LocalAIJob.h"
#include "ai/models/LocalModels.h"
#include "ai/models/PartialDownload.h"
#include "core/Cancelled.h"
#include "core/ConversionError.h"
#include "core/PlatformError.h"
#include "tests/ai/models/TestModel.h"
#include "tests/support/ScriptedServer.h"
#include "tests/support/Unprivileged.h"

#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QScopeGuard>

#include <gtest/gtest.h>
#include <sys/mount.h>

#include <chrono>

using namespace Qt::StringLiterals;
using Reply = ScriptedServer::Reply;
using Request = ScriptedServer::Request;

namespace {

/// A host that has `content`, and goes on from where it is asked unless its version has changed.
struct Host
{
    QByteArray content;
    QByteArray tag = "\"v1\"";
    bool hasRanges = true;
    qsizetype breaksAfter = -1; ///< Bytes of an answer.
    qsizetype pace = 0;         ///< Bytes every five milliseconds.

    Reply operator()(const Request &request) const
    {
        const QByteArray range = request.headers.value("range");
        const QByteArray version = request.headers.value("if-range", tag);
        qsizetype from = 0;
        if (hasRanges && !range.isEmpty() && version == tag)
            from = range.mid(6).chopped(1).toLongLong();
        Reply reply = ScriptedServer::reply(from > 0 ? 206 : 200, content.mid(from), "ETag: " + tag + "\r\n");
        if (from > 0)
            reply.head += "Content-Range: bytes " + QByteArray::number(from) + "-" +
                          QByteArray::number(content.size() - 1) + "/" + QByteArray::number(content.size()) + "\r\n";
        reply.pace = pace;
        if (breaksAfter >= 0 && breaksAfter < reply.body.size())
            reply.body.truncate(breaksAfter);
        return reply;
    }
};

/// The sentence with which a download ended, empty when it succeeded.
QString ending(const TestModel &test, const QList<QUrl> &hosts, QStringList *progress = nullptr)
{
    LocalAIJob job;
    const auto report = [&](const Progress &now) {
        if (progress != nullptr)
            progress->append(now.what);
    };
    try {
        LocalModelDownload(test.model, hosts, job, report).download();
        return {};
    } catch (const ConversionError &error) {
        return error.message();
    } catch (const PlatformError &error) {
        return u"platform: "_s + error.description();
    }
}

QStringList ranges(const ScriptedServer &server)
{
    QStringList result;
    for (const Request &request : server.requests())
        result.append(QString::fromLatin1(request.headers.value("range")));
    return result;
}

void expectInstalled(const TestModel &test)
{
    EXPECT_TRUE(TestModel::read(test.model.file()) == test.content);
    EXPECT_EQ(QDir(test.folder.path()).entryList(QDir::Files | QDir::Hidden), QStringList{u"test.bin"_s});
    EXPECT_EQ(test.model.statusLabel(), u"已校验 · 可离线使用"_s);
}

constexpr auto failed = u"模型下载失败，请检查网络后重试。";
constexpr auto incomplete = u"模型下载不完整，请重新下载。";
constexpr auto spoiled = u"模型校验未通过，请重新下载。";

} // namespace

TEST(LocalModelDownload, brings_the_model_and_tells_each_percent_once)
{
    const TestModel test;
    const ScriptedServer server(Host{.content = test.content});
    QStringList progress;
    EXPECT_EQ(ending(test, {server.url(u"/hub/"_s)}, &progress), QString());
    expectInstalled(test);
    EXPECT_EQ(server.requests().value(0).target,
              "/hub/owner/name/resolve/0123456789012345678901234567890123456789/test.bin");
    EXPECT_FALSE(server.requests().value(0).headers.contains("authorization"));
    EXPECT_EQ(progress.last(), u"正在校验模型…"_s);
    // A percent is told with the bytes that were there when it was reached, which is as the network cuts them.
    const QString last = progress.value(progress.size() - 2);
    EXPECT_TRUE(last == u"下载 Test · 99% · 2.8 MB / 2.9 MB"_s || last == u"下载 Test · 99% · 2.9 MB / 2.9 MB"_s)
        << qPrintable(last);
    EXPECT_EQ(progress.removeDuplicates(), 0);
}

TEST(LocalModelDownload, what_is_not_the_model_is_refused_and_the_old_one_stays)
{
    const TestModel test;
    QByteArray corrupted = test.content;
    corrupted[1'234'567] = char(~corrupted[1'234'567]);
    const auto raw = [](const QByteArray &head, const QByteArray &body, qint64 repeats = 1) {
        return [=](const Request &) { return Reply{.head = head, .body = body, .repeats = repeats}; };
    };
    struct Row
    {
        const char *name;
        ScriptedServer::Script script;
        const char16_t *sentence;
    };
    const Row rows[] = {
        {"not there", [](const Request &) { return ScriptedServer::reply(404, "no"); }, failed},
        {"a page in its place", [](const Request &) { return ScriptedServer::reply(200, "<html>"); }, incomplete},
        {"a part that nobody asked for", [](const Request &) { return ScriptedServer::reply(206, "x"); }, failed},
        {"one byte short", Host{.content = test.content.chopped(1)}, incomplete},
        {"short, its length untold", raw("HTTP/1.1 200 OK\r\n", test.content.left(100'000)), incomplete},
        {"endless", raw("HTTP/1.1 200 OK\r\n", test.content, 1'000'000), incomplete},
        {"one byte wrong", Host{.content = corrupted}, spoiled},
        {"broken off at once", Host{.content = test.content, .breaksAfter = 1'000}, failed},
        {"elsewhere", [](const Request &) { return ScriptedServer::reply(302, "", "Location: http://192.0.2.1/\r\n"); },
         failed},
    };
    TestModel::write(test.model.file(), "old");
    for (const Row &row : rows) {
        const ScriptedServer server(row.script);
        EXPECT_EQ(ending(test, {server.url(u"/"_s)}), QString::fromUtf16(row.sentence)) << row.name;
        EXPECT_EQ(TestModel::read(test.model.file()), "old") << row.name;
        EXPECT_NE(QFileInfo(test.partial()).size(), test.content.size()) << row.name;
        QFile::remove(test.partial());
    }
}

TEST(LocalModelDownload, goes_on_from_where_a_connection_broke)
{
    const TestModel test(5'000'000);
    const ScriptedServer server(Host{.content = test.content, .breaksAfter = 2'000'000});
    EXPECT_EQ(ending(test, {server.url(u"/"_s)}), QString());
    expectInstalled(test);
    // What was on its way when the connection broke may be lost with it, and asked for again.
    const Request last = server.requests().last();
    EXPECT_GE(last.headers.value("range").mid(6).chopped(1).toLongLong(), 2'000'000);
    EXPECT_EQ(last.headers.value("if-range"), "\"v1\"");
}

TEST(LocalModelDownload, takes_up_a_part_only_where_the_server_goes_on_from_it)
{
    const TestModel test;
    const qsizetype half = 1'500'000;
    const ScriptedServer same(Host{.content = test.content});
    const ScriptedServer changed(Host{.content = test.content, .tag = "\"v2\""});
    const ScriptedServer rangeless(Host{.content = test.content, .hasRanges = false});
    const ScriptedServer confused([&](const Request &request) {
        // Always the same part, whatever was asked for.
        return request.headers.contains("range")
                   ? ScriptedServer::reply(206, "x", "Content-Range: bytes 5-5/3000000\r\n")
                   : Host{.content = test.content}(request);
    });
    const ScriptedServer unsatisfied([&](const Request &request) {
        return request.headers.contains("range") ? ScriptedServer::reply(416, "")
                                                 : Host{.content = test.content}(request);
    });
    const std::pair<const ScriptedServer *, qsizetype> rows[] = {
        {&same, 1}, {&changed, 1}, {&rangeless, 1}, {&confused, 2}, {&unsatisfied, 2}};
    for (const auto &[server, requests] : rows) {
        const ScriptedServer breaking(Host{.content = test.content});
        {
            PartialDownload partial(test.model);
            partial.startOver(test.model.url(server->url(u"/"_s)), "\"v1\"");
            // Where the server has another version, so may what we have: only the right one can be gone on from.
            partial.append(server == &same ? test.content.left(half) : QByteArray(half, 'x'));
        }
        EXPECT_EQ(ending(test, {server->url(u"/"_s)}), QString());
        expectInstalled(test);
        EXPECT_EQ(server->requests().size(), requests);
        EXPECT_EQ(ranges(*server).first(), u"bytes=1500000-"_s);
        QFile::remove(test.model.file());
    }
}

TEST(LocalModelDownload, one_mirror_after_another_is_asked_and_only_the_digest_decides)
{
    const TestModel test;
    const ScriptedServer absent([](const Request &) { return ScriptedServer::reply(503, "later"); });
    const ScriptedServer liar(Host{.content = QByteArray(test.content.size(), 'x')});
    const ScriptedServer breaking(Host{.content = test.content, .breaksAfter = 600'000});
    const ScriptedServer honest(Host{.content = test.content, .tag = "\"another\""});
    EXPECT_EQ(ending(test, {absent.url(u"/"_s), liar.url(u"/"_s), breaking.url(u"/"_s), honest.url(u"/"_s)}),
              QString());
    expectInstalled(test);
    EXPECT_EQ(liar.requests().size(), 1);
    // What the third one brought is gone on from; what the second one did is thrown away whole.
    EXPECT_EQ(ranges(breaking).last(), QString());
    ASSERT_EQ(honest.requests().size(), 1);
    EXPECT_TRUE(ranges(honest).first().startsWith(u"bytes="_s));
}

TEST(LocalModelDownload, a_part_that_was_wrong_is_thrown_away_and_the_whole_asked_for)
{
    const TestModel test;
    TestModel::write(test.partial(), QByteArray(1'000'000, 'x'));
    const ScriptedServer server(Host{.content = test.content});
    EXPECT_EQ(ending(test, {server.url(u"/"_s)}), QString());
    EXPECT_EQ(ranges(server), (QStringList{u"bytes=1000000-"_s, QString()}));
    expectInstalled(test);
    // A part that is complete needs no server at all.
    QFile::rename(test.model.file(), test.partial());
    EXPECT_EQ(ending(test, {server.url(u"/"_s)}), QString());
    EXPECT_EQ(server.requests().size(), 2);
    expectInstalled(test);
}

TEST(LocalModelDownload, cancelling_keeps_what_has_arrived)
{
    const TestModel test;
    TestModel::write(test.model.file(), "old");
    const ScriptedServer server(Host{.content = test.content, .pace = 50'000});
    for (const QString &moment : {u"下载"_s, u"下载"_s, u"正在校验"_s}) {
        LocalAIJob job;
        const auto report = [&](const Progress &now) {
            if (now.what.contains(moment))
                job.cancel();
        };
        EXPECT_THROW(LocalModelDownload(test.model, {server.url(u"/"_s)}, job, report).download(), Cancelled);
        EXPECT_EQ(TestModel::read(test.model.file()), "old");
        EXPECT_GT(QFileInfo(test.partial()).size(), 0);
    }
    ASSERT_EQ(PartialDownload::all().size(), 1);
    EXPECT_EQ(PartialDownload::all().first().bytes, test.content.size());
    LocalAIJob cancelled;
    cancelled.cancel();
    const qsizetype before = server.requests().size();
    EXPECT_THROW(LocalModelDownload(test.model, {server.url(u"/"_s)}, cancelled, {}).download(), Cancelled);
    EXPECT_EQ(server.requests().size(), before);
}

TEST(LocalModelDownload, a_killed_program_goes_on_where_it_stopped)
{
    const TestModel test(20'000'000);
    const ScriptedServer server(Host{.content = test.content, .pace = 100'000});
    const QStringList arguments{server.url(u"/"_s).toString(), QString::number(test.model.bytes), test.model.sha256};
    QProcess killed;
    killed.start(QStringLiteral(LINTORA_MODEL_DOWNLOADER), arguments);
    ASSERT_TRUE(killed.waitForStarted());
    const QDeadlineTimer limit(std::chrono::seconds(20));
    while (QFileInfo(test.partial()).size() < 2'000'000 && !limit.hasExpired())
        std::this_thread::yield();
    killed.kill();
    ASSERT_TRUE(killed.waitForFinished());
    const qint64 arrived = QFileInfo(test.partial()).size();
    ASSERT_GE(arrived, 2'000'000);
    ASSERT_LT(arrived, test.content.size());
    EXPECT_EQ(QProcess::execute(QStringLiteral(LINTORA_MODEL_DOWNLOADER), arguments), 0);
    EXPECT_EQ(ranges(server), (QStringList{QString(), u"bytes=%1-"_s.arg(arrived)}));
    EXPECT_EQ(server.requests().value(1).headers.value("if-range"), "\"v1\"");
    EXPECT_TRUE(TestModel::read(test.model.file()) == test.content);
    EXPECT_EQ(QDir(test.folder.path()).entryList(QDir::Files | QDir::Hidden), QStringList{u"test.bin"_s});
}

TEST(LocalModelDownload, two_downloads_of_one_model_do_not_meet_in_one_file)
{
    const TestModel test;
    const ScriptedServer server(Host{.content = test.content});
    const PartialDownload other(test.model);
    EXPECT_EQ(ending(test, {server.url(u"/"_s)}), u"此模型正在下载，请等待完成后再试。"_s);
    EXPECT_EQ(server.connections(), 0);
}

TEST(LocalModelDownload, a_disk_that_is_too_small_is_seen_before_anything_is_asked)
{
    const TestModel test;
    const QByteArray place = test.folder.path().toUtf8();
    if (mount("none", place.constData(), "tmpfs", 0, "size=40m") != 0)
        GTEST_SKIP() << "no right to mount a small disk";
    const auto unmount = qScopeGuard([&] { umount(place.constData()); });
    const ScriptedServer server(Host{.content = test.content});
    EXPECT_EQ(ending(test, {server.url(u"/"_s)}), u"磁盘空间不足。下载并校验此模型需要至少 69.7 MB 可用空间。"_s);
    EXPECT_EQ(server.connections(), 0);
}

TEST(LocalModelDownload, a_folder_that_cannot_be_written_to_is_told_in_the_systems_words)
{
    TestModel test;
    ASSERT_TRUE(QFile::setPermissions(test.folder.path(),
                                      QFile::ReadOwner | QFile::ExeOwner | QFile::ReadOther | QFile::ExeOther));
    const ScriptedServer server(Host{.content = test.content});
    {
        const Unprivileged user;
        if (!user.holds())
            GTEST_SKIP() << "cannot become a user without rights";
        EXPECT_TRUE(ending(test, {server.url(u"/"_s)}).startsWith(u"platform: "_s));
        qputenv("VELMORA_SUBTITLE_MODELS", (test.folder.path() + u"/deeper"_s).toUtf8());
        EXPECT_TRUE(ending(test, {server.url(u"/"_s)}).startsWith(u"platform: "_s));
    }
    EXPECT_EQ(server.connections(), 0);
    QFile::setPermissions(test.folder.path(), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
}
