#include "tests/support/TestModels.h"

#include "tests/support/SharedData.h"

#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QUuid>

using namespace Qt::StringLiterals;

namespace TestModels {

std::optional<QString> find(const QString &name)
{
    if (const auto plain = SharedData::find(u"models/"_s + name))
        return plain;
    const auto packed = SharedData::find(u"models/"_s + name + u".xz"_s);
    if (!packed)
        return std::nullopt;
    const QString folder = QDir::tempPath() + u"/lintora-test-models"_s;
    const QString unpacked = folder + u'/' + name;
    if (QFileInfo::exists(unpacked))
        return unpacked;
    QDir().mkpath(folder);
    // Aside first: other tests may want it at the same time.
    const QString aside = unpacked + QUuid::createUuid().toString(QUuid::Id128);
    QProcess xz;
    xz.setStandardOutputFile(aside);
    xz.start(u"xz"_s, {u"-dc"_s, *packed});
    if (!xz.waitForFinished() || xz.exitCode() != 0 || !QFile::rename(aside, unpacked)) {
        QFile::remove(aside);
        return QFileInfo::exists(unpacked) ? std::optional(unpacked) : std::nullopt;
    }
    return unpacked;
}

} // namespace TestModels
