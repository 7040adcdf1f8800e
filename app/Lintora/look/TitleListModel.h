#pragma once

#include "app/model/OwnTitles.h"

#include <QAbstractListModel>

/// The titles whose look can be taken, in their order.
class TitleListModel : public QAbstractListModel
{
    Q_OBJECT

public:
    static constexpr int asideRole = Qt::UserRole; ///< What is to be known besides the text.

    /// `titles` must live as long as this.
    explicit TitleListModel(OwnTitles &titles, QObject *parent = nullptr);

    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;

    const TitleTemplate &look(const QModelIndex &index) const { return m_offers.at(index.row()).look; }
    QModelIndex indexOf(const std::optional<TitleTemplate> &look) const;

private:
    void follow();

    OwnTitles &m_source;
    QList<TitleLooks::Offer> m_offers;
};
