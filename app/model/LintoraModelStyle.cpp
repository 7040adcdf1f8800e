// The titles' look.

#include "app/model/LintoraModel.h"
#include "app/model/SessionTracks.h"

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
    if (m_owner.refuses(u"任务处理中，请先取消再编辑字幕"_s))
        return;
    LintoraSession next = m_session.state();
    next.options = options;
    m_session.replace(SessionTracks::committed(std::move(next)), u"修改样式"_s, EditStep::gesture);
}

void LintoraModel::setCanvasHeight(qint64 pixels)
{
    Options options = m_session.state().options;
    options.height = pixels;
    setOptions(options);
}

void LintoraModel::matchProject()
{
    if (m_projectSettings)
        setOptions(Imports::matching(options(), *m_projectSettings));
}

void LintoraModel::applyStylePreset(const QUuid &id)
{
    const auto preset = m_stylePresets.find(id);
    if (!preset)
        return;
    setOptions(preset->applying(options()));
    if (!aiBusy())
        report(u"已套用样式预设“%1”"_s.arg(preset->name));
}

void LintoraModel::saveStylePreset(const QString &named)
{
    m_stylePresets.save(named, options());
}
