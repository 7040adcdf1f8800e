#include "core/repair/TextEncoding.h"

#include "core/ConversionError.h"
#include "core/files/Utf8.h"

#include <unicode/ucnv.h>
#include <unicode/ucsdet.h>

#include <algorithm>
#include <memory>

using namespace Qt::StringLiterals;

namespace TextEncoding {

namespace {

struct CloseDetector
{
    void operator()(UCharsetDetector *detector) const { ucsdet_close(detector); }
};

struct CloseConverter
{
    void operator()(UConverter *converter) const { ucnv_close(converter); }
};

bool isPlain(char byte)
{
    return static_cast<signed char>(byte) >= 0;
}

/// The lines that hold more than ASCII: numbers and times would make every text look Western.
QByteArray tellingLines(const QByteArray &bytes)
{
    constexpr qsizetype enough = 65'536;
    QByteArray lines;
    for (qsizetype begin = 0; begin < bytes.size() && lines.size() < enough;) {
        qsizetype end = bytes.indexOf('\n', begin);
        end = end < 0 ? bytes.size() : end + 1;
        const QByteArrayView line = QByteArrayView(bytes).sliced(begin, end - begin);
        if (!std::all_of(line.begin(), line.end(), isPlain))
            lines += line;
        begin = end;
    }
    return lines;
}

/// Our name for the detector's; empty for what we do not read. An ISO encoding is read as the Windows one that holds
/// it.
QString ourName(const QString &name)
{
    static const QList<QPair<QString, QString>> others = {
        {u"ISO-8859-1"_s, u"windows-1252"_s}, {u"ISO-8859-2"_s, u"windows-1250"_s},
        {u"ISO-8859-5"_s, u"windows-1251"_s}, {u"ISO-8859-6"_s, u"windows-1256"_s},
        {u"ISO-8859-7"_s, u"windows-1253"_s}, {u"ISO-8859-8"_s, u"windows-1255"_s},
        {u"ISO-8859-9"_s, u"windows-1254"_s}};
    for (const auto &[other, ours] : others) {
        if (name == other)
            return ours;
    }
    return names().contains(name) ? name : QString();
}

QString sampleOf(const QString &text)
{
    constexpr qsizetype longest = 80;
    QString sample;
    for (const QStringView line : QStringView(text).tokenize(u'\n')) {
        const bool tells = std::any_of(line.begin(), line.end(), [](QChar unit) { return unit > QChar(0x7F); });
        if (tells && sample.size() < longest)
            sample += (sample.isEmpty() ? QString() : u" / "_s) + line.trimmed().toString();
    }
    return sample.left(longest);
}

void add(QList<Guess> &guesses, const QString &name, double certainty, const QByteArray &bytes)
{
    const bool isThere =
        std::any_of(guesses.begin(), guesses.end(), [&](const Guess &guess) { return guess.name == name; });
    if (name.isEmpty() || isThere)
        return;
    const Decoded text = decoded(bytes, name);
    // What cannot be read to the end is hardly written that way.
    if (text.lost == 0)
        guesses += Guess{.name = name, .certainty = certainty, .sample = sampleOf(text.text)};
}

/// The double bytes in which an encoding writes marks and its common characters.
struct CommonBytes
{
    const char *name;
    uchar firstMark;
    uchar lastMark;
    uchar firstCommon;
    uchar lastCommon;
    bool hasLowTrail; ///< Whether the second byte may be an ASCII letter, as it then is now and then.
};

constexpr CommonBytes commonBytes[] = {{"GB18030", 0xA1, 0xA9, 0xB0, 0xD7, false},
                                       {"Big5", 0xA1, 0xA3, 0xA4, 0xC6, true}};

/// Whether nearly all that is not ASCII is common in `encoding`. The detector weighs frequencies, which a few lines of
/// subtitles do not show.
bool looksLike(const CommonBytes &encoding, const QByteArray &bytes)
{
    qsizetype pairs = 0;
    qsizetype others = 0;
    bool sawLowTrail = false;
    for (qsizetype i = 0; i < bytes.size(); ++i) {
        const auto lead = static_cast<uchar>(bytes[i]);
        if (lead < 0x80)
            continue;
        const auto trail = static_cast<uchar>(i + 1 < bytes.size() ? bytes[i + 1] : 0);
        const bool isLead = (lead >= encoding.firstMark && lead <= encoding.lastMark) ||
                            (lead >= encoding.firstCommon && lead <= encoding.lastCommon);
        const bool isLow = trail >= 0x40 && trail < 0x7F;
        ++pairs;
        others += !(isLead && (trail >= 0xA1 || (encoding.hasLowTrail && isLow)));
        sawLowTrail = sawLowTrail || isLow;
        ++i;
    }
    return pairs > 1 && others * 10 <= pairs && sawLowTrail == encoding.hasLowTrail;
}

/// What the detector finds in `lines` of `bytes`.
void detect(const QByteArray &lines, const QByteArray &bytes, QList<Guess> &guesses)
{
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<UCharsetDetector, CloseDetector> detector(ucsdet_open(&status));
    ucsdet_setText(detector.get(), lines.constData(), static_cast<int32_t>(lines.size()), &status);
    int32_t count = 0;
    const UCharsetMatch **const matches = ucsdet_detectAll(detector.get(), &count, &status);
    for (int32_t i = 0; U_SUCCESS(status) && i < count; ++i) {
        const QString name = QString::fromLatin1(ucsdet_getName(matches[i], &status));
        add(guesses, ourName(name), ucsdet_getConfidence(matches[i], &status) / 100.0, bytes);
    }
}

/// UTF-16 without a mark: every second byte of digits, arrows and line feeds is zero.
QString unmarkedUtf16(const QByteArray &bytes)
{
    qsizetype zeros[2] = {0, 0};
    for (qsizetype i = 0; i < bytes.size(); ++i)
        zeros[i % 2] += bytes[i] == 0;
    if (bytes.size() % 2 != 0 || zeros[0] + zeros[1] < bytes.size() / 8)
        return {};
    return zeros[1] > zeros[0] ? u"UTF-16LE"_s : u"UTF-16BE"_s;
}

} // namespace

const QStringList &names()
{
    static const QStringList list = {u"UTF-8"_s,        u"UTF-16LE"_s,     u"UTF-16BE"_s,     u"GB18030"_s,
                                     u"Big5"_s,         u"Shift_JIS"_s,    u"windows-1250"_s, u"windows-1251"_s,
                                     u"windows-1252"_s, u"windows-1253"_s, u"windows-1254"_s, u"windows-1255"_s,
                                     u"windows-1256"_s, u"windows-1257"_s, u"windows-1258"_s};
    return list;
}

QList<Guess> guesses(const QByteArray &bytes)
{
    QList<Guess> found;
    if (bytes.startsWith("\xFF\xFE"))
        add(found, u"UTF-16LE"_s, 1, bytes);
    else if (bytes.startsWith("\xFE\xFF"))
        add(found, u"UTF-16BE"_s, 1, bytes);
    else if (const QString name = unmarkedUtf16(bytes); !name.isEmpty())
        add(found, name, 0.95, bytes);
    else if (Utf8::survey(bytes).valid)
        add(found, u"UTF-8"_s, 1, bytes);
    if (!found.isEmpty())
        return found;
    const QByteArray lines = tellingLines(bytes);
    constexpr double likely = 0.9;
    for (const CommonBytes &encoding : commonBytes) {
        if (looksLike(encoding, lines))
            add(found, QString::fromLatin1(encoding.name), likely, bytes);
    }
    detect(lines, bytes, found);
    std::stable_sort(found.begin(), found.end(),
                     [](const Guess &a, const Guess &b) { return a.certainty > b.certainty; });
    return found;
}

Decoded decoded(const QByteArray &bytes, const QString &name)
{
    if (!names().contains(name, Qt::CaseInsensitive))
        throw ConversionError(u"不支持的编码：%1。"_s.arg(name));
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<UConverter, CloseConverter> converter(ucnv_open(name.toLatin1().constData(), &status));
    Decoded result;
    result.text.resize(bytes.size() * 2 + 2);
    const int32_t length = ucnv_toUChars(converter.get(), reinterpret_cast<UChar *>(result.text.data()),
                                         static_cast<int32_t>(result.text.size()), bytes.constData(),
                                         static_cast<int32_t>(bytes.size()), &status);
    if (U_FAILURE(status))
        throw ConversionError(u"字幕编码不支持。请先另存为 UTF-8 或 UTF-16。"_s);
    result.text.truncate(length);
    result.lost = result.text.count(QChar::ReplacementCharacter);
    result.text.remove(QChar::ByteOrderMark);
    result.text.replace(u"\r\n"_s, u"\n"_s).replace(u'\r', u'\n');
    return result;
}

} // namespace TextEncoding
