#include "cli/SpeechArguments.h"

#include "ai/models/LocalModels.h"
#include "ai/speech/Recognition.h"
#include "cli/Arguments.h"

namespace {

/// The ids of the catalog, for the command line to know.
std::vector<std::string> modelIds()
{
    std::vector<std::string> ids;
    for (const LocalModel &model : LocalModels::speechModels())
        ids.push_back(model.id.toStdString());
    return ids;
}

} // namespace

void SpeechArguments::add(CLI::App &command)
{
    using SubtitleAI::SpeechLanguage;
    static const std::map<std::string, SpeechLanguage> languages = {
        {"auto", SpeechLanguage::automatic}, {"zh", SpeechLanguage::chinese}, {"en", SpeechLanguage::english}};
    command.add_option("--language", language, "说的是哪种语言：auto（缺省）、zh 或 en")
        ->type_name("语言")
        ->transform(CLI::CheckedTransformer(languages, CLI::ignore_case).description({}));
    auto *const id = command.add_option("--model", model, "语音模型（缺省为 speech；见 models）")
                         ->type_name("ID")
                         ->check(CLI::IsMember(modelIds()));
    auto *const file = command.add_option("--model-file", modelFile, "使用自己的 Whisper 模型文件（ggml），不校验")
                           ->type_name("文件")
                           ->check(Arguments::notEmpty)
                           ->excludes(id);
    service.add(command);
    id->excludes("--api");
    file->excludes("--api");
}

SpeechTask SpeechArguments::task(bool wantsWords) const
{
    SpeechTask task{.language = language};
    if (service.isGiven())
        task.listener = service.forSpeech(wantsWords);
    else
        task.listener = engine();
    return task;
}

EngineModel SpeechArguments::engine() const
{
    if (!modelFile.empty())
        return EngineModel::own(Arguments::toPath(modelFile));
    return SubtitleAI::speechEngine(LocalModels::speechModel(Arguments::toText(model)));
}
