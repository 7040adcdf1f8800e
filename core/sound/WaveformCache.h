#pragma once

#include "core/sound/Waveform.h"

#include <QString>

#include <optional>

/// Waveforms on the disk, so that a recording that was read need not be read again, nor a timeline rendered to be seen.
///
/// A file for each sound, written whole and found again by what the sound is of. What is damaged is as if it were not
/// there. The cache is bounded: what was not looked at for longest goes first. Several programs may
/// use the same folder.
class WaveformCache
{
public:
    /// What tells a sound from others and from what it was before.
    struct Key
    {
        QString name;          ///< Of one sound there is one entry: for a recording its path, which is absolute.
        QByteArray state = {}; ///< What else it depends on: for a recording its size and date.

        /// That of the file at `path` as it is now, whichever way leads to it; absent when there is none.
        static std::optional<Key> of(const QString &path);

        friend bool operator==(const Key &, const Key &) = default;
    };

    static constexpr qint64 largest = 64 * 1024 * 1024; ///< Bytes of all files together: some thirty hours.

    /// `folder` need not exist; others may read nothing in it.
    explicit WaveformCache(QString folder, qint64 largestSize = largest);

    std::optional<Waveform> find(const Key &key) const;
    void keep(const Key &key, const Waveform &waveform) const;           ///< @throws PlatformError
    void keepWhereItMay(const Key &key, const Waveform &waveform) const; ///< What cannot be kept is made again.

private:
    QString file(const Key &key) const;
    void bound() const;

    QString m_folder;
    qint64 m_largest;
};
