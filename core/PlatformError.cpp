#include "core/PlatformError.h"

#include "core/Failure.h"

PlatformError::PlatformError(const QString &description, const QString &detail)
    : m_description(description)
    , m_detail(detail)
    , m_utf8(description.toUtf8())
{}

PlatformError PlatformError::aboutFile(const QString &path, const QString &description)
{
    return PlatformError(description, Failure::fileDetail(path));
}

void PlatformError::addDetail(const QString &detail)
{
    m_detail = Failure::joined(m_detail, detail);
}
