#include "core/PlatformError.h"

PlatformError::PlatformError(const QString &description)
    : m_description(description)
    , m_utf8(description.toUtf8())
{}
