#include "core/repair/LooseFormats.h"
#include "core/repair/LooseTime.h"
#include "core/repair/RepairLog.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

bool isNumber(QStringView line)
{
    const QStringView text = line.trimmed();
    return !text.isEmpty() && text.size() <= 9 &&
           std::all_of(text.begin(), text.end(), [](QChar unit) { return unit >= u'0' && unit <= u'9'; });
}

bool isBlank(QStringView line)
{
    return line.trimmed().isEmpty();
}

/// The cues of a file, found by their lines of times: whatever stands between two of them is text, but for a number.
class LooseReader
{
public:
    LooseReader(QStringView text, RepairLog &log)
        : m_lines(text.split(u'\n'))
        , m_log(log)
    {
        for (qsizetype i = 0; i < m_lines.size(); ++i) {
            if (LooseTimeLine::isOne(m_lines[i]))
                m_timeLines += i;
        }
    }

    void read(const LooseFormats::Check &check)
    {
        qsizetype begin = m_timeLines.isEmpty() ? 0 : headerBegin(0);
        dropStray(0, begin);
        for (qsizetype i = 0; i < m_timeLines.size(); ++i) {
            if (i % 256 == 0)
                check();
            const bool isLast = i + 1 == m_timeLines.size();
            const qsizetype end = isLast ? m_lines.size() : headerBegin(i + 1);
            readCue(begin, m_timeLines[i], end);
            begin = end;
        }
    }

private:
    /// Where the number above a time line stands, or the time line itself.
    qsizetype headerBegin(qsizetype index) const
    {
        const qsizetype time = m_timeLines[index];
        const qsizetype first = index == 0 ? 0 : m_timeLines[index - 1] + 1;
        qsizetype at = time - 1;
        while (at >= first && isBlank(m_lines[at]))
            --at;
        if (at < first || !isNumber(m_lines[at]))
            return time;
        const bool isExpected = m_lines[at].trimmed().toLongLong() == index + 1;
        const bool isApart = at == first || isBlank(m_lines[at - 1]) || isNumber(m_lines[at - 1]);
        // A number of its own, and not the last line of the cue above.
        if (!(isExpected || (isApart && at == time - 1 && at > first)) && index > 0)
            return time;
        while (at - 1 >= first && isNumber(m_lines[at - 1]) && (at - 1 > first || index == 0))
            --at;
        return at;
    }

    void dropStray(qsizetype begin, qsizetype end)
    {
        for (qsizetype i = begin; i < end; ++i) {
            if (!isBlank(m_lines[i]))
                m_log.drop(i + 1, u"不属于任何字幕，已略去：%1"_s.arg(m_lines[i].trimmed().left(40)));
        }
    }

    void readCue(qsizetype begin, qsizetype time, qsizetype end)
    {
        const auto times = LooseTimeLine::read(m_lines[time]);
        if (!times) {
            m_log.drop(time + 1, u"时间码无法读取，已略去：%1"_s.arg(m_lines[time].trimmed().left(60)));
            dropStray(time + 1, end);
            return;
        }
        noteNumber(begin, time);
        if (!times->start.isRegular || !times->end.isRegular || !times->hasRegularArrow)
            m_log.repair(time + 1, u"时间码写法不规范：%1"_s.arg(m_lines[time].trimmed().left(60)));
        QString text;
        qsizetype last = end;
        while (last > time + 1 && isBlank(m_lines[last - 1]))
            --last;
        bool hasBlank = false;
        for (qsizetype i = time + 1; i < last; ++i) {
            hasBlank = hasBlank || isBlank(m_lines[i]);
            text += m_lines[i].toString() + u'\n';
        }
        if (hasBlank)
            m_log.repair(time + 1, u"字幕中间有空行，已去掉"_s);
        m_log.add(time + 1, times->start.ms, times->end.ms, text);
    }

    void noteNumber(qsizetype begin, qsizetype time)
    {
        qsizetype numbers = 0;
        for (qsizetype i = begin; i < time; ++i)
            numbers += isNumber(m_lines[i]);
        if (numbers > 1)
            m_log.repair(begin + 1, u"序号重复，已去掉多余的一个"_s);
        else if (numbers == 0)
            m_log.repair(time + 1, u"缺少序号，已补上"_s);
        else if (const qint64 number = m_lines[begin].trimmed().toLongLong(); number == m_number && m_number > 0)
            m_log.repair(begin + 1, u"序号 %1 重复，已重新编号"_s.arg(number));
        if (numbers > 0)
            m_number = m_lines[begin].trimmed().toLongLong();
    }

    QList<QStringView> m_lines;
    QList<qsizetype> m_timeLines;
    RepairLog &m_log;
    qint64 m_number = 0; ///< Of the cue before.
};

} // namespace

void LooseFormats::readSrt(QStringView text, RepairLog &log, const Check &check)
{
    LooseReader(text, log).read(check);
}
