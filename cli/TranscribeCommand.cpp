#include "ai/LocalAIJob.h"
#include "ai/Workspace.h"
#include "ai/models/LocalModels.h"
#include "ai/speech/MediaFiles.h"
#include "ai/speech/Recognition.h"
#include "ai/text/Translation.h"
#include "cli/CancelOnInterrupt.h"
#include "cli/Commands.h"
#include "cli/ProgressLines.h"
#include "cli/ProjectAudio.h"
#include "cli/Result.h"
#include "cli/ServiceArguments.h"
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
    SubtitleAI::SpeechLanguage language = SubtitleAI::SpeechLanguage::automatic;
    std::string model;
    std::string modelFile;
    ProjectAudio audio; ///< Where the input is a project.
    ServiceArguments service;
    bool wantsWords = false;
    bool wantsReview = false;
    std::string reviewModelFile;
    ServiceArguments reviewService;
    bool wantsDetails = false; ///< Whether the reason of a notice is told too.
    Arguments::Output output;
};

SpokenCues::Task taskFor(const TranscribeArguments &arguments)
{
    SpokenCues::Task task{.language = arguments.language};
    if (arguments.service.isGiven())
        task.listener = arguments.service.forSpeech(arguments.wantsWords);
    else if (!arguments.modelFile.empty())
        task.listener = EngineModel::own(Arguments::toPath(arguments.modelFile));
    else
        task.listener = SubtitleAI::speechEngine(LocalModels::speechModel(Arguments::toText(arguments.model)));
    if (arguments.wantsReview && arguments.reviewService.isGiven())
        task.reviewer = arguments.reviewService.forTexts(false);
    else if (arguments.wantsReview && !arguments.reviewModelFile.empty())
        task.reviewer = EngineModel::own(Arguments::toPath(arguments.reviewModelFile));
    else if (arguments.wantsReview)
        task.reviewer = SubtitleAI::textEngine();
    arguments.service.hideKey();
    arguments.reviewService.hideKey();
    return task;
}

void runTranscribe(const TranscribeArguments &arguments)
{
    // What is wrong with who listens and who reviews is told before anything is done.
    SpokenCues::Task task = taskFor(arguments);
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
    const auto [made, levels, forget] = SpokenCues::make(task, job, [&](const Progress &now) { lines.show(now); });
    const QList<Subtitle> &cues = made.cues;
    Result::deliver(
        arguments.output, [&](Utf8Writer &out) { SRT::serialize(cues, out); },
        [&](JsonWriter &json) { writeSubtitles(json, cues); });
    forget();
    if (made.notice)
        StandardStreams::writeError((arguments.wantsDetails ? made.notice->text() : made.notice->sentence).toUtf8());
    arguments.output.report(u"已识别 %1 条字幕"_s.arg(cues.size()));
}

/// The ids of the catalog, for the command line to know.
std::vector<std::string> modelIds()
{
    std::vector<std::string> ids;
    for (const LocalModel &model : LocalModels::speechModels())
        ids.push_back(model.id.toStdString());
    return ids;
}

} // namespace

void addTranscribe(CLI::App &app, Work &run)
{
    using SubtitleAI::SpeechLanguage;
    static const std::map<std::string, SpeechLanguage> languages = {
        {"auto", SpeechLanguage::automatic}, {"zh", SpeechLanguage::chinese}, {"en", SpeechLanguage::english}};
    auto *const command = app.add_subcommand("transcribe", "把语音识别为字幕（缺省在本机）");
    const auto arguments = std::make_shared<TranscribeArguments>();
    command->add_option("input", arguments->input, "音频或视频文件，或项目（.fcpxml、.fcpxmld）")
        ->required()
        ->type_name("INPUT")
        ->check(Arguments::notEmpty);
    arguments->output.addPath(*command);
    command->add_option("--language", arguments->language, "说的是哪种语言：auto（缺省）、zh 或 en")
        ->type_name("语言")
        ->transform(CLI::CheckedTransformer(languages, CLI::ignore_case));
    auto *const model = command->add_option("--model", arguments->model, "语音模型（缺省为 speech；见 models）")
                            ->type_name("ID")
                            ->check(CLI::IsMember(modelIds()));
    command->add_option("--model-file", arguments->modelFile, "使用自己的 Whisper 模型文件（ggml），不校验")
        ->type_name("文件")
        ->check(Arguments::notEmpty)
        ->excludes(model);
    arguments->service.add(*command);
    command->add_flag("--words", arguments->wantsWords, "在线服务：按词语时间组成短句")->needs("--api");
    auto *const review = command->add_flag("--review", arguments->wantsReview, "识别后自动校对");
    arguments->reviewService.add(*command, "review-");
    command->get_option("--review-api")->needs(review);
    command->add_option("--review-model-file", arguments->reviewModelFile, "校对用自己的语言模型文件（GGUF）")
        ->type_name("文件")
        ->check(Arguments::notEmpty)
        ->needs(review)
        ->excludes("--review-api");
    model->excludes("--api");
    command->get_option("--model-file")->excludes("--api");
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
