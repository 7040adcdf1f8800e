// Script alignment at its limits. Measured on 2 cores (Release, g++ 12, glibc), CPU time, median of 5:
//
//   edited        5.2 ms    0.16× of git's diff of the same characters, one a line (33 ms; goal: 3×, better 1×)
//   unrelated     3.9 ms
//   repeated      1.7 ms    (goal at the limits: 1 s, better 0.2 s)
//   widest gaps   6.6 ms
//   kept          1.000     of a longest common subsequence of 38,673 characters (goal: 0.999)
//
// "edited" is a transcript of 40,000 characters and cues of it with 5 % of the characters left out, put in or misheard,
// and speech that the transcript lacks, 56,000 in all. The counter `kept` is the part of the longest common subsequence
// that was paired, the whole texts taken (`longestCommon`, 64 cells at a time).

#include "core/ConversionError.h"
#include "core/text/CommonSubsequence.h"
#include "core/text/ScriptAlignment.h"
#include "core/text/SequenceAlignment.h"
#include "tests/support/Generator.h"

#include <benchmark/benchmark.h>

#include <QFile>

using namespace Qt::StringLiterals;

namespace {

struct Input
{
    QString transcript;
    QList<Subtitle> cues;
};

/// Cuts `speech` into cues of `length` characters, at most the 10,000 that are allowed.
QList<Subtitle> cut(const QString &speech, qsizetype length)
{
    QList<Subtitle> cues;
    for (qsizetype at = 0; at < speech.size(); at += length)
        cues.append({.id = cues.size() + 1, .start = at, .end = at + 1, .text = speech.mid(at, length)});
    return cues;
}

/// Text with the frequencies of a language: a few characters are common and thousands are rare.
QString prose(Generator &generator, qsizetype characters)
{
    QString text;
    while (text.size() < characters) {
        const double rank = static_cast<double>(generator.number(0, 999'999)) / 1e6;
        text += QChar(static_cast<char16_t>(0x4E00 + static_cast<int>(3'000 * rank * rank * rank)));
    }
    return text;
}

Input edited()
{
    Generator generator(2024);
    const QString transcript = prose(generator, 40'000);
    QString speech;
    for (const QChar character : transcript) {
        const qint64 edit = generator.number(0, 999);
        if (edit < 17)
            speech += prose(generator, 1);
        else if (edit < 33)
            speech += character + prose(generator, 1);
        else if (edit >= 50)
            speech += character;
        if (generator.number(0, 999) < 10)
            speech += prose(generator, 40);
    }
    speech.truncate(60'000);
    return {.transcript = transcript, .cues = cut(speech, 6)};
}

Input unrelated()
{
    Generator generator(2024);
    const QString speech = prose(generator, 60'000);
    QString transcript = prose(generator, 40'000);
    for (QChar &character : transcript)
        character = QChar(character.unicode() + 0x1000);
    return {.transcript = transcript, .cues = cut(speech, 6)};
}

Input repeated()
{
    return {.transcript = u"好的我们再来一次"_s.repeated(5'000), .cues = cut(u"好的我们再来一次"_s.repeated(7'500), 6)};
}

/// As many gaps near the limit of cells as fit: stretches that share characters but no shingle, each behind an anchor.
Input widestGaps()
{
    Generator generator(2024);
    Input input;
    QString speech;
    while (speech.size() + 2'120 < 60'000 && input.transcript.size() + 1'410 < 40'000) {
        const QString anchor = prose(generator, 8);
        speech += prose(generator, 2'112) + anchor;
        input.transcript += prose(generator, 1'402) + anchor;
    }
    input.cues = cut(speech, 6);
    return input;
}

void run(benchmark::State &state, const Input &input)
{
    qint64 matched = 0;
    for (auto _ : state) {
        try {
            matched = ScriptAlignment::match(input.transcript, input.cues, [] {}).matchedCount();
        } catch (const ConversionError &) {
            // Nothing corresponds; the work was done all the same.
        }
    }
    state.counters["matchedCues"] = static_cast<double>(matched);
}

void alignEdited(benchmark::State &state)
{
    run(state, edited());
}

void alignUnrelated(benchmark::State &state)
{
    run(state, unrelated());
}

void alignRepeated(benchmark::State &state)
{
    run(state, repeated());
}

void alignWidestGaps(benchmark::State &state)
{
    run(state, widestGaps());
}

std::vector<CommonSubsequence::Key> keysOf(QStringView text)
{
    std::vector<CommonSubsequence::Key> keys;
    for (const QChar unit : text)
        keys.push_back(unit.unicode());
    return keys;
}

/// How much of the longest common subsequence the anchors and gaps leave.
void quality(benchmark::State &state)
{
    const Input input = edited();
    QString speech;
    for (const Subtitle &cue : input.cues)
        speech += cue.text;
    const auto source = keysOf(speech);
    const auto script = keysOf(input.transcript);
    double paired = 0;
    double longest = 0;
    for (auto _ : state) {
        const auto partners = SequenceAlignment::match(source, script, 0x10000, [] {});
        paired =
            static_cast<double>(std::count_if(partners.begin(), partners.end(), [](qint32 at) { return at >= 0; }));
        CommonSubsequence exact(0x10000);
        longest = static_cast<double>(exact.find(source, script).size());
    }
    state.counters["kept"] = paired / longest;
    state.counters["longestCommon"] = longest;
    state.counters["sourceUnits"] = static_cast<double>(source.size());
}

} // namespace

BENCHMARK(alignEdited)->Unit(benchmark::kMillisecond);
BENCHMARK(alignUnrelated)->Unit(benchmark::kMillisecond);
BENCHMARK(alignRepeated)->Unit(benchmark::kMillisecond);
BENCHMARK(alignWidestGaps)->Unit(benchmark::kMillisecond);
BENCHMARK(quality)->Iterations(1)->Unit(benchmark::kMillisecond);
