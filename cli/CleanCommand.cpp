#include "cli/Commands.h"
#include "cli/Result.h"
#include "core/SRT.h"
#include "core/text/SubtitleCleanup.h"

#include <algorithm>
#include <memory>

using namespace Qt::StringLiterals;

namespace Commands {

namespace {

struct CleanArguments
{
    std::string input;
    SubtitleCleanup::Switches switches;
    std::optional<std::string> words;
    Arguments::Output output;
};

bool haveSameTexts(const QList<Subtitle> &a, const QList<Subtitle> &b)
{
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](const Subtitle &first, const Subtitle &second) { return first.text == second.text; });
}

void runClean(const CleanArguments &arguments)
{
    if (!arguments.switches.removeFillers && !arguments.switches.removePunctuation)
        throw Arguments::WrongUse(u"请指定 --fillers、--split 或两者"_s);
    if (arguments.input == "-" && arguments.words == "-")
        throw Arguments::WrongUse(u"字幕与词表不能同时来自标准输入"_s);
    const QStringList words = arguments.words ? SubtitleCleanup::savedWords(Arguments::readText(*arguments.words))
                                              : SubtitleCleanup::defaultFillerWords();
    const QList<Subtitle> cues = SRT::decode(Arguments::readInput(arguments.input));
    const QList<Subtitle> cleaned = SubtitleCleanup::apply(cues, arguments.switches, words);
    Result::deliver(
        arguments.output, [&](Utf8Writer &out) { SRT::serialize(cleaned, out); },
        [&](JsonWriter &json) { writeSubtitles(json, cleaned); });
    arguments.output.report(haveSameTexts(cues, cleaned)
                                ? u"没有需要清理的内容"_s
                                : u"已清理：%1 条字幕变为 %2 条"_s.arg(cues.size()).arg(cleaned.size()));
}

} // namespace

void addClean(CLI::App &app, Work &run)
{
    auto *const command = app.add_subcommand("clean", "去除语气词，去标点并分句");
    const auto arguments = std::make_shared<CleanArguments>();
    Arguments::addCues(*command, arguments->input);
    arguments->output.addPath(*command);
    command->add_flag("--fillers", arguments->switches.removeFillers, "去除语气词");
    command->add_flag("--split", arguments->switches.removePunctuation, "去标点并分句");
    command->add_option("--words", arguments->words, "语气词表：以换行、逗号、分号或顿号分隔（缺省为内置词表）")
        ->check(Arguments::notEmpty)
        ->type_name("文件");
    arguments->output.addJson(*command);
    arguments->output.addProgress(*command);
    command->footer("示例：\n  lintora-cli clean 访谈.srt -o 访谈-已清理.srt --fillers --split");
    command->callback([&run, arguments] { run = [arguments] { runClean(*arguments); }; });
}

} // namespace Commands
