#pragma once

#include "core/sound/Waveform.h"

#include <QString>

#include <optional>

/// Waveforms of recordings on the disk, so that one that was read need not be read again.
///
/// A file for each recording, written whole and found again by the recording's path, size and date. What is damaged is
/// as if it were not there. The cache is bounded: what was not looked at for longest goes first. Several programs may
/// use the same folder.
class WaveformCache
{
public:
    /// What tells a recording from others and from what it was before.
    struct Key
    {
        QString path;          ///< Absolute, without symbolic links.
        qint64 size = 0;       ///< Bytes.
        qint64 modifiedMS = 0; ///< Of the last change, since 1970.

        /// That of the file at `path` as it is now; absent when there is none.
        static std::optional<Key> of(const QString &path);

        friend bool operator==(const Key &, const Key &) = default;
    };

    static constexpr qint64 largest = 64 * 1024 * 1024; ///< Bytes of all files together: some thirty hours.

    /// `folder` need not exist; others may read nothing in it.
    explicit WaveformCache(QString folder, qint64 largestSize = largest);

    std::optional<Waveform> find(const Key &key) const;
    void keep(const Key &key, const Waveform &waveform) const; ///< @throws PlatformError

private:
    QString file(const Key &key) const;
    void bound() const;

    QString m_folder;
    qint64 m_largest;
};
