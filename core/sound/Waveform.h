#pragma once

#include "core/timing/SpeechBorders.h"

#include <QByteArray>
#include <QList>

#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <vector>

/// How far a stretch of sound swings both ways, and whether anybody speaks in it.
struct Peak
{
    qint8 low = 0;  ///< The lowest sample, in 1/127 of full scale: -127 to 127, never above high.
    qint8 high = 0; ///< The highest.
    bool isSpeech = false;

    friend bool operator==(const Peak &, const Peak &) = default;
};

/// The shape of a recording as it is drawn, from single pixels of a few milliseconds to all of it in one.
///
/// A value: copies share what they hold, and one that is made while the recording is still being read
/// (WaveformMaker) costs no more than what came since. Three hours take some 7 MB.
class Waveform
{
public:
    static constexpr qint64 peakMS = 5; ///< The finest stretch that is known by itself.

    Waveform() = default; ///< Of nothing: no length, silent everywhere.

    bool isEmpty() const { return m_peaks == 0; }

    /// How long the recording is, or what is known of it so far, rounded up to peakMS. Milliseconds.
    qint64 lengthMS() const { return m_peaks * peakMS; }

    /// What sounds in [startMS, endMS), to whole stretches of peakMS outwards; the stretch at startMS where that is
    /// empty. Beyond the recording it is silent. Takes some microseconds, however long the stretch is.
    Peak between(qint64 startMS, qint64 endMS) const;

    /// Where speech begins and ends. None where nothing is known, or where it is never quiet.
    const SpeechBorders &speech() const;

    /// How far two sounds swing at most while they sound together; where one of them is silent, as far as the other.
    static Waveform together(const Waveform &a, const Waveform &b);

    /// Hands out the waveform as bytes, some KiB at a time, byteCount() in all. `take` may throw.
    void write(const std::function<void(QByteArrayView)> &take) const;
    qint64 byteCount() const;

    /// Takes back what write() has handed out, `size` bytes of it. `fill` is asked for them in order and says whether
    /// it had that many. Absent when they are not such bytes. What speech is, is worked out anew.
    static std::optional<Waveform> read(qint64 size, const std::function<bool(std::span<char>)> &fill);

    friend bool operator==(const Waveform &a, const Waveform &b); ///< Whether they look alike.

private:
    friend class WaveformMaker;

    /// How far a stretch swings, without what it means.
    struct Swing
    {
        qint8 low = 0;
        qint8 high = 0;

        friend bool operator==(const Swing &, const Swing &) = default;
    };

    /// Consecutive stretches of peakMS. One that is full never changes any more.
    class Part
    {
    public:
        static constexpr qsizetype capacity = 4'096; ///< Stretches: 16^3, some twenty seconds.

        Part();

        /// Sets what the stretch at `index` is, which joins its loudness frame.
        void set(qsizetype index, Swing swing, quint16 loudest);
        void add(const Part &other); ///< What sounds together with it.
        void fold();                 ///< Works out what stretches are together, once they are all set.

        Swing at(qsizetype index) const { return m_swings[size_t(index)]; }
        bool isSilent() const { return m_swings.back() == Swing(); }  ///< All of it, once it is folded.
        void join(Swing &into, qsizetype begin, qsizetype end) const; ///< The stretches [begin, end).

        /// How loud the frames are that the first `stretches` lie in.
        std::span<const quint16> loudness(qsizetype stretches) const;

        QByteArray toBytes(qsizetype stretches) const;               ///< The first ones.
        static qsizetype byteCount(qsizetype stretches);             ///< Of these bytes.
        bool take(std::span<const char> bytes, qsizetype stretches); ///< What toBytes gave; whether it may be that.

        friend bool operator==(const Part &, const Part &) = default;

    private:
        std::vector<Swing> m_swings;     ///< Of each stretch, then of each sixteen of them, and so on to one of all.
        std::vector<quint16> m_loudness; ///< The largest sample, by its size, of each SpeechBorders::frameMS.
    };

    static void join(Swing &into, Swing other);
    qsizetype stretchesIn(qsizetype part) const;
    void findSpeech();

    QList<std::shared_ptr<const Part>> m_parts;    ///< All full but the last.
    qint64 m_peaks = 0;                            ///< Stretches in all.
    std::shared_ptr<const SpeechBorders> m_speech; ///< Null while nothing is known.
};
