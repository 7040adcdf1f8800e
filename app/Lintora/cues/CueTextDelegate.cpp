#include "app/Lintora/cues/CueTextDelegate.h"

#include "app/Lintora/cues/CueTextEditor.h"

#include <algorithm>

namespace {

/// Over the cell and as many rows below as the text needs; all of it where it can be seen.
void place(QWidget &editor, const QRect &cell)
{
    const int height = editor.sizeHint().height();
    const int lowest = editor.parentWidget()->height() - height;
    editor.setGeometry(cell.left(), std::max(0, std::min(cell.top(), lowest)), cell.width(), height);
}

} // namespace

bool CueTextDelegate::commit(CueTextEditor &editor)
{
    if (!editor.isModified())
        return true;
    if (!editor.cue().isValid())
        return false;
    // Through the index: the model that holds it is the view's.
    auto *const model = const_cast<QAbstractItemModel *>(editor.cue().model());
    return model->setData(editor.cue(), editor.toPlainText(), Qt::EditRole);
}

QWidget *CueTextDelegate::createEditor(QWidget *parent, const QStyleOptionViewItem & /*option*/,
                                       const QModelIndex &index) const
{
    auto *const editor = new CueTextEditor(index, parent);
    auto *const self = const_cast<CueTextDelegate *>(this);
    const auto close = [self, editor] { Q_EMIT self->closeEditor(editor, NoHint); };
    connect(editor, &CueTextEditor::accepted, self, [self, editor] {
        if (commit(*editor))
            Q_EMIT self->accepted(editor);
    });
    connect(editor, &CueTextEditor::tabbed, self, [self, editor](bool forward) {
        if (commit(*editor))
            Q_EMIT self->closeEditor(editor, forward ? EditNextItem : EditPreviousItem);
    });
    connect(editor, &CueTextEditor::focusLeft, self, [editor, close] {
        if (commit(*editor) || editor->toPlainText().trimmed().isEmpty())
            close();
    });
    connect(editor, &CueTextEditor::windowLeft, self, [editor] {
        if (!editor->toPlainText().trimmed().isEmpty())
            commit(*editor);
    });
    connect(editor, &CueTextEditor::abandoned, self, [self, editor] { Q_EMIT self->abandoned(editor); });
    connect(editor, &CueTextEditor::splitRequested, self, [self, editor] { Q_EMIT self->splitRequested(editor); });
    connect(editor, &CueTextEditor::joinRequested, self, [self, editor] { Q_EMIT self->joinRequested(editor); });
    connect(editor, &CueTextEditor::insertRequested, self, [self, editor] { Q_EMIT self->insertRequested(editor); });
    const auto fit = [editor] { place(*editor, editor->geometry()); };
    connect(editor, &CueTextEditor::textChanged, self, fit);
    connect(editor, &CueTextEditor::rewrapped, self, fit);
    return editor;
}

void CueTextDelegate::setEditorData(QWidget *editor, const QModelIndex &index) const
{
    auto *const field = qobject_cast<CueTextEditor *>(editor);
    const bool isFresh = field->document()->isEmpty() && !field->isModified();
    field->setStored(index.data(Qt::EditRole).toString());
    if (isFresh)
        field->selectAll();
}

void CueTextDelegate::setModelData(QWidget *editor, QAbstractItemModel * /*model*/, const QModelIndex & /*index*/) const
{
    commit(*qobject_cast<CueTextEditor *>(editor));
}

void CueTextDelegate::updateEditorGeometry(QWidget *editor, const QStyleOptionViewItem &option,
                                           const QModelIndex & /*index*/) const
{
    editor->resize(option.rect.size()); // The width decides how many lines there are.
    place(*editor, option.rect);
}

bool CueTextDelegate::eventFilter(QObject * /*watched*/, QEvent * /*event*/)
{
    return false; // The editor knows its keys.
}
