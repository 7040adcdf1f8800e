#include "app/Lintora/cues/CueTextEditor.h"

#include "app/Lintora/controls/Theme.h"
#include "app/Lintora/cues/CueCellDelegate.h"

#include <QFocusEvent>
#include <QKeyEvent>

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

namespace {

constexpr int border = 2;
constexpr int documentMargin = 2;
constexpr int mostLines = 6; // shown at once

/// As they are broken at the field's width.
int lineCount(const CueTextEditor &editor)
{
    return int(std::ceil(editor.document()->size().height()));
}

} // namespace

CueTextEditor::CueTextEditor(const QModelIndex &cue, QWidget *parent)
    : TextEdit(parent)
    , m_cue(cue)
{
    setProperty("cell", true);
    setAccessibleName(u"字幕文字"_s);
    setFrameShape(NoFrame);
    setLineWrapMode(WidgetWidth);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    document()->setDocumentMargin(documentMargin);
    // Text stands where the cell shows it, so that nothing jumps when editing begins.
    const int slack = VELTheme::rowHeight - 2 * (border + documentMargin) - fontMetrics().lineSpacing();
    connect(this, &QPlainTextEdit::textChanged, this, &CueTextEditor::showScrollBar);
    setViewportMargins(CueCellDelegate::padding - border - documentMargin, std::max(0, slack / 2), 0, 0);
}

/// Only where it is of use: it takes room from the text.
void CueTextEditor::showScrollBar()
{
    setVerticalScrollBarPolicy(lineCount(*this) > mostLines ? Qt::ScrollBarAsNeeded : Qt::ScrollBarAlwaysOff);
}

void CueTextEditor::setStored(const QString &text)
{
    const bool wasTyped = isModified();
    m_stored = text;
    if (!wasTyped && toPlainText() != text)
        setPlainText(text);
}

QSize CueTextEditor::sizeHint() const
{
    const int lines = std::clamp(lineCount(*this), 1, mostLines);
    const int frame = 2 * (border + documentMargin) + 2 * viewportMargins().top();
    const int needed = lines * fontMetrics().lineSpacing() + frame;
    const int rows = (needed + VELTheme::rowHeight - 1) / VELTheme::rowHeight; // no row shows in part beneath it
    return {0, std::max(rows, 1) * VELTheme::rowHeight};
}

void CueTextEditor::resizeEvent(QResizeEvent *event)
{
    TextEdit::resizeEvent(event);
    if (event->size().width() != event->oldSize().width())
        Q_EMIT rewrapped();
}

bool CueTextEditor::event(QEvent *event)
{
    // Keys that are commands here must not be shortcuts of the window as well.
    if (event->type() == QEvent::ShortcutOverride && isComposing()) {
        event->accept();
        return true;
    }
    return TextEdit::event(event);
}

void CueTextEditor::inputMethodEvent(QInputMethodEvent *event)
{
    m_isComposing = !event->preeditString().isEmpty();
    TextEdit::inputMethodEvent(event);
}

void CueTextEditor::keyPressEvent(QKeyEvent *event)
{
    if (isComposing()) {
        event->accept(); // The input method's, were it meant for anybody.
        return;
    }
    const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    const bool isCommand = event->modifiers().testFlag(Qt::ControlModifier);
    if (isReturn && isCommand)
        Q_EMIT insertRequested();
    else if (isReturn && event->modifiers() & (Qt::ShiftModifier | Qt::AltModifier))
        insertPlainText(u"\n"_s);
    else if (isReturn)
        Q_EMIT accepted();
    else if (event->key() == Qt::Key_Tab || event->key() == Qt::Key_Backtab)
        Q_EMIT tabbed(event->key() == Qt::Key_Tab);
    else if (event->key() == Qt::Key_Escape)
        Q_EMIT abandoned();
    else if (isCommand && event->key() == Qt::Key_K)
        Q_EMIT splitRequested();
    else if (isCommand && event->key() == Qt::Key_J)
        Q_EMIT joinRequested();
    else
        TextEdit::keyPressEvent(event);
}

void CueTextEditor::focusOutEvent(QFocusEvent *event)
{
    TextEdit::focusOutEvent(event);
    m_isComposing = false;
    if (m_isOver)
        return;
    if (event->reason() == Qt::ActiveWindowFocusReason)
        Q_EMIT windowLeft();
    else if (event->reason() != Qt::PopupFocusReason)
        Q_EMIT focusLeft();
}
