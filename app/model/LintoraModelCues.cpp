// Tracks and cues, edited by hand.

#include "app/model/LintoraModel.h"
#include "app/model/SessionTracks.h"
#include "core/ConversionError.h"
#include "core/CueEditing.h"

#include <algorithm>
#include <numeric>

using namespace Qt::StringLiterals;

void LintoraModel::selectTrack(const QUuid &id)
{
    m_session.replace(SessionTracks::selecting(m_session.state(), id), {}, EditStep::amend);
}

void LintoraModel::moveCue(qsizetype index, QUuid to)
{
    moveCues({index}, to);
}

void LintoraModel::moveCues(const QList<qsizetype> &indices, QUuid to)
{
    const auto target = SessionTracks::indexOf(m_session.state(), to);
    const auto isThere = [&](qsizetype index) { return index >= 0 && index < items().size(); };
    if (m_owner.refuses(u"任务处理中，请先取消再编辑字幕"_s) || indices.isEmpty() ||
        !std::ranges::all_of(indices, isThere) || to == selectedTrackID() || to == splitOriginal() || !target)
        return;
    const QString label = tracks().at(*target).label;
    m_session.replace(SessionTracks::movingCues(m_session.state(), indices, to), u"移动字幕"_s);
    report(u"已移到“%1”"_s.arg(label));
}

// Cues

template <class Change>
std::optional<qsizetype> LintoraModel::editCues(const QString &title, const QList<qsizetype> &indices, qsizetype next,
                                                const Change &change)
{
    // The list may have become shorter since somebody looked at it.
    const auto isThere = [&](qsizetype index) { return index >= 0 && index < items().size(); };
    if (m_owner.refuses(u"任务处理中，请先取消再编辑字幕"_s) || !std::ranges::all_of(indices, isThere))
        return std::nullopt;
    try {
        m_session.replaceItems(change(items()), title);
    } catch (const ConversionError &error) {
        reportFailure(Failure::of(error));
        return std::nullopt;
    }
    publish(m_failure, std::optional<Failure>(), &LintoraModel::failureChanged);
    return std::clamp<qsizetype>(next, -1, items().size() - 1);
}

std::optional<qsizetype> LintoraModel::setText(qsizetype index, const QString &text)
{
    return editCues(u"修改文字"_s, {index}, index,
                    [&](const auto &cues) { return CueEditing::settingText(cues, index, text); });
}

std::optional<qsizetype> LintoraModel::setTimes(qsizetype index, qint64 startMS, qint64 endMS)
{
    return editCues(u"修改时间"_s, {index}, index,
                    [&](const auto &cues) { return CueEditing::settingTimes(cues, index, startMS, endMS); });
}

std::optional<qsizetype> LintoraModel::insertCue(qsizetype after)
{
    if (tracks().isEmpty() && !aiBusy()) {
        const QList<Subtitle> first = CueEditing::inserting({}, -1);
        m_session.replace(SessionTracks::importing(m_session.state(), first, source()), u"插入字幕"_s);
        return 0;
    }
    const QList<qsizetype> neighbours = after < 0 ? QList<qsizetype>() : QList<qsizetype>{after};
    return editCues(u"插入字幕"_s, neighbours, std::max<qsizetype>(after, -1) + 1,
                    [&](const auto &cues) { return CueEditing::inserting(cues, std::max<qsizetype>(after, -1)); });
}

std::optional<qsizetype> LintoraModel::pasteCues(const QList<Subtitle> &cues)
{
    if (cues.isEmpty() || tracks().isEmpty())
        return std::nullopt;
    const auto first = std::ranges::min(cues, {}, &Subtitle::start).start;
    return editCues(u"粘贴字幕"_s, {}, CueEditing::positionFor(items(), first),
                    [&](const auto &items) { return CueEditing::placing(items, cues); });
}

std::optional<qsizetype> LintoraModel::deleteCues(const QList<qsizetype> &indices)
{
    const qsizetype first = indices.isEmpty() ? 0 : *std::min_element(indices.begin(), indices.end());
    return editCues(u"删除字幕"_s, indices, first,
                    [&](const auto &cues) { return CueEditing::removing(cues, indices); });
}

std::optional<qsizetype> LintoraModel::splitCue(qsizetype index, qsizetype position)
{
    if (index < 0 || index >= items().size() || position < 0 || position > items().at(index).text.size())
        return std::nullopt;
    return editCues(u"拆分字幕"_s, {index}, index + 1,
                    [&](const auto &cues) { return CueEditing::splitting(cues, index, position); });
}

std::optional<qsizetype> LintoraModel::joinWithNext(qsizetype index)
{
    return editCues(u"合并字幕"_s, {index}, index, [&](const auto &cues) { return CueEditing::joining(cues, index); });
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
