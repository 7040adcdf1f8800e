#include "core/repair/SubtitleRepair.h"

#include "core/ConversionError.h"
#include "core/SRT.h"
#include "core/repair/LooseFormats.h"
#include "core/repair/LooseTime.h"

#include <QRegularExpression>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace SubtitleRepair {

namespace {

/// Whether a cue has swallowed the next one, for want of an empty line between them.
bool holdsTimes(const Subtitle &cue)
{
    for (const QStringView line : QStringView(cue.text).tokenize(u'\n')) {
        if (LooseTimeLine::isOne(line))
            return true;
    }
    return false;
}

/// The cues when the file is in order.
std::optional<QList<Subtitle>> strict(const QString &text)
{
    try {
        QList<Subtitle> items = SRT::parse(text);
        const bool isInOrder = std::none_of(items.begin(), items.end(), holdsTimes);
        return isInOrder ? std::optional(std::move(items)) : std::nullopt;
    } catch (const ConversionError &) {
        return std::nullopt;
    }
}

bool isAss(const QString &text)
{
    static const QRegularExpression pattern(u"^\\s*\\[(?:Script Info|Events|V4\\+? Styles)\\]"_s,
                                            QRegularExpression::MultilineOption |
                                                QRegularExpression::CaseInsensitiveOption);
    return text.contains(pattern);
}

} // namespace

RepairedFile read(const QByteArray &bytes, const QString &encoding, const std::function<void()> &check)
{
    RepairedFile file;
    file.guesses = TextEncoding::guesses(bytes);
    if (encoding.isEmpty() && file.guesses.isEmpty())
        throw ConversionError(u"字幕编码不支持。请先另存为 UTF-8 或 UTF-16。"_s);
    const qsizetype known = TextEncoding::names().indexOf(
        QRegularExpression(QRegularExpression::anchoredPattern(QRegularExpression::escape(encoding)),
                           QRegularExpression::CaseInsensitiveOption));
    file.encoding = encoding.isEmpty() ? file.guesses.constFirst().name : TextEncoding::names().value(known, encoding);
    file.certainty = encoding.isEmpty() ? file.guesses.constFirst().certainty : 1;
    check();
    const auto [text, lost] = TextEncoding::decoded(bytes, file.encoding);
    RepairLog log;
    if (file.encoding != u"UTF-8" && !bytes.startsWith("\xFF\xFE") && !bytes.startsWith("\xFE\xFF"))
        log.drop(1, u"按 %1 读取"_s.arg(file.encoding));
    if (lost > 0)
        log.drop(1, u"%1 个字符无法读取，以 U+FFFD 代替"_s.arg(lost));
    if (const auto items = strict(text)) {
        file.items = *items;
        file.repairs = log.repairs();
        return file;
    }
    if (text.trimmed().startsWith(u"WEBVTT"))
        LooseFormats::readWebVtt(text, log, check);
    else if (isAss(text))
        LooseFormats::readAss(text, log, check);
    else
        LooseFormats::readSrt(text, log, check);
    log.mendTimes();
    if (log.items().isEmpty())
        throw ConversionError(u"没有找到字幕。"_s);
    file.items = log.items();
    file.repairs = log.repairs();
    return file;
}

} // namespace SubtitleRepair
