// Cleanup in process. Measured on 2 cores (Release, g++ 12, glibc), CPU time, median of 5:
//
//                      10,000 cues   100,000 cues
//   both switches          6.0 ms          68 ms     0.10× and 0.11× the chain (goal: 0.5×, better 0.1×)
//   fillers alone          6.0 ms          73 ms
//   chain                   58 ms         600 ms
//
//   hostile words          4,000 characters   64,000 characters
//   laughter               3.8 ms             60 ms
//   clauses                2.4 ms             37 ms
//
// The corpus is spokenCues: Chinese speech of one to four clauses, a filler word before every third clause, an
// exclamation or laughter now and then. "chain" is the same work done by one regular expression after the other. The
// hostile list has a hundred words, nearly all of 60 characters, that begin alike, on a cue that is
// nearly made of them.

#include "core/text/SubtitleCleanup.h"
#include "tests/support/Generator.h"

#include <QRegularExpression>

#include <benchmark/benchmark.h>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

constexpr SubtitleCleanup::Switches both{.removeFillers = true, .removePunctuation = true};

QList<Subtitle> spokenCues(qsizetype count)
{
    Generator generator(2024);
    QList<Subtitle> cues = generator.cues(count);
    const QStringList fillers = SubtitleCleanup::defaultFillerWords();
    for (Subtitle &cue : cues) {
        if (generator.chance(3)) {
            cue.text = generator.pick(QStringList{u"哈哈哈！"_s, u"哎呦我去！"_s, u"……"_s});
            continue;
        }
        cue.text.clear();
        for (qint64 clauses = generator.number(1, 4); clauses > 0; --clauses) {
            if (generator.chance(33))
                cue.text += generator.pick(fillers) + (generator.chance(50) ? u"，"_s : QString());
            cue.text += generator.speech(2, 8) + (generator.chance(5) ? u"、“好”"_s : QString());
            cue.text += generator.pick(QStringView(u"，，，。？！"));
        }
    }
    return cues;
}

void setCues(benchmark::State &state)
{
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void run(benchmark::State &state, SubtitleCleanup::Switches switches)
{
    const QList<Subtitle> cues = spokenCues(state.range(0));
    const QStringList words = SubtitleCleanup::defaultFillerWords();
    for (auto _ : state)
        benchmark::DoNotOptimize(SubtitleCleanup::apply(cues, switches, words));
    setCues(state);
}

void cleanBoth(benchmark::State &state)
{
    run(state, both);
}

void cleanFillers(benchmark::State &state)
{
    run(state, {.removeFillers = true, .removePunctuation = false});
}

/// The rules as patterns, compiled once.
class Chain
{
public:
    Chain()
    {
        QStringList words = SubtitleCleanup::defaultFillerWords();
        std::stable_sort(words.begin(), words.end(),
                         [](const QString &a, const QString &b) { return a.size() > b.size(); });
        const QString group = u"(?:"_s + words.join(u'|') + u")+"_s;
        m_clause = pattern(u"(^|[，,。！？!?；;：:])\\s*"_s + group + u"[\\t ]*[，,。！？!?；;：:]"_s);
        m_anywhere = pattern(group);
    }

    void add(const Subtitle &cue, QList<Subtitle> &cleaned) const
    {
        const QStringList pieces = cue.text.split(m_marks);
        const auto duration = static_cast<double>(cue.end - cue.start);
        qsizetype length = 0;
        for (const QString &piece : pieces)
            length += piece.size();
        const auto whole = static_cast<double>(std::max<qsizetype>(length, 1));
        qsizetype before = 0;
        for (const QString &piece : pieces) {
            const qint64 start = cue.start + std::llround(duration * static_cast<double>(before) / whole);
            before += piece.size();
            const qint64 end = cue.start + std::llround(duration * static_cast<double>(before) / whole);
            const QString text = withoutFillers(piece).remove(m_punctuation).trimmed();
            if (start < end && m_alphanumeric.match(text).hasMatch())
                cleaned.append({.id = cleaned.size() + 1, .start = start, .end = end, .text = text});
        }
    }

private:
    static QRegularExpression pattern(const QString &text)
    {
        QRegularExpression compiled(text, QRegularExpression::UseUnicodePropertiesOption);
        compiled.optimize();
        return compiled;
    }

    QString withoutFillers(const QString &text) const
    {
        if (m_exclamation.match(text.trimmed()).hasMatch() || m_laughter.match(text.trimmed()).hasMatch())
            return {};
        QString rest = text;
        for (QString before; before != rest;) {
            before = rest;
            rest.replace(m_clause, u"\\1"_s);
        }
        return rest.remove(m_anywhere).trimmed();
    }

    QRegularExpression m_marks = pattern(u"[，,。！？!?；;：:]"_s);
    QRegularExpression m_exclamation = pattern(u"^(?:哎[呦哟]我(?:去)?)[\\p{P}\\s]*$"_s);
    QRegularExpression m_laughter = pattern(u"^哈+[\\p{P}\\s]*$"_s);
    QRegularExpression m_clause;
    QRegularExpression m_anywhere;
    QRegularExpression m_punctuation = pattern(u"[\\p{P}]"_s);
    QRegularExpression m_alphanumeric = pattern(u"[\\p{L}\\p{N}]"_s);
};

void chain(benchmark::State &state)
{
    const QList<Subtitle> cues = spokenCues(state.range(0));
    const Chain patterns;
    for (auto _ : state) {
        QList<Subtitle> cleaned;
        for (const Subtitle &cue : cues)
            patterns.add(cue, cleaned);
        benchmark::DoNotOptimize(cleaned);
    }
    setCues(state);
}

/// A hundred words of 60 characters that begin alike, and 哈 itself: 哈哈…哈嗯, 哈哈…嗯嗯, …, 哈哈…哈呃, …
QStringList hostileWords()
{
    QStringList words = {u"哈"_s, u"哈"_s.repeated(60)};
    for (qsizetype i = 0; i < 98; ++i) {
        const qsizetype tail = 1 + i % 49;
        words += u"哈"_s.repeated(60 - tail) + (i < 49 ? u"嗯"_s : u"呃"_s).repeated(tail);
    }
    return words;
}

void hostile(benchmark::State &state, const QString &unit)
{
    const QStringList words = hostileWords();
    const QString text = u"，"_s + unit.repeated(state.range(0) / unit.size()) + u"走"_s;
    for (auto _ : state)
        benchmark::DoNotOptimize(SubtitleCleanup::removingFillers(text, words));
    state.SetComplexityN(state.range(0));
}

void hostileLaughter(benchmark::State &state)
{
    hostile(state, u"哈"_s);
}

void hostileClauses(benchmark::State &state)
{
    hostile(state, u"哈，"_s);
}

} // namespace

BENCHMARK(cleanBoth)->Arg(10'000)->Arg(100'000)->Unit(benchmark::kMillisecond);
BENCHMARK(cleanFillers)->Arg(10'000)->Arg(100'000)->Unit(benchmark::kMillisecond);
BENCHMARK(chain)->Arg(10'000)->Arg(100'000)->Unit(benchmark::kMillisecond);
BENCHMARK(hostileLaughter)->RangeMultiplier(2)->Range(4'000, 64'000)->Complexity()->Unit(benchmark::kMillisecond);
BENCHMARK(hostileClauses)->RangeMultiplier(2)->Range(4'000, 64'000)->Complexity()->Unit(benchmark::kMillisecond);
