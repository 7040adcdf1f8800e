#pragma once

#include <QStringView>

#include <optional>

/// Times as people and programs write them.
struct LooseTime
{
    qint64 ms = 0;
    bool isRegular = true; ///< "HH:MM:SS,mmm" or with a dot, as the strict reader takes it.

    /// Reads "1:02:03.5", "02:03,50", "1:02:03" or "01：02：03，004"; the fraction is decimal. Absent for anything
    /// else.
    static std::optional<LooseTime> read(QStringView text);
};

/// The two times of a line "start --> end hints".
struct LooseTimeLine
{
    LooseTime start;
    LooseTime end;
    bool hasRegularArrow = true; ///< "-->".
    QStringView hints;           ///< What follows the end, trimmed.

    static bool isOne(QStringView line); ///< Whether it has an arrow between digits, legible or not.
    static std::optional<LooseTimeLine> read(QStringView line);
};
