#include "cli/Commands.h"
#include "cli/Result.h"
#include "core/SRT.h"
#include "core/text/KeywordReplacement.h"

#include <memory>

using namespace Qt::StringLiterals;

namespace Commands {

namespace {

struct ReplaceArguments
{
    std::string input;
    std::string find;
    std::string with;
    bool preview = false;
    Arguments::Output output;
};

void writeMatches(JsonWriter &json, const QList<KeywordMatch> &matches)
{
    json.beginArray();
    for (const KeywordMatch &match : matches) {
        json.beginObject();
        json.key("after").text(match.after);
        json.key("becomesEmpty").boolean(match.becomesEmpty());
        json.key("id").integer(match.id);
        json.key("occurrences").integer(match.occurrences);
        json.endObject();
    }
    json.endArray();
}

void writeOutcome(JsonWriter &json, const KeywordReplacement::Outcome &outcome)
{
    json.beginObject();
    json.key("changedCues").integer(outcome.changedCues);
    json.key("items");
    writeSubtitles(json, outcome.items);
    json.key("occurrences").integer(outcome.occurrences);
    json.endObject();
}

void runReplace(const ReplaceArguments &arguments)
{
    if (arguments.preview && !arguments.output.path.empty())
        throw Arguments::WrongUse(u"--preview 只输出预览，不能与 -o 同时使用"_s);
    const QString find = Arguments::toText(arguments.find);
    const QString with = Arguments::toText(arguments.with);
    const QList<Subtitle> cues = SRT::decode(Arguments::readInput(arguments.input));
    if (arguments.preview) {
        KeywordReplacement::validate(find, with);
        const QList<KeywordMatch> matches = KeywordReplacement::matches(cues, find, with);
        Result::writeJson([&](JsonWriter &json) { writeMatches(json, matches); });
        return;
    }
    const KeywordReplacement::Outcome outcome = KeywordReplacement::apply(cues, find, with);
    Result::deliver(
        arguments.output, [&](Utf8Writer &out) { SRT::serialize(outcome.items, out); },
        [&](JsonWriter &json) { writeOutcome(json, outcome); });
    arguments.output.report(outcome.changedCues == 0
                                ? u"没有需要替换的内容"_s
                                : u"已替换 %1 处，修改 %2 条字幕"_s.arg(outcome.occurrences).arg(outcome.changedCues));
}

} // namespace

void addReplace(CLI::App &app, Work &run)
{
    auto *const command = app.add_subcommand("replace", "批量查找并替换（精确匹配，区分英文大小写）");
    const auto arguments = std::make_shared<ReplaceArguments>();
    Arguments::addCues(*command, arguments->input);
    command->add_option("--find", arguments->find, "要查找的关键词")->required();
    command->add_option("--with", arguments->with, "替换为（留空则删除关键词）")->required();
    arguments->output.addPath(*command);
    command->add_flag("--preview", arguments->preview, "只输出预览（JSON），不替换");
    arguments->output.addJson(*command);
    arguments->output.addProgress(*command);
    command->footer("示例：\n"
                    "  lintora-cli replace 访谈.srt --find 人工智能 --with AI -o 访谈-已替换.srt\n"
                    "  lintora-cli replace 访谈.srt --find 嗯 --with \"\" --preview");
    command->callback([&run, arguments] { run = [arguments] { runReplace(*arguments); }; });
}

} // namespace Commands
