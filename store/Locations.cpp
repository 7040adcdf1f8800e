#include "store/Locations.h"

#include <QDir>

using namespace Qt::StringLiterals;

namespace Locations {

namespace {

QString belowHome(const QString &path)
{
    return QDir::homePath() + u'/' + path;
}

} // namespace

QString draft()
{
    return belowHome(u"Library/Application Support/Lintora/Draft.json"_s);
}

QString stylePresets()
{
    return belowHome(u"Library/Application Support/Lintora/StylePresets.json"_s);
}

QString glossary()
{
    return belowHome(u"Library/Application Support/Lintora/Glossary.csv"_s);
}

QString fontIndex()
{
    return belowHome(u"Library/Application Support/Lintora/FontIndex.json"_s);
}

QString waveforms()
{
    return belowHome(u"Library/Caches/Lintora/Waveforms"_s);
}

QString sessions()
{
    return belowHome(u"Library/Containers/local.lintora.workflow.extension/Data/Library/Application Support/"
                     "Lintora/Sessions"_s);
}

} // namespace Locations
