#pragma once

#include <QChar>

/// Where a spoken sentence falls into parts.
namespace Clauses {

/// Whether `unit` ends a clause: one of ，,。！？!?；;：: — but neither 、 nor a quotation mark.
constexpr bool isMark(QChar unit)
{
    switch (unit.unicode()) {
    case u'，':
    case u',':
    case u'。':
    case u'！':
    case u'？':
    case u'!':
    case u'?':
    case u'；':
    case u';':
    case u'：':
    case u':':
        return true;
    default:
        return false;
    }
}

} // namespace Clauses
