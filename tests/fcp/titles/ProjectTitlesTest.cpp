#include "tests/fcp/titles/TitledProject.h"

using namespace Qt::StringLiterals;
using namespace TitledProject;

TEST(ProjectTitles, leave_everything_else_as_it_was)
{
    const Project project = projectOfEveryClip();
    QList<Subtitle> cues;
    for (qint64 i = 0; i < 36; ++i)
        cues += at(i * 500, i * 500 + 400, i + 1);
    const QByteArray bytes = converted(project, cues);
    EXPECT_EQ(connected(bytes).size(), 36);
    const QByteArray original = project.bytes();
    EXPECT_EQ(CanonicalXml::withoutTitles(bytes, "1", "subeffect1").toStdString(),
              CanonicalXml::withoutTitles(original, "1", "subeffect1").toStdString());
    EXPECT_TRUE(bytes.contains("<project name=\"成片\">")) << "a new project to Final Cut Pro";
}

TEST(ProjectTitles, hang_on_the_choice_of_an_audition)
{
    Project project;
    project.spine = "<audition offset='0s'><asset-clip ref='r3' start='10s' duration='50s'/>"
                    "<asset-clip ref='r3' duration='50s'/></audition><gap offset='50s' start='0s' duration='50s'/>";
    const QByteArray bytes = converted(project, {at(2'000, 3'000), at(60'000, 61'000, 2)});
    const QList<Connected> found = connected(bytes);
    ASSERT_EQ(found.size(), 2);
    EXPECT_EQ(found[0].clip, "asset-clip");
    EXPECT_EQ(found[0].offset, "300/25s");
    EXPECT_TRUE(bytes.indexOf("<title") < bytes.indexOf("</asset-clip>"));
}

TEST(ProjectTitles, go_into_one_of_several_projects)
{
    Project project;
    QByteArray bytes = project.bytes();
    const qsizetype begin = bytes.indexOf("<project");
    const qsizetype end = bytes.indexOf("</project>") + 10;
    QByteArray other = bytes.sliced(begin, end - begin);
    bytes.insert(end, other.replace("我的 &amp; 项目", "另一个"));
    const auto convert = [&](const QString &name) {
        return FCPXML::convert({at(0, 1'000)}, XmlDocument::parse(bytes, {}), options25(), name).toUtf8();
    };
    EXPECT_THROW(convert({}), ConversionError);
    EXPECT_THROW(convert(u"没有"_s), ConversionError);
    const QByteArray written = convert(u"另一个"_s);
    EXPECT_GT(written.indexOf("<title"), written.indexOf("name=\"成片\""));
    EXPECT_TRUE(written.contains("name=\"我的 &amp; 项目\" uid=\"U\""));
    EXPECT_EQ(FCPXML::settings({}, XmlDocument::parse(bytes, {}), u"另一个"_s).name, u"另一个_字幕版"_s);
}

TEST(ProjectTitles, find_resources_that_lie_inside_the_project)
{
    QByteArray bytes = Project().bytes();
    const qsizetype begin = bytes.indexOf("<resources>");
    const qsizetype end = bytes.indexOf("</resources>") + 12;
    const QByteArray resources = bytes.sliced(begin, end - begin);
    bytes.remove(begin, end - begin);
    bytes.insert(bytes.indexOf("<sequence format='r1' duration"), resources);
    EXPECT_EQ(FCPXML::settings({}, XmlDocument::parse(bytes, {})).rate.label, u"25"_s);
    const QByteArray written = FCPXML::convert({at(0, 1'000)}, XmlDocument::parse(bytes, {}), options25()).toUtf8();
    EXPECT_EQ(connected(written).size(), 1);
}

/// The cues that go into a project of 100 s, and after a bar the ids of those left out.
std::string fitted(const Project &project, const QList<Subtitle> &cues, const TitleFitting::Choice &choice,
                   const Options &options = options25())
{
    const XmlDocument document = XmlDocument::parse(project.bytes(), {});
    const auto result = TitleFitting::fit(cues, FCPXML::project(document), options, choice);
    QStringList words;
    for (const Subtitle &cue : result.cues)
        words.append(u"%1-%2"_s.arg(cue.start).arg(cue.end));
    words.append(u"|"_s);
    for (const auto &[cue, reason] : result.leftOut)
        words.append(QString::number(cue.id) + reason);
    return words.join(u' ').toStdString();
}

TEST(ProjectTitles, past_the_end_are_cut_or_dropped_when_asked)
{
    using enum TitleFitting::PastEnd;
    const QList<Subtitle> cues{at(0, 100'000), at(99'000, 100'001, 2), at(99'500, 100'040, 3), at(100'000, 101'000, 4)};
    const Project project;
    EXPECT_EQ(fitted(project, cues, {}), "0-100000 99000-100001 99500-100040 100000-101000 |");
    EXPECT_EQ(fitted(project, cues, {.pastEnd = cut}), "0-100000 99000-100001 99500-100000 | 4超出项目时长");
    EXPECT_EQ(fitted(project, cues, {.pastEnd = drop}), "0-100000 99000-100001 | 3超出项目时长 4超出项目时长");
    // What is cut can be written.
    Options shifted = options25();
    shifted.shiftMS = 500;
    EXPECT_EQ(fitted(project, {at(99'000, 99'900)}, {.pastEnd = cut}, shifted), "99000-99500 |");
    EXPECT_NO_THROW(converted(project, {at(99'000, 99'500)}, shifted));
}

TEST(ProjectTitles, over_retimed_clips_are_left_out_when_asked)
{
    Project project;
    project.spine = "<gap offset='0s' duration='50s'/><asset-clip ref='r3' offset='50s' duration='50s'><timeMap/>"
                    "</asset-clip>";
    const QList<Subtitle> cues{at(49'960, 51'000), at(50'000, 51'000, 2)};
    EXPECT_EQ(fitted(project, cues, {}), "49960-51000 50000-51000 |");
    EXPECT_EQ(fitted(project, cues, {.skipRetimed = true}), "49960-51000 | 2位于变速片段上");
}

TEST(ProjectTitles, stand_where_the_published_order_has_connected_items)
{
    for (const QString &version : {u"1.9"_s, u"1.10"_s, u"1.11"_s, u"1.12"_s, u"1.13"_s}) {
        Project project = projectOfEveryClip();
        project.version = version.toLatin1();
        const auto before = PublishedDtd::problems(project.bytes(), version);
        if (!before)
            GTEST_SKIP() << "the published document type definitions are not at hand";
        ASSERT_EQ(before->toStdString(), "") << "the test's own project";
        QList<Subtitle> cues;
        for (qint64 i = 0; i < 9; ++i)
            cues += at(i * 2'000, i * 2'000 + 900, i + 1);
        const QByteArray bytes = converted(project, cues);
        EXPECT_EQ(PublishedDtd::problems(bytes, version)->toStdString(), "") << version.toStdString();
        QByteArrayList clips;
        for (const Connected &title : connected(bytes))
            clips += title.clip;
        EXPECT_EQ(clips.join(' '), "asset-clip clip ref-clip sync-clip mc-clip video audio gap title");
    }
}

TEST(ProjectTitles, come_before_marks_that_only_newer_versions_have)
{
    Project project;
    project.spine = "<gap offset='0s' duration='9s'><hidden-clip-marker/></gap>";
    EXPECT_TRUE(converted(project, {at(0, 40)}).contains("</title><hidden-clip-marker/>"));
    project.spine = "<gap offset='0s' duration='9s'> <!-- c --> </gap>";
    EXPECT_TRUE(converted(project, {at(0, 40)}).contains("<!-- c --> <title ")) << "else at the end";
}

TEST(ProjectTitles, count_in_the_clips_own_time)
{
    const auto gap = [](const QByteArray &attributes) {
        Project project;
        project.spine = "<gap " + attributes + "/>";
        return project;
    };
    EXPECT_EQ(offsetOf(gap("offset='0s' start='3600s' duration='100s'"), 1'000), "90025/25s");
    EXPECT_EQ(offsetOf(gap("offset='0s' duration='100s'"), 1'000), "25/25s");
    EXPECT_EQ(offsetOf(gap("offset='-2s' start='10s' duration='100s'"), 1'000), "325/25s");
    // Off the grid by a third of a frame, to the nearest one.
    EXPECT_EQ(offsetOf(gap("offset='0s' start='1/75s' duration='100s'"), 1'000), "25/25s");
    EXPECT_EQ(offsetOf(gap("offset='0s' start='2/75s' duration='100s'"), 1'000), "26/25s");
    Project late;
    late.sequenceAttributes = "duration='100s' tcStart='3600s'";
    late.spine = "<gap offset='3600s' start='5s' duration='100s'/>";
    EXPECT_EQ(offsetOf(late, 1'000), "150/25s");
}

TEST(ProjectTitles, at_a_cut_belong_to_the_clip_that_begins_there)
{
    Project project;
    project.spine =
        "<gap name='a' offset='0s' start='0s' duration='10s'/><transition name='t' offset='9s' duration='2s'/>"
        "<clip name='b' offset='10s' start='50s' duration='10s'/>";
    EXPECT_EQ(offsetOf(project, 9'960), "249/25s");
    EXPECT_EQ(offsetOf(project, 10'000), "1250/25s") << "and the transition there carries nothing";
    EXPECT_EQ(refusal(project, {at(0, 20, 4), at(20'000, 20'040, 5)}), "第 5 条字幕起点不在主时间线片段内。");
    project.spine.replace("'10s' start", "'10.0000005s' start");
    EXPECT_EQ(offsetOf(project, 10'000), "1250/25s") << "within the tolerance of a microsecond";
    project.spine.replace("'10.0000005s' start", "'10.00001s' start")
        .replace("start='0s' duration='10s'", "start='0s' duration='10.00001s'");
    EXPECT_EQ(offsetOf(project, 10'000), "250/25s");
}

TEST(ProjectTitles, where_clips_overlap_hang_on_the_first_one)
{
    Project project;
    project.spine = "<gap offset='5s' start='100s' duration='5s'/><clip offset='0s' duration='20s'/>"
                    "<gap offset='6s' start='500s' duration='50s'/>";
    EXPECT_EQ(offsetOf(project, 4'960), "124/25s");
    EXPECT_EQ(offsetOf(project, 7'000), "2550/25s");
    EXPECT_EQ(offsetOf(project, 10'000), "250/25s");
    EXPECT_EQ(offsetOf(project, 20'000), "12850/25s");
    EXPECT_EQ(refusal(project, {at(56'000, 56'040, 3)}), "第 3 条字幕起点不在主时间线片段内。");
}

TEST(ProjectTitles, follow_the_pace_of_a_conformed_clip)
{
    struct Row
    {
        const char *frameDuration;
        qint64 rate;
        const char *source;
        const char *offset; ///< Of a title 1000 frames after the clip's offset, whose start is 10 s.
    };
    for (const auto &[frameDuration, rate, source, offset] : {
             Row{"1/24s", 1, "25", "1200/24s"},             // 240 + 1000 × 24/25
             Row{"1/25s", 2, "24", "1292/25s"},             // 250 + 1000 × 25/24 = 1291.67
             Row{"1001/24000s", 0, "25", "1200199/24000s"}, // 239.76 + 1000 × 0.95904 = 1198.80
             Row{"1/30s", 4, "29.97", "1301/30s"},          // 300 + 1001
             Row{"1001/30000s", 3, "30", "1300299/30000s"}, // 299.7 + 999.0 = 1298.70
             Row{"1/25s", 2, "50", "1250/25s"}, Row{"1/25s", 2, "25", "1250/25s"},
             Row{"1001/30000s", 3, "23.98", "1301300/30000s"}, // 299.7 + 1000 = 1299.7
         }) {
        Project project;
        project.frameDuration = frameDuration;
        project.spine = "<asset-clip ref='r3' offset='0s' start='10s' duration='100s'><conform-rate srcFrameRate='" +
                        QByteArray(source) + "'/></asset-clip>";
        const Options options = options25(rate);
        const Rational second = Rational(1'000) * options.rate.frameDuration() * Rational(1'000);
        EXPECT_EQ(offsetOf(project, second.rounded(), options), offset) << source << " in " << frameDuration;
        project.spine.replace("srcFrameRate", "scaleEnabled='0' srcFrameRate");
        const qint64 straight = (Rational(10) / options.rate.frameDuration() + Rational(1'000)).rounded();
        EXPECT_EQ(offsetOf(project, second.rounded(), options), options.rate.time(straight));
    }
}

TEST(ProjectTitles, lie_above_every_lane_and_under_ids_of_their_own)
{
    const auto laneWith = [](const QByteArray &lanes) {
        Project project;
        project.spine = "<gap offset='0s' duration='9s'>";
        for (const QByteArray &lane : lanes.split(' '))
            project.spine += "<video ref='r2' lane='" + lane + "' offset='0s' duration='1s'/>";
        project.spine += "</gap>";
        return connected(converted(project, {at(0, 40)})).value(0).lane;
    };
    EXPECT_EQ(laneWith("2 7 -3"), "8");
    EXPECT_EQ(laneWith("-1 -2"), "1");
    EXPECT_EQ(laneWith("x 1.5 99999999999999999999 +3 5x +-9 0x11"), "4");
    EXPECT_EQ(laneWith("9223372036854775807"), "9223372036854775808");

    Project taken;
    taken.spine = "<gap offset='0s' duration='9s'><marker id='substyle1'/><marker id='substyle3'/><marker "
                  "id='subeffect1'/></gap>";
    const QByteArray bytes = converted(taken, {at(0, 40), at(40, 80)});
    for (const char *const id : {"id=\"subeffect2\"", "id=\"substyle2\"", "id=\"substyle4\""})
        EXPECT_EQ(bytes.count(id), 1) << id;
}

TEST(ProjectTitles, refuse_a_project_that_cannot_carry_them)
{
    const std::string structure = "项目 XML 缺少必要结构。";
    std::string detail;
    const auto with = [&](const QByteArray &from, const QByteArray &to) {
        const QByteArray bytes = Project().bytes();
        EXPECT_TRUE(bytes.contains(from)) << from.data();
        try {
            FCPXML::convert({at(0, 40)}, XmlDocument::parse(QByteArray(bytes).replace(from, to), {}), options25());
            return std::string("accepted");
        } catch (const ConversionError &error) {
            detail = error.detail().toStdString();
            return error.message().toStdString();
        }
    };
    EXPECT_EQ(with("<project name", "<project/><project name"), "请选择只包含一个项目的 FCPXML。");
    EXPECT_EQ(detail, "文件中有 2 个项目：“”、“我的 & 项目”。");
    EXPECT_EQ(with("<sequence format='r1' duration", "<sequence format='r9' duration"),
              "字幕帧率与项目不一致，请重新选择项目 XML。");
    EXPECT_EQ(detail, "字幕按每秒 25 帧；项目没有画面格式。");
    EXPECT_EQ(with("duration='100s' tcStart", "tcStart"), structure);
    EXPECT_EQ(with("duration='100s' tcStart", "duration='long' tcStart"), structure);
    EXPECT_EQ(detail, "第 10 行的 sequence 没有可读的 duration。");
    EXPECT_EQ(with("tcStart='0s'", "tcStart='00:00:00:00'"), structure);
    EXPECT_EQ(detail, "第 10 行的 sequence 的 tcStart 无法读取。");
    EXPECT_EQ(with("offset='0s' start='3600s'", "offset='0' start='3600s'"), structure);
    EXPECT_EQ(detail, "第 12 行的 gap“Gap” 的 offset 无法读取。");
    EXPECT_EQ(with("offset='0s' start='3600s'", "offset='9223372036854775807s' start='3600s'"), structure);
    EXPECT_EQ(detail, "第 12 行的 gap“Gap” 的时间过大。");
}

TEST(ProjectTitles, refuse_titles_that_the_project_has_no_place_for)
{
    Project project;
    const auto detail = [&](const QList<Subtitle> &cues, const Options &options = options25()) {
        try {
            converted(project, cues, options);
            return std::string("accepted");
        } catch (const ConversionError &error) {
            return error.detail().toStdString();
        }
    };
    EXPECT_EQ(detail({at(0, 100'040, 7), at(500, 600, 8)}), "第 7 条字幕结束于 100.040 秒，项目长 100.000 秒。");
    EXPECT_EQ(detail({at(0, 40)}, options25(4)), "字幕按每秒 30 帧；第 4 行的 format 的 frameDuration 是 100/2500s。");
    EXPECT_EQ(refusal(project, {at(0, 100'001)}), "accepted") << "a millisecond of tolerance";
    EXPECT_EQ(refusal(project, {at(0, 100'040), at(500, 600)}), "字幕超出项目时长，请检查音频版本或时间偏移。");
    EXPECT_EQ(refusal(project, {at(0, 40)}, options25(4)), "字幕帧率与项目不一致，请重新选择项目 XML。");
    project.spine = "<transition offset='0s' duration='1s'/><audition offset='0s'/>text";
    EXPECT_EQ(refusal(project, {at(0, 40)}), "项目主时间线没有可连接的片段。");
    project.spine = "<clip offset='0s' duration='5s'><timeMap/></clip><gap offset='5s' duration='95s'/>";
    EXPECT_EQ(refusal(project, {at(4'000, 6'000)}),
              "字幕连接位置位于变速主片段。请先将项目制作为复合片段，再导出 XML。");
    EXPECT_EQ(detail({at(4'000, 6'000, 9)}), "第 9 条字幕，连接到第 12 行的 clip。");
    EXPECT_EQ(refusal(project, {at(5'000, 6'000)}), "accepted");
}

TEST(ProjectTitles, under_hosts_on_the_grid_leave_no_gap_and_no_overlap)
{
    for (const FrameRate &rate : FrameRate::all()) {
        for (const qint64 startFrame : {qint64(0), qint64(86'400), qint64(107'892)}) {
            Generator generator(6);
            QList<Subtitle> cues = generator.cues(20'000);
            for (qsizetype i = 1; i < cues.size(); ++i)
                cues[i].start = cues[i - 1].end;
            const qint64 total = *rate.frame(cues.back().end);
            Project project;
            project.frameDuration = rate.time(1);
            project.sequenceAttributes = "duration='" + rate.time(total) + "' tcStart='" + rate.time(startFrame) + "'";
            project.spine.clear();
            for (qint64 frame = 0; frame < total;) {
                const qint64 length = std::min(generator.number(1, 3'000), total - frame);
                project.spine += "<gap offset='" + rate.time(startFrame + frame) + "' start='" +
                                 rate.time(generator.number(0, 1'000'000)) + "' duration='" + rate.time(length) + "'/>";
                frame += length;
            }
            Options options;
            options.rate = rate;
            const XmlDocument document = XmlDocument::parse(converted(project, cues, options), {});
            qint64 expected = startFrame;
            for (const xmlNode *element = document.root(); element;
                 element = Xml::nextElement(element, document.root())) {
                if (!Xml::isElement(element, "title"))
                    continue;
                const auto time = [](const xmlNode *node, const char *name) {
                    return *Rational::parseTime(*Xml::attribute(node, name));
                };
                const xmlNode *const host = element->parent;
                const Rational begin = time(host, "offset") + time(element, "offset") - time(host, "start");
                ASSERT_EQ(begin, Rational(expected) * rate.frameDuration()) << rate.label.toStdString();
                const Rational frames = time(element, "duration") / rate.frameDuration();
                ASSERT_EQ(frames.denominator(), 1);
                expected += frames.numerator();
            }
            EXPECT_EQ(expected, startFrame + total);
        }
    }
}
