#pragma once

#include "app/Lintora/controls/TextDifference.h"

#include <QStyledItemDelegate>

class QListView;

/// One row of a list that compares two wordings of a cue.
struct ComparedRow
{
    enum class Kind
    {
        comparison,
        noted,  ///< `before`, and beneath it, small, `after` as a note.
        heading ///< `before` in bold, `after` as a remark beneath it.
    };

    Kind kind = Kind::comparison;
    QString number = {};                             ///< Of the cue; may be empty.
    QString before;                                  ///< May have lines.
    QString after;                                   ///< Empty: there is only one wording.
    QList<TextDifference::Stretch> beforeMarks = {}; ///< What goes.
    QList<TextDifference::Stretch> afterMarks = {};  ///< What comes.
    bool isRemark = false;                           ///< Whether `after` is said about the cue instead of shown by it.
    QString warning = {};                            ///< A word of what to look at first; mostly empty.
};

Q_DECLARE_METATYPE(ComparedRow)

/// Draws compared rows: the wording as it is, and under an arrow what becomes of it, with what differs marked in both.
/// Rows that can be ticked have a box in front. All rows are of one height, and only what is seen is compared.
class MarkedTextDelegate : public QStyledItemDelegate
{
    Q_OBJECT

public:
    using QStyledItemDelegate::QStyledItemDelegate;

    static void install(QListView &list); ///< Gives it to a list that is looked at, and set up for that.

    static constexpr int comparedRole = Qt::UserRole; ///< A ComparedRow.

    void paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const override;
    QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const override;

protected:
    bool editorEvent(QEvent *event, QAbstractItemModel *model, const QStyleOptionViewItem &option,
                     const QModelIndex &index) override;
};
