#include "tests/support/CommandTest.h"

#include "core/SRT.h"
#include "core/files/FileReader.h"
#include "tests/support/Generator.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>

#include <gtest/gtest.h>

#include <csignal>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

const QByteArray goodSrt = "1\n00:00:01,000 --> 00:00:02,000\nA\n";
const QByteArray project =
    "<fcpxml version='1.10'><resources><format id='r1' frameDuration='1/25s' width='1920' height='1080'/>"
    "</resources><project name='片'><sequence format='r1' duration='60s'><spine><gap offset='0s' "
    "duration='60s'/></spine></sequence></project></fcpxml>";

using CommandLineTest = CommandTest;

} // namespace

TEST_F(CommandLineTest, srt_checks_and_writes)
{
    const QString in = file(u"in.srt"_s, "\xEF\xBB\xBF"
                                         "00:00:01.000 --> 00:00:02.000\r\n<b>A</b> & B\r\n");
    const QByteArray clean = "1\n00:00:01,000 --> 00:00:02,000\nA & B\n";
    const QByteArray json = "[{\"end\":2000,\"id\":1,\"start\":1000,\"text\":\"A & B\"}]\n";
    expectOutcome(CommandLine::run({u"srt"_s, in}), 0, clean, {});
    expectOutcome(CommandLine::run({u"srt"_s, in, u"--json"_s}), 0, json, {});
    expectOutcome(CommandLine::run({u"srt"_s, u"-"_s}, FileReader::readAll(in)), 0, clean, {});
    const QString out = path(u"输出.srt"_s);
    expectOutcome(CommandLine::run({u"srt"_s, u"--json"_s, u"--output"_s, out, in}), 0, json, {});
    EXPECT_EQ(FileReader::readAll(out), clean);
    // The result may take its input's place.
    expectOutcome(CommandLine::run({u"srt"_s, in, u"-o"_s, in, u"--progress"_s}), 0, {}, "已检查 1 条字幕\n");
    EXPECT_EQ(FileReader::readAll(in), clean);
    expectOutcome(CommandLine::run({u"srt"_s, in, u"-o"_s, in, u"--progress"_s, u"-q"_s}), 0, {}, {});
}

TEST_F(CommandLineTest, a_refusal_is_one_sentence_and_leaves_the_output_alone)
{
    const QString kept = file(u"kept"_s, "mine");
    const QString in = file(u"in.srt"_s, goodSrt + "\n2\n00:00:09,000");
    for (const QStringList &arguments :
         {QStringList{u"srt"_s, in, u"-o"_s, kept}, {u"titles"_s, in, u"-o"_s, kept}, {u"srt"_s, in, u"--json"_s}})
        expectOutcome(CommandLine::run(arguments), 1, {}, "第 2 条字幕格式有误，请检查序号和时间码。\n");
    const QString good = file(u"good.srt"_s, goodSrt);
    expectOutcome(CommandLine::run({u"titles"_s, good, u"-o"_s, kept, u"--bottom"_s, u"41"_s}), 1, {},
                  "画面或字体设置无效。\n");
    EXPECT_EQ(FileReader::readAll(kept), "mine");
}

TEST_F(CommandLineTest, files_that_cannot_be_read_or_written_are_named_by_the_platform)
{
    const QString in = file(u"in.srt"_s, goodSrt);
    const QString record = file(u"record.json"_s, "{");
    const QStringList before = names();
    for (const QStringList &arguments : {QStringList{u"srt"_s, path(u"missing"_s)},
                                         {u"srt"_s, path(u""_s)},
                                         {u"srt"_s, in, u"-o"_s, path(u"missing/out"_s)},
                                         {u"srt"_s, in, u"-o"_s, path(u""_s)},
                                         {u"srt"_s, in, u"-o"_s, u"/dev/full"_s},
                                         {u"settings"_s, path(u"missing.fcpxmld"_s)},
                                         {u"session"_s, record},
                                         {u"titles"_s, in, u"--options"_s, record},
                                         {u"titles"_s, in, u"--options"_s, path(u""_s)}}) {
        const auto outcome = CommandLine::run(arguments);
        EXPECT_EQ(outcome.status, 1) << arguments.join(u' ').toStdString();
        EXPECT_EQ(outcome.output, "");
        EXPECT_EQ(outcome.error.count('\n'), 1) << outcome.error.data();
        EXPECT_GT(outcome.error.size(), 5);
        const QString named = arguments.last();
        const auto detailed = CommandLine::run(arguments + QStringList{u"--details"_s});
        EXPECT_TRUE(detailed.error.startsWith(outcome.error + "文件：" + named.toUtf8())) << detailed.error.data();
        EXPECT_EQ(detailed.error.count('\n'), 2) << detailed.error.data();
    }
    EXPECT_EQ(names(), before);
    // Bytes that the decoder of four-byte characters chokes on.
    const QString broken = file(u"broken.fcpxml"_s, QByteArray::fromHex("fffe00003c000000dbdbdbdb"));
    EXPECT_EQ(CommandLine::run({u"settings"_s, broken}).error.count('\n'), 1) << "and libraries keep silent";
    EXPECT_EQ(CommandLine::run({u"settings"_s, file(u"latin.fcpxml"_s, "<fcpxml>\xFF</fcpxml>")}).error.count('\n'), 1);
    for (const char *const redirection : {">/dev/full", ">&-", "--json >/dev/full", "--json >&-"}) {
        const auto outcome = CommandLine::shell(u"exec \"$CLI\" srt %1 %2"_s.arg(in, QLatin1StringView(redirection)));
        EXPECT_EQ(outcome.status, 1) << redirection;
        EXPECT_EQ(outcome.error.count('\n'), 1) << outcome.error.data();
    }
    EXPECT_EQ(CommandLine::shell(u"exec \"$CLI\" --help >/dev/full"_s).status, 1);
    const auto closed = CommandLine::shell(u"exec \"$CLI\" srt - <&-"_s);
    expectOutcome(closed, 1, {}, "没有找到字幕。\n");
}

TEST_F(CommandLineTest, a_full_disk_leaves_the_old_file)
{
    Generator generator(8);
    const QString in = file(u"in.srt"_s, SRT::serialize(generator.cues(3'000)).toUtf8());
    const QString out = file(u"out.fcpxml"_s, "mine");
    const QStringList before = names();
    // A limit on file sizes stands for the full disk: 256 blocks of 512 bytes.
    const auto outcome =
        CommandLine::shell(u"trap '' XFSZ; ulimit -f 256; exec \"$CLI\" titles '%1' -o '%2'"_s.arg(in, out));
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.error.count('\n'), 1) << outcome.error.data();
    EXPECT_EQ(FileReader::readAll(out), "mine");
    EXPECT_EQ(names(), before);
}

TEST_F(CommandLineTest, json_that_cannot_be_said_leaves_the_old_file)
{
    const QString in = file(u"in.srt"_s, goodSrt);
    const QString out = file(u"out.srt"_s, "mine");
    EXPECT_EQ(CommandLine::shell(u"exec \"$CLI\" srt '%1' -o '%2' --json > /dev/full"_s.arg(in, out)).status, 1);
    EXPECT_EQ(FileReader::readAll(out), "mine");
}

TEST_F(CommandLineTest, permissions_are_respected)
{
    if (getuid() != 0 || QProcess::execute(u"setpriv"_s, {u"--version"_s}) != 0)
        GTEST_SKIP() << "needs root, to become a user without rights";
    const QString folder = path(u"locked"_s);
    QDir().mkpath(folder);
    QFile(path(u""_s)).setPermissions(QFile::Permissions(0x7755));
    const QString in = file(u"in.srt"_s, goodSrt);
    const QString secret = file(u"secret.srt"_s, goodSrt);
    QFile(secret).setPermissions(QFile::ReadOwner);
    const auto asNobody = [&](const QString &arguments) {
        return CommandLine::shell(
            u"exec setpriv --reuid 65534 --regid 65534 --clear-groups \"$CLI\" srt %1"_s.arg(arguments));
    };
    if (asNobody(in).status != 0)
        GTEST_SKIP() << "a user without rights cannot reach the program or the folder here";
    EXPECT_EQ(asNobody(secret).status, 1);
    EXPECT_EQ(asNobody(in + u" -o "_s + folder + u"/out.srt"_s).status, 1);
    EXPECT_TRUE(QDir(folder).isEmpty());
}

TEST_F(CommandLineTest, wrong_use_is_status_2)
{
    const QString in = file(u"in.srt"_s, goodSrt);
    for (const QStringList &arguments : {QStringList{},
                                         {u"subtitles"_s},
                                         {u"srt"_s},
                                         {u"clean"_s, u""_s},
                                         {u"srt"_s, in, in},
                                         {u"srt"_s, in, u"--clip"_s},
                                         {u"srt"_s, in, u"-o"_s},
                                         {u"titles"_s, in, u"--json"_s},
                                         {u"titles"_s, in, u"--rate"_s, u"31"_s},
                                         {u"titles"_s, in, u"--size"_s, u"1920"_s},
                                         {u"titles"_s, in, u"--font-size"_s, u"large"_s},
                                         {u"titles"_s, in, u"--color"_s, u"red"_s},
                                         {u"titles"_s, in, u"--color"_s, u"1 1 1"_s},
                                         {u"titles"_s, in, u"--color"_s, u"+1 1e0 1 1"_s},
                                         {u"titles"_s, in, u"--shift"_s, u"0x10"_s},
                                         {u"titles"_s, in, u"--shift"_s, u"9223372036854775808"_s},
                                         {u"titles"_s, in, u"--bottom"_s, u"12,5"_s},
                                         {u"titles"_s, in, u"--size"_s, u" 1920x1080"_s},
                                         {u"titles"_s, in, u"--base"_s, u""_s},
                                         {u"srt"_s, in, u"-o"_s, u""_s},
                                         {u"srt"_s, u""_s},
                                         {u"titles"_s, in, u"--shift"_s, u"1.5"_s},
                                         {u"titles"_s, in, u"--clip"_s, u"--base"_s, in},
                                         {u"titles"_s, u"-"_s, u"--base"_s, u"-"_s},
                                         {u"settings"_s}}) {
        const auto outcome = CommandLine::run(arguments);
        EXPECT_EQ(outcome.status, 2) << arguments.join(u' ').toStdString() << '\n' << outcome.error.data();
        EXPECT_EQ(outcome.output, "");
        EXPECT_NE(outcome.error, "");
    }
}

TEST_F(CommandLineTest, help_speaks_chinese_and_gives_an_example)
{
    EXPECT_TRUE(CommandLine::run({u"--version"_s}).output.startsWith("lintora-cli "));
    for (const QStringList &command : {QStringList{}, {u"srt"_s}, {u"titles"_s}, {u"settings"_s}, {u"presets"_s}}) {
        const auto outcome = CommandLine::run(command + QStringList{u"--help"_s});
        EXPECT_EQ(outcome.status, 0);
        EXPECT_TRUE(outcome.output.contains("示例：")) << outcome.output.data();
        for (const char *const english : {"Options", "Usage", "REQUIRED", "Print", "Subcommands"})
            EXPECT_FALSE(outcome.output.contains(english)) << english << " in\n" << outcome.output.data();
    }
    EXPECT_TRUE(CommandLine::run({u"titel"_s, u"x.srt"_s}).error.startsWith("不认识的命令：titel\n"));
}

TEST_F(CommandLineTest, titles_take_their_style_in_order)
{
    const QString in = file(u"in.srt"_s, goodSrt);
    const QString base = file(u"base.fcpxml"_s, project);
    const auto matched = CommandLine::run({u"settings"_s, base, u"--json"_s});
    EXPECT_EQ(matched.status, 0);
    EXPECT_TRUE(matched.output.contains("\"name\":\"片_字幕版\"")) << matched.output.data();
    const QString record = file(u"style.json"_s, QByteArray(matched.output).replace("PingFang SC", "Heiti"));

    const auto plain = CommandLine::run({u"titles"_s, in, u"--options"_s, record, u"--font-size"_s, u"60"_s,
                                         u"--color"_s, u"#FF8000"_s, u"--stroke"_s, u"--stroke-color"_s, u"1 1 1 1"_s,
                                         u"--shift"_s, u"-500"_s, u"--name"_s, u"甲"_s});
    EXPECT_EQ(plain.status, 0) << plain.error.data();
    for (const char *const part :
         {"frameDuration=\"1/25s\"", "project name=\"甲\"", "font=\"Heiti\"", "fontSize=\"60.0\"",
          "fontColor=\"1 0.501961 0 1\"", "strokeColor=\"1 1 1 1\"", "strokeWidth=\"2.0\"", "offset=\"13/25s\""})
        EXPECT_TRUE(plain.output.contains(part)) << part << " in\n" << plain.output.data();

    const auto based = CommandLine::run({u"titles"_s, u"--base"_s, base, in});
    EXPECT_EQ(based.status, 0);
    EXPECT_TRUE(based.output.contains("<project name=\"片_字幕版\">"));
    EXPECT_TRUE(based.output.contains("fontSize=\"24.0\""));
    EXPECT_EQ(CommandLine::run({u"titles"_s, u"--base"_s, u"-"_s, in}, project).output, based.output);
    expectOutcome(CommandLine::run({u"titles"_s, u"--base"_s, base, in, u"--rate"_s, u"30"_s}), 1, {},
                  "字幕帧率与项目不一致，请重新选择项目 XML。\n");

    const auto clip = CommandLine::run({u"titles"_s, u"--clip"_s, in});
    EXPECT_TRUE(clip.output.contains("<ref-clip name=\"字幕\" ref=\"lintoraMedia\""));
}

#ifdef LINTORA_SPOILT_READS
TEST_F(CommandLineTest, titles_that_a_disk_gives_back_otherwise_leave_the_old_file)
{
    const QString in = file(u"in.srt"_s, "7\n00:00:01,000 --> 00:00:02,000\nINTACT\n");
    const QString base = file(u"base.fcpxml"_s, project);
    const QString out = file(u"out.fcpxml"_s, "old");
    const QString spoils = u"LD_PRELOAD='" LINTORA_SPOILT_READS "' ASAN_OPTIONS=verify_asan_link_order=0 %1 "_s;
    for (const QString &kind : {u""_s, u"--clip"_s, u"--base '%1'"_s.arg(base)}) {
        const QString command = u"$CLI titles '%1' -o '%2' %3"_s.arg(in, out, kind);
        expectOutcome(CommandLine::shell(spoils.arg(u"LINTORA_SPOILT_READS=1"_s) + command), 1, {},
                      "第 1 条字幕写入后核对不一致，原文件没有改动。\n");
        EXPECT_EQ(FileReader::readAll(out), "old");
    }
    for (const QString &kind : {u""_s, u"--clip"_s, u"--base '%1'"_s.arg(base)}) {
        const QString command = u"$CLI titles '%1' -o '%2' %3"_s.arg(in, out, kind);
        expectOutcome(CommandLine::shell(spoils.arg(u""_s) + command), 0, {}, {});
        EXPECT_TRUE(FileReader::readAll(out).contains("INTACT"));
    }
    EXPECT_EQ(names(), (QStringList{u"base.fcpxml"_s, u"in.srt"_s, u"out.fcpxml"_s}));
}
#endif

TEST_F(CommandLineTest, the_last_of_two_options_counts)
{
    const QString in = file(u"in.srt"_s, goodSrt);
    const auto outcome = CommandLine::run({u"titles"_s, in, u"--no-stroke"_s, u"--rate"_s, u"25"_s, u"--stroke"_s,
                                           u"--rate"_s, u"50"_s, u"--shift"_s, u"0500"_s, u"--name"_s, u"50%1"_s});
    EXPECT_EQ(outcome.status, 0) << outcome.error.data();
    for (const char *const part : {"strokeWidth", "frameDuration=\"1/50s\"", "offset=\"75/50s\"", "name=\"50%1\""})
        EXPECT_TRUE(outcome.output.contains(part)) << part << " in\n" << outcome.output.data();
    const QString base = file(u"50%1 %3.fcpxml"_s, QByteArray(project).replace("name='片'", "name='50%1 %3'"));
    EXPECT_EQ(CommandLine::run({u"settings"_s, base}).output.toStdString(),
              "名称：50%1 %3_字幕版\n帧率：25\n画面：1920 × 1080\n字号：24\n");
}

TEST_F(CommandLineTest, output_does_not_depend_on_locale_or_time_zone)
{
    const QString in = file(u"字幕.srt"_s, goodSrt);
    const auto with = [&](const QString &environment) {
        return CommandLine::shell(
            u"export %1; exec \"$CLI\" titles '%2' --font-size 48.5 --bottom 12.25"_s.arg(environment, in));
    };
    const auto plain = with(u"LC_ALL=C TZ=UTC"_s);
    EXPECT_EQ(plain.status, 0) << plain.error.data();
    EXPECT_TRUE(plain.output.contains("fontSize=\"48.5\""));
    EXPECT_EQ(with(u"LC_ALL=C TZ=Asia/Shanghai"_s).output, plain.output);
    // A locale whose decimal sign is a comma, made here, for few machines have one.
    if (QProcess::execute(u"localedef"_s, {u"-i"_s, u"de_DE"_s, u"-f"_s, u"UTF-8"_s, path(u"de_DE.UTF-8"_s)}) != 0)
        GTEST_SKIP() << "no locale can be made here (the package locales has what is needed)";
    EXPECT_EQ(with(u"LOCPATH='%1' LC_ALL=de_DE.UTF-8"_s.arg(path(u""_s))).output, plain.output);
}

TEST_F(CommandLineTest, an_interrupt_ends_silently_with_130)
{
    const QString out = file(u"out"_s, "mine");
    const QStringList before = names();
    for (const int signal : {SIGINT, SIGTERM}) {
        QProcess process;
        process.start(CommandLine::program(), {u"srt"_s, u"-"_s, u"-o"_s, out});
        ASSERT_TRUE(process.waitForStarted());
        // Half of the input, and no end of it.
        process.write(goodSrt);
        ASSERT_TRUE(process.waitForBytesWritten());
        // The program is known to watch for signals once it has taken what was written.
        const QString status = u"/proc/%1/status"_s.arg(process.processId());
        const auto watches = [&] {
            for (const QByteArray &line : FileReader::readAll(status).split('\n')) {
                if (line.startsWith("SigCgt:"))
                    return (line.mid(7).trimmed().toULongLong(nullptr, 16) >> (signal - 1) & 1) != 0;
            }
            return true;
        };
        for (QElapsedTimer timer =
                 [] {
                     QElapsedTimer t;
                     t.start();
                     return t;
                 }();
             !watches() && timer.elapsed() < 10'000;)
            usleep(1'000);
        kill(static_cast<pid_t>(process.processId()), signal);
        ASSERT_TRUE(process.waitForFinished(5'000));
        EXPECT_EQ(process.exitStatus(), QProcess::NormalExit);
        EXPECT_EQ(process.exitCode(), 130);
        EXPECT_EQ(process.readAllStandardError(), "");
    }
    EXPECT_EQ(FileReader::readAll(out), "mine");
    EXPECT_EQ(names(), before);
}

TEST_F(CommandLineTest, a_reader_that_stops_reading_does_not_hold_an_interrupt_up)
{
    Generator generator(9);
    const QString in = file(u"in.srt"_s, SRT::serialize(generator.cues(5'000)).toUtf8());
    // The reader sleeps with a full pipe; the program must still end on the signal.
    const auto outcome = CommandLine::shell(
        u"mkfifo '%1'; sleep 20 < '%1' & reader=$!; timeout --preserve-status -s TERM 1 \"$CLI\" titles '%2' > '%1'; "
        u"status=$?; kill $reader; exit $status"_s.arg(path(u"pipe"_s), in));
    EXPECT_EQ(outcome.status, 130);
    EXPECT_EQ(outcome.error, "");
}

TEST_F(CommandLineTest, a_pipe_is_read_to_its_end_and_waiting_for_it_can_be_interrupted)
{
    const QString pipe = path(u"pipe"_s);
    const auto read = CommandLine::shell(
        u"mkfifo '%1'; (sleep 0.2; printf '00:00:01,000 --> 00:00:02,000\\n'; sleep 0.2; printf 'A\\n') > '%1' & "
        u"exec \"$CLI\" srt '%1'"_s.arg(pipe));
    expectOutcome(read, 0, goodSrt, {});
    const auto interrupted = CommandLine::shell(u"timeout --preserve-status -s INT 1 \"$CLI\" srt '%1'"_s.arg(pipe));
    expectOutcome(interrupted, 130, {}, {});
    const QString in = file(u"in.srt"_s, goodSrt);
    for (const QString &waiting : {u"settings '%1'"_s.arg(pipe), u"titles '%2' --base '%1'"_s.arg(pipe, in),
                                   u"titles '%2' --options '%1'"_s.arg(pipe, in)})
        EXPECT_EQ(CommandLine::shell(u"timeout --preserve-status -s INT 1 \"$CLI\" "_s + waiting).status, 130);
    EXPECT_EQ(CommandLine::shell(u"exec \"$CLI\" srt '%1' -o '%2'"_s.arg(in, pipe)).status, 1) << "nobody reads";
    // The reader has the pipe open before anything is written: it takes over a descriptor, and as many lines as come.
    const auto written = CommandLine::shell(
        u"exec 3<>'%2'; head -n 3 <&3 & \"$CLI\" srt '%1' -o '%2'; s=$?; wait; exit $s"_s.arg(in, pipe));
    expectOutcome(written, 0, goodSrt, {});
}
