#include "app/model/CueTools.h"

#include "tests/support/Events.h"
#include "tests/support/Generator.h"
#include "tests/support/ModelTest.h"

using namespace Qt::StringLiterals;

namespace {

using Tool = CueTools::Tool;

class CueToolsTest : public ModelTest
{
protected:
    void loadTexts(const QStringList &texts)
    {
        QList<Subtitle> cues;
        for (const QString &text : texts)
            cues +=
                {.id = cues.size() + 1, .start = cues.size() * 3'000, .end = cues.size() * 3'000 + 3'000, .text = text};
        loadCues(cues);
    }

    CueTools &tools() { return model->cueTools(); }

    void open(Tool tool)
    {
        tools().open(tool);
        settle();
    }

    void set(const std::function<void(CueTools::Settings &)> &change)
    {
        CueTools::Settings settings = tools().settings();
        change(settings);
        tools().setSettings(settings);
        settle();
    }

    /// "before > after" of every row.
    QString rows()
    {
        QStringList lines;
        for (const CueProposal::Row &row : tools().rows())
            lines.append(u"%1: %2 > %3"_s.arg(row.cue).arg(row.before, row.after));
        return lines.join(u'\n');
    }
};

} // namespace

TEST_F(CueToolsTest, breaking_is_shown_before_it_is_done_and_is_one_step)
{
    loadTexts({u"好"_s, u"我觉得这个方案不错不过预算可能不够"_s, u"再说"_s});
    const QList<Subtitle> before = model->items();
    open(Tool::breaking);
    EXPECT_EQ(rows(), u"1: 我觉得这个方案不错不过预算可能不够 > 我觉得这个方案不错 ┃ 不过预算可能不够"_s);
    EXPECT_EQ(tools().status(), u"断句后：3 条变为 4 条"_s);
    EXPECT_EQ(model->items(), before);
    set([](auto &settings) { settings.lines = 2; });
    EXPECT_EQ(rows(), u"1: 我觉得这个方案不错不过预算可能不够 > 我觉得这个方案不错\n不过预算可能不够"_s);
    set([](auto &settings) {
        settings.way = CueTools::Way::lines;
        settings.columns = 5;
    });
    EXPECT_EQ(rows(), u"1: 我觉得这个方案不错不过预算可能不够 > 我觉得这个\n方案不错\n不过预算\n可能不够"_s);
    EXPECT_EQ(tools().status(), u"将为 1 条字幕换行"_s);
    set([](auto &settings) { settings = {}; });
    tools().apply();
    settle();
    EXPECT_EQ(texts(), (QStringList{u"好"_s, u"我觉得这个方案不错"_s, u"不过预算可能不够"_s, u"再说"_s}));
    EXPECT_EQ(model->message(), u"已断句：3 条字幕变为 4 条"_s);
    EXPECT_EQ(model->undoTitle(), u"断句"_s);
    EXPECT_EQ(tools().status(), u"没有需要调整的字幕"_s);
    EXPECT_FALSE(tools().canApply());
    model->undo();
    EXPECT_EQ(model->items(), before);
    settle();
    EXPECT_EQ(tools().rows().size(), 1) << "what is shown follows the cues";
}

TEST_F(CueToolsTest, joining_shows_the_cues_that_become_one)
{
    loadTexts({u"好"_s, u"我们"_s, u"今天聊聊显示器怎么选才不吃亏"_s});
    open(Tool::breaking);
    set([](auto &settings) { settings.way = CueTools::Way::joined; });
    EXPECT_EQ(rows(), u"0: 好 ┃ 我们 > 好我们"_s);
    tools().apply();
    EXPECT_EQ(model->undoTitle(), u"合并短句"_s);
    EXPECT_EQ(texts().size(), 2);
}

TEST_F(CueToolsTest, what_is_ticked_of_the_findings_is_mended_in_one_step)
{
    loadTexts({u"你好,世界"_s, u"（再见"_s, u"Ａ好"_s});
    open(Tool::checking);
    EXPECT_EQ(rows(), u"0: 你好,世界 > 1 个字符的全角半角与文字不符 → 改为“你好，世界”\n"
                      u"1: （再见 > “（”不成对\n"
                      u"2: Ａ好 > 1 个字符的全角半角与文字不符 → 改为“A好”"_s);
    EXPECT_EQ(tools().status(), u"发现 3 处，可自动修复 2 处"_s);
    tools().setSelected(1, true);
    EXPECT_EQ(tools().selectedCount(), 2) << "what a person must decide has no box";
    tools().setSelected(0, false);
    tools().apply();
    settle();
    EXPECT_EQ(texts(), (QStringList{u"你好,世界"_s, u"（再见"_s, u"A好"_s}));
    EXPECT_EQ(model->message(), u"已修复 1 处，可撤销"_s);
    EXPECT_EQ(model->undoTitle(), u"修复"_s);
    tools().selectAll(false);
    EXPECT_FALSE(tools().canApply());
    tools().selectAll(true);
    EXPECT_EQ(tools().selectedCount(), 1);
}

TEST_F(CueToolsTest, limits_outlast_the_program_and_go_through_files)
{
    set([](auto &settings) {
        settings.limits.name = u"本台"_s;
        settings.limits.lines = 1;
        settings.limits.off = {CheckRule::blanks};
    });
    const CheckLimits own = tools().settings().limits;
    restart();
    EXPECT_EQ(tools().settings().limits, own);
    tools().writeLimits(home(u"规则.json"_s));
    settle();
    EXPECT_EQ(CheckLimits::read(read(home(u"规则.json"_s))), own);
    set([](auto &settings) { settings.limits = CheckLimits::builtIn().back(); });
    tools().readLimits(home(u"规则.json"_s));
    settle();
    EXPECT_EQ(tools().settings().limits, own);
    tools().readLimits(write(u"坏.json"_s, R"({"lines":0})"));
    settle();
    EXPECT_EQ(tools().settings().limits, own);
    EXPECT_TRUE(tools().isRefused());
    EXPECT_TRUE(tools().status().startsWith(u"规则未能载入："_s));
    EXPECT_TRUE(tools().status().contains(u"lines"_s));
    tools().readLimits(write(u"大.json"_s, QByteArray(CheckLimits::largestDocument + 1, ' ')));
    settle();
    EXPECT_TRUE(tools().status().startsWith(u"规则未能载入：文件过大："_s));
}

TEST_F(CueToolsTest, the_script_is_converted_but_for_names)
{
    loadTexts({u"張國榮的頭髮"_s, u"简体"_s});
    open(Tool::script);
    set([](auto &settings) { settings.kept = {u"張國榮"_s}; });
    EXPECT_EQ(rows(), u"0: 張國榮的頭髮 > 張國榮的头发"_s);
    tools().apply();
    EXPECT_EQ(texts(), (QStringList{u"張國榮的头发"_s, u"简体"_s}));
    EXPECT_EQ(model->message(), u"已转换 1 条字幕"_s);
}

TEST_F(CueToolsTest, what_is_shown_is_about_the_cues_as_they_are)
{
    loadTexts({u"Ａ好"_s, u"我觉得这个方案不错不过预算可能不够"_s});
    open(Tool::breaking);
    model->setText(1, u"改短了"_s);
    EXPECT_FALSE(tools().canApply()) << "until it is worked out anew";
    tools().apply();
    EXPECT_EQ(texts().size(), 2);
    settle();
    EXPECT_TRUE(tools().rows().isEmpty());
    open(Tool::checking);
    EXPECT_EQ(tools().rows().size(), 1) << "another tool looks for itself";
    tools().close();
    EXPECT_TRUE(tools().rows().isEmpty());
    EXPECT_FALSE(tools().tool());
}

TEST_F(CueToolsTest, long_work_on_the_cues_closes_the_tool)
{
    loadTexts({u"Ａ好"_s});
    open(Tool::checking);
    std::atomic<bool> goesOn = true;
    model->ownCues(
        u"…"_s,
        [&](Job &job, const ProgressReport &) {
            while (goesOn)
                job.check();
            return 0;
        },
        [](int) {});
    EXPECT_FALSE(tools().tool());
    tools().open(Tool::checking);
    EXPECT_FALSE(tools().tool());
    EXPECT_EQ(failure(), u"请等待当前任务完成后再整理。"_s);
    goesOn = false;
    EXPECT_TRUE(Events::waitFor([&] { return !model->aiBusy(); }));
}

TEST_F(CueToolsTest, cancelling_leaves_the_cues_as_they_are)
{
    Generator generator(3);
    QList<Subtitle> cues = generator.cues(20'000, 700);
    for (Subtitle &cue : cues)
        cue.text += u"，Ａ好"_s;
    loadCues(cues);
    const QList<Subtitle> before = model->items();
    open(Tool::checking);
    ASSERT_TRUE(tools().canApply());
    tools().apply();
    model->cancelActivity();
    EXPECT_EQ(tools().status(), u"已取消"_s);
    settle();
    EXPECT_EQ(model->items(), before);
    EXPECT_TRUE(tools().canApply()) << "it can be asked for again";
}

TEST_F(CueToolsTest, a_damaged_file_is_opened_by_choice_only)
{
    const QString path =
        write(u"坏.srt"_s, "1\n00:00:01.5 --> 00:00:02,000\n一\n\n2\n00:00:05,000 --> 00:00:04,000\n二\n");
    FileRepairing &repairing = model->fileRepairing();
    load(path);
    EXPECT_TRUE(texts().isEmpty());
    const QString refusal = failure();
    EXPECT_FALSE(refusal.isEmpty());
    EXPECT_EQ(repairing.offered(), path);
    repairing.show(path);
    settle();
    ASSERT_TRUE(repairing.file());
    EXPECT_FALSE(repairing.file()->repairs.isEmpty());
    EXPECT_EQ(failure(), refusal) << "the refusal's sentence stays";
    EXPECT_TRUE(texts().isEmpty());
    repairing.accept();
    EXPECT_EQ(texts(), (QStringList{u"一"_s, u"二"_s}));
    EXPECT_EQ(model->source(), u"坏.srt"_s);
    EXPECT_TRUE(model->message().startsWith(u"已修复并载入 · "_s)) << model->message().toStdString();
    EXPECT_TRUE(repairing.offered().isEmpty());
    EXPECT_FALSE(repairing.isShown());
}

TEST_F(CueToolsTest, a_file_in_another_encoding_is_read_as_the_person_says)
{
    const QString path = write(u"旧.srt"_s, "1\n00:00:01,000 --> 00:00:02,000\n\xC4\xE3\xBA\xC3\n");
    FileRepairing &repairing = model->fileRepairing();
    repairing.show(path);
    settle();
    repairing.setEncoding(u"GB18030"_s);
    settle();
    ASSERT_TRUE(repairing.file());
    EXPECT_EQ(repairing.file()->items.first().text, u"你好"_s);
    repairing.setEncoding(u"Big5"_s);
    settle();
    EXPECT_NE(repairing.file() ? repairing.file()->items.first().text : QString(), u"你好"_s);
    repairing.close();
    EXPECT_TRUE(texts().isEmpty());
}

TEST_F(CueToolsTest, other_formats_are_shown_before_they_are_opened)
{
    load(write(u"a.vtt"_s, "WEBVTT\n\n00:01.000 --> 00:02.000 line:0\n<b>一</b>\n"));
    FileRepairing &repairing = model->fileRepairing();
    EXPECT_EQ(failure(), u"请拖入 SRT 文件，或 FCP 项目以匹配画面和帧率。"_s);
    ASSERT_FALSE(repairing.offered().isEmpty());
    repairing.show(repairing.offered());
    settle();
    EXPECT_TRUE(repairing.isShown());
    ASSERT_TRUE(repairing.file());
    repairing.accept();
    EXPECT_EQ(texts(), QStringList{u"一"_s});
    repairing.show(home(u"missing.ass"_s));
    settle();
    EXPECT_TRUE(repairing.isRefused());
    repairing.accept();
    EXPECT_EQ(texts(), QStringList{u"一"_s});
}
