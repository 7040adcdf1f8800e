#pragma once

#include <QString>

namespace ByteCount {

/// A size as people read it: powers of 1024, no decimals up to KB, one for MB, two from GB on, none that are zero.
/// "512 字节", "1,023 KB", "141.1 MB", "2.33 GB". `bytes` is not negative.
QString text(qint64 bytes);

} // namespace ByteCount
