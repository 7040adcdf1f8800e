#pragma once

#include <QString>

namespace Redaction {

/// `text` with "[已隐藏]" wherever it shows `key`: whole or a part of it, as it is or encoded (percent signs, Base64,
/// hexadecimal digits), so that what a service says about a wrong key can be shown.
QString hide(const QString &text, const QString &key);

} // namespace Redaction
