#pragma once

#include "core/Check.h"
#include "store/SubtitleStylePreset.h"

#include <functional>

/// The file in which the user's style presets are kept.
class StylePresetStore
{
public:
    static constexpr qsizetype mostPresets = 100;
    static constexpr qint64 sizeLimit = 1'048'576; ///< Bytes of the largest file that is read or written.

    StylePresetStore(); ///< The user's own file.
    explicit StylePresetStore(QString file);

    const QString &file() const { return m_file; }

    /// The presets in the order in which they were saved; none when there is no file.
    /// @throws ConversionError "样式预设文件过大。", "样式预设数量或编号无效。", or as SubtitleStylePreset::validate
    /// does.
    /// @throws PlatformError when the file cannot be read or is no such JSON.
    QList<SubtitleStylePreset> load() const;

    /// Reads the bytes of such a file. @throws ConversionError, PlatformError as load does.
    static QList<SubtitleStylePreset> decode(QByteArrayView data);

    /// Replaces the file whole, making its folder where it is missing. A file that load refuses is never replaced: the
    /// call ends with load's error. Nor is anything written that load would refuse.
    /// @throws ConversionError "最多可保存 100 个样式预设。", or as load does.
    /// @throws PlatformError when the file cannot be written.
    void save(const QList<SubtitleStylePreset> &presets) const;

    /// Loads, changes and saves in one, so that two programs that do so at the same time do not undo each other.
    /// Returns what was saved. Calls `check` while it waits for the other one. @throws ConversionError, PlatformError
    /// as load and save do, and what `change` throws
    QList<SubtitleStylePreset>
    update(const std::function<QList<SubtitleStylePreset>(const QList<SubtitleStylePreset> &)> &change,
           const Check &check = {}) const;

private:
    QString m_file;
};
