#include "app/Lintora/look/TitleListModel.h"

#include <algorithm>

using namespace Qt::StringLiterals;

TitleListModel::TitleListModel(OwnTitles &titles, QObject *parent)
    : QAbstractListModel(parent)
    , m_source(titles)
    , m_offers(titles.offers())
{
    connect(&titles, &OwnTitles::changed, this, &TitleListModel::follow);
}

int TitleListModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_offers.size());
}

QVariant TitleListModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid())
        return {};
    const TitleLooks::Offer &offer = m_offers.at(index.row());
    const QString text = QString(offer.text).replace(u'\n', u" / "_s);
    QStringList asides{offer.look.name()};
    // Final Cut Pro calls a title by its first words.
    if (!offer.name.isEmpty() && !offer.text.startsWith(offer.name) && !offer.name.startsWith(offer.text))
        asides += offer.name;
    asides += u"%1 条标题"_s.arg(offer.titles);
    if (role == Qt::DisplayRole)
        return text;
    if (role == asideRole)
        return asides.join(u" · "_s);
    if (role == Qt::AccessibleTextRole || role == Qt::ToolTipRole)
        return QString(offer.text + u'\n' + asides.join(u" · "_s));
    return {};
}

QModelIndex TitleListModel::indexOf(const std::optional<TitleTemplate> &look) const
{
    const auto found = std::ranges::find_if(m_offers, [&](const TitleLooks::Offer &each) { return each.look == look; });
    return found == m_offers.end() ? QModelIndex() : index(int(found - m_offers.begin()));
}

void TitleListModel::follow()
{
    beginResetModel();
    m_offers = m_source.offers();
    endResetModel();
}
