#include "cli/Commands.h"
#include "cli/Interrupt.h"
#include "cli/Result.h"
#include "core/SRT.h"
#include "core/text/breaking/BreakableCues.h"
#include "core/text/breaking/CueJoining.h"
#include "fcp/Options.h"

#include <algorithm>
#include <memory>

using namespace Qt::StringLiterals;

namespace Commands {

namespace {

using Limits = BreakableCues::Limits;

struct BreakArguments
{
    std::string input;
    int columns = Limits::landscapeColumns;
    std::optional<int> lines;
    std::optional<std::string> rate;
    bool inside = false;
    bool join = false;
    Arguments::Output output;
};

QList<Subtitle> broken(const BreakArguments &arguments, QList<Subtitle> cues)
{
    const FrameRate rate = arguments.rate ? Arguments::toRate(*arguments.rate) : Options().rate;
    const Limits limits{.columns = arguments.columns,
                        .lines = arguments.lines.value_or(1),
                        .grid = {.numerator = rate.numerator, .denominator = rate.denominator}};
    if (arguments.join)
        return CueJoining::joined(cues, {.columns = arguments.columns}, Interrupt::check);
    const BreakableCues breakable(std::move(cues), Interrupt::check);
    return arguments.inside ? breakable.inLines(limits, Interrupt::check)
                            : breakable.inCues(limits, {}, Interrupt::check);
}

/// Width comes first: what needs more lines than were asked for gets them, and is told of.
void reportTall(const QList<Subtitle> &cues, int lines, const Arguments::Output &output)
{
    constexpr qsizetype most = 10;
    QStringList tall;
    for (const Subtitle &cue : cues) {
        if (cue.text.count(u'\n') >= lines)
            tall.append(QString::number(cue.id));
    }
    if (!tall.isEmpty())
        output.report(u"第 %1 %2条字幕放不进 %3 行，已按宽度换行"_s.arg(
            tall.first(std::min(most, tall.size())).join(u'、'),
            tall.size() > most ? u"… 共 %1 "_s.arg(tall.size()) : QString(), QString::number(lines)));
}

void runBreak(const BreakArguments &arguments)
{
    if (arguments.inside && arguments.join)
        throw Arguments::WrongUse(u"--inside 与 --join 不能同时使用"_s);
    const QList<Subtitle> cues = SRT::decode(Arguments::readInput(arguments.input));
    const QList<Subtitle> result = broken(arguments, cues);
    Result::deliver(
        arguments.output, [&](Utf8Writer &out) { SRT::serialize(result, out); },
        [&](JsonWriter &json) { writeSubtitles(json, result); });
    const QString done = arguments.join ? u"已合并：%1 条字幕变为 %2 条"_s : u"已断句：%1 条字幕变为 %2 条"_s;
    if (arguments.inside && arguments.lines)
        reportTall(result, *arguments.lines, arguments.output);
    arguments.output.report(result == cues ? u"没有需要调整的字幕"_s : done.arg(cues.size()).arg(result.size()));
}

} // namespace

void addBreak(CLI::App &app, Work &run)
{
    auto *const command = app.add_subcommand("break", "把长字幕断成几条（或几行），或合并短句");
    const auto arguments = std::make_shared<BreakArguments>();
    Arguments::addCues(*command, arguments->input);
    arguments->output.addPath(*command);
    command->add_option("--width", arguments->columns, "每行宽度，以全角字计，半角算半个（缺省 16；竖屏宜用 10）")
        ->check(CLI::Range(1, 1'000))
        ->type_name("列");
    command->add_option("--lines", arguments->lines, "每条字幕的行数（缺省 1）；与 --inside 一起时指出放不下的字幕")
        ->check(CLI::Range(1, 100))
        ->type_name("行");
    command->add_option("--rate", arguments->rate, "帧率：新的时间落在整帧上（缺省 30）")->type_name("帧率");
    command->add_flag("--inside", arguments->inside, "不拆成几条，只在字幕内换行");
    command->add_flag("--join", arguments->join, "反过来：合并相邻而放得下的短句");
    arguments->output.addJson(*command);
    arguments->output.addProgress(*command);
    command->footer("示例：\n  lintora-cli break 识别.srt --width 16 --rate 25 -o 断句.srt");
    command->callback([&run, arguments] { run = [arguments] { runBreak(*arguments); }; });
}

} // namespace Commands
