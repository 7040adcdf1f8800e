#pragma once

#include "app/Lintora/cues/CueCellDelegate.h"

class CueTextEditor;

/// Lets the text of a cue be edited in its place.
///
/// What was typed reaches the cue when editing ends by anything but Escape. A text that is refused stays in the field;
/// only a blank one goes when the field is left.
class CueTextDelegate : public CueCellDelegate
{
    Q_OBJECT

public:
    using CueCellDelegate::CueCellDelegate;

    /// Brings what was typed to the cue. False when it was refused.
    static bool commit(CueTextEditor &editor);

    QWidget *createEditor(QWidget *parent, const QStyleOptionViewItem &option, const QModelIndex &index) const override;
    void setEditorData(QWidget *editor, const QModelIndex &index) const override;
    void setModelData(QWidget *editor, QAbstractItemModel *model, const QModelIndex &index) const override;
    void updateEditorGeometry(QWidget *editor, const QStyleOptionViewItem &option,
                              const QModelIndex &index) const override;

Q_SIGNALS:
    void accepted(CueTextEditor *editor); ///< Return was pressed, and the text is kept; the receiver closes the editor.
    void abandoned(CueTextEditor *editor); ///< Escape was pressed; the receiver closes the editor.
    void splitRequested(CueTextEditor *editor);
    void joinRequested(CueTextEditor *editor);
    void insertRequested(CueTextEditor *editor);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
};
