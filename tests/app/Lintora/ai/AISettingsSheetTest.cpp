#include "app/Lintora/ai/AISettingsSheet.h"

#include "tests/ai/models/TestModel.h"
#include "tests/app/Lintora/PanelTest.h"
#include "tests/support/Events.h"
#include "tests/support/ScriptedServer.h"

#include <QApplication>
#include <QDesktopServices>
#include <QFileInfo>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QTabBar>
#include <QTest>
#include <QToolButton>

using namespace Qt::StringLiterals;
using Reply = ScriptedServer::Reply;
using Request = ScriptedServer::Request;
using Tab = WindowState::AISettingsTab;

namespace {

/// Comes before the panel, whose model works with it.
struct SmallModel
{
    SmallModel() { test.model.id = u"base"_s; }

    TestModel test{600'000};
};

class AISettingsSheetTest : private SmallModel, public PanelTest
{
protected:
    AISettingsSheetTest()
        : PanelTest({test.model})
    {}

    using SmallModel::test;

    const AISettingsSheet *sheet() const { return panel->findChild<AISettingsSheet *>(); }
    const AIChoices &choices() { return model.aiSettings().choices(); }
    QLineEdit *field(const QString &name) const { return find<QLineEdit>(name); }

    void open(Tab tab)
    {
        model.showAISettings(tab);
        ASSERT_TRUE(Events::waitFor([&] { return model.aiSettings().areKeysLoaded(); }));
        Events::handle();
    }

    /// Types into a field that is emptied first, and leaves it by Return.
    void enter(const QString &name, const QString &text)
    {
        ASSERT_NE(field(name), nullptr) << qPrintable(name);
        field(name)->setFocus();
        field(name)->selectAll();
        if (text.isEmpty())
            press(Qt::Key_Delete);
        else
            QTest::keyClicks(field(name), text);
        press(Qt::Key_Return);
    }

    /// What can be read in the sheet.
    QString words() const
    {
        QStringList texts;
        for (const QLabel *const label : sheet()->findChildren<QLabel *>()) {
            if (label->isVisible())
                texts += label->text();
        }
        return texts.join(u'\n');
    }

    bool comes(const QString &text) const
    {
        const bool came = Events::waitFor([&] { return words().contains(text); });
        EXPECT_TRUE(came) << qPrintable(words());
        return came;
    }

    /// The entry of the model's menu.
    void choose(const QString &title)
    {
        auto *const more = find<QToolButton>(u"Test 更多"_s);
        ASSERT_NE(more, nullptr);
        Q_EMIT more->menu()->aboutToShow();
        for (QAction *const action : more->menu()->actions()) {
            if (action->text() == title) {
                ASSERT_TRUE(action->isEnabled());
                action->trigger();
                Events::handle();
                return;
            }
        }
        FAIL() << qPrintable(title);
    }
};

/// A file at `folder` is opened by this instead of the desktop.
class OpenedFolders : public QObject
{
    Q_OBJECT

public:
    OpenedFolders() { QDesktopServices::setUrlHandler(u"file"_s, this, "open"); }
    ~OpenedFolders() override { QDesktopServices::unsetUrlHandler(u"file"_s); }

    QStringList opened;

public Q_SLOTS:
    void open(const QUrl &url) { opened += url.toLocalFile(); }
};

} // namespace

TEST_F(AISettingsSheetTest, the_header_tells_where_work_is_done_and_opens_the_settings)
{
    click(u"引擎：本地引擎，尚未就绪，点击设置"_s);
    EXPECT_TRUE(model.window().aiSettingsPresented());
    EXPECT_TRUE(sheet()->isVisible());
    EXPECT_TRUE(find<QTabBar>(u"AI 设置"_s)->hasFocus());
    press(Qt::Key_Right);
    EXPECT_EQ(model.window().aiSettingsTab(), Tab::text);
    press(Qt::Key_Escape);
    EXPECT_FALSE(model.window().aiSettingsPresented());
    AIChoices online;
    online.aiUseOnline = true;
    online.aiAPIBaseURL = u"https://text.example/v1"_s;
    online.aiAPIModel = u"chat"_s;
    model.aiSettings().choose(online);
    const QAbstractButton *const mixed = button(u"引擎：本地 + 在线，尚未就绪，点击设置"_s);
    ASSERT_NE(mixed, nullptr);
    EXPECT_TRUE(mixed->toolTip().contains(u"翻译和校对：在线服务 · text.example"_s)) << qPrintable(mixed->toolTip());
    online.aiUseCloudSpeech = true;
    online.aiSpeechBaseURL = u"https://speech.example/v1"_s;
    model.aiSettings().choose(online);
    EXPECT_NE(button(u"引擎：在线服务，可以使用"_s), nullptr);
}

TEST_F(AISettingsSheetTest, a_service_is_set_up_and_says_what_leaves_this_machine)
{
    open(Tab::text);
    EXPECT_TRUE(words().contains(u"字幕不离开这台电脑"_s));
    click(u"用在线服务翻译和校对"_s);
    EXPECT_TRUE(choices().aiUseOnline);
    enter(u"API 地址"_s, u"ftp://text.example"_s);
    EXPECT_TRUE(words().contains(u"请输入 HTTPS API 地址"_s));
    EXPECT_EQ(choices().aiAPIBaseURL, QString());
    enter(u"API 地址"_s, u"https://text.example/v1"_s);
    EXPECT_TRUE(words().contains(u"字幕文字会发送到 text.example；音视频和项目文件不会。"_s));
    enter(u"模型"_s, u"chat"_s);
    click(u"快速校对"_s);
    EXPECT_EQ(choices().aiAPIBaseURL, u"https://text.example/v1"_s);
    EXPECT_EQ(choices().aiAPIModel, u"chat"_s);
    EXPECT_FALSE(choices().aiAPIQuickReview);
    open(Tab::speech);
    click(u"用在线服务识别语音"_s);
    enter(u"API 地址"_s, u"https://api.deepseek.com"_s);
    EXPECT_TRUE(words().contains(u"此配置是文字聊天接口，不能转写音频。"_s));
    enter(u"API 地址"_s, u"http://localhost:9000"_s);
    EXPECT_TRUE(words().contains(u"音轨会上传到 localhost；"_s));
    click(u"要求逐词时间"_s);
    EXPECT_TRUE(choices().aiUseCloudSpeech && choices().aiSpeechWordTimestamps);
    EXPECT_EQ(choices().aiSpeechAPIModel, u"whisper-1"_s);
    enter(u"API 地址"_s, {});
    EXPECT_EQ(choices().aiSpeechBaseURL, QString());
}

TEST_F(AISettingsSheetTest, a_key_is_masked_and_brought_to_the_keychain)
{
    open(Tab::text);
    EXPECT_EQ(field(u"API 密钥"_s)->echoMode(), QLineEdit::Password);
    EXPECT_FALSE(button(u"存入钥匙串"_s)->isEnabled());
    QTest::keyClicks(field(u"API 密钥"_s), u"sk-secret"_s);
    EXPECT_TRUE(words().contains(u"尚未存入钥匙串，退出后不保留。"_s));
    click(u"存入钥匙串"_s);
    ASSERT_TRUE(comes(u"已存入系统钥匙串。"_s));
    EXPECT_EQ(outside.keys.key(AIKeychain::textAccount), u"sk-secret"_s);
    outside.keys.lock();
    enter(u"API 密钥"_s, u"other"_s);
    ASSERT_TRUE(comes(u"钥匙串未能保存密钥。"_s));
    EXPECT_FALSE(words().contains(u"sk-secret"_s) || words().contains(u"other"_s));
}

TEST_F(AISettingsSheetTest, a_service_is_tried_out_and_the_trial_can_be_cancelled)
{
    std::atomic<bool> answers = false;
    const ScriptedServer server([&](const Request &) {
        return answers ? ScriptedServer::reply(401, R"({"error":{"message":"bad key"}})",
                                               "Content-Type: application/json\r\n")
                       : Reply{.end = Reply::End::stall};
    });
    open(Tab::text);
    enter(u"API 地址"_s, server.url(u"/v1"_s).toString());
    enter(u"模型"_s, u"chat"_s);
    click(u"测试连接"_s);
    ASSERT_TRUE(server.waitForConnections(1));
    EXPECT_TRUE(words().contains(u"正在测试…"_s));
    click(u"取消测试"_s);
    EXPECT_FALSE(words().contains(u"正在测试…"_s));
    answers = true;
    click(u"测试连接"_s);
    ASSERT_TRUE(comes(u"API 请求失败（HTTP 401）请检查 API 密钥。"_s));
    EXPECT_TRUE(find<QLabel>(u"测试结果"_s)->property("failure").toBool());
    EXPECT_TRUE(words().contains(u"bad key"_s));
    enter(u"模型"_s, u"other"_s);
    EXPECT_FALSE(words().contains(u"HTTP 401"_s));
}

TEST_F(AISettingsSheetTest, a_model_is_downloaded_paused_resumed_chosen_and_deleted)
{
    std::atomic<int> asked = 0;
    const ScriptedServer server([&](const Request &request) {
        const QByteArray range = request.headers.value("range");
        const qsizetype from = range.isEmpty() ? 0 : range.mid(6).chopped(1).toLongLong();
        Reply reply = ScriptedServer::reply(from > 0 ? 206 : 200, test.content.mid(from));
        if (from > 0)
            reply.head += "Content-Range: bytes " + QByteArray::number(from) + "-" +
                          QByteArray::number(test.content.size() - 1) + "/" + QByteArray::number(test.content.size()) +
                          "\r\n";
        reply.pace = asked++ == 0 ? 600 : 0;
        return reply;
    });
    open(Tab::models);
    EXPECT_TRUE(words().contains(u"尚未下载"_s));
    enter(u"下载来源"_s, u"httpx://mirror"_s);
    EXPECT_TRUE(words().contains(u"需要 https 或 http 地址：httpx://mirror"_s));
    enter(u"下载来源"_s, server.url(u"/"_s).toString());
    EXPECT_EQ(choices().aiModelHosts, QStringList{server.url(u"/"_s).toString()});
    click(u"下载 Test"_s);
    ASSERT_TRUE(comes(u"/秒"_s));
    EXPECT_TRUE(words().contains(u"约剩"_s));
    press(Qt::Key_Escape);
    EXPECT_TRUE(model.modelDownloads().aiDownloadingModelID());
    EXPECT_TRUE(status().startsWith(u"下载 Test"_s)) << qPrintable(status());
    open(Tab::models);
    click(u"暂停 Test"_s);
    ASSERT_TRUE(comes(u"已下载 "_s));
    click(u"继续下载 Test"_s);
    ASSERT_TRUE(comes(u"已校验 · 可离线使用"_s));
    EXPECT_EQ(status(), u"Test 已下载，可离线使用"_s);
    EXPECT_NE(choices().aiSpeechModelID, u"base"_s);
    click(u"选用 Test"_s);
    EXPECT_EQ(choices().aiSpeechModelID, u"base"_s);
    EXPECT_FALSE(button(u"使用中 Test"_s)->isEnabled());
    OpenedFolders desktop;
    choose(u"在文件夹中显示"_s);
    EXPECT_EQ(desktop.opened, QStringList{test.folder.path()});
    choose(u"删除…"_s);
    click(u"取消"_s);
    EXPECT_TRUE(QFileInfo::exists(test.model.file()));
    choose(u"删除…"_s);
    click(u"删除"_s);
    ASSERT_TRUE(comes(u"尚未下载"_s));
    EXPECT_FALSE(QFileInfo::exists(test.model.file()));
}

TEST_F(AISettingsSheetTest, a_model_of_the_persons_own_takes_the_place_of_the_catalogs)
{
    open(Tab::models);
    outside.answer = outside.file(u"我的.bin"_s, "x").toLocalFile();
    QTest::mouseClick(button(u"使用自己的模型文件…"_s), Qt::LeftButton);
    EXPECT_EQ(outside.openings, QStringList{u"使用自己的模型文件"_s});
    EXPECT_EQ(choices().aiSpeechModelFile, outside.answer);
    EXPECT_TRUE(words().contains(u"使用中 · "_s));
    QFile::remove(outside.answer);
    model.aiSettings().choose([&] {
        AIChoices other = choices();
        other.aiAutomaticReview = true;
        return other;
    }());
    EXPECT_TRUE(words().contains(u"找不到 "_s));
    click(u"改回目录中的模型"_s);
    EXPECT_EQ(choices().aiSpeechModelFile, QString());
}

TEST_F(AISettingsSheetTest, the_keyboard_reaches_every_control)
{
    for (const Tab tab : {Tab::models, Tab::text, Tab::speech}) {
        open(tab);
        QSet<QWidget *> reached;
        for (int i = 0; i < 24; ++i) {
            press(Qt::Key_Tab);
            ASSERT_TRUE(sheet()->isAncestorOf(QApplication::focusWidget()));
            EXPECT_FALSE(QApplication::focusWidget()->accessibleName().isEmpty());
            reached += QApplication::focusWidget();
        }
        for (QWidget *const each : sheet()->findChildren<QWidget *>()) {
            if (each->isVisible() && each->isEnabled() && (each->focusPolicy() & Qt::TabFocus) == Qt::TabFocus &&
                !qobject_cast<QTabBar *>(each)) {
                EXPECT_TRUE(reached.contains(each)) << qPrintable(each->accessibleName());
            }
        }
    }
}

#include "AISettingsSheetTest.moc"
