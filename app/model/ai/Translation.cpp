#include "app/model/ai/Translation.h"

#include "ai/AnswerLedger.h"
#include "ai/LocalAIJob.h"
#include "ai/text/Answerer.h"
#include "app/model/SessionTracks.h"
#include "app/model/ai/AISettings.h"
#include "app/model/ai/AIWorkers.h"

#include <utility>

using namespace Qt::StringLiterals;
using LanguageSeparation::Group;
using SubtitleAI::Direction;

namespace {

QString targetLabel(Direction direction)
{
    return LanguageSeparation::label(direction == Direction::chineseToEnglish ? Group::english : Group::chinese);
}

} // namespace

Translation::Translation(EditedSession &session, CueOwnership &owner, const AISettings &settings,
                         const GlossaryTerms &glossary)
    : m_session(session)
    , m_owner(owner)
    , m_settings(settings)
    , m_glossary(glossary)
{
    connect(&owner, &CueOwnership::busyChanged, this, &Translation::follow);
    connect(&session, &EditedSession::changed, this, &Translation::changed);
}

std::optional<QUuid> Translation::trackID() const
{
    const LintoraSession &session = m_session.state();
    const bool isThere = m_trackID && m_trackID != session.splitOriginal && SessionTracks::indexOf(session, *m_trackID);
    return isThere ? m_trackID : session.selectedTrackID;
}

void Translation::setTrackID(const QUuid &id)
{
    m_trackID = id;
    m_direction.reset();
    Q_EMIT changed();
}

QList<Subtitle> Translation::cues() const
{
    const auto id = trackID();
    const auto index = id ? SessionTracks::indexOf(m_session.state(), *id) : std::nullopt;
    return index ? m_session.state().tracks->at(*index).items : QList<Subtitle>();
}

Direction Translation::aiDirection() const
{
    if (m_direction)
        return *m_direction;
    const bool isEnglish = SessionTracks::label(cues()) == LanguageSeparation::label(Group::english);
    return isEnglish ? Direction::englishToChinese : Direction::chineseToEnglish;
}

void Translation::setDirection(Direction direction)
{
    m_direction = direction;
    Q_EMIT changed();
}

void Translation::start()
{
    Request request{.cues = cues(), .direction = aiDirection(), .glossary = {}};
    if (m_settings.choices().aiUseGlossary)
        request.glossary = m_glossary.all();
    const bool isBegun = m_owner.run<LocalAIJob>(
        u"正在准备…"_s,
        [request, answerer = AIWorkers::answerer(m_settings)](LocalAIJob &job, const ProgressReport &report) {
            return SubtitleAI::answer(request.cues, {.direction = request.direction, .glossary = request.glossary},
                                      answerer(), AnswerLedger::defaultFolder(), job, report);
        },
        [this, request](const AnsweredCues &answered) {
            take(request, answered.cues);
            answered.forget();
        });
    if (!isBegun)
        return;
    m_isRunning = true;
    Q_EMIT runningChanged();
}

void Translation::take(const Request &request, const QList<Subtitle> &translated)
{
    const LintoraSession &state = m_session.state();
    m_session.replace(SessionTracks::adding(state, translated, state.source, targetLabel(request.direction)),
                      u"翻译"_s);
    if (!request.glossary.isEmpty()) {
        Origin origin{.glossary = request.glossary, .texts = {}};
        for (const Subtitle &cue : request.cues)
            origin.texts.insert(cue.id, cue.text);
        m_origins.insert(*state.selectedTrackID, origin);
        Q_EMIT termsChanged();
    }
    m_trackID.reset();
    m_direction.reset();
    Q_EMIT done(u"已翻译 %1 条字幕"_s.arg(translated.size()));
}

Translation::Terms Translation::terms(const Subtitle &cue) const
{
    const auto origin = m_origins.constFind(m_session.state().selectedTrackID.value_or(QUuid()));
    if (origin == m_origins.cend() || !origin->texts.contains(cue.id))
        return {};
    const QString source = origin->texts.value(cue.id);
    Terms terms{.kept = Glossary::applying(origin->glossary, source),
                .missing = Glossary::missing(origin->glossary, source, cue.text)};
    terms.kept.removeIf([&](const GlossaryTerm &term) { return terms.missing.contains(term); });
    return terms;
}

void Translation::follow()
{
    if (!m_isRunning || m_owner.isBusy())
        return;
    m_isRunning = false;
    Q_EMIT runningChanged();
}
