#pragma once

#include "app/Lintora/cues/CueCellDelegate.h"
#include "fcp/FrameRate.h"

#include <functional>

class QLineEdit;

/// Lets the times of a cue be edited in their place, in any of the ways that CueTime reads.
///
/// The keys up and down move a time by one frame.
///
/// What is no time is marked in the field and said beneath it, and the field stays open until it is mended or left.
class CueTimeDelegate : public CueCellDelegate
{
    Q_OBJECT

public:
    /// `rate` answers the grid on which frames are counted.
    CueTimeDelegate(std::function<FrameRate()> rate, QObject *parent);

    QWidget *createEditor(QWidget *parent, const QStyleOptionViewItem &option, const QModelIndex &index) const override;
    void setEditorData(QWidget *editor, const QModelIndex &index) const override;
    void setModelData(QWidget *editor, QAbstractItemModel *model, const QModelIndex &index) const override;

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    /// What is wrong with the text of the field; empty when nothing is.
    QString fault(const QLineEdit &field, const QModelIndex &index) const;
    bool finish(QLineEdit &field);
    void nudge(QLineEdit &field, qint64 frames) const;

    std::function<FrameRate()> m_rate;
};
