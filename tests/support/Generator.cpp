#include "tests/support/Generator.h"

using namespace Qt::StringLiterals;

qint64 Generator::number(qint64 lowest, qint64 highest)
{
    const quint64 span = static_cast<quint64>(highest) - static_cast<quint64>(lowest) + 1;
    return lowest + static_cast<qint64>(m_engine() % span);
}

QString Generator::speech(int fewest, int most)
{
    static constexpr QStringView characters = u"的一是在不了有和人这中大为上个国我以要他时来用们生到作地于出就分对成会"
                                              u"可主发年动同工也能下过子说产种面而方后多定行学法所民得经";
    QString text;
    for (qint64 left = number(fewest, most); left > 0; --left)
        text += pick(characters);
    return text;
}

QList<Subtitle> Generator::cues(qsizetype count, qint64 shortestMS)
{
    QList<Subtitle> cues;
    cues.reserve(count);
    qint64 time = 0;
    for (qsizetype i = 0; i < count; ++i) {
        const qint64 end = time + shortestMS + number(0, 3'000);
        cues.append({.id = i + 1, .start = time, .end = end, .text = speech(2, 20)});
        time = end + (chance(50) ? 0 : number(1, 500));
    }
    return cues;
}
