#include "core/repair/RepairLog.h"

#include "core/ConversionError.h"
#include "core/SRT.h"
#include "core/text/checks/TextFaults.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

/// The text without tags and entities, as the strict reader takes it; empty when that leaves nothing.
QString plain(const QString &text)
{
    if (!text.contains(u'<') && !text.contains(u'&'))
        return text;
    try {
        return SRT::parse(QString(u"1\n00:00:00,000 --> 00:00:01,000\n"_s + text)).constFirst().text;
    } catch (const ConversionError &) {
        return {};
    }
}

} // namespace

void RepairLog::repair(qint64 line, const QString &what)
{
    m_repairs += FileRepair{.line = line, .cue = number(), .what = what};
}

void RepairLog::drop(qint64 line, const QString &what)
{
    m_repairs += FileRepair{.line = line, .cue = std::nullopt, .what = what};
}

void RepairLog::add(qint64 line, qint64 start, qint64 end, const QString &text)
{
    const QString clean = TextFaults::withoutBadCharacters(text);
    const QString kept = plain(TextFaults::withoutBlanks(clean));
    if (kept.trimmed().isEmpty()) {
        // What was noted of it is no longer about a cue.
        for (FileRepair &each : m_repairs) {
            if (each.cue == number())
                each.cue.reset();
        }
        drop(line, u"没有文字，已略去"_s);
        return;
    }
    if (clean != text)
        repair(line, u"去掉了控制字符或不可见字符"_s);
    m_items += Subtitle{.id = number(), .start = start, .end = end, .text = kept};
    m_lines += line;
}

void RepairLog::mendTimes()
{
    constexpr qint64 usual = 2'000;
    for (qsizetype i = 0; i < m_items.size(); ++i) {
        Subtitle &cue = m_items[i];
        if (cue.end > cue.start)
            continue;
        const qint64 previousEnd = i > 0 ? m_items[i - 1].end : 0;
        const bool hasNext = i + 1 < m_items.size() && m_items[i + 1].start > cue.start;
        if (cue.end < cue.start && cue.end >= previousEnd) {
            std::swap(cue.start, cue.end);
            m_repairs += FileRepair{.line = m_lines[i], .cue = cue.id, .what = u"结束早于开始，已对调"_s};
            continue;
        }
        cue.end = hasNext ? std::min(m_items[i + 1].start, cue.start + usual) : cue.start + usual;
        m_repairs += FileRepair{
            .line = m_lines[i], .cue = cue.id, .what = u"结束不晚于开始，结束移到 %1"_s.arg(SRT::stamp(cue.end))};
    }
    std::stable_sort(m_repairs.begin(), m_repairs.end(),
                     [](const FileRepair &a, const FileRepair &b) { return a.line < b.line; });
}
