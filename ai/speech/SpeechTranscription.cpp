#include "ai/speech/SpeechTranscription.h"

#include "ai/HTTP.h"
#include "ai/HelperPrograms.h"
#include "ai/LocalAIJob.h"
#include "ai/Patience.h"
#include "ai/ServiceMessage.h"
#include "ai/Workspace.h"
#include "ai/models/FileDigest.h"
#include "ai/speech/KeptAnswers.h"
#include "ai/speech/Recognition.h"
#include "ai/speech/WavFile.h"

#include <QCryptographicHash>
#include <QFile>
#include <QFileInfo>

#include <algorithm>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace SpeechSubtitleAPI {

namespace {

constexpr int success = 200;

/// One transcription under way.
class Transcription
{
public:
    Transcription(const SpeechAPIConfiguration &configuration, SubtitleAI::SpeechLanguage language, LocalAIJob &job,
                  const ProgressReport &progress, const KeptAnswers &kept)
        : m_configuration(configuration)
        , m_language(language)
        , m_job(job)
        , m_progress(progress)
        , m_kept(kept)
    {}

    /// The answer to the piece `chunk` of `wav`; `before` and `count` say which of how many it is.
    QByteArray answer(const QString &wav, const SpeechChunk &chunk, qsizetype before, qsizetype count)
    {
        cut(wav, chunk);
        const QByteArray key = this->key();
        if (const auto known = m_kept.answer(key)) {
            m_used.append(key);
            return *known;
        }
        QByteArray received = upload(before, count);
        m_pending = key;
        return received;
    }

    /// The answer has passed its checks: it need not be paid for again.
    void keep(const QByteArray &answer)
    {
        if (m_pending.isEmpty())
            return;
        m_kept.keep(m_pending, answer);
        m_used.append(m_pending);
        m_pending.clear();
    }

    /// Drops all the answers that were kept.
    std::function<void()> forgetting() const
    {
        return [kept = m_kept, used = m_used] {
            for (const QByteArray &key : used)
                kept.drop(key);
        };
    }

    const Workspace &workspace() const { return m_workspace; }

private:
    QString part() const { return m_workspace.file(u"part.wav"_s); }
    QString body() const { return m_workspace.file(u"upload.bin"_s); }

    void cut(const QString &wav, const SpeechChunk &chunk)
    {
        constexpr double perSecond = 1'000;
        const auto seconds = [](qint64 ms) { return QString::number(double(ms) / perSecond, 'f', 6); };
        m_job.run(LocalModels::helper(u"ffmpeg-audio"_s),
                  {u"-nostdin"_s, u"-hide_banner"_s, u"-loglevel"_s, u"error"_s, u"-ss"_s, seconds(chunk.startMS),
                   u"-t"_s, seconds(chunk.endMS - chunk.startMS), u"-i"_s, wav, u"-c:a"_s, u"pcm_s16le"_s, u"-y"_s,
                   part()},
                  m_workspace.path());
        const qint64 size = QFileInfo(part()).size();
        if (size == 0 || size > maximumUploadBytes || WavFile::durationMS(part()).value_or(0) <= 0)
            throw ConversionError(u"音频片段为空或超过上传上限，请缩短后重试。"_s);
    }

    /// What tells this piece's answer from any other.
    QByteArray key() const
    {
        QCryptographicHash hash(QCryptographicHash::Sha256);
        for (const QByteArray &field : {FileDigest::sha256(part(), &m_job), m_configuration.endpoint().toEncoded(),
                                        m_configuration.model.trimmed().toUtf8(), SubtitleAI::code(m_language).toUtf8(),
                                        QByteArray(m_configuration.wordTimestamps ? "words" : "segments")}) {
            hash.addData(field);
            hash.addData(QByteArray(1, '\0'));
        }
        return hash.result().toHex();
    }

    QByteArray upload(qsizetype before, qsizetype count)
    {
        const auto report = [&](Progress progress) {
            if (progress.share)
                progress.share = (double(before) + *progress.share) / double(count);
            m_progress(progress);
        };
        QByteArray received = ask(part(), body(), m_language, m_configuration, m_job, report);
        QFile::remove(body());
        return received;
    }

    const SpeechAPIConfiguration &m_configuration;
    SubtitleAI::SpeechLanguage m_language;
    LocalAIJob &m_job;
    const ProgressReport &m_progress;
    const KeptAnswers &m_kept;
    Workspace m_workspace;
    QByteArray m_pending;
    QList<QByteArray> m_used;
};

/// What `parse` makes of the answers to all pieces of a recording.
template <class Parse>
AnsweredCues transcribePieces(const QString &media, SubtitleAI::SpeechLanguage language,
                              const SpeechAPIConfiguration &configuration, const QString &keptFolder, LocalAIJob &job,
                              SubtitleAI::NoSpeech noSpeech, const ProgressReport &progress,
                              const SubtitleAI::TrackReady &trackReady, const Parse &parse)
{
    // What is wrong with the settings is told before anything is done.
    configuration.endpoint();
    fields(configuration, language);
    const KeptAnswers kept(keptFolder);
    Transcription transcription(configuration, language, job, progress, kept);
    progress({.what = u"正在准备转写音轨…"_s});
    const QString wav = transcription.workspace().file(u"audio.wav"_s);
    SubtitleAI::extractAudio(media, wav, job, transcription.workspace());
    const qint64 durationMS = WavFile::durationMS(wav).value_or(0);
    if (durationMS <= 0)
        throw ConversionError(u"音轨没有可转写的采样。"_s);
    if (trackReady)
        trackReady(wav);
    QList<Subtitle> cues;
    const QList<SpeechChunk> pieces = chunks(durationMS);
    for (qsizetype i = 0; i < pieces.size(); ++i) {
        const QByteArray answer = transcription.answer(wav, pieces[i], i, pieces.size());
        // One piece may be silent where others are not.
        const auto parsed = parse(answer);
        transcription.keep(answer);
        cues += merge(parsed, pieces[i], durationMS);
    }
    std::ranges::stable_sort(cues, {}, &Subtitle::start);
    for (qsizetype i = 0; i < cues.size(); ++i)
        cues[i].id = i + 1;
    const auto forget = transcription.forgetting();
    if (cues.isEmpty() && noSpeech == SubtitleAI::NoSpeech::isRefused) {
        forget(); // The work has ended: whoever asks again wants other answers.
        throw ConversionError(u"未识别到有效语音，请检查音轨。"_s);
    }
    return {.cues = cues, .forget = forget};
}

} // namespace

QByteArray ask(const QString &audio, const QString &body, SubtitleAI::SpeechLanguage language,
               const SpeechAPIConfiguration &configuration, LocalAIJob &job, const ProgressReport &progress)
{
    const HTTP::Request request{.url = configuration.endpoint(),
                                .headers = {{"Content-Type", "multipart/form-data; boundary=" +
                                                                 writeMultipart(audio, body, configuration, language)},
                                            {"Authorization", "Bearer " + configuration.apiKey.toUtf8()}},
                                // The service says nothing while it listens to eight minutes.
                                .silence = 600s};
    double sent = 0;
    std::chrono::milliseconds elapsed{};
    const auto tell = [&] {
        // Sending is one half, the answer the other.
        progress({.what = u"音频转写中 · 已用时 "_s + Patience::elapsedText(elapsed), .share = sent / 2});
    };
    const HTTP::Watch watch{.sent =
                                [&](double share) {
                                    sent = share;
                                    tell();
                                },
                            .waiting =
                                [&](std::chrono::milliseconds now) {
                                    elapsed = now;
                                    tell();
                                }};
    const HTTP::Answer answer =
        Patience::send([&] { return HTTP::postFile(request, body, job, watch); }, job, progress);
    if (answer.head.status != success)
        throw requestError(answer.head.status,
                           ServiceMessage::ofAnyText(answer.body.value_or(QByteArray()), configuration.apiKey));
    if (!answer.body || answer.body->isEmpty())
        throw ConversionError(u"音频接口返回为空，原字幕已保留。"_s);
    return *answer.body;
}

AnsweredCues transcribe(const QString &media, SubtitleAI::SpeechLanguage language,
                        const SpeechAPIConfiguration &configuration, const QString &keptFolder, LocalAIJob &job,
                        SubtitleAI::NoSpeech noSpeech, const ProgressReport &progress,
                        const SubtitleAI::TrackReady &trackReady)
{
    return transcribePieces(
        media, language, configuration, keptFolder, job, noSpeech, progress, trackReady, [&](const QByteArray &answer) {
            return parseResponse(answer, configuration.wordTimestamps, SubtitleAI::NoSpeech::isAllowed);
        });
}

AnsweredCues transcribeWords(const QString &media, SubtitleAI::SpeechLanguage language,
                             SpeechAPIConfiguration configuration, const QString &keptFolder, LocalAIJob &job,
                             const ProgressReport &progress)
{
    configuration.wordTimestamps = true;
    return transcribePieces(media, language, configuration, keptFolder, job, SubtitleAI::NoSpeech::isAllowed, progress,
                            {}, parseWords);
}

} // namespace SpeechSubtitleAPI
