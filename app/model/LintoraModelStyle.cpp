// The titles' look.

#include "app/model/LintoraModel.h"
#include "app/model/SessionTracks.h"
#include "core/ConversionError.h"

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

using Presets = QList<SubtitleStylePreset>;

namespace {

/// Where the preset stands. @throws ConversionError when another program has removed it
Presets::iterator find(Presets &presets, const QUuid &id)
{
    const auto found = std::ranges::find(presets, id, &SubtitleStylePreset::id);
    if (found == presets.end())
        throw ConversionError(u"该样式预设已不存在。"_s);
    return found;
}

} // namespace

void LintoraModel::beginGesture()
{
    m_isGesture = true;
    m_gestureRecorded = false;
}

void LintoraModel::endGesture()
{
    m_isGesture = false;
}

void LintoraModel::setOptions(const Options &options)
{
    if (refuseWhileBusy(u"任务处理中，请先取消再编辑字幕"_s))
        return;
    LintoraSession next = m_job;
    next.options = options;
    replaceJob(SessionTracks::committed(std::move(next)), u"修改样式"_s, Step::gesture);
}

void LintoraModel::setCanvasHeight(qint64 pixels)
{
    Options options = m_job.options;
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
    const auto preset = std::ranges::find(m_stylePresets, id, &SubtitleStylePreset::id);
    if (preset == m_stylePresets.end())
        return;
    setOptions(preset->applying(options()));
    if (!aiBusy())
        report(u"已套用样式预设“%1”"_s.arg(preset->name));
}

void LintoraModel::saveStylePreset(const QString &named)
{
    const QString name = named.trimmed();
    changePresets(
        [name, style = options()](Presets presets) {
            const auto same = std::ranges::find(presets, name, &SubtitleStylePreset::name);
            if (same != presets.end())
                same->style = style;
            else
                presets.append({.id = QUuid::createUuid(), .name = name, .style = style});
            return presets;
        },
        u"已保存样式预设“%1”"_s.arg(name));
}

void LintoraModel::renameStylePreset(const QUuid &id, const QString &name)
{
    const QString wanted = name.trimmed();
    changePresets(
        [id, wanted](Presets presets) {
            const auto preset = find(presets, id);
            const auto isTaken = [&](const SubtitleStylePreset &each) { return each.id != id && each.name == wanted; };
            if (std::ranges::any_of(presets, isTaken))
                throw ConversionError(u"已有同名的样式预设，请换一个名称。"_s);
            preset->name = wanted;
            return presets;
        },
        u"已改名为“%1”"_s.arg(wanted));
}

void LintoraModel::removeStylePreset(const QUuid &id)
{
    const auto preset = std::ranges::find(m_stylePresets, id, &SubtitleStylePreset::id);
    if (preset == m_stylePresets.end())
        return;
    m_removedPreset = RemovedPreset{.preset = *preset, .index = preset - m_stylePresets.begin()};
    changePresets(
        [id](Presets presets) {
            presets.erase(find(presets, id));
            return presets;
        },
        u"已删除样式预设“%1”，可撤销"_s.arg(preset->name));
}

bool LintoraModel::canRestoreStylePreset() const
{
    return m_removedPreset && std::ranges::find(m_stylePresets, m_removedPreset->preset.id, &SubtitleStylePreset::id) ==
                                  m_stylePresets.end();
}

void LintoraModel::restoreStylePreset()
{
    if (!canRestoreStylePreset())
        return;
    const RemovedPreset removed = *m_removedPreset;
    changePresets(
        [removed](Presets presets) {
            presets.insert(std::min(removed.index, presets.size()), removed.preset);
            return presets;
        },
        u"已恢复样式预设“%1”"_s.arg(removed.preset.name));
}

/// Changes the file and then the list. A file that cannot be read or written leaves both as they were.
void LintoraModel::changePresets(std::function<Presets(Presets)> change, const QString &message)
{
    m_presets.run(
        u"正在保存预设…"_s,
        [store = m_presetStore, change = std::move(change)](Job & /*job*/, const ProgressReport & /*report*/) {
            return store.update(change);
        },
        [this, message](const Presets &presets) {
            publish(m_stylePresets, presets, &LintoraModel::stylePresetsChanged);
            report(message);
        },
        [this](const Failure &failure) { reportFailure(failure); });
}
