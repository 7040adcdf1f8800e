// The tools that go over many cues.

#include "app/model/LintoraModel.h"
#include "app/model/SessionTracks.h"
#include "core/ConversionError.h"
#include "core/text/KeywordReplacement.h"
#include "core/text/LanguageSeparation.h"
#include "core/text/SubtitleCleanup.h"

#include <algorithm>
#include <numeric>
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

void LintoraModel::setRemoveFillers(bool on)
{
    if (m_owner.refuses(u"任务处理中，请先取消再编辑字幕"_s))
        return;
    LintoraSession next = m_session.state();
    next.removeFillers = on;
    m_session.replace(SessionTracks::committed(std::move(next)), u"修改清理选项"_s);
}

void LintoraModel::setRemovePunctuation(bool on)
{
    if (m_owner.refuses(u"任务处理中，请先取消再编辑字幕"_s))
        return;
    LintoraSession next = m_session.state();
    next.removePunctuation = on;
    m_session.replace(SessionTracks::committed(std::move(next)), u"修改清理选项"_s);
}

void LintoraModel::clean()
{
    if (m_owner.refuses(u"请等待当前任务完成后再清理。"_s))
        return;
    // With both switches off there is nothing to clean, whatever the cues hold.
    const QList<Subtitle> result =
        removeFillers() || removePunctuation()
            ? SubtitleCleanup::apply(
                  items(), {.removeFillers = removeFillers(), .removePunctuation = removePunctuation()}, m_fillerWords)
            : items();
    if (joinedText(result) == joinedText(items())) {
        report(u"没有需要清理的内容"_s);
        return;
    }
    LintoraSession next = m_session.state();
    next.previousItems = items();
    next.items = result;
    next.cleaned = true;
    m_session.replace(SessionTracks::committed(std::move(next)), u"清理"_s);
    report(u"已清理"_s);
}

void LintoraModel::undoCleanup()
{
    if (!previousItems() || m_owner.refuses(u"任务处理中，请先取消再编辑字幕"_s))
        return;
    LintoraSession next = m_session.state();
    next.items = *std::exchange(next.previousItems, std::nullopt);
    next.cleaned = false;
    m_session.replace(SessionTracks::committed(std::move(next)), u"恢复到清理前"_s);
    report(u"已撤销"_s);
}

std::optional<qint64> LintoraModel::replaceKeywords(const QString &query, const QString &with)
{
    if (m_owner.refuses(u"请等待当前任务完成后再替换。"_s))
        return std::nullopt;
    try {
        const KeywordReplacement::Outcome outcome = KeywordReplacement::apply(items(), query, with);
        if (outcome.changedCues == 0) {
            report(u"没有需要替换的内容"_s);
            return 0;
        }
        // Known before anybody hears of the change, and asks whether it can be undone.
        m_replacement = CueRestore{.track = *selectedTrackID(), .before = items(), .after = outcome.items};
        m_session.replaceItems(outcome.items, u"替换"_s);
        report(u"已替换 %1 处 · %2 条字幕，可撤销修改"_s.arg(outcome.occurrences).arg(outcome.changedCues));
        return outcome.occurrences;
    } catch (const ConversionError &error) {
        reportFailure(Failure::of(error));
        return std::nullopt;
    }
}

bool LintoraModel::canUndoReplacement() const
{
    return m_replacement && !aiBusy() && m_session.isRestorable(*m_replacement);
}

void LintoraModel::undoReplacement()
{
    if (!canUndoReplacement())
        return;
    m_session.restore(*m_replacement);
    report(u"已撤销，字幕恢复为替换前内容"_s);
}

void LintoraModel::saveFillerWords(const QString &text)
{
    const QStringList words = SubtitleCleanup::savedWords(text);
    m_preferences.setFillerWords(words);
    publish(m_fillerWords, words, &LintoraModel::fillerWordsChanged);
}

bool LintoraModel::moveTimes(const std::optional<QList<qsizetype>> &indices, const CueShift::Distance &distance)
{
    const auto isThere = [this](qsizetype index) { return index >= 0 && index < items().size(); };
    if (m_owner.refuses(u"任务处理中，请先取消再编辑字幕"_s) || (indices && !std::ranges::all_of(*indices, isThere)))
        return false;
    try {
        LintoraSession next = m_session.state();
        qsizetype moved = 0;
        if (indices) {
            next.items = CueShift::moving(items(), *indices, distance);
            moved = indices->size();
        } else {
            for (SubtitleTrack &track : *next.tracks) {
                QList<qsizetype> all(track.items.size());
                std::iota(all.begin(), all.end(), 0);
                track.items = CueShift::moving(track.items, all, distance);
                moved += track.id == splitOriginal() ? 0 : all.size();
            }
            next = SessionTracks::activated(std::move(next));
        }
        m_session.replace(SessionTracks::committed(std::move(next)), u"移动时间"_s);
        report(u"已移动 %1 条字幕的时间"_s.arg(moved));
        return true;
    } catch (const ConversionError &error) {
        reportFailure(Failure::of(error));
        return false;
    }
}

void LintoraModel::separateLanguages()
{
    if (m_owner.refuses(u"请等待当前任务完成后再分离。"_s))
        return;
    const QList<LanguageSeparation::GroupedCues> groups = LanguageSeparation::split(items());
    if (!LanguageSeparation::holdsBothLanguages(groups)) {
        reportFailure(LanguageSeparation::nothingToSeparate());
        return;
    }
    m_session.replace(SessionTracks::separated(m_session.state(), groups), u"分离中英"_s);
    const bool leftSome = groups.last().group == LanguageSeparation::Group::unassigned;
    report(leftSome ? u"已分离，未识别文字保留在“待归类”中"_s : u"已分离，中文和 English 可独立编辑、拖入 FCP"_s);
}

void LintoraModel::restoreOriginal()
{
    if (!splitOriginal() || m_owner.refuses(u"任务处理中，请先取消再编辑字幕"_s))
        return;
    m_session.replace(SessionTracks::restored(m_session.state()), u"恢复原稿"_s);
    report(u"已恢复分离前原稿"_s);
}
