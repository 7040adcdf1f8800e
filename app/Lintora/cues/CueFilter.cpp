#include "app/Lintora/cues/CueFilter.h"

CueFilter::CueFilter(CueTableModel &cues, QObject *parent)
    : QSortFilterProxyModel(parent)
    , m_cues(cues)
{
    connect(&cues, &QAbstractItemModel::modelAboutToBeReset, this, [this] { m_kept.clear(); });
    setSourceModel(&cues);
}

void CueFilter::setText(const QString &text)
{
    if (text == m_text)
        return;
    m_text = text;
    // To views a fresh list is several times quicker than thousands of rows that come and go one by one.
    m_cues.startOver();
}

void CueFilter::setOnlyWarnings(bool only)
{
    if (only == m_onlyWarnings)
        return;
    m_onlyWarnings = only;
    m_cues.startOver();
}

void CueFilter::keep(qint64 cueID)
{
    if (isActive())
        m_kept.insert(cueID);
}

bool CueFilter::filterAcceptsRow(int row, const QModelIndex & /*parent*/) const
{
    if (!isActive())
        return true;
    const Subtitle &cue = m_cues.cue(row);
    if (m_kept.contains(cue.id))
        return true;
    // The search is cheap, and leaves few cues to be measured.
    return cue.text.contains(m_text, Qt::CaseInsensitive) && (!m_onlyWarnings || m_cues.hasWarnings(row));
}
