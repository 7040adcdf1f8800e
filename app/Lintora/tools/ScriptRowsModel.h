#pragma once

#include "app/model/LintoraModel.h"

#include <QAbstractListModel>

/// What a matched transcript proposes, in one list: the changes, then the cues and the passages that found no partner,
/// each under its heading.
class ScriptRowsModel : public QAbstractListModel
{
    Q_OBJECT

public:
    /// `model` must live as long as this.
    explicit ScriptRowsModel(LintoraModel &model, QObject *parent = nullptr);

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
        qsizetype index = 0; ///< Of the model's row or passage; of a heading how many follow.

        friend bool operator==(const Entry &, const Entry &) = default;
    };

    void follow();
    QList<Entry> entries() const;

    LintoraModel &m_model;
    QList<Entry> m_entries;
};
