#pragma once

#include <QFile>
#include <QString>

#include <functional>
#include <vector>

/// A WAV file of 16 kHz, mono, 16 bits: what is rendered and what is recognised. Places and lengths are samples.
class RenderedSound
{
public:
    static constexpr int samplesPerMS = 16;

    /// Opens the file. One that is missing, is no WAV file or has another form has no sample.
    explicit RenderedSound(const QString &path);

    qint64 size() const { return m_size; }

    /// Makes it exactly `size` samples long: cuts it, or goes on with silence.
    /// @throws PlatformError
    void resize(qint64 size);

    /// Hands out the samples in order, in blocks of at most a second.
    /// @throws PlatformError; passes on what `take` throws
    void forEachBlock(const std::function<void(const std::vector<qint16> &)> &take);

    /// Writes the samples from `begin` to `end`, both within the file, into a new file.
    /// @throws PlatformError
    void copy(qint64 begin, qint64 end, const QString &path);

private:
    std::vector<qint16> read(qint64 begin, qint64 count);

    QFile m_file;
    qint64 m_begin = 0; ///< Bytes before the first sample.
    qint64 m_size = 0;
};
