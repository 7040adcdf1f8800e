#include "app/Lintora/cues/CueGrid.h"

#include "app/Lintora/controls/Theme.h"
#include "app/Lintora/cues/CueTextDelegate.h"
#include "app/Lintora/cues/CueTimeDelegate.h"

#include <QApplication>
#include <QHeaderView>
#include <QPainter>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

/// Invalid behind the last cell.
QModelIndex editableAfter(const QModelIndex &cell)
{
    return cell.column() < CueTableModel::textColumn ? cell.siblingAtColumn(cell.column() + 1)
                                                     : cell.sibling(cell.row() + 1, CueTableModel::startColumn);
}

/// Invalid before the first cell.
QModelIndex editableBefore(const QModelIndex &cell)
{
    return cell.column() > CueTableModel::startColumn ? cell.siblingAtColumn(cell.column() - 1)
                                                      : cell.sibling(cell.row() - 1, CueTableModel::textColumn);
}

} // namespace

CueGrid::CueGrid(LintoraModel &model, QWidget *parent)
    : QTableView(parent)
    , m_model(model)
    , m_cues(model)
    , m_filter(m_cues)
    , m_textDelegate(new CueTextDelegate(this))
{
    setAccessibleName(u"字幕列表"_s);
    setModel(&m_filter);
    auto *const times = new CueTimeDelegate([this] { return m_model.options().rate; }, this);
    setItemDelegate(m_textDelegate);
    setItemDelegateForColumn(CueTableModel::startColumn, times);
    setItemDelegateForColumn(CueTableModel::endColumn, times);

    setSelectionBehavior(SelectRows);
    setSelectionMode(ExtendedSelection);
    setEditTriggers(DoubleClicked | EditKeyPressed);
    setHorizontalScrollMode(ScrollPerPixel);
    setVerticalScrollMode(ScrollPerPixel);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setShowGrid(false);
    setWordWrap(false);
    setTabKeyNavigation(false);
    setCornerButtonEnabled(false);

    // Rows of one height: no row is measured, however many there are.
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    verticalHeader()->setMinimumSectionSize(VELTheme::rowHeight);
    verticalHeader()->setDefaultSectionSize(VELTheme::rowHeight);
    verticalHeader()->hide();
    QHeaderView &header = *horizontalHeader();
    header.setSectionResizeMode(QHeaderView::Fixed);
    header.setSectionResizeMode(CueTableModel::textColumn, QHeaderView::Stretch);
    header.setHighlightSections(false);
    header.setSectionsClickable(false);
    header.setFixedHeight(VELTheme::controlHeight - VELTheme::step);
    header.setFont(VELTheme::smallFont());
    header.setFocusPolicy(Qt::NoFocus);
    const int timeWidth = QFontMetrics(VELTheme::textFont()).horizontalAdvance(u"00:00:00,000"_s);
    for (const int column : {CueTableModel::startColumn, CueTableModel::endColumn})
        setColumnWidth(column, timeWidth + 3 * CueCellDelegate::padding);
    followRowCount();

    connect(&m_cues, &CueTableModel::changed, this, &CueGrid::followRowCount);
    connect(&m_cues, &CueTableModel::changed, this, &CueGrid::currentCueChanged);
    connect(&m_filter, &QAbstractItemModel::modelReset, this, &CueGrid::restorePlace, Qt::QueuedConnection);
    connect(&m_filter, &QAbstractItemModel::modelReset, this, &CueGrid::shownCuesChanged);
    connect(&m_filter, &QAbstractItemModel::rowsInserted, this, &CueGrid::shownCuesChanged);
    connect(&m_filter, &QAbstractItemModel::rowsRemoved, this, &CueGrid::shownCuesChanged);
    connect(&m_cues, &CueTableModel::changed, this, &CueGrid::shownCuesChanged);
    connect(&model, &LintoraModel::aboutToLoad, this, &CueGrid::commitEdit);
    connect(&m_cues, &CueTableModel::aboutToFollow, this, &CueGrid::keepEditorOnItsCue);
    connect(m_textDelegate, &CueTextDelegate::accepted, this, [this](CueTextEditor *editor) { goOn(*editor); });
    connect(m_textDelegate, &CueTextDelegate::abandoned, this, [this](CueTextEditor *editor) { abandon(*editor); });
}

CueGrid::~CueGrid()
{
    if (m_editor)
        m_editor->stop();
}

void CueGrid::setFilter(const QString &text)
{
    commitEdit(); // The cue that is edited stays in sight, also when this is refused.
    m_filter.setText(text);
}

void CueGrid::setOnlyWarnings(bool only)
{
    commitEdit();
    m_filter.setOnlyWarnings(only);
}

/// The first column is as wide as the highest number needs.
void CueGrid::followRowCount()
{
    const qsizetype digits = std::max<qsizetype>(3, QString::number(m_cues.rowCount()).size());
    if (digits == m_digits)
        return;
    m_digits = digits;
    constexpr int markWidth = 12;
    const int width = QFontMetrics(VELTheme::textFont()).horizontalAdvance(QString(digits, u'0'));
    setColumnWidth(CueTableModel::numberColumn, markWidth + width + 2 * CueCellDelegate::padding);
}

// Where we are

QModelIndex CueGrid::indexOf(qsizetype cue, int column) const
{
    return m_filter.mapFromSource(m_cues.index(int(cue), column));
}

std::optional<int> CueGrid::currentCue() const
{
    const QModelIndex index = m_filter.mapToSource(currentIndex());
    return index.isValid() ? std::optional(index.row()) : std::nullopt;
}

QList<qsizetype> CueGrid::selectedCues() const
{
    QList<qsizetype> cues;
    const QItemSelection selection = m_filter.mapSelectionToSource(selectionModel()->selection());
    for (const QItemSelectionRange &range : selection) {
        if (range.left() == 0) {
            for (int row = range.top(); row <= range.bottom(); ++row)
                cues += row;
        }
    }
    std::ranges::sort(cues);
    return cues;
}

void CueGrid::goTo(qsizetype cue)
{
    select(indexOf(cue, CueTableModel::textColumn));
}

/// Whatever keys are held: setCurrentIndex() would take those of a command for a choice of several.
void CueGrid::select(const QModelIndex &index)
{
    if (index.isValid())
        selectionModel()->setCurrentIndex(index, QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
}

void CueGrid::takeKeyboard()
{
    if (!currentIndex().isValid())
        restorePlace();
    if (!currentIndex().isValid() && m_filter.rowCount() > 0)
        goTo(m_filter.mapToSource(m_filter.index(0, 0)).row());
    setFocus();
}

void CueGrid::editText(qsizetype cue)
{
    open(indexOf(cue, CueTableModel::textColumn));
}

/// Goes there and opens the editor, if there is such a cell.
void CueGrid::open(const QModelIndex &cell)
{
    select(cell);
    if (cell.flags().testFlag(Qt::ItemIsEditable))
        QTableView::edit(cell);
}

void CueGrid::currentChanged(const QModelIndex &current, const QModelIndex &previous)
{
    if (m_cues.isFollowing())
        rescueTyped();
    QTableView::currentChanged(current, previous);
    if (const auto cue = currentCue(); cue && m_cues.trackID() && !m_cues.isFollowing())
        m_places.insert(*m_cues.trackID(), *cue);
    Q_EMIT currentCueChanged();
}

// Editing in place

bool CueGrid::edit(const QModelIndex &index, EditTrigger trigger, QEvent *event)
{
    const QModelIndex cue = m_filter.mapToSource(index);
    const bool begins = QTableView::edit(index, trigger, event);
    if (begins && cue.isValid() && state() == EditingState) {
        m_filter.keep(m_cues.cue(cue.row()).id);
        if (auto *const editor = qobject_cast<CueTextEditor *>(indexWidget(index)))
            m_editor = editor;
    }
    return begins;
}

bool CueGrid::commitEdit()
{
    if (m_editor) {
        if (!CueTextDelegate::commit(*m_editor) && !m_editor->toPlainText().trimmed().isEmpty())
            return false;
        closeText();
    } else if (state() == EditingState) {
        if (QWidget *const field = indexWidget(currentIndex())) {
            commitData(field);
            closeEditor(field, QAbstractItemDelegate::NoHint);
        }
    }
    return true;
}

void CueGrid::closeText()
{
    if (m_editor)
        closeEditor(m_editor, QAbstractItemDelegate::NoHint);
}

void CueGrid::closeEditor(QWidget *editor, QAbstractItemDelegate::EndEditHint hint)
{
    if (m_editor && editor == m_editor) {
        m_editor->stop();
        m_editor = nullptr;
    }
    const QModelIndex cell = currentIndex();
    QTableView::closeEditor(editor, QAbstractItemDelegate::NoHint);
    if (hint == QAbstractItemDelegate::EditNextItem)
        open(editableAfter(cell));
    else if (hint == QAbstractItemDelegate::EditPreviousItem)
        open(editableBefore(cell));
}

/// To the text of the next cue in sight; behind the last one, back to the row.
void CueGrid::goOn(const CueTextEditor &editor)
{
    const QModelIndex next = editor.cue().sibling(editor.cue().row() + 1, CueTableModel::textColumn);
    closeText();
    open(next);
}

/// Escape takes back what was typed, as it does everywhere; the history still has it, for a slip of the finger.
void CueGrid::abandon(CueTextEditor &editor)
{
    // What was undone before must stay to be redone: then the text is given up for good, as in any other field.
    const bool keepsTyped = editor.isModified() && !editor.toPlainText().trimmed().isEmpty() && !m_model.canRedo();
    const QList<Subtitle> before = m_model.items();
    const bool isKept = keepsTyped && CueTextDelegate::commit(editor) && m_model.items() != before;
    closeText();
    if (isKept && m_model.canUndo()) {
        m_model.undo();
        const QString redo = QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_Z).toString(QKeySequence::NativeText);
        m_model.report(u"已放弃修改，按 %1 可找回"_s.arg(redo));
    }
}

/// Cues came from elsewhere while one is edited: unless its row is still its own, what was typed is rescued before the
/// row becomes another cue's.
void CueGrid::keepEditorOnItsCue(const QList<Subtitle> &items)
{
    if (state() != EditingState)
        return;
    const int row = m_filter.mapToSource(m_editor ? QModelIndex(m_editor->cue()) : currentIndex()).row();
    if (row < 0)
        return;
    const qint64 id = m_cues.cue(row).id;
    const auto next = m_cues.rowAfter(row, items);
    if (next && items.at(*next).id == id)
        return;
    QWidget *const field = m_editor ? static_cast<QWidget *>(m_editor) : indexWidget(currentIndex());
    rescueTyped();
    if (field)
        QTableView::closeEditor(field, QAbstractItemDelegate::NoHint);
}

/// The cue under the editor goes, perhaps with words in it that nothing else has: they are shown, and can be copied.
void CueGrid::rescueTyped()
{
    if (!m_editor)
        return;
    const QString typed = m_editor->isModified() ? m_editor->toPlainText().trimmed() : QString();
    m_editor->stop();
    m_editor = nullptr; // The view closes it.
    if (typed.isEmpty())
        return;
    QMetaObject::invokeMethod(
        &m_model,
        [&model = m_model, typed] { model.reportFailure(u"正在编辑的字幕已被移除，输入的文字是：%1"_s.arg(typed)); },
        Qt::QueuedConnection);
}

void CueGrid::rowsAboutToBeRemoved(const QModelIndex &parent, int first, int last)
{
    if (m_editor && m_editor->cue().row() >= first && m_editor->cue().row() <= last)
        rescueTyped();
    QTableView::rowsAboutToBeRemoved(parent, first, last);
}

void CueGrid::reset()
{
    const bool hadFocus = isAncestorOf(QApplication::focusWidget()) && QApplication::focusWidget() != this;
    rescueTyped();
    // Before the editor goes: the keyboard would move on to whatever comes next in the window.
    if (hadFocus)
        setFocus();
    QTableView::reset();
}

/// Another track: back to where we were in it.
void CueGrid::restorePlace()
{
    if (m_cues.trackID() && m_cues.rowCount() > 0)
        goTo(std::min(m_places.value(*m_cues.trackID(), 0), m_cues.rowCount() - 1));
    Q_EMIT currentCueChanged(); // A reset leaves none current without a word.
}

// Events

void CueGrid::paintEvent(QPaintEvent *event)
{
    QTableView::paintEvent(event);
    if (shownCues() > 0 || !m_filter.isActive())
        return;
    QPainter painter(viewport());
    painter.setPen(VELTheme::colors(*this).secondary);
    painter.drawText(viewport()->rect(), Qt::AlignCenter,
                     filter().isEmpty() ? u"没有需要留意的字幕"_s : u"没有匹配的字幕，按 Esc 清除筛选"_s);
}

void CueGrid::hideEvent(QHideEvent *event)
{
    commitEdit();
    QTableView::hideEvent(event);
}

void CueGrid::keyboardSearch(const QString & /*text*/)
{
    // Letters do not jump here: the field above the table filters.
}

QVariant CueGrid::inputMethodQuery(Qt::InputMethodQuery query) const
{
    // Nothing can be typed into the rows themselves: letters come as they are, whichever input method is on.
    return query == Qt::ImEnabled ? QVariant(false) : QTableView::inputMethodQuery(query);
}
