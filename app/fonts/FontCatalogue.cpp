#include "app/fonts/FontCatalogue.h"

#include "app/fonts/FontIndexFile.h"
#include "core/PlatformError.h"
#include "core/text/Characters.h"
#include "core/text/Pinyin.h"
#include "fcp/Options.h"

#include <QFont>
#include <QFontDatabase>
#include <QHash>
#include <QRawFont>

#include <algorithm>
#include <optional>

using namespace Qt::StringLiterals;

namespace {

const QString preferredFamily = u"Source Han Sans CN"_s;

/// Where a system has several foundries' fonts of one name, the database adds the foundry: "Nimbus Sans [urw]". In a
/// title document that would be no font.
QString withoutFoundry(const QString &family)
{
    const qsizetype bracket = family.indexOf(u" ["_s);
    return bracket > 0 && family.endsWith(u']') ? family.first(bracket) : family;
}

QStringList installedFamilies()
{
    // Names that stand for whatever fonts a system is set up to use.
    static const QStringList stands{u"Monospace"_s, u"Sans Serif"_s, u"Serif"_s};
    QStringList families;
    for (const QString &family : QFontDatabase::families()) {
        if (!QFontDatabase::isPrivateFamily(family) && !stands.contains(family))
            families.append(withoutFoundry(family));
    }
    families.removeDuplicates();
    return families;
}

FontNames::Names namesInFont(const QString &family)
{
    const QRawFont font = QRawFont::fromFont(QFont(family));
    FontNames::Names names = FontNames::read(font.fontTable("name"));
    // A font that cannot be opened is replaced by another one without a word.
    if (!names.families.contains(family, Qt::CaseInsensitive))
        names = {};
    return names;
}

bool hasHan(const QString &text)
{
    const Characters::Scalars scalars(text);
    return std::any_of(scalars.begin(), scalars.end(),
                       [](char32_t scalar) { return Characters::script(scalar) == QChar::Script_Han; });
}

/// What the name alone tells of a family, until its font has been opened.
FontFamily withoutNames(const QString &family, const QStringList &faces)
{
    return {.family = family,
            .chineseName = hasHan(family) ? family : QString(),
            .englishName = QString(),
            .faces = faces,
            .pronunciation = QString()};
}

} // namespace

FontCatalogue::Source FontCatalogue::installed()
{
    return {.families = installedFamilies,
            .faces = [](const QString &family) { return QFontDatabase::styles(family); },
            .names = namesInFont};
}

FontCatalogue::FontCatalogue(QString indexFile, Source source, QObject *parent)
    : QObject(parent)
    , m_indexFile(std::move(indexFile))
    , m_source(std::move(source))
{}

FontCatalogue::~FontCatalogue()
{
    m_stop = true;
    if (m_thread.joinable())
        m_thread.join();
}

void FontCatalogue::load()
{
    m_isReady = false;
    m_loadAgain = m_isWorking;
    if (m_isWorking)
        return;
    m_isWorking = true;
    // The last thread has delivered its result: there is nothing to wait for.
    if (m_thread.joinable())
        m_thread.join();
    m_thread = std::thread([this] { work(); });
}

QList<qsizetype> FontCatalogue::search(QStringView query, const QStringList &preferred) const
{
    return m_search.find(query, preferred);
}

QString FontCatalogue::defaultFamily()
{
    return defaultFamily(QFontDatabase::hasFamily(preferredFamily) ? QStringList{preferredFamily} : QStringList());
}

QString FontCatalogue::defaultFamily(const QStringList &installedFamilies)
{
    return installedFamilies.contains(preferredFamily) ? preferredFamily : Options().font;
}

void FontCatalogue::work()
{
    const QList<FontFamily> kept = FontIndexFile::load(m_indexFile);
    QHash<QString, qsizetype> places;
    for (qsizetype i = 0; i < kept.size(); ++i)
        places.insert(kept[i].family, i);

    QList<FontFamily> families;
    QList<qsizetype> unknown;
    for (const QString &name : m_source.families()) {
        if (m_stop)
            return;
        const QStringList faces = m_source.faces(name);
        const qsizetype place = places.value(name, -1);
        // Other faces come with another version of a font, which may have other names.
        const bool isKnown = place >= 0 && kept[place].faces == faces;
        if (!isKnown)
            unknown.append(families.size());
        families.append(isKnown ? kept[place] : withoutNames(name, faces));
    }
    if (unknown.isEmpty() && families == kept) {
        deliver(std::move(families), Progress::complete);
        return;
    }
    deliver(families, Progress::partial);

    std::optional<Pinyin::Reader> reader;
    for (const qsizetype place : unknown) {
        if (m_stop)
            return;
        FontFamily &family = families[place];
        const FontNames::Names names = m_source.names(family.family);
        family.englishName = names.english;
        if (hasHan(names.chinese))
            family.chineseName = names.chinese;
        if (family.chineseName.isEmpty())
            continue;
        if (!reader)
            reader.emplace();
        family.pronunciation = reader->read(family.chineseName);
    }
    try {
        FontIndexFile::save(m_indexFile, families);
    } catch (const PlatformError &error) {
        QMetaObject::invokeMethod(
            this, [this, reason = error.description()] { Q_EMIT indexNotSaved(reason); }, Qt::QueuedConnection);
    }
    deliver(std::move(families), Progress::complete);
}

/// Hands over what is known, with its search already made. Not taken when the catalogue is gone by then.
void FontCatalogue::deliver(QList<FontFamily> families, Progress progress)
{
    const FontSearch search(families);
    QMetaObject::invokeMethod(
        this, [this, families = std::move(families), search, progress] { take(families, search, progress); },
        Qt::QueuedConnection);
}

void FontCatalogue::take(const QList<FontFamily> &families, const FontSearch &search, Progress progress)
{
    m_families = families;
    m_search = search;
    if (progress == Progress::partial) {
        Q_EMIT changed();
        return;
    }
    m_isWorking = false;
    if (m_loadAgain) {
        Q_EMIT changed();
        load();
        return;
    }
    m_isReady = true;
    Q_EMIT changed();
    Q_EMIT ready();
}
