#include "cli/Commands.h"
#include "cli/Interrupt.h"
#include "cli/Result.h"
#include "core/ConversionError.h"
#include "core/SRT.h"
#include "core/text/checks/CheckFixes.h"
#include "core/text/checks/CheckedCues.h"
#include "fcp/Options.h"

#include <algorithm>
#include <memory>

using namespace Qt::StringLiterals;

namespace Commands {

namespace {

struct CheckArguments
{
    std::string input;
    std::string limits;
    std::vector<std::string> fixes;
    std::optional<std::string> rate;
    bool strict = false;
    Arguments::Output output;
};

CheckLimits limitsOf(const CheckArguments &arguments)
{
    const QString name = Arguments::toText(arguments.limits);
    for (const CheckLimits &set : CheckLimits::builtIn()) {
        if (name == set.name)
            return set;
    }
    return CheckLimits::read(Arguments::readInput(arguments.limits, CheckLimits::largestDocument));
}

/// The rules named, one by one or with commas; "all" for every one.
std::set<CheckRule> rulesOf(const std::vector<std::string> &names)
{
    std::set<CheckRule> rules;
    for (const std::string &argument : names) {
        for (const QString &name : Arguments::toText(argument).split(u',', Qt::SkipEmptyParts)) {
            const auto rule = CheckRules::named(name);
            if (!rule && name != u"all")
                throw Arguments::WrongUse(u"不认识的规则：%1"_s.arg(name));
            if (rule)
                rules.insert(*rule);
            else
                rules.insert(CheckRules::all().begin(), CheckRules::all().end());
        }
    }
    return rules;
}

void writeFindings(JsonWriter &json, const QList<CheckFinding> &findings, const QList<Subtitle> &cues)
{
    json.beginArray();
    for (const CheckFinding &finding : findings) {
        json.beginObject();
        json.key("cue").integer(cues[finding.cue].id);
        json.key("fixable").boolean(finding.isFixable);
        json.key("limit").number(finding.limit);
        json.key("message").text(finding.message());
        json.key("rule").text(CheckRules::name(finding.rule));
        json.key("value").number(finding.value);
        json.endObject();
    }
    json.endArray();
}

QByteArray listed(const QList<CheckFinding> &findings, const QList<Subtitle> &cues)
{
    QByteArray lines;
    for (const CheckFinding &finding : findings)
        lines += u"第 %1 条 %2：%3\n"_s.arg(cues[finding.cue].id)
                     .arg(CheckRules::name(finding.rule), finding.message())
                     .toUtf8();
    return lines;
}

void runCheck(const CheckArguments &arguments)
{
    if (arguments.input == "-" && arguments.limits == "-")
        throw Arguments::WrongUse(u"字幕与限值不能同时来自标准输入"_s);
    const std::set<CheckRule> rules = rulesOf(arguments.fixes);
    CheckLimits limits = limitsOf(arguments);
    // Without a rate nobody knows where frames lie.
    if (!arguments.rate)
        limits.off.insert(CheckRule::offFrame);
    const FrameRate rate = arguments.rate ? Arguments::toRate(*arguments.rate) : Options().rate;
    const FrameGrid grid{.numerator = rate.numerator, .denominator = rate.denominator};
    QList<Subtitle> cues = SRT::decode(Arguments::readInput(arguments.input));
    if (!rules.empty()) {
        const auto all = [](qsizetype, CheckRule) { return true; };
        cues = CheckFixes::fixed(cues, rules, all, limits, grid, Interrupt::check);
        for (qsizetype i = 0; i < cues.size(); ++i)
            cues[i].id = i + 1;
    }
    const CheckedCues checked(cues, limits.terms, Interrupt::check);
    const QList<CheckFinding> findings = checked.findings(limits, grid, Interrupt::check);
    const bool writesCues = !rules.empty() || !arguments.output.path.empty();
    Result::deliver(
        arguments.output,
        [&](Utf8Writer &out) {
            if (writesCues)
                return SRT::serialize(cues, out);
            out.bytes(listed(findings, cues));
        },
        [&](JsonWriter &json) { writeFindings(json, findings, cues); });
    arguments.output.report(findings.isEmpty() ? u"没有发现问题"_s : u"发现 %1 处问题"_s.arg(findings.size()));
    if (arguments.strict && !findings.isEmpty())
        throw ConversionError(u"发现 %1 处问题。"_s.arg(findings.size()));
}

/// The rules and the form of the limits.
std::string footer()
{
    QString text = u"规则：\n"_s;
    for (const CheckRule rule : CheckRules::all())
        text += u"  %1%2\n"_s.arg(CheckRules::name(rule), -18).arg(CheckRules::title(rule));
    text += u"\noff-frame 只在给出 --rate 时检查。small-gap 以帧计，缺省按每秒 30 帧。\n"
            u"可以修复：reading-speed、too-short、small-gap、overlap、doubled、blanks、mixed-width、mixed-terms、"
            u"bad-characters、off-frame，凡无须斟酌之处。\n\n限值（省略的键取 chinese 的值）：\n  "_s;
    text += QString::fromUtf8(CheckLimits::builtIn().front().written());
    return (text + u"\n\n示例：\n  lintora-cli check 访谈.srt --strict\n"
                   u"  lintora-cli check 访谈.srt --fix small-gap,blanks -o 访谈-已修复.srt"_s)
        .toStdString();
}

} // namespace

void addCheck(CLI::App &app, Work &run)
{
    auto *const command = app.add_subcommand("check", "检查字幕：时间、宽度、标点与用词；可修复其中稳妥的部分");
    const auto arguments = std::make_shared<CheckArguments>();
    arguments->limits = "chinese";
    Arguments::addCues(*command, arguments->input);
    arguments->output.addPath(*command);
    command->add_option("--limits", arguments->limits, "限值：chinese（缺省）、english 或 JSON 文件")
        ->check(Arguments::notEmpty)
        ->type_name("文件");
    command->add_option("--fix", arguments->fixes, "修复这些规则所指的问题，all 表示全部")
        ->expected(1, 100)
        ->type_name("规则…");
    command->add_option("--rate", arguments->rate, "帧率：检查起止是否在整帧上")->type_name("帧率");
    command->add_flag("--strict", arguments->strict, "发现问题时以状态 1 结束");
    arguments->output.addJson(*command);
    arguments->output.addProgress(*command);
    command->footer(footer());
    command->callback([&run, arguments] { run = [arguments] { runCheck(*arguments); }; });
}

} // namespace Commands
