#include "core/repair/LooseTime.h"

#include <QRegularExpression>

using namespace Qt::StringLiterals;

namespace {

const QRegularExpression &timePattern()
{
    static const QRegularExpression pattern(
        u"^\\s*(?:(\\d{1,3})\\s*[:：]\\s*)?(\\d{1,2})\\s*[:：]\\s*(\\d{1,2})(?:\\s*[,.，。;；:：]\\s*(\\d{1,9}))?\\s*$"_s);
    return pattern;
}

const QRegularExpression &regularPattern()
{
    static const QRegularExpression pattern(u"^\\d{1,3}:[0-5]\\d:[0-5]\\d[,.]\\d{3}$"_s);
    return pattern;
}

const QRegularExpression &linePattern()
{
    static const QRegularExpression pattern(
        u"^\\s*([0-9][0-9:：,.，。;； ]*?)\\s*(-{1,3}\\s?>|[–—－]+\\s?[>＞]|=+>|→)\\s*([0-9][0-9:：,.，。;；]*)(\\s.*)?$"_s);
    return pattern;
}

} // namespace

std::optional<LooseTime> LooseTime::read(QStringView text)
{
    const QRegularExpressionMatch match = timePattern().match(text.toString());
    if (!match.hasMatch())
        return std::nullopt;
    const qint64 minutes = match.captured(2).toLongLong();
    const qint64 seconds = match.captured(3).toLongLong();
    if (minutes > 59 || seconds > 59)
        return std::nullopt;
    const qint64 fraction = match.captured(4).leftJustified(3, u'0', true).toLongLong();
    return LooseTime{.ms = ((match.captured(1).toLongLong() * 60 + minutes) * 60 + seconds) * 1'000 + fraction,
                     .isRegular = regularPattern().match(text.trimmed().toString()).hasMatch()};
}

bool LooseTimeLine::isOne(QStringView line)
{
    // Most lines have no arrow at all.
    if (!line.contains(u'>') && !line.contains(u'＞') && !line.contains(u'→'))
        return false;
    static const QRegularExpression pattern(u"^\\s*\\d.*(-->|[–—－]+\\s?[>＞]|->|→).*\\d"_s);
    return pattern.match(line.toString()).hasMatch();
}

std::optional<LooseTimeLine> LooseTimeLine::read(QStringView line)
{
    const QRegularExpressionMatch match = linePattern().match(line.toString());
    if (!match.hasMatch())
        return std::nullopt;
    const auto start = LooseTime::read(match.captured(1));
    const auto end = LooseTime::read(match.captured(3));
    if (!start || !end)
        return std::nullopt;
    const qsizetype hints = match.capturedStart(4);
    return LooseTimeLine{.start = *start,
                         .end = *end,
                         .hasRegularArrow = match.captured(2) == u"-->",
                         .hints = hints < 0 ? QStringView() : line.sliced(hints).trimmed()};
}
