#include "app/Lintora/look/FontListModel.h"

#include <algorithm>

using namespace Qt::StringLiterals;

FontListModel::FontListModel(const FontCatalogue &catalogue, Preferences &preferences, QObject *parent)
    : QAbstractListModel(parent)
    , m_catalogue(catalogue)
    , m_preferences(preferences)
    , m_favorites(preferences.favoriteFonts())
    , m_recent(preferences.recentFonts())
{
    refresh();
}

int FontListModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_found.size());
}

const FontFamily &FontListModel::family(const QModelIndex &index) const
{
    return m_found.at(index.row());
}

QVariant FontListModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid())
        return {};
    const FontFamily &font = family(index);
    switch (role) {
    case Qt::DisplayRole:
        return font.displayName();
    case Qt::AccessibleTextRole: {
        QString text = font.displayName() == font.family ? font.family : font.displayName() + u"，"_s + font.family;
        if (isFavorite(font.family))
            text += u"，已收藏"_s;
        return text;
    }
    case familyRole:
        return font.family;
    case favoriteRole:
        return isFavorite(font.family);
    case recentRole:
        return m_recent.contains(font.family);
    default:
        return {};
    }
}

QModelIndex FontListModel::indexOf(const QString &family) const
{
    const auto found = std::ranges::find(m_found, family, &FontFamily::family);
    return found == m_found.end() ? QModelIndex() : index(int(found - m_found.begin()));
}

void FontListModel::setQuery(const QString &query)
{
    m_query = query;
    refresh();
}

void FontListModel::refresh()
{
    beginResetModel();
    m_found.clear();
    const QList<FontFamily> &families = m_catalogue.families();
    for (const qsizetype place : m_catalogue.search(m_query, m_favorites + m_recent))
        m_found += families.at(place);
    endResetModel();
}

void FontListModel::setFavorite(const QString &family, bool isFavorite)
{
    if (isFavorite == m_favorites.contains(family))
        return;
    if (isFavorite)
        m_favorites += family;
    else
        m_favorites.removeAll(family);
    m_preferences.setFavoriteFonts(m_favorites);
    if (const QModelIndex changed = indexOf(family); changed.isValid())
        Q_EMIT dataChanged(changed, changed);
}

void FontListModel::noteUse(const QString &family)
{
    m_recent.removeAll(family);
    m_recent.prepend(family);
    if (m_recent.size() > mostRecent)
        m_recent.resize(mostRecent);
    m_preferences.setRecentFonts(m_recent);
    if (const QModelIndex changed = indexOf(family); changed.isValid())
        Q_EMIT dataChanged(changed, changed);
}
