#include "ai/AnswerLedger.h"
#include "ai/LocalAIJob.h"
#include "ai/SubtitleGeneration.h"
#include "ai/Workspace.h"
#include "ai/models/LocalModels.h"
#include "ai/speech/KeptAnswers.h"
#include "ai/speech/Recognition.h"
#include "ai/speech/SpeechTranscription.h"
#include "ai/text/OnlineSubtitleAI.h"
#include "ai/text/Translation.h"
#include "cli/CancelOnInterrupt.h"
#include "cli/Commands.h"
#include "cli/ProgressLines.h"
#include "cli/ProjectAudio.h"
#include "cli/Result.h"
#include "cli/ServiceArguments.h"
#include "cli/StandardStreams.h"
#include "core/SRT.h"
#include "fcp/render/FCPAudioRenderer.h"

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

/// Who listens and who reviews, made before anything is done: what is wrong with them is told at once.
struct Workers
{
    using Recognize = std::function<AnsweredCues(LocalAIJob &job, const ProgressReport &progress)>;
    using Review =
        std::function<AnsweredCues(const QList<Subtitle> &cues, LocalAIJob &job, const ProgressReport &progress)>;

    Recognize recognize;
    Review review; ///< Empty when nobody shall.
};

EngineModel modelOf(const TranscribeArguments &arguments)
{
    if (!arguments.modelFile.empty())
        return EngineModel::own(Arguments::toPath(arguments.modelFile));
    return SubtitleAI::speechEngine(LocalModels::speechModel(Arguments::toText(arguments.model)));
}

/// Listens to a range of a timeline, where nobody may be speaking.
using Listen = std::function<AnsweredCues(const QString &wav, qint64 durationMS, const Workspace &workspace,
                                          LocalAIJob &job, const ProgressReport &progress)>;

Listen listening(const TranscribeArguments &arguments)
{
    const auto language = arguments.language;
    constexpr auto noSpeech = SubtitleAI::NoSpeech::isAllowed;
    if (arguments.service.isGiven()) {
        const SpeechAPIConfiguration service = arguments.service.forSpeech(arguments.wantsWords);
        return [=](const QString &wav, qint64, const Workspace &, LocalAIJob &job, const ProgressReport &progress) {
            return SpeechSubtitleAPI::transcribe(wav, language, service, KeptAnswers::defaultFolder(), job, noSpeech,
                                                 progress);
        };
    }
    return [=, model = modelOf(arguments).file](const QString &wav, qint64 durationMS, const Workspace &workspace,
                                                LocalAIJob &job, const ProgressReport &progress) {
        return AnsweredCues{
            .cues = SubtitleAI::recognize(wav, durationMS, language, model, job, noSpeech, workspace, progress),
            .forget = [] {}};
    };
}

/// What is said on a project's timeline, at its times.
Workers::Recognize recognizingTimeline(const TranscribeArguments &arguments)
{
    std::function<void(LocalAIJob &, const ProgressReport &)> prepare = [](LocalAIJob &, const ProgressReport &) {};
    if (!arguments.service.isGiven())
        prepare = modelOf(arguments).prepare;
    return [=, listen = listening(arguments)](LocalAIJob &job, const ProgressReport &progress) {
        const FCPAudioPlan plan = arguments.audio.plan(arguments.input);
        ProjectAudio::tellNotices(plan, arguments.output);
        prepare(job, progress);
        std::vector<std::function<void()>> kept;
        const auto recognize = [&](const QString &wav, qint64 durationMS, const Workspace &workspace,
                                   const ProgressReport &report) {
            const AnsweredCues answered = listen(wav, durationMS, workspace, job, report);
            kept.push_back(answered.forget);
            return answered.cues;
        };
        const QList<Subtitle> cues = FCPAudioRenderer::transcribe(plan, job, recognize, progress);
        return AnsweredCues{.cues = cues, .forget = [kept] {
                                for (const auto &forget : kept)
                                    forget();
                            }};
    };
}

Workers::Recognize recognizing(const TranscribeArguments &arguments)
{
    if (ProjectAudio::isProject(arguments.input))
        return recognizingTimeline(arguments);
    const QString input = Arguments::toPath(arguments.input);
    const auto language = arguments.language;
    constexpr auto noSpeech = SubtitleAI::NoSpeech::isRefused;
    if (arguments.service.isGiven()) {
        const SpeechAPIConfiguration service = arguments.service.forSpeech(arguments.wantsWords);
        return [=](LocalAIJob &job, const ProgressReport &progress) {
            return SpeechSubtitleAPI::transcribe(input, language, service, KeptAnswers::defaultFolder(), job, noSpeech,
                                                 progress);
        };
    }
    return [=, model = modelOf(arguments)](LocalAIJob &job, const ProgressReport &progress) {
        return AnsweredCues{.cues = SubtitleAI::transcribe(input, language, model, job, noSpeech, progress),
                            .forget = [] {}};
    };
}

Workers::Review reviewing(const TranscribeArguments &arguments)
{
    const SubtitleAI::TextTask task{.work = SubtitleAI::TextWork::proofreading};
    const QString ledger = AnswerLedger::defaultFolder();
    if (!arguments.wantsReview)
        return {};
    if (arguments.reviewService.isGiven()) {
        const OnlineAIConfiguration service = arguments.reviewService.forTexts(false);
        return [=](const QList<Subtitle> &cues, LocalAIJob &job, const ProgressReport &progress) {
            return OnlineSubtitleAI::answer(cues, task, service, ledger, job, progress);
        };
    }
    const EngineModel model = arguments.reviewModelFile.empty()
                                  ? SubtitleAI::textEngine()
                                  : EngineModel::own(Arguments::toPath(arguments.reviewModelFile));
    return [=](const QList<Subtitle> &cues, LocalAIJob &job, const ProgressReport &progress) {
        return SubtitleAI::translate(cues, task, model, ledger, job, progress);
    };
}

Workers workersFor(const TranscribeArguments &arguments)
{
    Workers workers{.recognize = recognizing(arguments), .review = reviewing(arguments)};
    arguments.service.hideKey();
    arguments.reviewService.hideKey();
    return workers;
}

void runTranscribe(const TranscribeArguments &arguments)
{
    const Workers workers = workersFor(arguments);
    Workspace::removeLeftovers();
    LocalAIJob job;
    const CancelOnInterrupt cancelling(job);
    ProgressLines lines(arguments.output);
    const ProgressReport progress = [&](const Progress &now) { lines.show(now); };
    const AnsweredCues recognized = workers.recognize(job, progress);
    std::function<void()> forgetReview = [] {};
    std::function<QList<Subtitle>(const QList<Subtitle> &)> review;
    if (workers.review) {
        review = [&](const QList<Subtitle> &cues) {
            const AnsweredCues reviewed = workers.review(cues, job, progress);
            forgetReview = reviewed.forget;
            return reviewed.cues;
        };
    }
    const GeneratedSubtitles made = SubtitleGeneration::finish(recognized.cues, review);
    Result::deliver(
        arguments.output, [&](Utf8Writer &out) { SRT::serialize(made.cues, out); },
        [&](JsonWriter &json) { writeSubtitles(json, made.cues); });
    recognized.forget();
    forgetReview();
    if (made.notice)
        StandardStreams::writeError((arguments.wantsDetails ? made.notice->text() : made.notice->sentence).toUtf8());
    arguments.output.report(u"已识别 %1 条字幕"_s.arg(made.cues.size()));
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
                    "  lintora-cli transcribe 粗剪.fcpxmld -o 粗剪.srt");
    command->callback([&run, arguments, command] {
        arguments->wantsDetails = command->count("--details") > 0; // every command has it
        run = [arguments] { runTranscribe(*arguments); };
    });
}

} // namespace Commands
