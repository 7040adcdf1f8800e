#include "app/model/ai/ScriptSpeech.h"

#include "ai/LocalAIJob.h"
#include "app/model/ScriptMatching.h"
#include "app/model/SessionTracks.h"
#include "app/model/ai/AISettings.h"
#include "app/model/ai/AIWorkers.h"
#include "app/model/ai/Recognition.h"
#include "core/ConversionError.h"
#include "core/text/breaking/BreakableCues.h"

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

const QString timing = u"正在为文稿定时…"_s;

QList<SuspectCue> unsureOf(const QList<TimedCue> &cues)
{
    QList<SuspectCue> unsure;
    for (qsizetype i = 0; i < cues.size(); ++i) {
        if (cues.at(i).isUnsure)
            unsure.append({.index = i, .reasons = SuspectCue::Reason::times});
    }
    return unsure;
}

/// What a run has come to.
struct Hearing
{
    HeardSound heard;
    std::optional<ScriptTimingResult> result; ///< Absent when the script is refused; what was heard serves another one.
};

QString countedCues(const QString &sentence, const ScriptTimingResult &result)
{
    const qint64 unsure = result.unsureCount();
    const QString count = sentence.arg(result.cues.size());
    return unsure == 0 ? count : count + u" · %1 条时间待核对"_s.arg(unsure);
}

} // namespace

ScriptSpeech::ScriptSpeech(EditedSession &session, CueOwnership &owner, SuspectMarks &suspects,
                           const AISettings &settings, const Recognition &sound, const ScriptMatching &script)
    : m_session(session)
    , m_owner(owner)
    , m_suspects(suspects)
    , m_settings(settings)
    , m_sound(sound)
    , m_script(script)
    , m_columns(BreakableCues::Limits::landscapeColumns)
{
    connect(&owner, &CueOwnership::busyChanged, this, &ScriptSpeech::follow);
    connect(&script, &ScriptMatching::textChanged, this, &ScriptSpeech::update);
    connect(&session, &EditedSession::changed, this, &ScriptSpeech::update);
}

void ScriptSpeech::setColumns(int columns)
{
    const int within = std::clamp(columns, narrowest, widest);
    if (std::exchange(m_columns, within) == within)
        return;
    Q_EMIT columnsChanged();
    update();
}

ScriptSpeech::Question ScriptSpeech::question() const
{
    const FrameRate &rate = m_session.state().options.rate;
    return {.script = m_script.text(),
            .rules = {.columns = m_columns, .grid = {.numerator = rate.numerator, .denominator = rate.denominator}}};
}

void ScriptSpeech::start()
{
    try {
        if (m_script.text().trimmed().isEmpty())
            throw ConversionError(u"请先粘贴文稿正文"_s);
        const SpeechTask task = m_sound.task();
        const auto *const timeline = std::get_if<FCPAudioPlan>(&task.source);
        const QString source = timeline ? timeline->name : m_sound.title(m_sound.source());
        const Question asked = question();
        m_isRunning = true; // before anybody hears that the cues have an owner
        m_isRunning = m_owner.run<LocalAIJob>(
            u"正在准备…"_s,
            [task, asked, listener = AIWorkers::listener(m_settings)](LocalAIJob &job, const ProgressReport &report) {
                SpeechTask chosen = task;
                chosen.listener = listener();
                Hearing outcome{.heard = HeardSound::of(chosen, job, report), .result = {}};
                report({.what = timing});
                try {
                    outcome.result = outcome.heard.timed(asked.script, asked.rules, [&] { job.check(); });
                } catch (const ConversionError &) {
                    return outcome; // is told when it is tried again
                }
                return outcome;
            },
            [this, source, asked](Hearing outcome) {
                take(std::move(outcome.heard), source);
                m_question.reset();
                m_result = {};
                if (outcome.result) {
                    m_question = asked;
                    takeResult(*outcome.result);
                }
                update(); // where there is none, or the person has gone on writing
            });
        if (!m_isRunning)
            return;
    } catch (const ConversionError &error) {
        setStatus(error.message(), true);
        return;
    }
    if (m_isRefused)
        setStatus({});
    Q_EMIT runningChanged();
}

void ScriptSpeech::take(HeardSound heard, const QString &source)
{
    m_forget = heard.forget;
    m_heard = std::make_shared<const HeardSound>(std::move(heard));
    m_source = source;
}

/// What is shown stays until what takes its place is there.
void ScriptSpeech::update()
{
    const Question now = question();
    if (!m_heard || std::exchange(m_question, now) == now)
        return;
    m_task.run(
        timing,
        [heard = m_heard, question = now](Job &job, const ProgressReport & /*report*/) {
            return heard->timed(question.script, question.rules, [&] { job.check(); });
        },
        [this](const ScriptTimingResult &result) { takeResult(result); },
        [this](const Failure &failure) {
            m_result = {};
            setStatus(failure.sentence, true);
            Q_EMIT resultChanged();
        });
    m_isCurrent = false;
    setStatus(timing);
    Q_EMIT resultChanged();
}

void ScriptSpeech::takeResult(const ScriptTimingResult &result)
{
    m_result = result;
    m_isCurrent = true;
    setStatus(countedCues(u"%1 条字幕"_s, m_result));
    Q_EMIT resultChanged();
}

void ScriptSpeech::apply()
{
    if (!canApply())
        return;
    const QList<Subtitle> cues = m_result.subtitles();
    m_session.replace(SessionTracks::adding(m_session.state(), cues, m_source), u"按文稿生成字幕"_s);
    if (const auto forget = std::exchange(m_forget, {}))
        forget();
    m_suspects.mark(*m_session.state().selectedTrackID, cues, unsureOf(m_result.cues));
    Q_EMIT done(countedCues(u"已按文稿生成 %1 条字幕"_s, m_result));
}

void ScriptSpeech::follow()
{
    if (!m_owner.isBusy() && std::exchange(m_isRunning, false))
        Q_EMIT runningChanged();
}

void ScriptSpeech::setStatus(const QString &status, bool isRefused)
{
    const bool wasRefused = std::exchange(m_isRefused, isRefused);
    if (std::exchange(m_status, status) != status || wasRefused != isRefused)
        Q_EMIT statusChanged();
}
