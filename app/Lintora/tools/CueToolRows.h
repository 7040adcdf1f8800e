#pragma once

#include "app/model/CueTools.h"

#include <QAbstractListModel>

/// What a cue tool would do, row by row; findings that can be mended have a box.
class CueToolRows : public QAbstractListModel
{
    Q_OBJECT

public:
    /// `tools` must live as long as this.
    explicit CueToolRows(CueTools &tools, QObject *parent = nullptr);

    qsizetype cueOf(const QModelIndex &index) const; ///< Its position in the track.

    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    bool setData(const QModelIndex &index, const QVariant &value, int role) override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;

private:
    CueTools &m_tools;
    QList<CueProposal::Row> m_rows; ///< As they are shown.
};
