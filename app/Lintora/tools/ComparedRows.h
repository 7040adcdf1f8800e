#pragma once

#include "app/Lintora/controls/MarkedTextDelegate.h"

#include <QAbstractListModel>

/// Rows for MarkedTextDelegate that are only looked at. Two wordings are compared when they are.
class ComparedRows : public QAbstractListModel
{
    Q_OBJECT

public:
    using QAbstractListModel::QAbstractListModel;

    void setRows(const QList<ComparedRow> &rows); ///< In the place of all others.

    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;

private:
    QList<ComparedRow> m_rows; ///< Without marks.
};
