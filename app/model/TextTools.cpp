#include "app/model/TextTools.h"

#include "app/model/SessionTracks.h"
#include "core/ConversionError.h"
#include "core/text/KeywordReplacement.h"
#include "core/text/LanguageSeparation.h"
#include "core/text/SubtitleCleanup.h"

#include <utility>

using namespace Qt::StringLiterals;

namespace {

QString joinedText(const QList<Subtitle> &cues)
{
    QString text;
    for (const Subtitle &cue : cues)
        text += cue.text + u'\n';
    return text;
}

} // namespace

TextTools::TextTools(EditedSession &session, CueOwnership &owner, Preferences &preferences)
    : m_session(session)
    , m_owner(owner)
    , m_preferences(preferences)
    , m_fillerWords(preferences.fillerWords())
{}

void TextTools::setRemoveFillers(bool on)
{
    if (m_owner.refuses(u"任务处理中，请先取消再编辑字幕"_s))
        return;
    LintoraSession next = state();
    next.removeFillers = on;
    m_session.replace(SessionTracks::committed(std::move(next)), u"修改清理选项"_s);
}

void TextTools::setRemovePunctuation(bool on)
{
    if (m_owner.refuses(u"任务处理中，请先取消再编辑字幕"_s))
        return;
    LintoraSession next = state();
    next.removePunctuation = on;
    m_session.replace(SessionTracks::committed(std::move(next)), u"修改清理选项"_s);
}

void TextTools::clean()
{
    if (m_owner.refuses(u"请等待当前任务完成后再清理。"_s))
        return;
    // With both switches off there is nothing to clean, whatever the cues hold.
    const QList<Subtitle> result = state().removeFillers || state().removePunctuation
                                       ? SubtitleCleanup::apply(state().items,
                                                                {.removeFillers = state().removeFillers,
                                                                 .removePunctuation = state().removePunctuation},
                                                                m_fillerWords)
                                       : state().items;
    if (joinedText(result) == joinedText(state().items)) {
        Q_EMIT done(u"没有需要清理的内容"_s);
        return;
    }
    LintoraSession next = state();
    next.previousItems = state().items;
    next.items = result;
    next.cleaned = true;
    m_session.replace(SessionTracks::committed(std::move(next)), u"清理"_s);
    Q_EMIT done(u"已清理"_s);
}

void TextTools::undoCleanup()
{
    if (!state().previousItems || m_owner.refuses(u"任务处理中，请先取消再编辑字幕"_s))
        return;
    LintoraSession next = state();
    next.items = *std::exchange(next.previousItems, std::nullopt);
    next.cleaned = false;
    m_session.replace(SessionTracks::committed(std::move(next)), u"恢复到清理前"_s);
    Q_EMIT done(u"已撤销"_s);
}

std::optional<qint64> TextTools::replaceKeywords(const QString &query, const QString &with)
{
    if (m_owner.refuses(u"请等待当前任务完成后再替换。"_s))
        return std::nullopt;
    try {
        const KeywordReplacement::Outcome outcome = KeywordReplacement::apply(state().items, query, with);
        if (outcome.changedCues == 0) {
            Q_EMIT done(u"没有需要替换的内容"_s);
            return 0;
        }
        // Known before anybody hears of the change, and asks whether it can be undone.
        m_replacement = CueRestore{.track = *state().selectedTrackID, .before = state().items, .after = outcome.items};
        m_session.replaceItems(outcome.items, u"替换"_s);
        Q_EMIT done(u"已替换 %1 处 · %2 条字幕，可撤销修改"_s.arg(outcome.occurrences).arg(outcome.changedCues));
        return outcome.occurrences;
    } catch (const ConversionError &error) {
        Q_EMIT refused(Failure::of(error));
        return std::nullopt;
    }
}

bool TextTools::canUndoReplacement() const
{
    return m_replacement && !m_owner.isBusy() && m_session.isRestorable(*m_replacement);
}

void TextTools::undoReplacement()
{
    if (!canUndoReplacement())
        return;
    m_session.restore(*m_replacement);
    Q_EMIT done(u"已撤销，字幕恢复为替换前内容"_s);
}

void TextTools::saveFillerWords(const QString &text)
{
    const QStringList words = SubtitleCleanup::savedWords(text);
    m_preferences.setFillerWords(words);
    if (std::exchange(m_fillerWords, words) != words)
        Q_EMIT fillerWordsChanged();
}

void TextTools::separateLanguages()
{
    if (m_owner.refuses(u"请等待当前任务完成后再分离。"_s))
        return;
    const QList<LanguageSeparation::GroupedCues> groups = LanguageSeparation::split(state().items);
    if (!LanguageSeparation::holdsBothLanguages(groups)) {
        Q_EMIT refused(Failure{.sentence = LanguageSeparation::nothingToSeparate()});
        return;
    }
    m_session.replace(SessionTracks::separated(state(), groups), u"分离中英"_s);
    const bool leftSome = groups.last().group == LanguageSeparation::Group::unassigned;
    Q_EMIT done(leftSome ? u"已分离，未识别文字保留在“待归类”中"_s : u"已分离，中文和 English 可独立编辑、拖入 FCP"_s);
}

void TextTools::restoreOriginal()
{
    if (!state().splitOriginal || m_owner.refuses(u"任务处理中，请先取消再编辑字幕"_s))
        return;
    m_session.replace(SessionTracks::restored(state()), u"恢复原稿"_s);
    Q_EMIT done(u"已恢复分离前原稿"_s);
}
