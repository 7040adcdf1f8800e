#include "tests/support/SharedData.h"

#include <QDir>
#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace SharedData {

std::optional<QString> find(const QString &name)
{
    const QString path = QDir::cleanPath(QStringLiteral(LINTORA_SHARED_DATA) + u'/' + name);
    return QFileInfo::exists(path) ? std::optional(path) : std::nullopt;
}

} // namespace SharedData
