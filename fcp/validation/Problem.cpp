#include "fcp/validation/Problem.h"

using namespace Qt::StringLiterals;

QString Problem::toText() const
{
    return u"第 %1 行 %2：%3%4%5"_s.arg(QString::number(line), element,
                                        severity == Severity::error ? u"错误，"_s : u"警告，"_s, message, fix);
}
