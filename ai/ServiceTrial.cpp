#include "ai/ServiceTrial.h"

#include "ai/Workspace.h"
#include "ai/speech/SpeechTranscription.h"
#include "ai/speech/WavFile.h"
#include "ai/text/OnlineSubtitleAI.h"
#include "core/files/AtomicFile.h"

using namespace Qt::StringLiterals;

namespace ServiceTrial {

void text(const OnlineAIConfiguration &service, LocalAIJob &job, const ProgressReport &progress)
{
    const Workspace workspace; // Nothing of it is kept.
    const Subtitle cue{.id = 1, .start = 0, .end = 1'000, .text = u"大家好，欢迎回来"_s};
    OnlineSubtitleAI::answer({cue}, {.work = SubtitleAI::TextWork::proofreading}, service, workspace.path(), job,
                             progress);
}

void speech(const SpeechAPIConfiguration &service, LocalAIJob &job, const ProgressReport &progress)
{
    constexpr qint64 second = 1'000;
    const Workspace workspace;
    AtomicFile audio(workspace.file(u"part.wav"_s));
    audio.write(WavFile::silence(second));
    audio.commit();
    SpeechSubtitleAPI::parseResponse(
        SpeechSubtitleAPI::ask(workspace.file(u"part.wav"_s), workspace.file(u"upload.bin"_s),
                               SubtitleAI::SpeechLanguage::automatic, service, job, progress),
        service.wordTimestamps, SubtitleAI::NoSpeech::isAllowed);
}

} // namespace ServiceTrial
