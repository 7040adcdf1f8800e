#include "ai/speech/Recognition.h"

#include "ai/HelperPrograms.h"
#include "ai/LocalAIJob.h"
#include "ai/Workspace.h"
#include "ai/speech/RecognitionProgress.h"
#include "ai/speech/WavFile.h"
#include "ai/speech/WordTimes.h"
#include "core/ConversionError.h"
#include "core/PlatformError.h"
#include "core/files/FileReader.h"

#include <QElapsedTimer>
#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace SubtitleAI {

namespace {

/// What the recogniser wrote, which may end well and write nothing: `reason` is then what it said last.
QByteArray readResult(const QString &path, qint64 largest, const QString &reason)
{
    const QString refusal = u"识别结果过大，请将素材分段。"_s;
    std::optional<QByteArray> result;
    try {
        result = FileReader::readUpTo(path, largest);
    } catch (const PlatformError &error) {
        throw ConversionError(refusal, reason.isEmpty() ? error.description() : reason);
    }
    if (!result)
        throw ConversionError(refusal);
    return *std::move(result);
}

/// Runs the recogniser and returns what it wrote, which is at most `largest` bytes. `result` is the path that the
/// arguments name.
QByteArray runRecogniser(const QStringList &arguments, const QString &result, qint64 largest, qint64 durationMS,
                         LocalAIJob &job, const Workspace &workspace, const ProgressReport &progress)
{
    const QString what = u"正在识别语音，较长素材需要一些时间…"_s;
    progress({.what = what});
    RecognitionProgress listener(what, durationMS);
    QElapsedTimer clock;
    clock.start();
    // What an earlier recognition wrote there must not be taken for this one's.
    QFile::remove(result + u".json"_s);
    job.run(LocalModels::helper(u"whisper-cli"_s), arguments, workspace.path(),
            [&](QByteArrayView printed) { progress(listener.hear(printed, clock.elapsed())); });
    return readResult(result + u".json"_s, largest, job.lastWords());
}

} // namespace

EngineModel speechEngine(const LocalModel &model)
{
    return EngineModel::ofCatalog(model, u"请先下载所选语音模型。"_s, u"正在校验所选语音模型…"_s);
}

void extractAudio(const QString &media, const QString &wav, LocalAIJob &job, const Workspace &workspace)
{
    // An absolute path is no option and no address, whatever the file is called.
    job.run(LocalModels::helper(u"ffmpeg-audio"_s), extractionArguments(QFileInfo(media).absoluteFilePath(), wav),
            workspace.path());
}

QList<Subtitle> recognize(const QString &wav, qint64 durationMS, SpeechLanguage language, const QString &model,
                          LocalAIJob &job, NoSpeech noSpeech, const Workspace &workspace,
                          const ProgressReport &progress)
{
    constexpr qint64 largest = 16 * 1024 * 1024; // bytes
    const QString result = workspace.file(u"result"_s);
    const QByteArray answer = runRecogniser(speechArguments(model, wav, result, language), result, largest, durationMS,
                                            job, workspace, progress);
    return parseTranscript(answer, noSpeech, durationMS);
}

QList<HeardWord> recognizeWords(const QString &wav, qint64 durationMS, SpeechLanguage language, const QString &model,
                                LocalAIJob &job, const Workspace &workspace, const ProgressReport &progress)
{
    constexpr qint64 largest = 256 * 1024 * 1024; // bytes; some 300 a word
    const QString result = workspace.file(u"result"_s);
    const QByteArray answer = runRecogniser(wordTimeArguments(model, wav, result, language), result, largest,
                                            durationMS, job, workspace, progress);
    return parseWordTimes(answer, durationMS);
}

QList<Subtitle> transcribe(const QString &media, SpeechLanguage language, const EngineModel &model, LocalAIJob &job,
                           NoSpeech noSpeech, const ProgressReport &progress, const TrackReady &trackReady)
{
    model.prepare(job, progress);
    const Workspace workspace;
    const QString wav = workspace.file(u"audio.wav"_s);
    progress({.what = u"正在读取音轨…"_s});
    extractAudio(media, wav, job, workspace);
    const qint64 durationMS = WavFile::durationMS(wav).value_or(0);
    if (durationMS <= 0)
        throw ConversionError(u"音轨没有可识别的采样，请确认文件可正常播放。"_s);
    if (trackReady)
        trackReady(wav);
    return recognize(wav, durationMS, language, model.file, job, noSpeech, workspace, progress);
}

} // namespace SubtitleAI
