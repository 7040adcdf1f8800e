#pragma once

#include <QString>

#include <optional>
#include <vector>

/// WAV files that tests write and read, 16 bits a sample.
struct Wav
{
    int rate = 16'000;                              ///< Samples a second.
    std::vector<std::vector<double>> channels = {}; ///< Samples of each, in parts of full scale; equally many.

    /// @return whether it was written
    bool write(const QString &path) const;

    /// Absent when the file is no such WAV file.
    static std::optional<Wav> read(const QString &path);
};
