#include "ai/LocalAIJob.h"
#include "ai/Workspace.h"
#include "ai/models/LocalModels.h"
#include "ai/speech/Recognition.h"
#include "cli/CancelOnInterrupt.h"
#include "cli/Commands.h"
#include "cli/ProgressLines.h"
#include "cli/Result.h"
#include "core/SRT.h"

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
    Arguments::Output output;
};

EngineModel modelOf(const TranscribeArguments &arguments)
{
    if (!arguments.modelFile.empty())
        return EngineModel::own(Arguments::toPath(arguments.modelFile));
    return SubtitleAI::speechEngine(LocalModels::speechModel(Arguments::toText(arguments.model)));
}

void runTranscribe(const TranscribeArguments &arguments)
{
    Workspace::removeLeftovers();
    LocalAIJob job;
    const CancelOnInterrupt cancelling(job);
    ProgressLines lines(arguments.output);
    const QList<Subtitle> cues = SubtitleAI::transcribe(Arguments::toPath(arguments.input), arguments.language,
                                                        modelOf(arguments), job, SubtitleAI::NoSpeech::isRefused,
                                                        [&](const Progress &progress) { lines.show(progress); });
    Result::deliver(
        arguments.output, [&](Utf8Writer &out) { SRT::serialize(cues, out); },
        [&](JsonWriter &json) { writeSubtitles(json, cues); });
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
    auto *const command = app.add_subcommand("transcribe", "在本机把语音识别为字幕");
    const auto arguments = std::make_shared<TranscribeArguments>();
    command->add_option("input", arguments->input, "音频或视频文件")
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
    arguments->output.addJson(*command);
    arguments->output.addProgress(*command);
    command->footer("示例：\n  lintora-cli transcribe 访谈.mov -o 访谈.srt --language zh");
    command->callback([&run, arguments] { run = [arguments] { runTranscribe(*arguments); }; });
}

} // namespace Commands
