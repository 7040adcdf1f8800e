// The titles' look.

#include "app/model/LintoraModel.h"
#include "app/model/SessionTracks.h"
#include "app/model/TrackHeights.h"

#include <utility>

using namespace Qt::StringLiterals;

void LintoraModel::beginGesture()
{
    m_session.beginGesture();
}

void LintoraModel::endGesture()
{
    m_session.endGesture();
}

void LintoraModel::setOptions(const Options &options)
{
    setStyle(options, look(), u"修改样式"_s);
}

void LintoraModel::setStyle(const Options &options, const std::optional<TitleTemplate> &look, const QString &title)
{
    if (m_owner.refuses(u"任务处理中，请先取消再编辑字幕"_s))
        return;
    LintoraSession next = m_session.state();
    next.options = options;
    next.look = look;
    m_session.replace(SessionTracks::committed(std::move(next)), title, EditStep::gesture);
}

void LintoraModel::setLook(const std::optional<TitleTemplate> &look)
{
    setStyle(options(), look, look ? u"选用标题模板"_s : u"恢复基本字幕"_s);
}

void LintoraModel::showOwnTitles()
{
    if (const auto &project = m_keptProject.project())
        m_ownTitles.show(*project);
    else
        m_ownTitles.close();
}

void LintoraModel::chooseOwnTitles()
{
    m_dialogs.open({.title = u"选择含有标题的 FCP 项目"_s, .extensions = {u"fcpxml"_s, u"fcpxmld"_s}},
                   [this](const QString &path) { m_ownTitles.show(path); });
}

void LintoraModel::setCanvasHeight(qint64 pixels)
{
    Options options = m_session.state().options;
    options.height = pixels;
    setOptions(options);
}

void LintoraModel::matchProject()
{
    if (const auto &settings = m_keptProject.settings())
        setOptions(Imports::matching(options(), *settings));
}

bool LintoraModel::areTracksOnTop() const
{
    return TrackHeights::overlapping(visibleTracks()).has_value();
}

void LintoraModel::stackTracks()
{
    if (m_owner.refuses(u"任务处理中，请先取消再编辑字幕"_s))
        return;
    const QList<SubtitleTrack> shown = visibleTracks();
    const auto distances = TrackHeights::stacked(shown);
    if (!distances) {
        reportFailure(u"画面放不下这么多行，请在样式里调小字号，或逐组设置底部距离。"_s);
        return;
    }
    LintoraSession next = m_session.state();
    QStringList said;
    for (qsizetype i = 0; i < shown.size(); ++i) {
        const auto index = SessionTracks::indexOf(next, shown.at(i).id);
        (*next.tracks)[*index].options.bottomPercent = distances->at(i);
        said += u"%1 %2%"_s.arg(shown.at(i).label).arg(distances->at(i));
    }
    m_session.replace(SessionTracks::activated(std::move(next)), u"错开高度"_s);
    report(u"已错开底部距离："_s + said.join(u"，"_s));
}

void LintoraModel::applyStylePreset(const QUuid &id)
{
    const auto preset = m_stylePresets.find(id);
    if (!preset)
        return;
    setStyle(preset->applying(options()), preset->look, u"修改样式"_s);
    if (!aiBusy())
        report(u"已套用样式预设“%1”"_s.arg(preset->name));
}

void LintoraModel::saveStylePreset(const QString &named)
{
    m_stylePresets.save(named, options(), look());
}
