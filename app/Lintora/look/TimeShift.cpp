#include "app/Lintora/look/TimeShift.h"

#include "app/Lintora/controls/CueTime.h"
#include "core/SRT.h"

#include <cstdlib>

using namespace Qt::StringLiterals;

namespace TimeShift {

std::optional<qint64> parse(const QString &typed)
{
    QString text = typed.normalized(QString::NormalizationForm_KC).trimmed();
    for (const QString &unit : {u"毫秒"_s, u"ms"_s}) {
        if (text.endsWith(unit, Qt::CaseInsensitive))
            text = text.chopped(unit.size()).trimmed();
    }
    text.replace(u'−', u'-');
    const bool isNegative = text.startsWith(u'-');
    if (isNegative || text.startsWith(u'+'))
        text.remove(0, 1);
    std::optional<qint64> length;
    if (text.contains(u':')) {
        length = CueTime::parse(text, FrameRate());
    } else {
        bool isNumber = false;
        const qint64 number = text.toLongLong(&isNumber);
        if (isNumber && number >= 0 && !text.startsWith(u'+'))
            length = number;
    }
    if (!length || *length > longest)
        return std::nullopt;
    return isNegative ? -*length : *length;
}

QString describe(qint64 shiftMS)
{
    return u"所有字幕%1 %2"_s.arg(shiftMS < 0 ? u"提前"_s : u"推后"_s, SRT::stamp(std::abs(shiftMS)));
}

} // namespace TimeShift
