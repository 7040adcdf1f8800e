#pragma once

#include <QString>

#include <array>
#include <optional>
#include <span>

/// A named pipe through which a helper's standard output comes as samples: the helper waits where we are slower, and
/// nothing lies on the disk.
class SamplePipe
{
public:
    /// Makes a pipe at `path`, where nothing must be. @throws PlatformError
    explicit SamplePipe(const QString &path);
    ~SamplePipe(); ///< Removes it. Who still writes hears that nobody reads.
    SamplePipe(const SamplePipe &) = delete;
    SamplePipe &operator=(const SamplePipe &) = delete;

    /// Waits some milliseconds at most and hands out what has come, which may be nothing; absent once all who opened it
    /// for writing have closed it. Somebody must have opened it. Valid until the next call. @throws PlatformError
    std::optional<std::span<const qint16>> read();

private:
    static constexpr size_t sampleSize = sizeof(qint16);
    static constexpr size_t capacity = 64 * 1024; ///< Bytes, as many as a pipe holds.

    QString m_path;
    int m_descriptor;
    std::array<qint16, capacity / sampleSize> m_samples = {};
    std::optional<char> m_half; ///< Of a sample whose other byte has not come.
};
