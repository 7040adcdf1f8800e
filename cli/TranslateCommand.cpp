#include "ai/AnswerLedger.h"
#include "ai/LocalAIJob.h"
#include "ai/Workspace.h"
#include "ai/text/Answerer.h"
#include "ai/text/Translation.h"
#include "cli/CancelOnInterrupt.h"
#include "cli/Commands.h"
#include "cli/ProgressLines.h"
#include "cli/Result.h"
#include "cli/ServiceArguments.h"
#include "core/SRT.h"

#include <memory>

using namespace Qt::StringLiterals;
using SubtitleAI::Direction;
using SubtitleAI::TextWork;

namespace Commands {

namespace {

struct TextArguments
{
    std::string input;
    TextWork work = TextWork::translation;
    Direction direction = Direction::chineseToEnglish;
    std::string reference;
    std::string modelFile;
    ServiceArguments service;
    bool isQuick = false;
    Arguments::Output output;
};

SubtitleAI::Answerer answererFor(const TextArguments &arguments)
{
    if (arguments.service.isGiven()) {
        const OnlineAIConfiguration service = arguments.service.forTexts(arguments.isQuick);
        arguments.service.hideKey();
        return service;
    }
    return arguments.modelFile.empty() ? SubtitleAI::textEngine()
                                       : EngineModel::own(Arguments::toPath(arguments.modelFile));
}

void runText(const TextArguments &arguments)
{
    if (arguments.input == "-" && arguments.reference == "-")
        throw Arguments::WrongUse(u"字幕与原文不能同时来自标准输入"_s);
    const QList<Subtitle> cues = SRT::decode(Arguments::readInput(arguments.input));
    SubtitleAI::TextTask task{.work = arguments.work, .direction = arguments.direction};
    if (!arguments.reference.empty())
        task.references = SRT::decode(Arguments::readInput(arguments.reference));
    const SubtitleAI::Answerer answerer = answererFor(arguments);
    Workspace::removeLeftovers();
    LocalAIJob job;
    const CancelOnInterrupt cancelling(job);
    ProgressLines lines(arguments.output);
    const AnsweredCues result = SubtitleAI::answer(cues, task, answerer, AnswerLedger::defaultFolder(), job,
                                                   [&](const Progress &progress) { lines.show(progress); });
    Result::deliver(
        arguments.output, [&](Utf8Writer &out) { SRT::serialize(result.cues, out); },
        [&](JsonWriter &json) { writeSubtitles(json, result.cues); });
    result.forget();
}

/// What both commands have in common.
void addText(CLI::App &command, const std::shared_ptr<TextArguments> &arguments, Work &run)
{
    Arguments::addCues(command, arguments->input);
    arguments->output.addPath(command);
    arguments->service.add(command);
    command.add_option("--model-file", arguments->modelFile, "使用自己的语言模型文件（GGUF），不校验")
        ->type_name("文件")
        ->check(Arguments::notEmpty)
        ->excludes("--api");
    command.add_flag("--quick", arguments->isQuick, "在线服务：合并短请求，兼容的模型不做深度思考")->needs("--api");
    arguments->output.addJson(command);
    arguments->output.addProgress(command);
    command.callback([&run, arguments] { run = [arguments] { runText(*arguments); }; });
}

} // namespace

void addTranslate(CLI::App &app, Work &run)
{
    static const std::map<std::string, Direction> targets = {{"en", Direction::chineseToEnglish},
                                                             {"zh", Direction::englishToChinese}};
    auto *const command = app.add_subcommand("translate", "翻译字幕（缺省在本机）：中文译为英文，或英文译为中文");
    const auto arguments = std::make_shared<TextArguments>();
    command->add_option("--to", arguments->direction, "译为 en 或 zh")
        ->required()
        ->type_name("语言")
        ->transform(CLI::CheckedTransformer(targets, CLI::ignore_case).description({}));
    addText(*command, arguments, run);
    command->footer("示例：\n  lintora-cli translate 访谈.srt --to en -o 访谈-英文.srt\n\n"
                    "中断后再次运行同一命令，只翻译尚未完成的部分。");
}

void addProofread(CLI::App &app, Work &run)
{
    auto *const command = app.add_subcommand("proofread", "校对字幕（缺省在本机）：错别字、识别错误和标点");
    const auto arguments = std::make_shared<TextArguments>();
    arguments->work = TextWork::proofreading;
    addText(*command, arguments, run);
    command->add_option("--reference", arguments->reference, "译文的原文字幕：对照它校对译文，时间须一一对应")
        ->type_name("ORIGINAL.srt")
        ->check(Arguments::notEmpty);
    command->footer("示例：\n  lintora-cli proofread 访谈-英文.srt --reference 访谈.srt -o 访谈-英文.srt");
}

} // namespace Commands
