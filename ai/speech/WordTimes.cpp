#include "ai/speech/WordTimes.h"

#include "core/ConversionError.h"
#include "core/PlatformError.h"
#include "core/files/Utf8.h"
#include "core/json/JsonReader.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace SubtitleAI {

namespace {

/// A piece of what was said, its text in bytes: the recogniser cuts characters in two.
struct Piece
{
    qint64 from = 0; ///< Milliseconds.
    qint64 to = 0;
    QByteArray text;
};

struct HeardSegment
{
    Piece whole;
    std::vector<Piece> pieces;
};

/// Reads a document of which every byte was made a character of its own, when it is no valid UTF-8 as a whole.
class Reading
{
public:
    explicit Reading(QByteArrayView data)
        : m_isWhole(Utf8::survey(data).valid)
        , m_widened(m_isWhole ? QByteArray() : QString::fromLatin1(data).toUtf8())
        , m_json(m_isWhole ? data : QByteArrayView(m_widened))
    {}

    std::vector<HeardSegment> segments()
    {
        std::vector<HeardSegment> found;
        m_json.readObject({"transcription"}, [&](QByteArrayView key) {
            if (key == "transcription")
                m_json.readArray([&] { found.push_back(segment()); });
        });
        m_json.finish();
        return found;
    }

private:
    bool readField(QByteArrayView key, Piece &piece)
    {
        if (key == "offsets")
            m_json.readObject({"from", "to"}, [&](QByteArrayView place) {
                if (place == "from")
                    piece.from = m_json.readInteger();
                else if (place == "to")
                    piece.to = m_json.readInteger();
            });
        else if (key == "text")
            piece.text = m_isWhole ? m_json.readText().toUtf8() : m_json.readText().toLatin1();
        else
            return false;
        return true;
    }

    HeardSegment segment()
    {
        HeardSegment found;
        m_json.readObject({"offsets", "text"}, [&](QByteArrayView key) {
            if (!readField(key, found.whole) && key == "tokens")
                m_json.readArray([&] {
                    Piece &piece = found.pieces.emplace_back();
                    m_json.readObject({"offsets", "text"}, [&](QByteArrayView inside) { readField(inside, piece); });
                });
        });
        return found;
    }

    bool m_isWhole;
    QByteArray m_widened;
    JsonReader m_json;
};

bool isWord(const Piece &piece)
{
    return !piece.text.startsWith("[_") && !piece.text.isEmpty();
}

/// Puts the words of a segment behind `words`.
void append(QList<HeardWord> &words, const HeardSegment &segment)
{
    std::vector<Piece> pieces;
    std::ranges::copy_if(segment.pieces, std::back_inserter(pieces), isWord);
    if (pieces.empty())
        pieces.push_back(segment.whole);
    for (size_t i = 0; i < pieces.size(); ++i) {
        Piece word = pieces[i];
        while (!Utf8::survey(word.text).valid && i + 1 < pieces.size()) {
            ++i;
            word.text += pieces[i].text;
            word.to = pieces[i].to;
        }
        const qint64 earliest = words.isEmpty() ? 0 : words.last().startMS;
        const qint64 start = std::max(word.from, earliest);
        words.append({.text = QString::fromUtf8(word.text), .startMS = start, .endMS = std::max(word.to, start)});
    }
}

} // namespace

QStringList wordTimeArguments(const QString &model, const QString &pcm, const QString &result, SpeechLanguage language)
{
    QStringList arguments = speechArguments(model, pcm, result, language);
    std::ranges::replace(arguments, u"-oj"_s, u"-ojf"_s);
    return arguments;
}

QList<HeardWord> parseWordTimes(QByteArrayView data, std::optional<qint64> maximumEndMS)
{
    std::vector<HeardSegment> segments;
    try {
        segments = Reading(data).segments();
    } catch (const PlatformError &error) {
        throw ConversionError(u"语音引擎返回了无法读取的结果。"_s, error.description());
    }
    QList<HeardWord> words;
    for (const HeardSegment &segment : segments)
        append(words, segment);
    words.removeIf([](const HeardWord &word) { return word.text.trimmed().isEmpty(); });
    if (maximumEndMS) {
        words.removeIf([&](const HeardWord &word) { return word.startMS >= *maximumEndMS; });
        for (HeardWord &word : words)
            word.endMS = std::min(word.endMS, *maximumEndMS);
    }
    // Words do not overlap: the next one begins where the one before is still told to last.
    for (qsizetype i = 0; i + 1 < words.size(); ++i)
        words[i].endMS = std::min(words[i].endMS, words[i + 1].startMS);
    return words;
}

} // namespace SubtitleAI
