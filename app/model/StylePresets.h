#pragma once

#include "app/model/BackgroundTask.h"
#include "core/Failure.h"
#include "store/StylePresetStore.h"

/// The user's style presets, and what a person does to them.
///
/// A change is written on a worker, and the list follows when the file has it: a file that cannot be read or written
/// leaves both as they were. Changes are made one after another.
class StylePresets : public QObject
{
    Q_OBJECT

public:
    explicit StylePresets(const StylePresetStore &store, QObject *parent = nullptr);

    void load(); ///< Blocks. @throws ConversionError, PlatformError as StylePresetStore::load does

    const QList<SubtitleStylePreset> &all() const { return m_presets; } ///< In the order in which they were saved.
    std::optional<SubtitleStylePreset> find(const QUuid &id) const;

    /// Replaces the one of that name.
    void save(const QString &name, const Options &style, const std::optional<TitleTemplate> &look = {});
    void rename(const QUuid &id, const QString &name);
    void remove(const QUuid &id);
    bool canRestore() const; ///< Whether the preset removed last is still missing.
    void restore();

    void wait(); ///< Waits until every change is in the file.

Q_SIGNALS:
    void changed();
    void done(const QString &message);    ///< What a change has come to.
    void refused(const Failure &failure); ///< Why one was not made.

private:
    using Presets = QList<SubtitleStylePreset>;

    struct Removed
    {
        SubtitleStylePreset preset;
        qsizetype index; ///< Where it stood.
    };

    void change(std::function<Presets(const Presets &)> change, const QString &message);

    StylePresetStore m_store;
    Presets m_presets;
    std::optional<Removed> m_removed; ///< The one removed last.
    BackgroundTask m_changes{BackgroundTask::Order::oneAfterAnother, BackgroundTask::Effect::writes};
};
