#pragma once

#include "fcp/Rational.h"

#include <libxml/tree.h>

#include <optional>

/// Times as attributes of a dragged document.
namespace DocumentTime {

/// Seconds that the attribute states, absent when the element does not have it.
/// @throws ConversionError "FCP 时间值无效。"
std::optional<Rational> read(const xmlNode *element, QByteArrayView attribute);

} // namespace DocumentTime
