#include "app/model/ai/ModelDownloads.h"

#include "tests/ai/models/TestModel.h"
#include "tests/support/Events.h"
#include "tests/support/Generator.h"
#include "tests/support/ModelTest.h"
#include "tests/support/ScriptedServer.h"

#include <QDir>
#include <QFileInfo>

using namespace Qt::StringLiterals;
using Reply = ScriptedServer::Reply;
using Request = ScriptedServer::Request;

namespace {

class ModelDownloadsTest : public ModelTest
{
protected:
    ModelDownloadsTest()
    {
        models = {test.model};
        restart();
    }

    /// Downloads come from there, in the order of the servers.
    void setHost(const ScriptedServer &server)
    {
        AIChoices choices = model->aiSettings().choices();
        choices.aiModelHosts = {server.url(u"/"_s).toString()};
        model->aiSettings().choose(choices);
    }

    ModelDownloads &downloads() { return model->modelDownloads(); }
    const ModelDownloads::Row &row() { return downloads().rows().first(); }
    qint64 arrived() const { return QFileInfo(test.partial()).size(); }
    void wait()
    {
        EXPECT_TRUE(Events::waitFor([&] { return !downloads().running(); }));
        Events::handle();
    }

    /// The whole model, or the rest that is asked for; this many bytes every five milliseconds.
    ScriptedServer::Script host(qsizetype pace = 0) const
    {
        return [content = test.content, pace](const Request &request) {
            const QByteArray range = request.headers.value("range");
            const qsizetype from = range.isEmpty() ? 0 : range.mid(6).chopped(1).toLongLong();
            Reply reply = ScriptedServer::reply(from > 0 ? 206 : 200, content.mid(from), "ETag: \"v1\"\r\n");
            if (from > 0)
                reply.head += "Content-Range: bytes " + QByteArray::number(from) + "-" +
                              QByteArray::number(content.size() - 1) + "/" + QByteArray::number(content.size()) +
                              "\r\n";
            reply.pace = pace;
            return reply;
        };
    }

    const TestModel test;
};

} // namespace

TEST_F(ModelDownloadsTest, a_download_owns_no_cues_and_says_when_it_is_done)
{
    const ScriptedServer server(host(4'000));
    setHost(server);
    loadCues(Generator(1).cues(3));
    EXPECT_TRUE(row().status.startsWith(u"尚未下载 · "_s));
    const qint64 revision = downloads().aiModelsRevision();
    downloads().download(u"test"_s);
    EXPECT_EQ(downloads().aiDownloadingModelID(), u"test"_s);
    ASSERT_TRUE(Events::waitFor([&] { return downloads().pace().has_value(); }));
    EXPECT_FALSE(model->aiBusy());
    EXPECT_TRUE(model->setText(0, u"照常编辑"_s));
    EXPECT_TRUE(model->canUndo());
    EXPECT_TRUE(model->activity()->what.startsWith(u"下载 Test"_s)) << qPrintable(model->activity()->what);
    EXPECT_GT(downloads().pace()->bytesPerSecond, 0);
    EXPECT_GT(downloads().pace()->leftMS, 0);
    wait();
    EXPECT_EQ(model->message(), u"Test 已下载，可离线使用"_s);
    EXPECT_EQ(row().status, u"已校验 · 可离线使用"_s);
    EXPECT_EQ(TestModel::read(test.model.file()), test.content);
    EXPECT_GT(downloads().aiModelsRevision(), revision);
    EXPECT_EQ(downloads().aiDownloadingModelID(), std::nullopt);
}

TEST_F(ModelDownloadsTest, a_pause_keeps_what_has_come_over_a_restart)
{
    const ScriptedServer server(host(8'000));
    setHost(server);
    struct Way
    {
        const char *name;
        std::function<void()> pause;
    };
    // The button, the status line's cancel, and the end of the program.
    const Way ways[] = {{"pause", [&] { downloads().pause(); }},
                        {"cancel", [&] { model->cancelActivity(); }},
                        {"quit", [&] { restart(); }}};
    qint64 before = 0;
    for (const Way &way : ways) {
        SCOPED_TRACE(way.name);
        downloads().download(u"test"_s);
        ASSERT_TRUE(Events::waitFor([&] { return arrived() > before; }));
        way.pause();
        wait();
        EXPECT_FALSE(row().isReady);
        EXPECT_GT(row().arrivedBytes, before);
        EXPECT_TRUE(row().status.startsWith(u"已下载 "_s)) << qPrintable(row().status);
        before = row().arrivedBytes;
    }
    restart();
    EXPECT_GE(row().arrivedBytes, before);
    downloads().download(u"test"_s);
    wait();
    EXPECT_TRUE(row().isReady);
    EXPECT_FALSE(server.requests().last().headers.value("range").isEmpty());
}

TEST_F(ModelDownloadsTest, a_discarded_download_leaves_nothing_and_the_old_model_as_it_was)
{
    const ScriptedServer server(host(2'000));
    setHost(server);
    TestModel::write(test.model.file(), "old");
    downloads().download(u"test"_s);
    ASSERT_TRUE(Events::waitFor([&] { return arrived() > 0; }));
    downloads().discard();
    EXPECT_EQ(downloads().aiDownloadingModelID(), std::nullopt);
    wait();
    EXPECT_EQ(model->message(), u"已取消下载"_s);
    EXPECT_FALSE(QFileInfo::exists(test.partial()));
    EXPECT_EQ(TestModel::read(test.model.file()), "old");
    EXPECT_EQ(row().status, u"文件不完整 · 请重新下载"_s);
}

TEST_F(ModelDownloadsTest, what_fails_is_said_and_one_thing_goes_on_at_a_time)
{
    const ScriptedServer server([](const Request & /*request*/) { return ScriptedServer::reply(404, "no"); });
    setHost(server);
    downloads().download(u"test"_s);
    downloads().verify(u"test"_s);
    EXPECT_EQ(failure(), u"请等待当前的模型处理完成。"_s);
    EXPECT_EQ(downloads().aiDownloadingModelID(), u"test"_s);
    wait();
    EXPECT_EQ(failure(), u"模型下载失败，请检查网络后重试。"_s);
    EXPECT_FALSE(row().isThere);
}

TEST_F(ModelDownloadsTest, a_model_is_checked_and_removed)
{
    TestModel::write(test.model.file(), test.content);
    downloads().refresh();
    EXPECT_EQ(row().status, u"已下载 · 使用前校验"_s);
    downloads().verify(u"test"_s);
    wait();
    EXPECT_EQ(row().status, u"已校验 · 可离线使用"_s);
    EXPECT_EQ(model->message(), u"Test 校验通过"_s);
    TestModel::write(test.model.file(), QByteArray(test.content).replace(7, 1, "?"));
    downloads().verify(u"test"_s);
    wait();
    EXPECT_EQ(failure(), u"模型校验未通过，请重新下载。"_s);
    TestModel::write(test.partial(), "part");
    downloads().remove(u"test"_s);
    wait();
    EXPECT_FALSE(QFileInfo::exists(test.model.file()));
    EXPECT_FALSE(QFileInfo::exists(test.partial()));
    EXPECT_EQ(model->message(), u"Test 已删除"_s);
    EXPECT_TRUE(row().status.startsWith(u"尚未下载"_s));
}
