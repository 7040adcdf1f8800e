#pragma once

#include "app/model/ai/Review.h"

#include <QAbstractListModel>

/// What a proofreading proposes, a row for each cue, or only for those that would change.
class ReviewRowsModel : public QAbstractListModel
{
    Q_OBJECT

public:
    /// `review` must live as long as this.
    explicit ReviewRowsModel(Review &review, QObject *parent = nullptr);

    bool showsOnlyChanged() const { return m_showsOnlyChanged; }
    void setShowsOnlyChanged(bool onlyChanged);

    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    bool setData(const QModelIndex &index, const QVariant &value, int role) override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;

private:
    QList<qsizetype> shown() const;
    void follow();

    Review &m_review;
    bool m_showsOnlyChanged = true;
    QList<qsizetype> m_shown; ///< Positions of the review's rows.
};
