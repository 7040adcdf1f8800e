#include "core/ByteCount.h"

#include <QLocale>

#include <array>
#include <cmath>

using namespace Qt::StringLiterals;

namespace ByteCount {

QString text(qint64 bytes)
{
    struct Unit
    {
        QStringView name;
        int decimals;
    };
    static constexpr std::array units{Unit{u"字节", 0}, Unit{u"KB", 0}, Unit{u"MB", 1}, Unit{u"GB", 2}, Unit{u"TB", 2}};
    constexpr double step = 1024;
    const auto rounded = [](double value, const Unit &unit) {
        const double scale = std::pow(10.0, unit.decimals);
        return std::round(value * scale) / scale;
    };
    auto value = double(bytes);
    size_t unit = 0;
    // What would be rounded up to 1024 is one of the next unit.
    for (; unit + 1 < units.size() && rounded(value, units[unit]) >= step; ++unit)
        value /= step;
    QString digits = QLocale::c().toString(value, 'f', units[unit].decimals);
    while (digits.contains(u'.') && (digits.endsWith(u'0') || digits.endsWith(u'.')))
        digits.chop(1);
    // The C locale has no separators for thousands, and there is at most one.
    constexpr qsizetype group = 3;
    if (!digits.contains(u'.') && digits.size() > group)
        digits.insert(digits.size() - group, u',');
    return digits + u' ' + units[unit].name.toString();
}

} // namespace ByteCount
