#pragma once

#include "core/text/KeywordReplacement.h"

#include <QAbstractListModel>

/// The preview of a replacement: a row for each cue that holds the keyword.
class KeywordMatchModel : public QAbstractListModel
{
    Q_OBJECT

public:
    using QAbstractListModel::QAbstractListModel;

    void show(const QList<Subtitle> &items, const QString &query, const QString &replacement);

    qint64 occurrences() const { return m_occurrences; } ///< In all rows.
    qsizetype cueOf(const QModelIndex &index) const;     ///< Its position in the track.

    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;

private:
    QList<KeywordMatch> m_matches;
    qint64 m_occurrences = 0;
    QString m_query;
    QString m_replacement;
};
