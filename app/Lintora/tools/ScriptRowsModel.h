#pragma once

#include "app/model/ScriptMatching.h"

#include <QAbstractListModel>

/// What a matched transcript proposes, in one list: the changes, then the cues and the passages that found no partner,
/// each under its heading.
class ScriptRowsModel : public QAbstractListModel
{
    Q_OBJECT

public:
    /// `matching` must live as long as this.
    explicit ScriptRowsModel(ScriptMatching &matching, QObject *parent = nullptr);

    qsizetype ticked() const; ///< Changes that would be applied.

    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    bool setData(const QModelIndex &index, const QVariant &value, int role) override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;

private:
    enum class Kind
    {
        changesHeading,
        change,
        cuesHeading,
        cue,
        passagesHeading,
        passage
    };

    struct Entry
    {
        Kind kind = Kind::change;
        qsizetype index = 0; ///< Of the row or passage; of a heading how many follow.

        friend bool operator==(const Entry &, const Entry &) = default;
    };

    void follow();
    QList<Entry> entries() const;

    ScriptMatching &m_matching;
    QList<Entry> m_entries;
};
