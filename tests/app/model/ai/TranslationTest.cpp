#include "app/model/ai/Translation.h"

#include "tests/support/Events.h"
#include "tests/support/HelperFolder.h"
#include "tests/support/ModelTest.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

using namespace Qt::StringLiterals;
using SubtitleAI::Direction;

namespace {

class TranslationTest : public ModelTest
{
protected:
    TranslationTest()
    {
        choose([this](AIChoices &choices) { choices.aiTextModelFile = write(u"qwen.gguf"_s, "model"); });
        answerWith(u"echo"_s);
    }

    ~TranslationTest() override
    {
        model.reset();
        EXPECT_TRUE(Events::waitFor([&] { return helpers.running() == 0; }));
        EXPECT_EQ(helpers.scratchFolders(), QStringList());
    }

    Translation &translation() { return model->translation(); }

    void answerWith(const QString &turn)
    {
        helpers.script(u"llama-server"_s, {u"health 200"_s, u"completion "_s + turn, u"serve"_s});
    }

    void choose(const std::function<void(AIChoices &)> &change)
    {
        AIChoices choices = model->aiSettings().choices();
        change(choices);
        model->aiSettings().choose(choices);
    }

    void loadTalk()
    {
        loadCues({{.id = 3, .start = 0, .end = 900, .text = u"我们聊聊调色"_s},
                  {.id = 7, .start = 1'000, .end = 2'900, .text = u"大家好"_s}});
    }

    void translate()
    {
        translation().start();
        ASSERT_TRUE(Events::waitFor([&] { return !model->aiBusy(); }));
        Events::handle();
        EXPECT_FALSE(translation().isRunning());
    }

    /// The prompt of the last request.
    QString prompt()
    {
        const QByteArray body = helpers.requests(u"llama-server"_s).last();
        return QJsonDocument::fromJson(body).object().value(u"prompt").toString();
    }

    HelperFolder helpers;
};

} // namespace

TEST_F(TranslationTest, ends_with_a_new_track_whose_cues_keep_ids_and_times)
{
    loadTalk();
    const LintoraSession before = model->snapshot();
    translate();
    ASSERT_EQ(model->tracks().size(), 2);
    EXPECT_EQ(model->tracks().first(), before.tracks->first());
    EXPECT_EQ(model->tracks().last().label, u"English"_s);
    QList<Subtitle> expected = before.items;
    for (Subtitle &cue : expected)
        cue.text.prepend(u"译"_s);
    EXPECT_EQ(model->items(), expected);
    EXPECT_EQ(model->message(), u"已翻译 2 条字幕"_s);
    model->undo();
    EXPECT_EQ(model->snapshot(), before);
}

TEST_F(TranslationTest, the_direction_follows_the_track_until_a_person_chooses)
{
    loadTalk();
    EXPECT_EQ(translation().aiDirection(), Direction::chineseToEnglish);
    loadCues({{.id = 1, .start = 0, .end = 900, .text = u"Let us talk about grading"_s}});
    EXPECT_EQ(translation().aiDirection(), Direction::englishToChinese);
    translation().setDirection(Direction::chineseToEnglish);
    EXPECT_EQ(translation().aiDirection(), Direction::chineseToEnglish);
    const QUuid english = *model->selectedTrackID();
    translate();
    EXPECT_TRUE(prompt().contains(u"from 中文 to English"_s));
    EXPECT_EQ(translation().trackID(), model->selectedTrackID());
    translation().setTrackID(english);
    EXPECT_EQ(translation().trackID(), english);
    EXPECT_EQ(translation().aiDirection(), Direction::englishToChinese);
    translation().setTrackID(QUuid::createUuid());
    EXPECT_EQ(translation().trackID(), model->selectedTrackID()) << "there is no such track";
}

TEST_F(TranslationTest, what_cannot_be_translated_is_told_and_changes_nothing)
{
    translate();
    EXPECT_EQ(failure(), u"请先载入字幕或生成字幕。"_s);
    loadTalk();
    const LintoraSession before = model->snapshot();
    struct Row
    {
        const char *name;
        std::function<void()> spoil;
        QString sentence;
    };
    const Row rows[] = {
        {"an answer that is none", [&] { answerWith(u"answer Sure!"_s); }, u"翻译结果读取失败，原字幕已保留。"_s},
        {"a server that fails", [&] { helpers.script(u"llama-server"_s, {u"exit 1"_s}); },
         u"本地翻译引擎启动失败，请检查模型后重试。"_s},
        {"no model", [&] { choose([](AIChoices &choices) { choices.aiTextModelFile.clear(); }); },
         u"请先下载翻译模型。"_s},
        {"a service without an address", [&] { choose([](AIChoices &choices) { choices.aiUseOnline = true; }); },
         u"请输入 HTTPS API 地址，例如 https://服务商域名/v1。"_s},
    };
    for (const Row &row : rows) {
        SCOPED_TRACE(row.name);
        row.spoil();
        translate();
        EXPECT_EQ(failure(), row.sentence);
        EXPECT_EQ(model->snapshot(), before);
    }
}

TEST_F(TranslationTest, a_cancel_is_felt_at_once_while_it_loads_and_while_it_answers)
{
    loadTalk();
    const LintoraSession before = model->snapshot();
    const QStringList scripts[] = {{u"health hang"_s, u"serve"_s},
                                   {u"ignore"_s, u"health 200"_s, u"completion hang"_s, u"serve"_s}};
    for (const QStringList &script : scripts) {
        helpers.script(u"llama-server"_s, script);
        const qsizetype requests = helpers.requests(u"llama-server"_s).size();
        translation().start();
        ASSERT_TRUE(Events::waitFor([&] {
            return script.size() == 2 ? helpers.running() > 0 : helpers.requests(u"llama-server"_s).size() > requests;
        }));
        model->cancelAI();
        EXPECT_FALSE(model->aiBusy());
        EXPECT_FALSE(translation().isRunning());
        EXPECT_TRUE(Events::waitFor([&] { return helpers.running() == 0; }));
        EXPECT_EQ(failure(), QString());
        EXPECT_EQ(model->snapshot(), before);
    }
}

TEST_F(TranslationTest, terms_that_apply_are_sent_along_only_when_the_person_wants_it)
{
    loadTalk();
    model->glossary().load();
    ASSERT_TRUE(Events::waitFor([&] { return model->glossary().isLoaded(); }));
    translate();
    const QString plain = prompt();
    model->undo();
    model->glossary().save(u"调色,color grading,后期\n羽化,feather\n"_s);
    translate();
    EXPECT_EQ(prompt(), plain) << "off by default";
    EXPECT_TRUE(translation().terms(model->items().first()).missing.isEmpty());
    model->undo();

    choose([](AIChoices &choices) { choices.aiUseGlossary = true; });
    translate();
    EXPECT_TRUE(prompt().contains(
        uR"([{"id":0,"terms":[{"note":"后期","rendering":"color grading","term":"调色"}],"text":"我们聊聊调色"},{"id":1,"text":"大家好"}])"_s));
    const auto terms = translation().terms(model->items().first());
    ASSERT_EQ(terms.missing.size(), 1);
    EXPECT_EQ(terms.missing.first().rendering, u"color grading"_s);
    model->setText(0, u"Let us talk about Color Grading"_s);
    EXPECT_TRUE(translation().terms(model->items().first()).missing.isEmpty());
    EXPECT_EQ(translation().terms(model->items().first()).kept.size(), 1);
    EXPECT_TRUE(translation().terms(model->items().last()).kept.isEmpty());
    model->undo();
    model->undo();

    model->glossary().save(u"羽化,feather\n"_s);
    translate();
    EXPECT_EQ(prompt(), plain) << "no cue holds any";
}

TEST_F(TranslationTest, a_glossary_is_kept_between_runs_and_travels_as_CSV)
{
    model->glossary().load();
    ASSERT_TRUE(Events::waitFor([&] { return model->glossary().isLoaded(); }));
    model->glossary().save(u"调色,color grading,后期\n罗老师,Mr. Luo\n"_s);
    restart().glossary().load();
    ASSERT_TRUE(Events::waitFor([&] { return model->glossary().all().size() == 2; }));
    EXPECT_EQ(model->glossary().text(), u"调色,color grading,后期\n罗老师,Mr. Luo,\n"_s);

    EXPECT_THROW(model->glossary().save(u"只有术语\n"_s), ConversionError);
    EXPECT_EQ(model->glossary().all().size(), 2);

    model->glossary().importFrom(write(u"more.csv"_s, "\xEF\xBB\xBF术语,译法,备注\r\n罗老师,Luo\r\n羽化,feather\r\n"));
    ASSERT_TRUE(Events::waitFor([&] { return model->glossary().all().size() == 3; }));
    EXPECT_EQ(model->glossary().text(), u"罗老师,Luo,\n羽化,feather,\n调色,color grading,后期\n"_s);
    model->glossary().importFrom(write(u"bad.csv"_s, "一\n"));
    ASSERT_TRUE(Events::waitFor([&] { return !failure().isEmpty(); }));
    EXPECT_EQ(failure(), u"术语表第 1 行有误，每行应为：术语,译法,备注。"_s);
    EXPECT_EQ(model->glossary().all().size(), 3);

    model->glossary().exportTo(home(u"out.csv"_s));
    ASSERT_TRUE(Events::waitFor([&] { return model->message() == u"已导出 3 条术语"; }));
    EXPECT_EQ(read(home(u"out.csv"_s)),
              "\xEF\xBB\xBF术语,译法,备注\r\n罗老师,Luo,\r\n羽化,feather,\r\n调色,color grading,后期\r\n");
}
