#pragma once

#include "core/PlatformError.h"
#include "fcp/xml/XmlDocument.h"
#include "fcp/xml/XmlListener.h"

/// How XmlDocument has libxml2 parse.
namespace XmlParsing {

using Document = std::unique_ptr<xmlDoc, decltype(&xmlFreeDoc)>;

/// What libxml2 makes of bytes that the guard has let pass; of the last three each may be absent, and no document is
/// both extracted from and listened to.
/// @throws ConversionError, PlatformError, and whatever `check` does, as XmlDocument::parse says
Document run(QByteArrayView bytes, QStringView entityRefusal, const XmlDocument::Extraction *extraction,
             XmlListener *listener, const Check &check);

/// Why a document cannot be parsed.
PlatformError refusal(const QString &description);

} // namespace XmlParsing
