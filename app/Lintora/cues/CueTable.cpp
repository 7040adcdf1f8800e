#include "app/Lintora/cues/CueTable.h"

#include "app/Lintora/controls/Theme.h"
#include "app/Lintora/cues/CueClipboard.h"
#include "app/Lintora/cues/CueTextDelegate.h"
#include "app/Lintora/cues/CueTimeDelegate.h"
#include "app/Lintora/cues/SplitPosition.h"
#include "core/CueEditing.h"

#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QHeaderView>
#include <QMenu>
#include <QPainter>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

bool isReturn(const QKeyEvent &event)
{
    return event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter;
}

} // namespace

CueTable::CueTable(LintoraModel &model, QWidget *parent)
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

    connect(&m_cues, &CueTableModel::changed, this, &CueTable::followRowCount);
    connect(&m_cues, &CueTableModel::changed, this, &CueTable::currentCueChanged);
    connect(&m_filter, &QAbstractItemModel::modelReset, this, &CueTable::restorePlace, Qt::QueuedConnection);
    connect(&model, &LintoraModel::aboutToLoad, this, &CueTable::commitEdit);
    connect(&m_cues, &CueTableModel::aboutToFollow, this, &CueTable::keepEditorOnItsCue);
    connect(m_textDelegate, &CueTextDelegate::abandoned, this, [this](CueTextEditor *editor) { abandon(*editor); });
    connect(m_textDelegate, &CueTextDelegate::splitRequested, this,
            [this](CueTextEditor *editor) { splitAt(*editor); });
    connect(m_textDelegate, &CueTextDelegate::joinRequested, this, &CueTable::joinWithNext);
    connect(m_textDelegate, &CueTextDelegate::insertRequested, this, &CueTable::insertCue);
}

CueTable::~CueTable()
{
    if (m_editor)
        m_editor->stop();
}

void CueTable::setFilter(const QString &text)
{
    commitEdit(); // The cue that is edited stays in sight, also when this is refused.
    m_filter.setText(text);
}

/// The first column is as wide as the highest number needs.
void CueTable::followRowCount()
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

QModelIndex CueTable::indexOf(qsizetype cue, int column) const
{
    return m_filter.mapFromSource(m_cues.index(int(cue), column));
}

std::optional<int> CueTable::currentCue() const
{
    const QModelIndex index = m_filter.mapToSource(currentIndex());
    return index.isValid() ? std::optional(index.row()) : std::nullopt;
}

QList<qsizetype> CueTable::selectedCues() const
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

void CueTable::goTo(qsizetype cue)
{
    select(indexOf(cue, CueTableModel::textColumn));
}

/// Whatever keys are held: setCurrentIndex() would take those of a command for a choice of several.
void CueTable::select(const QModelIndex &index)
{
    if (index.isValid())
        selectionModel()->setCurrentIndex(index, QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
}

void CueTable::takeKeyboard()
{
    if (!currentIndex().isValid())
        restorePlace();
    if (!currentIndex().isValid() && m_filter.rowCount() > 0)
        goTo(m_filter.mapToSource(m_filter.index(0, 0)).row());
    setFocus();
}

void CueTable::editText(qsizetype cue)
{
    const QModelIndex index = indexOf(cue, CueTableModel::textColumn);
    if (!index.isValid())
        return;
    select(index);
    if (index.flags().testFlag(Qt::ItemIsEditable))
        QTableView::edit(index);
}

void CueTable::currentChanged(const QModelIndex &current, const QModelIndex &previous)
{
    if (m_cues.isFollowing())
        rescueTyped();
    QTableView::currentChanged(current, previous);
    if (const auto cue = currentCue(); cue && m_cues.trackID() && !m_cues.isFollowing())
        m_places.insert(*m_cues.trackID(), *cue);
    Q_EMIT currentCueChanged();
}

// Editing in place

bool CueTable::edit(const QModelIndex &index, EditTrigger trigger, QEvent *event)
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

bool CueTable::commitEdit()
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

void CueTable::closeText()
{
    if (m_editor)
        closeEditor(m_editor, QAbstractItemDelegate::NoHint);
}

void CueTable::closeEditor(QWidget *editor, QAbstractItemDelegate::EndEditHint hint)
{
    if (m_editor && editor == m_editor) {
        m_editor->stop();
        m_editor = nullptr;
    }
    QTableView::closeEditor(editor, hint);
}

/// Escape takes back what was typed, as it does everywhere; the history still has it, for a slip of the finger.
void CueTable::abandon(CueTextEditor &editor)
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
void CueTable::keepEditorOnItsCue(const QList<Subtitle> &items)
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
void CueTable::rescueTyped()
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

void CueTable::rowsAboutToBeRemoved(const QModelIndex &parent, int first, int last)
{
    if (m_editor && m_editor->cue().row() >= first && m_editor->cue().row() <= last)
        rescueTyped();
    QTableView::rowsAboutToBeRemoved(parent, first, last);
}

void CueTable::reset()
{
    const bool hadFocus = isAncestorOf(QApplication::focusWidget()) && QApplication::focusWidget() != this;
    rescueTyped();
    // Before the editor goes: the keyboard would move on to whatever comes next in the window.
    if (hadFocus)
        setFocus();
    QTableView::reset();
}

/// Another track: back to where we were in it.
void CueTable::restorePlace()
{
    if (m_cues.trackID() && m_cues.rowCount() > 0)
        goTo(std::min(m_places.value(*m_cues.trackID(), 0), m_cues.rowCount() - 1));
    Q_EMIT currentCueChanged(); // A reset leaves none current without a word.
}

// Commands

void CueTable::insertCue()
{
    if (!commitEdit())
        return;
    m_filter.keep(CueEditing::nextID(m_model.items()));
    const auto after = currentCue().value_or(int(m_model.items().size()) - 1);
    if (const auto next = m_model.insertCue(after))
        editText(*next);
}

void CueTable::splitCue()
{
    const auto cue = currentCue();
    if (!cue || !commitEdit())
        return;
    m_filter.keep(m_cues.cue(*cue).id);
    m_filter.keep(CueEditing::nextID(m_model.items()));
    if (m_model.splitCue(*cue, SplitPosition::nearMiddle(m_cues.cue(*cue).text)))
        goTo(*cue);
}

void CueTable::splitAt(CueTextEditor &editor)
{
    const int cue = m_filter.mapToSource(editor.cue()).row();
    const QString typed = editor.toPlainText();
    const qsizetype typedPosition = editor.textCursor().position();
    // What was typed and the split are one step.
    std::optional<qsizetype> next;
    m_model.asOneStep([&] {
        if (!CueTextDelegate::commit(editor))
            return;
        m_filter.keep(CueEditing::nextID(m_model.items()));
        next = m_model.splitCue(cue, SplitPosition::inTidied(typed, typedPosition, m_cues.cue(cue).text));
    });
    if (!next)
        return;
    closeText();
    editText(*next);
    if (m_editor)
        m_editor->moveCursor(QTextCursor::Start);
}

void CueTable::joinWithNext()
{
    const auto cue = currentCue();
    if (!cue || *cue + 1 >= m_cues.rowCount() || !commitEdit())
        return;
    m_filter.keep(m_cues.cue(*cue).id);
    if (const auto joined = m_model.joinWithNext(*cue))
        goTo(*joined);
}

void CueTable::deleteCues()
{
    const QList<qsizetype> cues = selectedCues();
    if (cues.isEmpty() || !commitEdit())
        return;
    if (const auto next = m_model.deleteCues(cues); next && *next >= 0)
        goTo(*next);
}

void CueTable::cut()
{
    const QList<qsizetype> cues = selectedCues();
    if (cues.isEmpty() || m_model.aiBusy())
        return;
    copy();
    deleteCues();
}

void CueTable::copy()
{
    QList<Subtitle> cues;
    for (const qsizetype cue : selectedCues())
        cues += m_cues.cue(int(cue));
    if (!cues.isEmpty())
        QGuiApplication::clipboard()->setMimeData(CueClipboard::offering(cues).release());
}

void CueTable::paste()
{
    const QMimeData *const held = QGuiApplication::clipboard()->mimeData();
    if (const QList<Subtitle> cues = held ? CueClipboard::cuesIn(*held) : QList<Subtitle>(); !cues.isEmpty()) {
        placeCues(cues);
        return;
    }
    const auto cue = currentCue();
    if (!cue || QGuiApplication::clipboard()->text().trimmed().isEmpty())
        return;
    editText(*cue);
    if (m_editor) {
        m_editor->selectAll();
        m_editor->paste();
    }
}

void CueTable::placeCues(const QList<Subtitle> &cues)
{
    if (!commitEdit())
        return;
    const qint64 first = CueEditing::nextID(m_model.items());
    for (qsizetype i = 0; i < cues.size(); ++i)
        m_filter.keep(first + i);
    if (const auto next = m_model.pasteCues(cues))
        goTo(*next);
}

void CueTable::selectAll()
{
    if (commitEdit())
        QTableView::selectAll();
}

void CueTable::moveTo(const QUuid &track)
{
    const QList<qsizetype> cues = selectedCues();
    if (cues.isEmpty() || !commitEdit())
        return;
    m_model.moveCues(cues, track);
}

// Keys and the pointer

void CueTable::keyPressEvent(QKeyEvent *event)
{
    const bool isCommand = event->modifiers().testFlag(Qt::ControlModifier);
    if (isReturn(*event) && isCommand) {
        insertCue();
    } else if (isReturn(*event)) {
        const bool isTime = currentIndex().column() == CueTableModel::startColumn ||
                            currentIndex().column() == CueTableModel::endColumn;
        if (isTime && currentIndex().flags().testFlag(Qt::ItemIsEditable))
            QTableView::edit(currentIndex());
        else if (const auto cue = currentCue())
            editText(*cue);
    } else if (isCommand && event->key() == Qt::Key_K) {
        splitCue();
    } else if (isCommand && event->key() == Qt::Key_J) {
        joinWithNext();
    } else if (isCommand && event->key() == Qt::Key_Backspace) {
        deleteCues();
    } else if (event->matches(QKeySequence::Copy)) {
        copy();
    } else if (event->matches(QKeySequence::Cut)) {
        cut();
    } else if (event->matches(QKeySequence::Paste)) {
        paste();
    } else {
        QTableView::keyPressEvent(event);
    }
}

void CueTable::paintEvent(QPaintEvent *event)
{
    QTableView::paintEvent(event);
    if (shownCues() > 0 || filter().isEmpty())
        return;
    QPainter painter(viewport());
    painter.setPen(VELTheme::colors(*this).secondary);
    painter.drawText(viewport()->rect(), Qt::AlignCenter, u"没有匹配的字幕，按 Esc 清除筛选"_s);
}

void CueTable::hideEvent(QHideEvent *event)
{
    commitEdit();
    QTableView::hideEvent(event);
}

void CueTable::keyboardSearch(const QString & /*text*/)
{
    // Letters are no commands here, nor do they jump: the field above the table filters.
}

void CueTable::contextMenuEvent(QContextMenuEvent *event)
{
    const auto cue = currentCue();
    const bool isFree = !m_model.aiBusy();
    const qsizetype selected = selectedCues().size();
    auto *const menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    const auto add = [&](const QString &title, const QKeySequence &key, bool enabled, void (CueTable::*command)()) {
        QAction *const action = menu->addAction(title, this, command);
        action->setShortcut(key);
        action->setShortcutVisibleInContextMenu(true);
        action->setShortcutContext(Qt::WidgetShortcut);
        action->setEnabled(enabled);
    };
    add(u"插入字幕"_s, Qt::CTRL | Qt::Key_Return, isFree, &CueTable::insertCue);
    add(u"拆分"_s, Qt::CTRL | Qt::Key_K, isFree && cue && selected == 1, &CueTable::splitCue);
    add(u"与下一条合并"_s, Qt::CTRL | Qt::Key_J, isFree && cue && selected == 1 && *cue + 1 < m_cues.rowCount(),
        &CueTable::joinWithNext);
    addMoveMenu(*menu);
    menu->addSeparator();
    add(u"剪切"_s, QKeySequence::Cut, isFree && selected > 0, &CueTable::cut);
    add(u"复制"_s, QKeySequence::Copy, selected > 0, &CueTable::copy);
    add(u"粘贴"_s, QKeySequence::Paste, isFree, &CueTable::paste);
    menu->addSeparator();
    add(u"删除"_s, Qt::CTRL | Qt::Key_Backspace, isFree && selected > 0, &CueTable::deleteCues);
    menu->popup(event->globalPos());
}

/// Offers the other language groups, if there are any.
void CueTable::addMoveMenu(QMenu &menu)
{
    const QList<SubtitleTrack> tracks = m_model.visibleTracks();
    if (tracks.size() < 2)
        return;
    QMenu *const others = menu.addMenu(u"移到其他语言组"_s);
    for (const SubtitleTrack &track : tracks) {
        if (track.id != m_model.selectedTrackID())
            others->addAction(track.label, this, [this, id = track.id] { moveTo(id); });
    }
    others->setEnabled(!m_model.aiBusy() && !selectedCues().isEmpty());
}
