#pragma once

#include "app/fonts/FontCatalogue.h"
#include "app/model/Preferences.h"

#include <QAbstractListModel>

/// The font families that a query finds, favourites and those used of late first.
class FontListModel : public QAbstractListModel
{
    Q_OBJECT

public:
    enum Role
    {
        familyRole = Qt::UserRole, ///< As Options::font holds it.
        favoriteRole,              ///< bool
        recentRole                 ///< bool: used of late.
    };

    static constexpr qsizetype mostRecent = 8;

    /// Both must live as long as the model.
    FontListModel(const FontCatalogue &catalogue, Preferences &preferences, QObject *parent = nullptr);

    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;

    const FontFamily &family(const QModelIndex &index) const;
    QModelIndex indexOf(const QString &family) const; ///< Invalid when it is not among those found.

    const QString &query() const { return m_query; }
    void setQuery(const QString &query);
    void refresh(); ///< After the catalogue has changed.

    bool isFavorite(const QString &family) const { return m_favorites.contains(family); }
    void setFavorite(const QString &family, bool isFavorite); ///< Kept. The order stays until the next query.
    void noteUse(const QString &family);                      ///< Kept. The same.

private:
    const FontCatalogue &m_catalogue;
    Preferences &m_preferences;
    QString m_query;
    QList<FontFamily> m_found;
    QStringList m_favorites;
    QStringList m_recent; ///< The one used last first.
};
