#pragma once

#include "core/Subtitle.h"

#include <random>

/// Seeded test data: the same on every machine for the same seed.
class Generator
{
public:
    explicit Generator(quint32 seed)
        : m_engine(seed)
    {}

    /// A whole number from `lowest` to `highest`, both included. (The standard's distributions differ between
    /// libraries.)
    qint64 number(qint64 lowest, qint64 highest);

    bool chance(int percent) { return number(1, 100) <= percent; }

    template <class List>
    auto pick(const List &list)
    {
        return list[static_cast<decltype(std::size(list))>(number(0, qint64(std::size(list)) - 1))];
    }

    /// Chinese speech of `fewest` to `most` characters.
    QString speech(int fewest, int most);

    /// `count` cues in order, one after the other, some touching; each at least `shortestMS` long.
    QList<Subtitle> cues(qsizetype count, qint64 shortestMS = 100);

private:
    std::mt19937_64 m_engine;
};
