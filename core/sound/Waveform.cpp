#include "core/sound/Waveform.h"

#include <QtEndian>

#include <algorithm>
#include <tuple>

namespace {

constexpr qsizetype foldedStretches = 16; ///< That are one of the next level.
constexpr qsizetype stretchesOfFrame = SpeechBorders::frameMS / Waveform::peakMS;

/// How many stretches there are on all levels of a part.
constexpr qsizetype swingsOfPart(qsizetype stretches)
{
    return stretches == 1 ? 1 : stretches + swingsOfPart(stretches / foldedStretches);
}

constexpr qsizetype frameCount(qsizetype stretches)
{
    return (stretches + stretchesOfFrame - 1) / stretchesOfFrame;
}

constexpr qsizetype swingSize = 2; ///< Bytes.
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

void Waveform::Part::add(const Part &other)
{
    constexpr int steps = 127;
    constexpr int fullScale = 32'768;
    for (size_t i = 0; i < size_t(capacity); ++i) {
        m_swings[i].low = qint8(std::max(-steps, m_swings[i].low + other.m_swings[i].low));
        m_swings[i].high = qint8(std::min(steps, m_swings[i].high + other.m_swings[i].high));
    }
    for (size_t i = 0; i < m_loudness.size(); ++i)
        m_loudness[i] = quint16(std::min(fullScale, m_loudness[i] + other.m_loudness[i]));
    fold();
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

std::span<const quint16> Waveform::Part::loudness(qsizetype stretches) const
{
    return std::span(m_loudness).first(size_t(frameCount(stretches)));
}

qsizetype Waveform::Part::byteCount(qsizetype stretches)
{
    return stretches * swingSize + frameCount(stretches) * loudnessSize;
}

QByteArray Waveform::Part::toBytes(qsizetype stretches) const
{
    QByteArray bytes;
    bytes.reserve(byteCount(stretches));
    for (const Swing swing : std::span(m_swings).first(size_t(stretches))) {
        bytes.append(char(swing.low));
        bytes.append(char(swing.high));
    }
    for (const quint16 loudest : loudness(stretches)) {
        const quint16 little = qToLittleEndian(loudest);
        bytes.append(reinterpret_cast<const char *>(&little), loudnessSize);
    }
    return bytes;
}

bool Waveform::Part::take(std::span<const char> bytes, qsizetype stretches)
{
    const char *const loudness = bytes.data() + stretches * swingSize;
    for (qsizetype i = 0; i < stretches; ++i) {
        const auto *const swings = bytes.data() + i * swingSize;
        const Swing swing{.low = qint8(swings[0]), .high = qint8(swings[1])};
        if (swing.low > swing.high)
            return false;
        set(i, swing, qFromLittleEndian<quint16>(loudness + i / stretchesOfFrame * loudnessSize));
    }
    fold();
    return true;
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

Waveform Waveform::together(const Waveform &a, const Waveform &b)
{
    const auto &[shorter, longer] = a.m_peaks < b.m_peaks ? std::tie(a, b) : std::tie(b, a);
    Waveform result = longer;
    for (qsizetype i = 0; i < shorter.m_parts.size(); ++i) {
        auto &part = result.m_parts[i];
        if (shorter.m_parts[i]->isSilent())
            continue;
        if (part->isSilent()) {
            part = shorter.m_parts[i];
            continue;
        }
        const auto both = std::make_shared<Part>(*part);
        both->add(*shorter.m_parts[i]);
        part = both;
    }
    result.findSpeech();
    return result;
}

qsizetype Waveform::stretchesIn(qsizetype part) const
{
    return qsizetype(std::min<qint64>(Part::capacity, m_peaks - qint64(part) * Part::capacity));
}

void Waveform::findSpeech()
{
    std::vector<std::span<const quint16>> loudness;
    for (qsizetype i = 0; i < m_parts.size(); ++i)
        loudness.push_back(m_parts[i]->loudness(stretchesIn(i)));
    m_speech = std::make_shared<const SpeechBorders>(loudness);
}

void Waveform::write(const std::function<void(QByteArrayView)> &take) const
{
    for (qsizetype i = 0; i < m_parts.size(); ++i)
        take(m_parts[i]->toBytes(stretchesIn(i)));
}

qint64 Waveform::byteCount() const
{
    qint64 count = 0;
    for (qsizetype i = 0; i < m_parts.size(); ++i)
        count += Part::byteCount(stretchesIn(i));
    return count;
}

std::optional<Waveform> Waveform::read(qint64 size, const std::function<bool(std::span<char>)> &fill)
{
    // A frame of two stretches takes six bytes, and one of the last stretch alone takes four.
    const qint64 frameSize = Part::byteCount(stretchesOfFrame);
    Waveform result;
    result.m_peaks = size / frameSize * stretchesOfFrame + (size % frameSize == 0 ? 0 : 1);
    std::vector<char> bytes(size_t(Part::byteCount(Part::capacity)));
    while (qint64(result.m_parts.size()) * Part::capacity < result.m_peaks) {
        const qsizetype stretches = result.stretchesIn(result.m_parts.size());
        const auto piece = std::span(bytes).first(size_t(Part::byteCount(stretches)));
        const auto part = std::make_shared<Part>();
        if (!fill(piece) || !part->take(piece, stretches))
            return std::nullopt;
        result.m_parts.append(part);
    }
    if (result.byteCount() != size)
        return std::nullopt;
    result.findSpeech();
    return result;
}

bool operator==(const Waveform &a, const Waveform &b)
{
    const auto isSame = [](const auto &one, const auto &other) { return one == other || *one == *other; };
    return a.m_peaks == b.m_peaks && std::ranges::equal(a.m_parts, b.m_parts, isSame);
}
