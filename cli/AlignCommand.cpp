#include "cli/Commands.h"
#include "cli/Interrupt.h"
#include "cli/Result.h"
#include "core/SRT.h"
#include "core/text/ScriptAlignment.h"

#include <algorithm>
#include <memory>

using namespace Qt::StringLiterals;

namespace Commands {

namespace {

struct AlignArguments
{
    std::string input;
    std::string script;
    bool all = false;
    Arguments::Output output;
};

void writeRow(JsonWriter &json, const ScriptMatchRow &row)
{
    json.beginObject();
    json.key("changed").boolean(row.changed());
    json.key("confidence").number(row.confidence);
    json.key("id").integer(row.id);
    json.key("needsReview").boolean(row.needsReview());
    json.key("original");
    writeSubtitle(json, row.original);
    if (row.replacement)
        json.key("replacement").text(*row.replacement);
    json.key("selected").boolean(row.selected);
    json.endObject();
}

void writeResult(JsonWriter &json, const ScriptMatchResult &result)
{
    json.beginObject();
    json.key("changedCount").integer(result.changedCount());
    json.key("matchedCount").integer(result.matchedCount());
    json.key("rows").beginArray();
    for (const ScriptMatchRow &row : result.rows)
        writeRow(json, row);
    json.endArray();
    json.key("unmatchedPassages").beginArray();
    for (const QString &passage : result.unmatchedPassages)
        json.text(passage);
    json.endArray();
    json.endObject();
}

void runAlign(const AlignArguments &arguments)
{
    if (arguments.input == "-" && arguments.script == "-")
        throw Arguments::WrongUse(u"字幕与文稿不能同时来自标准输入"_s);
    const QList<Subtitle> cues = SRT::decode(Arguments::readInput(arguments.input));
    const QString script = Arguments::readText(arguments.script);
    ScriptMatchResult result = ScriptAlignment::match(script, cues, Interrupt::check);
    if (arguments.all) {
        for (ScriptMatchRow &row : result.rows)
            row.selected = row.replacement.has_value();
    }
    const QList<Subtitle> corrected = ScriptAlignment::apply(result.rows);
    Result::deliver(
        arguments.output, [&](Utf8Writer &out) { SRT::serialize(corrected, out); },
        [&](JsonWriter &json) { writeResult(json, result); });
    const auto modified = std::count_if(result.rows.begin(), result.rows.end(),
                                        [](const ScriptMatchRow &row) { return row.selected && row.changed(); });
    arguments.output.report(u"已匹配 %1 条字幕，按文稿修改 %2 条"_s.arg(result.matchedCount()).arg(modified));
}

} // namespace

void addAlign(CLI::App &app, Work &run)
{
    auto *const command = app.add_subcommand("align", "按文稿校正文字，保留字幕时间");
    const auto arguments = std::make_shared<AlignArguments>();
    Arguments::addCues(*command, arguments->input);
    command->add_option("script", arguments->script, "文稿（纯文本），- 表示标准输入")
        ->required()
        ->type_name("SCRIPT.txt");
    arguments->output.addPath(*command);
    command->add_flag("--all", arguments->all, "应用所有已匹配的字幕，包括差异较大的");
    arguments->output.addJson(*command);
    arguments->output.addProgress(*command);
    command->footer("示例：\n  lintora-cli align 识别.srt 文稿.txt -o 校正.srt");
    command->callback([&run, arguments] { run = [arguments] { runAlign(*arguments); }; });
}

} // namespace Commands
