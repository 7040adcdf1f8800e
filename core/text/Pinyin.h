#pragma once

#include <QHash>
#include <QString>

#include <memory>

/// How Chinese names are typed by those who type their sound.
namespace Pinyin {

/// Reads names aloud.
///
/// Making one takes a tenth of a second and some megabytes, for the transliterator is big: off the main thread, and
/// only when there is something to read. One thread at a time.
class Reader
{
public:
    Reader();
    ~Reader();
    Q_DISABLE_COPY_MOVE(Reader)

    /// The sounds of `name`, character by character, separated by blanks: "si yuan hei ti". A character of several
    /// readings has them all, the commonest first: "chang/zhang cheng". ü is typed v, or u. Latin letters and digits
    /// stand for themselves, in lower case; all else is left out. Empty when `name` has no Han character, or when this
    /// system's ICU has no readings.
    QString read(QStringView name);

private:
    class Transliteration;

    QString readingOf(char32_t character);

    std::unique_ptr<Transliteration> m_transliteration;
    QHash<char32_t, QString> m_known;
};

} // namespace Pinyin
