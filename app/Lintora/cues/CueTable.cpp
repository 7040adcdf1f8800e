#include "app/Lintora/cues/CueTable.h"

#include "app/Lintora/cues/CueClipboard.h"
#include "app/Lintora/cues/CueTextDelegate.h"
#include "app/Lintora/cues/SplitPosition.h"
#include "core/CueEditing.h"

#include <QClipboard>
#include <QContextMenuEvent>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QMenu>

using namespace Qt::StringLiterals;

namespace {

bool isReturn(const QKeyEvent &event)
{
    return event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter;
}

} // namespace

CueTable::CueTable(LintoraModel &model, QWidget *parent)
    : CueGrid(model, parent)
{
    connect(&textDelegate(), &CueTextDelegate::splitRequested, this,
            [this](CueTextEditor *editor) { splitAt(*editor); });
    connect(&textDelegate(), &CueTextDelegate::joinRequested, this, &CueTable::joinWithNext);
    connect(&textDelegate(), &CueTextDelegate::insertRequested, this, &CueTable::insertCue);
}

// Commands

void CueTable::insertCue()
{
    if (!commitEdit())
        return;
    filtered().keep(CueEditing::nextID(lintoraModel().items()));
    const auto after = currentCue().value_or(int(lintoraModel().items().size()) - 1);
    if (const auto next = lintoraModel().insertCue(after))
        editText(*next);
}

void CueTable::splitCue()
{
    const auto cue = currentCue();
    if (!cue || !commitEdit())
        return;
    filtered().keep(cues().cue(*cue).id);
    filtered().keep(CueEditing::nextID(lintoraModel().items()));
    if (lintoraModel().splitCue(*cue, SplitPosition::nearMiddle(cues().cue(*cue).text)))
        goTo(*cue);
}

void CueTable::splitAt(CueTextEditor &editor)
{
    const int cue = filtered().mapToSource(editor.cue()).row();
    const QString typed = editor.toPlainText();
    const qsizetype typedPosition = editor.textCursor().position();
    // What was typed and the split are one step.
    std::optional<qsizetype> next;
    lintoraModel().asOneStep([&] {
        if (!CueTextDelegate::commit(editor))
            return;
        filtered().keep(CueEditing::nextID(lintoraModel().items()));
        next = lintoraModel().splitCue(cue, SplitPosition::inTidied(typed, typedPosition, cues().cue(cue).text));
    });
    if (!next)
        return;
    closeText();
    editText(*next);
    if (textEditor())
        textEditor()->moveCursor(QTextCursor::Start);
}

void CueTable::joinWithNext()
{
    const auto cue = currentCue();
    if (!cue || *cue + 1 >= cues().rowCount() || !commitEdit())
        return;
    filtered().keep(cues().cue(*cue).id);
    if (const auto joined = lintoraModel().joinWithNext(*cue))
        goTo(*joined);
}

void CueTable::deleteCues()
{
    const QList<qsizetype> selected = selectedCues();
    if (selected.isEmpty() || !commitEdit())
        return;
    if (const auto next = lintoraModel().deleteCues(selected); next && *next >= 0)
        goTo(*next);
}

void CueTable::moveTimes()
{
    if (!lintoraModel().items().isEmpty() && !lintoraModel().aiBusy() && commitEdit())
        Q_EMIT timesRequested(selectedCues());
}

void CueTable::setSearch(const QString &text)
{
    if (!text.isEmpty())
        m_search = text;
}

void CueTable::findNext()
{
    find(1);
}

void CueTable::findPrevious()
{
    find(-1);
}

void CueTable::find(int step)
{
    if (m_search.isEmpty()) {
        Q_EMIT searchRequested();
        return;
    }
    if (!commitEdit())
        return;
    const auto holds = [this](int cue) { return cues().cue(cue).text.contains(m_search, Qt::CaseInsensitive); };
    if (!goOnTo(step, holds)) {
        lintoraModel().report(u"没有找到“%1”"_s.arg(m_search));
        return;
    }
    int number = 0;
    int count = 0;
    for (int row = 0; row < shownCues(); ++row) {
        const int cue = filtered().mapToSource(filtered().index(row, 0)).row();
        count += holds(cue) ? 1 : 0;
        number = cue == currentCue() ? count : number;
    }
    lintoraModel().report(u"“%1”：第 %2 条，共 %3 条"_s.arg(m_search).arg(number).arg(count));
}

void CueTable::nextWarning()
{
    if (commitEdit() && !goOnTo(1, [this](int cue) { return cues().hasWarnings(cue); }))
        lintoraModel().report(u"没有需要留意的字幕"_s);
}

void CueTable::nextSuspect()
{
    const SuspectMarks &marks = lintoraModel().suspects();
    if (commitEdit() && !goOnTo(1, [&](int cue) { return marks.reasons(cues().cue(cue)).has_value(); }))
        lintoraModel().report(u"没有需要核对的字幕"_s);
}

/// Round the cues in sight from the current one on, which comes last.
bool CueTable::goOnTo(int step, const std::function<bool(int cue)> &isWanted)
{
    const int rows = shownCues();
    const int from = currentIndex().isValid() ? currentIndex().row() : step > 0 ? -1 : 0;
    for (int i = 1; i <= rows; ++i) {
        const int row = ((from + step * i) % rows + rows) % rows;
        const int cue = filtered().mapToSource(filtered().index(row, 0)).row();
        if (isWanted(cue)) {
            goTo(cue);
            setFocus();
            return true;
        }
    }
    return false;
}

QList<CueTable::Key> CueTable::keys()
{
    const auto text = [](const QKeySequence &keys) { return keys.toString(QKeySequence::NativeText); };
    return {{text(Qt::Key_Return), u"编辑；写完到下一条"_s}, {text(Qt::ALT | Qt::Key_Return), u"在文字里换行"_s},
            {text(Qt::Key_Tab), u"编辑时到下一格"_s},        {text(Qt::SHIFT | Qt::Key_Tab), u"编辑时到上一格"_s},
            {text(Qt::Key_Escape), u"放弃正在输入的"_s},     {u"↑ ↓"_s, u"上下移动；在时间格里逐帧调整"_s}};
}

void CueTable::cut()
{
    const QList<qsizetype> selected = selectedCues();
    if (selected.isEmpty() || lintoraModel().aiBusy())
        return;
    copy();
    deleteCues();
}

void CueTable::copy()
{
    QList<Subtitle> copied;
    for (const qsizetype cue : selectedCues())
        copied += cues().cue(int(cue));
    if (!copied.isEmpty())
        QGuiApplication::clipboard()->setMimeData(CueClipboard::offering(copied).release());
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
    if (textEditor()) {
        textEditor()->selectAll();
        textEditor()->paste();
    }
}

void CueTable::placeCues(const QList<Subtitle> &cues)
{
    if (!commitEdit())
        return;
    const qint64 first = CueEditing::nextID(lintoraModel().items());
    for (qsizetype i = 0; i < cues.size(); ++i)
        filtered().keep(first + i);
    if (const auto next = lintoraModel().pasteCues(cues))
        goTo(*next);
}

void CueTable::selectAll()
{
    if (commitEdit())
        CueGrid::selectAll();
}

void CueTable::moveTo(const QUuid &track)
{
    const QList<qsizetype> selected = selectedCues();
    if (selected.isEmpty() || !commitEdit())
        return;
    lintoraModel().moveCues(selected, track);
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
    } else if (isCommand && event->modifiers().testFlag(Qt::ShiftModifier) && event->key() == Qt::Key_T) {
        moveTimes();
    } else if (isCommand && event->key() == Qt::Key_G) {
        find(event->modifiers().testFlag(Qt::ShiftModifier) ? -1 : 1);
    } else if (isCommand && event->key() == Qt::Key_Semicolon) {
        nextWarning();
    } else if (isCommand && event->key() == Qt::Key_Apostrophe) {
        nextSuspect();
    } else if (event->matches(QKeySequence::Copy)) {
        copy();
    } else if (event->matches(QKeySequence::Cut)) {
        cut();
    } else if (event->matches(QKeySequence::Paste)) {
        paste();
    } else {
        CueGrid::keyPressEvent(event);
    }
}

void CueTable::contextMenuEvent(QContextMenuEvent *event)
{
    const auto cue = currentCue();
    const bool isFree = !lintoraModel().aiBusy();
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
    add(u"与下一条合并"_s, Qt::CTRL | Qt::Key_J, isFree && cue && selected == 1 && *cue + 1 < cues().rowCount(),
        &CueTable::joinWithNext);
    addMoveMenu(*menu);
    add(u"移动时间…"_s, Qt::CTRL | Qt::SHIFT | Qt::Key_T, isFree && cues().rowCount() > 0, &CueTable::moveTimes);
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
    const QList<SubtitleTrack> tracks = lintoraModel().visibleTracks();
    if (tracks.size() < 2)
        return;
    QMenu *const others = menu.addMenu(u"移到其他语言组"_s);
    for (const SubtitleTrack &track : tracks) {
        if (track.id != lintoraModel().selectedTrackID())
            others->addAction(track.label, this, [this, id = track.id] { moveTo(id); });
    }
    others->setEnabled(!lintoraModel().aiBusy() && !selectedCues().isEmpty());
}
