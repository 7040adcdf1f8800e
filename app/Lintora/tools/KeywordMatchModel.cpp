#include "app/Lintora/tools/KeywordMatchModel.h"

#include "app/Lintora/controls/MarkedTextDelegate.h"

using namespace Qt::StringLiterals;

namespace {

QString afterText(const KeywordMatch &match)
{
    return match.becomesEmpty() ? u"（替换后为空，将移除此条字幕）"_s : match.after;
}

} // namespace

void KeywordMatchModel::show(const QList<Subtitle> &items, const QString &query, const QString &replacement)
{
    beginResetModel();
    m_query = query;
    m_replacement = replacement;
    m_matches = KeywordReplacement::matches(items, query, replacement);
    m_occurrences = 0;
    for (const KeywordMatch &match : std::as_const(m_matches))
        m_occurrences += match.occurrences;
    endResetModel();
}

qsizetype KeywordMatchModel::cueOf(const QModelIndex &index) const
{
    return qsizetype(m_matches.at(index.row()).id);
}

int KeywordMatchModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_matches.size());
}

QVariant KeywordMatchModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid())
        return {};
    const KeywordMatch &match = m_matches.at(index.row());
    if (role == Qt::DisplayRole || role == Qt::ToolTipRole)
        return u"%1\n↓\n%2"_s.arg(match.cue.text, afterText(match));
    if (role != MarkedTextDelegate::comparedRole)
        return {};
    ComparedRow row{.number = QString::number(match.id + 1),
                    .before = match.cue.text,
                    .after = afterText(match),
                    .beforeMarks = {},
                    .afterMarks = {},
                    .isRemark = match.becomesEmpty()};
    qsizetype moved = 0; // by the replacements so far
    for (qsizetype hit = row.before.indexOf(m_query); hit >= 0;
         hit = row.before.indexOf(m_query, hit + m_query.size())) {
        row.beforeMarks += {.start = hit, .length = m_query.size()};
        if (!row.isRemark && !m_replacement.isEmpty())
            row.afterMarks += {.start = hit + moved, .length = m_replacement.size()};
        moved += m_replacement.size() - m_query.size();
    }
    return QVariant::fromValue(row);
}
