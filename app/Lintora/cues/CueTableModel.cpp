#include "app/Lintora/cues/CueTableModel.h"

#include "app/titles/TitleMeasure.h"
#include "core/SRT.h"

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype rememberedRows = 512; // some screens full

} // namespace

CueTableModel::CueTableModel(LintoraModel &model, QObject *parent)
    : QAbstractTableModel(parent)
    , m_model(model)
    , m_items(model.items())
    , m_trackID(model.selectedTrackID())
{
    connect(&model, &LintoraModel::loaded, this, [this] { m_isLoading = true; });
    connect(&model, &LintoraModel::itemsChanged, this, &CueTableModel::follow);
    connect(&model, &LintoraModel::selectedTrackIDChanged, this, &CueTableModel::follow);
    connect(&model, &LintoraModel::picturedChanged, this, &CueTableModel::forgetStyle);
    connect(&model.translation(), &Translation::termsChanged, this, &CueTableModel::forgetWarnings);
    connect(&model.suspects(), &SuspectMarks::changed, this, &CueTableModel::forgetWarnings);
}

CueTableModel::~CueTableModel() = default;

void CueTableModel::follow()
{
    const bool isOther = std::exchange(m_isLoading, false) || m_trackID != m_model.selectedTrackID();
    if (!isOther && m_items == m_model.items())
        return;
    if (!isOther)
        Q_EMIT aboutToFollow(m_model.items());
    m_isFollowing = true;
    if (isOther)
        reload();
    else
        takeDifference(m_model.items());
    m_isFollowing = false;
    Q_EMIT changed();
}

void CueTableModel::reload()
{
    beginResetModel();
    m_items = m_model.items();
    m_trackID = m_model.selectedTrackID();
    m_warnings.clear();
    m_measure.reset();
    endResetModel();
}

void CueTableModel::startOver()
{
    beginResetModel();
    endResetModel();
}

CueTableModel::Difference CueTableModel::difference(const QList<Subtitle> &items) const
{
    const auto [oldStop, newStop] = std::ranges::mismatch(m_items, items);
    const qsizetype head = oldStop - m_items.cbegin();
    const qsizetype shorter = std::min(m_items.size(), items.size());
    qsizetype tail = 0;
    while (head + tail < shorter && m_items.at(m_items.size() - 1 - tail) == items.at(items.size() - 1 - tail))
        ++tail;
    return {.head = int(head), .kept = int(shorter - tail), .surplus = int(items.size() - m_items.size())};
}

std::optional<int> CueTableModel::rowAfter(int row, const QList<Subtitle> &items) const
{
    const Difference change = difference(items);
    if (row < change.kept)
        return row;
    return row < change.kept - change.surplus ? std::nullopt : std::optional(row + change.surplus);
}

/// What stayed at the beginning and at the end keeps its rows; of what lies between, as many rows as there are on both
/// sides have changed, and the rest came or went behind them.
void CueTableModel::takeDifference(const QList<Subtitle> &items)
{
    const auto [head, kept, surplus] = difference(items);
    m_warnings.clear();
    if (surplus > 0) {
        beginInsertRows({}, kept, kept + surplus - 1);
        m_items = items;
        endInsertRows();
    } else if (surplus < 0) {
        beginRemoveRows({}, kept, kept - surplus - 1);
        m_items = items;
        endRemoveRows();
    } else {
        m_items = items;
    }
    // The cue before is told too: its warnings look at the next one.
    const int first = std::max(0, head - 1);
    const int last = std::min(int(items.size()), kept + std::max(surplus, 0)) - 1;
    if (first <= last)
        Q_EMIT dataChanged(index(first, 0), index(last, columns - 1));
}

void CueTableModel::forgetStyle()
{
    m_measure.reset();
    forgetWarnings();
}

void CueTableModel::forgetWarnings()
{
    m_warnings.clear();
    if (!m_items.isEmpty())
        Q_EMIT dataChanged(index(0, 0), index(rowCount() - 1, columns - 1),
                           {warningsRole, suspectRole, tickedRole, Qt::ToolTipRole});
}

QList<CueWarnings::Warning> CueTableModel::warnings(int row) const
{
    if (!m_measure)
        m_measure = std::make_unique<TitleMeasure>(m_model.pictured());
    const Subtitle *const next = row + 1 < m_items.size() ? &m_items.at(row + 1) : nullptr;
    return CueWarnings::of(m_items.at(row), next,
                           [this](QStringView text) { return m_measure->isWiderThanSafe(text); });
}

/// Of any number of rows at once: nothing is put into words, and nothing remembered.
bool CueTableModel::hasWarnings(int row) const
{
    const Subtitle &cue = m_items.at(row);
    return !warnings(row).isEmpty() || m_model.suspects().reasons(cue) ||
           !m_model.translation().terms(cue).missing.isEmpty();
}

QStringList CueTableModel::warningSentences(int row) const
{
    if (const auto known = m_warnings.constFind(row); known != m_warnings.cend())
        return *known;
    QStringList sentences;
    if (const auto reasons = m_model.suspects().reasons(m_items.at(row)))
        sentences += SuspectCues::sentence(*reasons);
    const QList<GlossaryTerm> missing = m_model.translation().terms(m_items.at(row)).missing;
    for (const GlossaryTerm &term : missing)
        sentences += u"术语未按译法：%1 → %2"_s.arg(term.term, term.rendering);
    for (const CueWarnings::Warning &warning : warnings(row))
        sentences += warning.sentence;
    if (m_warnings.size() >= rememberedRows)
        m_warnings.clear();
    m_warnings.insert(row, sentences);
    return sentences;
}

int CueTableModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_items.size());
}

int CueTableModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(columns);
}

QVariant CueTableModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid())
        return {};
    const Subtitle &cue = m_items.at(index.row());
    if (role == warningsRole || role == Qt::ToolTipRole || role == Qt::AccessibleDescriptionRole) {
        QStringList sentences = warningSentences(index.row());
        if (role == warningsRole)
            return sentences;
        const QList<GlossaryTerm> kept = m_model.translation().terms(cue).kept;
        for (const GlossaryTerm &term : kept)
            sentences += u"术语已保留：%1 → %2"_s.arg(term.term, term.rendering);
        return sentences.isEmpty() ? QVariant() : QVariant(sentences.join(u'\n'));
    }
    if (role == suspectRole)
        return m_model.suspects().reasons(cue).has_value();
    if (role == tickedRole)
        return m_model.suspects().isTicked(cue);
    switch (index.column()) {
    case numberColumn:
        // No data of the cue's own: it changes with every row that comes or goes before.
        return role == Qt::AccessibleTextRole ? QVariant(QString::number(index.row() + 1)) : QVariant();
    case startColumn:
    case endColumn: {
        const qint64 time = index.column() == startColumn ? cue.start : cue.end;
        if (role == Qt::EditRole)
            return time;
        return role == Qt::DisplayRole ? QVariant(SRT::stamp(time)) : QVariant();
    }
    default:
        return role == Qt::DisplayRole || role == Qt::EditRole ? QVariant(cue.text) : QVariant();
    }
}

QVariant CueTableModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal)
        return {};
    if (role == Qt::TextAlignmentRole)
        return int((section == numberColumn ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter);
    if (role != Qt::DisplayRole)
        return {};
    switch (section) {
    case numberColumn:
        return u"#"_s;
    case startColumn:
        return u"开始"_s;
    case endColumn:
        return u"结束"_s;
    default:
        return u"字幕"_s;
    }
}

Qt::ItemFlags CueTableModel::flags(const QModelIndex &index) const
{
    if (!index.isValid())
        return Qt::NoItemFlags;
    Qt::ItemFlags flags = Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemNeverHasChildren;
    if (index.column() != numberColumn && !m_model.aiBusy())
        flags |= Qt::ItemIsEditable;
    return flags;
}

bool CueTableModel::setData(const QModelIndex &index, const QVariant &value, int role)
{
    // Rows mean the session's cues only while they are the same.
    if (!index.isValid() || role != Qt::EditRole || m_isFollowing || m_items != m_model.items())
        return false;
    const Subtitle cue = m_items.at(index.row());
    switch (index.column()) {
    case startColumn:
        return m_model.setTimes(index.row(), value.toLongLong(), cue.end).has_value();
    case endColumn:
        return m_model.setTimes(index.row(), cue.start, value.toLongLong()).has_value();
    case textColumn:
        return m_model.setText(index.row(), value.toString()).has_value();
    default:
        return false;
    }
}
