#include "core/sound/Waveform.h"

#include <QtEndian>

#include <algorithm>

namespace {

constexpr qsizetype foldedStretches = 4; ///< That are one of the next level.
constexpr qsizetype stretchesOfFrame = SpeechBorders::frameMS / Waveform::peakMS;

/// How many stretches there are on all levels of a part.
constexpr qsizetype swingsOfPart(qsizetype stretches)
{
    return stretches == 1 ? 1 : stretches + swingsOfPart(stretches / foldedStretches);
}

constexpr qsizetype frameCount(qint64 stretches)
{
    return qsizetype((stretches + stretchesOfFrame - 1) / stretchesOfFrame);
}

constexpr qsizetype loudnessSize = sizeof(quint16);

} // namespace

Waveform::Part::Part()
    : m_swings(size_t(swingsOfPart(capacity)))
    , m_loudness(size_t(capacity / stretchesOfFrame))
{}

void Waveform::Part::set(qsizetype index, Swing swing, quint16 loudest)
{
    m_swings[size_t(index)] = swing;
    quint16 &loudness = m_loudness[size_t(index / stretchesOfFrame)];
    loudness = std::max(loudness, loudest);
}

void Waveform::Part::fold()
{
    auto from = m_swings.cbegin();
    for (auto to = m_swings.begin() + capacity; to != m_swings.end(); ++to) {
        *to = *from;
        for (qsizetype i = 1; i < foldedStretches; ++i)
            Waveform::join(*to, *(from + i));
        from += foldedStretches;
    }
}

void Waveform::Part::join(Swing &into, qsizetype begin, qsizetype end) const
{
    auto level = m_swings.begin();
    for (qsizetype size = capacity; begin < end; size /= foldedStretches) {
        while (begin < end && (begin % foldedStretches != 0 || end - begin < foldedStretches))
            Waveform::join(into, level[begin++]);
        while (begin < end && end % foldedStretches != 0)
            Waveform::join(into, level[--end]);
        begin /= foldedStretches;
        end /= foldedStretches;
        level += size;
    }
}

void Waveform::join(Swing &into, Swing other)
{
    into.low = std::min(into.low, other.low);
    into.high = std::max(into.high, other.high);
}

Peak Waveform::between(qint64 startMS, qint64 endMS) const
{
    const qint64 begin = startMS >= 0 ? startMS / peakMS : 0;
    const qint64 end = std::min(endMS > startMS ? (endMS + peakMS - 1) / peakMS : begin + 1, m_peaks);
    if (begin >= end || (startMS < 0 && endMS <= startMS))
        return {};
    const auto at = [this](qint64 stretch) {
        return m_parts[qsizetype(stretch / Part::capacity)]->at(qsizetype(stretch % Part::capacity));
    };
    Swing swing = at(begin);
    for (qint64 place = begin; place < end;) {
        const auto first = qsizetype(place % Part::capacity);
        const qsizetype count = qsizetype(std::min<qint64>(Part::capacity - first, end - place));
        m_parts[qsizetype(place / Part::capacity)]->join(swing, first, first + count);
        place += count;
    }
    return {.low = swing.low, .high = swing.high, .isSpeech = speech().isSpeech(begin * peakMS, end * peakMS)};
}

const SpeechBorders &Waveform::speech() const
{
    static const SpeechBorders none;
    return m_speech ? *m_speech : none;
}

QList<quint16> Waveform::loudness() const
{
    constexpr qsizetype framesOfPart = Part::capacity / stretchesOfFrame;
    const qsizetype count = frameCount(m_peaks);
    QList<quint16> result;
    result.reserve(count);
    for (qsizetype i = 0; i < count; ++i)
        result.append(m_parts[i / framesOfPart]->loudness(i % framesOfPart));
    return result;
}

void Waveform::findSpeech()
{
    m_speech = std::make_shared<const SpeechBorders>(loudness());
}

QByteArray Waveform::toBytes() const
{
    QByteArray bytes;
    bytes.reserve(qsizetype(m_peaks) * 2 + frameCount(m_peaks) * loudnessSize);
    for (qint64 i = 0; i < m_peaks; ++i) {
        const Swing swing = m_parts[qsizetype(i / Part::capacity)]->at(qsizetype(i % Part::capacity));
        bytes.append(char(swing.low));
        bytes.append(char(swing.high));
    }
    for (const quint16 loudest : loudness()) {
        const quint16 little = qToLittleEndian(loudest);
        bytes.append(reinterpret_cast<const char *>(&little), loudnessSize);
    }
    return bytes;
}

std::optional<Waveform> Waveform::fromBytes(QByteArrayView bytes)
{
    // A frame of two stretches takes six bytes, and one of the last stretch alone takes four.
    constexpr qsizetype frameSize = stretchesOfFrame * 2 + loudnessSize;
    const qint64 stretches = bytes.size() / frameSize * stretchesOfFrame + (bytes.size() % frameSize == 0 ? 0 : 1);
    if (stretches * 2 + frameCount(stretches) * loudnessSize != bytes.size())
        return std::nullopt;
    const QByteArrayView loudness = bytes.sliced(qsizetype(stretches) * 2);
    Waveform result;
    for (qint64 begin = 0; begin < stretches; begin += Part::capacity) {
        const auto part = std::make_shared<Part>();
        const qint64 end = std::min<qint64>(begin + Part::capacity, stretches);
        for (qint64 i = begin; i < end; ++i) {
            const Swing swing{.low = qint8(bytes[qsizetype(i) * 2]), .high = qint8(bytes[qsizetype(i) * 2 + 1])};
            if (swing.low > swing.high)
                return std::nullopt;
            const auto *const loudest = loudness.data() + i / stretchesOfFrame * loudnessSize;
            part->set(qsizetype(i - begin), swing, qFromLittleEndian<quint16>(loudest));
        }
        part->fold();
        result.m_parts.append(part);
    }
    result.m_peaks = stretches;
    result.findSpeech();
    return result;
}

bool operator==(const Waveform &a, const Waveform &b)
{
    return a.m_peaks == b.m_peaks && a.toBytes() == b.toBytes();
}
