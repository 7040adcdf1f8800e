#include "app/model/StylePresets.h"

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

StylePresets::StylePresets(const StylePresetStore &store, QObject *parent)
    : QObject(parent)
    , m_store(store)
{}

void StylePresets::load()
{
    m_presets = m_store.load();
}

std::optional<SubtitleStylePreset> StylePresets::find(const QUuid &id) const
{
    const auto found = std::ranges::find(m_presets, id, &SubtitleStylePreset::id);
    return found == m_presets.end() ? std::nullopt : std::optional(*found);
}

void StylePresets::save(const QString &name, const Options &style, const std::optional<TitleTemplate> &look)
{
    change([=](const Presets &presets) { return SubtitleStylePresets::saving(presets, name, style, look); },
           u"已保存样式预设“%1”"_s.arg(name.trimmed()));
}

void StylePresets::rename(const QUuid &id, const QString &name)
{
    change([id, name](const Presets &presets) { return SubtitleStylePresets::renaming(presets, id, name); },
           u"已改名为“%1”"_s.arg(name.trimmed()));
}

void StylePresets::remove(const QUuid &id)
{
    const auto preset = std::ranges::find(m_presets, id, &SubtitleStylePreset::id);
    if (preset == m_presets.end())
        return;
    m_removed = Removed{.preset = *preset, .index = preset - m_presets.begin()};
    change([id](const Presets &presets) { return SubtitleStylePresets::removing(presets, id); },
           u"已删除样式预设“%1”，可撤销"_s.arg(preset->name));
}

bool StylePresets::canRestore() const
{
    return m_removed && !find(m_removed->preset.id);
}

void StylePresets::restore()
{
    if (!canRestore())
        return;
    change(
        [removed = *m_removed](Presets presets) {
            presets.insert(std::min(removed.index, presets.size()), removed.preset);
            return presets;
        },
        u"已恢复样式预设“%1”"_s.arg(m_removed->preset.name));
}

void StylePresets::wait()
{
    m_changes.wait();
}

void StylePresets::change(std::function<Presets(const Presets &)> change, const QString &message)
{
    m_changes.run(
        u"正在保存预设…"_s,
        [store = m_store, change = std::move(change)](Job &job, const ProgressReport & /*report*/) {
            return store.update(change, [&] { job.check(); });
        },
        [this, message](const Presets &presets) {
            const bool isNews = std::exchange(m_presets, presets) != presets;
            if (isNews)
                Q_EMIT changed();
            Q_EMIT done(message);
        },
        [this](const Failure &failure) { Q_EMIT refused(failure); });
}
