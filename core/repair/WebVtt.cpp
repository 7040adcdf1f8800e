#include "core/repair/LooseFormats.h"
#include "core/repair/LooseTime.h"
#include "core/repair/RepairLog.h"

#include <QRegularExpression>

using namespace Qt::StringLiterals;

namespace {

/// The text without tags and with the format's own entities resolved.
QString spoken(const QString &text)
{
    static const QRegularExpression tag(u"</?(?:[A-Za-z]+|\\d[\\d:.]*)(?:[. ][^<>]*)?>"_s);
    QString result = text;
    result.remove(tag);
    // Those that SubRip knows too stay, and are resolved where all cues are taken.
    return result.replace(u"&nbsp;"_s, u" "_s).remove(u"&lrm;"_s).remove(u"&rlm;"_s);
}

void readBlock(const QList<QStringView> &lines, qsizetype begin, qsizetype end, RepairLog &log)
{
    const QStringView first = lines[begin].trimmed();
    for (const QStringView section : {QStringView(u"NOTE"), QStringView(u"STYLE"), QStringView(u"REGION")}) {
        if (first == section || first.startsWith(QString(section.toString() + u' '))) {
            log.drop(begin + 1, u"已略去 %1 段"_s.arg(section));
            return;
        }
    }
    qsizetype time = begin;
    while (time < end && !LooseTimeLine::isOne(lines[time]))
        ++time;
    const auto times = time < end ? LooseTimeLine::read(lines[time]) : std::nullopt;
    if (!times) {
        log.drop(begin + 1, u"不属于任何字幕，已略去：%1"_s.arg(first.left(40)));
        return;
    }
    if (!times->hints.isEmpty())
        log.repair(time + 1, u"已略去位置：%1"_s.arg(times->hints));
    QString text;
    for (qsizetype i = time + 1; i < end; ++i)
        text += lines[i].toString() + u'\n';
    static const QRegularExpression voice(u"<v(?:\\.[^ >]*)? ([^>]*)>"_s);
    if (const auto speaker = voice.match(text); speaker.hasMatch())
        log.repair(time + 1, u"已略去说话人：%1"_s.arg(speaker.captured(1)));
    else if (const QString bare = spoken(text); bare.size() != text.size())
        log.repair(time + 1, u"已略去样式"_s);
    log.add(time + 1, times->start.ms, times->end.ms, spoken(text));
}

} // namespace

void LooseFormats::readWebVtt(QStringView text, RepairLog &log, const Check &check)
{
    const QList<QStringView> lines = text.split(u'\n');
    qsizetype begin = 0;
    // The header may go on over some lines.
    while (begin < lines.size() && !lines[begin].trimmed().isEmpty())
        ++begin;
    while (begin < lines.size()) {
        check();
        if (lines[begin].trimmed().isEmpty()) {
            ++begin;
            continue;
        }
        qsizetype end = begin;
        while (end < lines.size() && !lines[end].trimmed().isEmpty())
            ++end;
        readBlock(lines, begin, end, log);
        begin = end;
    }
}
