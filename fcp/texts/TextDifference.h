#pragma once

#include "core/Check.h"
#include "fcp/xml/XmlDocument.h"

/// What may change where words are put back into titles.
namespace TextDifference {

/// Whether two documents differ in nothing but the content of runs and the names of titles and captions.
bool isAll(const XmlDocument &before, const XmlDocument &after, const Check &check = {});

} // namespace TextDifference
