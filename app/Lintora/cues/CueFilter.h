#pragma once

#include "app/Lintora/cues/CueTableModel.h"

#include <QSet>
#include <QSortFilterProxyModel>

/// Shows the cues whose text holds what was typed, in any case; where wanted, of these only such as should be looked at
/// again.
///
/// A cue that is edited, or has just come, stays until something else is typed: it would be gone under the hands.
class CueFilter : public QSortFilterProxyModel
{
    Q_OBJECT

public:
    explicit CueFilter(CueTableModel &cues, QObject *parent = nullptr);

    const QString &text() const { return m_text; }
    void setText(const QString &text);
    bool onlyWarnings() const { return m_onlyWarnings; }
    void setOnlyWarnings(bool only);
    bool isActive() const { return m_onlyWarnings || !m_text.isEmpty(); } ///< Whether cues may be hidden.

    void keep(qint64 cueID); ///< Shows the cue of that number whatever it holds.

protected:
    bool filterAcceptsRow(int row, const QModelIndex &parent) const override;

private:
    CueTableModel &m_cues;
    QString m_text;
    bool m_onlyWarnings = false;
    QSet<qint64> m_kept;
};
