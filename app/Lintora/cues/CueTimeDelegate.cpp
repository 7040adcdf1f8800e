#include "app/Lintora/cues/CueTimeDelegate.h"

#include "app/Lintora/controls/CueTime.h"
#include "app/Lintora/controls/LineEdit.h"
#include "app/Lintora/cues/CueTableModel.h"
#include "core/CueEditing.h"
#include "core/SRT.h"

#include <QKeyEvent>
#include <QLineEdit>
#include <QStyle>
#include <QToolTip>

using namespace Qt::StringLiterals;

namespace {

/// The field in which a time is edited.
class TimeEditor : public LineEdit
{
public:
    TimeEditor(const QModelIndex &cue, QWidget *parent)
        : LineEdit(parent)
        , m_cue(cue)
    {}

    const QPersistentModelIndex &cue() const { return m_cue; }

private:
    QPersistentModelIndex m_cue;
};

void mark(QLineEdit &field, const QString &fault)
{
    if (field.property("invalid").toBool() != !fault.isEmpty()) {
        field.setProperty("invalid", !fault.isEmpty());
        field.style()->unpolish(&field);
        field.style()->polish(&field);
    }
    field.setToolTip(fault);
    field.setAccessibleDescription(fault);
    if (fault.isEmpty())
        QToolTip::hideText();
    else
        QToolTip::showText(field.mapToGlobal(QPoint(0, field.height())), fault, &field);
}

} // namespace

CueTimeDelegate::CueTimeDelegate(std::function<FrameRate()> rate, QObject *parent)
    : CueCellDelegate(parent)
    , m_rate(std::move(rate))
{}

QString CueTimeDelegate::fault(const QLineEdit &field, const QModelIndex &index) const
{
    const auto time = CueTime::parse(field.text(), m_rate());
    if (!time)
        return u"时间写作 00:01:02,500，也可写 1:02.5、62.5 或 00:01:02:12"_s;
    if (*time > CueEditing::latest)
        return u"时间须在 0 到 100 小时之间。"_s;
    const bool isStart = index.column() == CueTableModel::startColumn;
    const int other = isStart ? CueTableModel::endColumn : CueTableModel::startColumn;
    const qint64 otherTime = index.siblingAtColumn(other).data(Qt::EditRole).toLongLong();
    const bool isOrdered = isStart ? *time < otherTime : *time > otherTime;
    return isOrdered ? QString() : u"结束时间须晚于开始时间。"_s;
}

QWidget *CueTimeDelegate::createEditor(QWidget *parent, const QStyleOptionViewItem & /*option*/,
                                       const QModelIndex &index) const
{
    auto *const field = new TimeEditor(index, parent);
    field->setProperty("cell", true);
    field->setAccessibleName(index.column() == CueTableModel::startColumn ? u"开始时间"_s : u"结束时间"_s);
    connect(field, &QLineEdit::textEdited, this, [this, field] {
        // While typing only a mark that is there goes away; what is unfinished is not yet wrong.
        if (field->property("invalid").toBool() && field->cue().isValid())
            mark(*field, fault(*field, field->cue()));
    });
    return field;
}

void CueTimeDelegate::setEditorData(QWidget *editor, const QModelIndex &index) const
{
    auto *const field = qobject_cast<QLineEdit *>(editor);
    if (field->isModified())
        return;
    field->setText(SRT::stamp(index.data(Qt::EditRole).toLongLong()));
    field->selectAll();
}

void CueTimeDelegate::setModelData(QWidget *editor, QAbstractItemModel *model, const QModelIndex &index) const
{
    const auto *const field = qobject_cast<QLineEdit *>(editor);
    if (field->isModified() && fault(*field, index).isEmpty())
        model->setData(index, *CueTime::parse(field->text(), m_rate()), Qt::EditRole);
}

/// Whether the field may be closed.
bool CueTimeDelegate::finish(QLineEdit &field)
{
    const auto &cue = static_cast<TimeEditor &>(field).cue();
    const QString wrong = field.isModified() && cue.isValid() ? fault(field, cue) : QString();
    mark(field, wrong);
    if (!wrong.isEmpty())
        return false;
    Q_EMIT commitData(&field);
    return true;
}

/// To the next frame of the grid in that direction, as if it had been typed.
void CueTimeDelegate::nudge(QLineEdit &field, qint64 frames) const
{
    const FrameRate rate = m_rate();
    const auto time = CueTime::parse(field.text(), rate);
    const auto &cue = static_cast<TimeEditor &>(field).cue();
    if (!time || !cue.isValid() || rate.numerator <= 0 || rate.denominator <= 0)
        return;
    const FrameGrid grid{.numerator = rate.numerator, .denominator = rate.denominator};
    if (const auto moved = CueShift::moved(*time, {.count = frames, .grid = grid})) {
        field.setText(SRT::stamp(*moved));
        field.setModified(true);
        mark(field, fault(field, cue));
    }
}

bool CueTimeDelegate::eventFilter(QObject *watched, QEvent *event)
{
    auto *const field = qobject_cast<QLineEdit *>(watched);
    if (!field)
        return CueCellDelegate::eventFilter(watched, event);
    // What is wrong stays to be seen, and mended, wherever one has turned to.
    if (event->type() == QEvent::FocusOut && static_cast<QFocusEvent *>(event)->reason() != Qt::PopupFocusReason &&
        !finish(*field))
        return false;
    if (event->type() == QEvent::KeyPress) {
        const int key = static_cast<const QKeyEvent *>(event)->key();
        const bool isTab = key == Qt::Key_Tab || key == Qt::Key_Backtab;
        if (key == Qt::Key_Return || key == Qt::Key_Enter || isTab) {
            if (finish(*field))
                Q_EMIT closeEditor(field, isTab ? key == Qt::Key_Tab ? EditNextItem : EditPreviousItem : NoHint);
            return true;
        }
        if (key == Qt::Key_Up || key == Qt::Key_Down) {
            nudge(*field, key == Qt::Key_Up ? 1 : -1);
            return true;
        }
        if (key == Qt::Key_Escape)
            mark(*field, {});
    }
    return CueCellDelegate::eventFilter(watched, event);
}
