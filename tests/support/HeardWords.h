#pragma once

#include <QByteArray>
#include <QString>

/// What recognisers answer that hear `texts`, a character every 300 ms, each text from its own time on.
class HeardWords
{
public:
    /// From `startMS` on.
    HeardWords &say(const QString &text, int startMS)
    {
        constexpr int stepMS = 300;
        for (const QChar character : text) {
            m_words.append({.text = QString(character).toUtf8(), .fromMS = startMS, .toMS = startMS + stepMS});
            startMS += stepMS;
        }
        return *this;
    }

    /// The full JSON of the local recogniser, on one line.
    QByteArray fullJson() const
    {
        QByteArrayList tokens;
        for (const Word &word : m_words)
            tokens += R"({"text":")" + word.text + R"(","offsets":{"from":)" + QByteArray::number(word.fromMS) +
                      R"(,"to":)" + QByteArray::number(word.toMS) + R"(},"id":1,"p":0.9})";
        return R"({"transcription":[{"offsets":{"from":0,"to":8000},"text":"","tokens":[)" + tokens.join(',') + "]}]}";
    }

    /// The answer of a service that is asked for words.
    QByteArray answer() const
    {
        QByteArrayList words;
        for (const Word &word : m_words)
            words += R"({"word":")" + word.text + R"(","start":)" + QByteArray::number(word.fromMS / 1'000.0) +
                     R"(,"end":)" + QByteArray::number(word.toMS / 1'000.0) + "}";
        return R"({"text":"","words":[)" + words.join(',') + "]}";
    }

private:
    struct Word
    {
        QByteArray text;
        int fromMS = 0;
        int toMS = 0;
    };

    QList<Word> m_words;
};
