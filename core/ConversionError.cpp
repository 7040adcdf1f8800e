#include "core/ConversionError.h"

#include "core/Failure.h"

using namespace Qt::StringLiterals;

ConversionError::ConversionError(const QString &message, const QString &detail)
    : m_message(message)
    , m_detail(detail)
    , m_utf8(message.toUtf8())
{}

ConversionError ConversionError::aboutCue(qint64 number, QStringView problem, const QString &detail)
{
    return ConversionError(u"第 %1%2"_s.arg(number).arg(problem), detail);
}

void ConversionError::addDetail(const QString &detail)
{
    m_detail = Failure::joined(m_detail, detail);
}
