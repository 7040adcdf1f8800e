#include "core/repair/LooseFormats.h"
#include "core/repair/LooseTime.h"
#include "core/repair/RepairLog.h"

#include <QRegularExpression>
#include <QStringList>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

struct Event
{
    qint64 line;
    qint64 start;
    qint64 end;
    QString text;
};

/// The columns of an event, as the section's own "Format:" line names them.
struct Columns
{
    qsizetype start = 1;
    qsizetype end = 2;
    qsizetype text = 9;

    void read(QStringView format)
    {
        const QStringList names = format.toString().toLower().remove(u' ').split(u',');
        start = names.indexOf(u"start"_s);
        end = names.indexOf(u"end"_s);
        text = names.size() - 1;
    }
};

class AssReader
{
public:
    explicit AssReader(RepairLog &log)
        : m_log(log)
    {}

    void read(const QList<QStringView> &lines, const LooseFormats::Check &check)
    {
        for (qsizetype i = 0; i < lines.size(); ++i) {
            if (i % 256 == 0)
                check();
            readLine(lines[i].trimmed(), i + 1);
        }
        const auto byStart = [](const Event &a, const Event &b) { return a.start < b.start; };
        if (!std::is_sorted(m_events.begin(), m_events.end(), byStart)) {
            m_log.drop(m_events.constFirst().line, u"已按开始时间排列"_s);
            std::stable_sort(m_events.begin(), m_events.end(), byStart);
        }
        for (const Event &event : m_events)
            add(event);
    }

private:
    void readLine(QStringView line, qint64 number)
    {
        if (line.startsWith(u'[')) {
            const QStringView section = line.sliced(1).chopped(line.endsWith(u']') ? 1 : 0);
            m_inEvents = section.compare(u"Events", Qt::CaseInsensitive) == 0;
            if (section.contains(u"Styles"))
                m_log.drop(number, u"已略去样式：[%1]"_s.arg(section));
            else if (section == u"Fonts" || section == u"Graphics")
                m_log.drop(number, u"已略去附件：[%1]"_s.arg(section));
            return;
        }
        if (!m_inEvents)
            return;
        const qsizetype colon = line.indexOf(u':');
        const QStringView kind = colon < 0 ? QStringView() : line.first(colon);
        if (kind == u"Format")
            m_columns.read(line.sliced(colon + 1));
        else if (kind == u"Dialogue")
            readDialogue(line.sliced(colon + 1), number);
        else if (!line.isEmpty() && !line.startsWith(u';'))
            m_log.drop(number, u"已略去 %1 行"_s.arg(kind.isEmpty() ? line.left(20) : kind));
    }

    void readDialogue(QStringView fields, qint64 number)
    {
        const qsizetype last = m_columns.text;
        if (m_columns.start < 0 || m_columns.end < 0 || fields.count(u',') < last) {
            m_log.drop(number, u"字段不全，已略去：%1"_s.arg(fields.trimmed().left(40)));
            return;
        }
        // Commas belong to the text, which is the last column.
        qsizetype textBegin = 0;
        for (qsizetype i = 0; i < last; ++i)
            textBegin = fields.indexOf(u',', textBegin) + 1;
        const QList<QStringView> columns = fields.first(textBegin).split(u',');
        const auto start = LooseTime::read(columns[m_columns.start]);
        const auto end = LooseTime::read(columns[m_columns.end]);
        if (start && end)
            m_events +=
                Event{.line = number, .start = start->ms, .end = end->ms, .text = fields.sliced(textBegin).toString()};
        else
            m_log.drop(number, u"时间码无法读取，已略去：%1"_s.arg(fields.left(40)));
    }

    void add(const Event &event)
    {
        static const QRegularExpression drawing(u"\\{[^}]*\\\\p[1-9][^}]*\\}"_s);
        static const QRegularExpression codes(u"\\{[^}]*\\}"_s);
        if (event.text.contains(drawing)) {
            m_log.drop(event.line, u"已略去图形"_s);
            return;
        }
        QString text = event.text;
        if (text.contains(codes)) {
            m_log.repair(event.line, u"已略去样式和位置：%1"_s.arg(codes.match(text).captured().left(40)));
            text.remove(codes);
        }
        text.replace(u"\\N"_s, u"\n"_s).replace(u"\\n"_s, u"\n"_s).replace(u"\\h"_s, u" "_s);
        m_log.add(event.line, event.start, event.end, text);
    }

    RepairLog &m_log;
    QList<Event> m_events;
    Columns m_columns;
    bool m_inEvents = false;
};

} // namespace

void LooseFormats::readAss(QStringView text, RepairLog &log, const Check &check)
{
    AssReader(log).read(text.split(u'\n'), check);
}
