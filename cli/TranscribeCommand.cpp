#include "ai/LocalAIJob.h"
#include "ai/Workspace.h"
#include "ai/speech/MediaFiles.h"
#include "ai/text/Translation.h"
#include "cli/CancelOnInterrupt.h"
#include "cli/Commands.h"
#include "cli/ProgressLines.h"
#include "cli/ProjectAudio.h"
#include "cli/Result.h"
#include "cli/SpeechArguments.h"
#include "cli/StandardStreams.h"
#include "core/SRT.h"
#include "fcp/render/SpokenCues.h"

#include <memory>

using namespace Qt::StringLiterals;

namespace Commands {

namespace {

struct TranscribeArguments
{
    std::string input;
    SpeechArguments speech;
    ProjectAudio audio; ///< Where the input is a project.
    bool wantsWords = false;
    bool wantsReview = false;
    std::string reviewModelFile;
    ServiceArguments reviewService;
    bool wantsDetails = false; ///< Whether the reason of a notice is told too.
    Arguments::Output output;
};

SpokenCues::Reviewer reviewer(const TranscribeArguments &arguments)
{
    if (!arguments.wantsReview)
        return std::nullopt;
    if (arguments.reviewService.isGiven())
        return arguments.reviewService.forTexts(false);
    return arguments.reviewModelFile.empty() ? SubtitleAI::textEngine()
                                             : EngineModel::own(Arguments::toPath(arguments.reviewModelFile));
}

void runTranscribe(const TranscribeArguments &arguments)
{
    // What is wrong with who listens and who reviews is told before anything is done.
    SpeechTask task = arguments.speech.task(arguments.wantsWords);
    const SpokenCues::Reviewer reviewer = Commands::reviewer(arguments);
    arguments.speech.service.hideKey();
    arguments.reviewService.hideKey();
    Workspace::removeLeftovers();
    LocalAIJob job;
    const CancelOnInterrupt cancelling(job);
    ProgressLines lines(arguments.output);
    if (ProjectAudio::isProject(arguments.input)) {
        const FCPAudioPlan plan = arguments.audio.plan(arguments.input);
        ProjectAudio::tellNotices(plan, arguments.output);
        task.source = plan;
    } else {
        task.source = Arguments::toPath(arguments.input);
    }
    const auto [made, levels, forget] =
        SpokenCues::make(task, reviewer, job, [&](const Progress &now) { lines.show(now); });
    const QList<Subtitle> &cues = made.cues;
    Result::deliver(
        arguments.output, [&](Utf8Writer &out) { SRT::serialize(cues, out); },
        [&](JsonWriter &json) { writeSubtitles(json, cues); });
    forget();
    if (made.notice)
        StandardStreams::writeError((arguments.wantsDetails ? made.notice->text() : made.notice->sentence).toUtf8());
    arguments.output.report(u"已识别 %1 条字幕"_s.arg(cues.size()));
}

} // namespace

void addTranscribe(CLI::App &app, Work &run)
{
    auto *const command = app.add_subcommand("transcribe", "把语音识别为字幕（缺省在本机）");
    const auto arguments = std::make_shared<TranscribeArguments>();
    command->add_option("input", arguments->input, "音频或视频文件，或项目（.fcpxml、.fcpxmld）")
        ->required()
        ->type_name("INPUT")
        ->check(Arguments::notEmpty);
    arguments->output.addPath(*command);
    arguments->speech.add(*command);
    command->add_flag("--words", arguments->wantsWords, "在线服务：按词语时间组成短句")->needs("--api");
    auto *const review = command->add_flag("--review", arguments->wantsReview, "识别后自动校对");
    arguments->reviewService.add(*command, "review-");
    command->get_option("--review-api")->needs(review);
    command->add_option("--review-model-file", arguments->reviewModelFile, "校对用自己的语言模型文件（GGUF）")
        ->type_name("文件")
        ->check(Arguments::notEmpty)
        ->needs(review)
        ->excludes("--review-api");
    arguments->audio.addSwitches(*command);
    arguments->output.addJson(*command);
    arguments->output.addProgress(*command);
    command->footer("示例：\n  lintora-cli transcribe 访谈.mov -o 访谈.srt --language zh\n"
                    "  lintora-cli transcribe 粗剪.fcpxmld -o 粗剪.srt\n"
                    "读取音频和视频：" +
                    MediaFiles::extensions().join(u' ').toStdString());
    command->callback([&run, arguments, command] {
        arguments->wantsDetails = command->count("--details") > 0; // every command has it
        run = [arguments] { runTranscribe(*arguments); };
    });
}

} // namespace Commands
