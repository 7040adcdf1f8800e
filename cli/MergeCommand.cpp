#include "cli/Commands.h"
#include "cli/Interrupt.h"
#include "cli/Result.h"
#include "core/SRT.h"
#include "core/text/LanguageMerging.h"

#include <memory>

using namespace Qt::StringLiterals;

namespace Commands {

namespace {

struct MergeArguments
{
    std::string first;
    std::string second;
    std::optional<std::string> separator;
    Arguments::Output output;
};

void writeMerged(JsonWriter &json, const LanguageMerging::Merged &merged)
{
    json.beginObject();
    json.key("items");
    writeSubtitles(json, merged.items);
    json.key("unmatchedA");
    writeSubtitles(json, merged.unmatchedA);
    json.key("unmatchedB");
    writeSubtitles(json, merged.unmatchedB);
    json.endObject();
}

void runMerge(const MergeArguments &arguments)
{
    if (arguments.first == "-" && arguments.second == "-")
        throw Arguments::WrongUse(u"两份字幕不能同时来自标准输入"_s);
    const QList<Subtitle> first = SRT::decode(Arguments::readInput(arguments.first));
    const QList<Subtitle> second = SRT::decode(Arguments::readInput(arguments.second));
    Interrupt::check();
    const QString separator = arguments.separator ? Arguments::toText(*arguments.separator) : u"\n"_s;
    const auto merged = LanguageMerging::merge(first, second, separator);
    Result::deliver(
        arguments.output, [&](Utf8Writer &out) { SRT::serialize(merged.items, out); },
        [&](JsonWriter &json) { writeMerged(json, merged); });
    arguments.output.report(u"合并为 %1 条；没有对应的：第一份 %2 条，第二份 %3 条"_s.arg(merged.items.size())
                                .arg(merged.unmatchedA.size())
                                .arg(merged.unmatchedB.size()));
}

} // namespace

void addMerge(CLI::App &app, Work &run)
{
    auto *const command = app.add_subcommand("merge", "把两种语言的字幕合并为双语字幕");
    const auto arguments = std::make_shared<MergeArguments>();
    command->add_option("first", arguments->first, "写在上面的 SRT 文件，时间以它为准；- 表示标准输入")
        ->required()
        ->type_name("A.srt")
        ->check(Arguments::notEmpty);
    command->add_option("second", arguments->second, "写在下面的 SRT 文件，- 表示标准输入")
        ->required()
        ->type_name("B.srt")
        ->check(Arguments::notEmpty);
    command->add_option("--separator", arguments->separator, "两种语言之间的文字（缺省为换行）")
        ->type_name("文字")
        ->take_last();
    arguments->output.addPath(*command);
    arguments->output.addJson(*command);
    arguments->output.addProgress(*command);
    command->footer("示例：\n  lintora-cli merge 中文.srt English.srt -o 双语.srt");
    command->callback([&run, arguments] { run = [arguments] { runMerge(*arguments); }; });
}

} // namespace Commands
