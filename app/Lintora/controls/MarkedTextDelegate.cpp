#include "app/Lintora/controls/MarkedTextDelegate.h"

#include "app/Lintora/controls/CheckBox.h"
#include "app/Lintora/controls/Theme.h"

#include <QKeyEvent>
#include <QListView>
#include <QPainter>
#include <QTextLayout>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

constexpr int lineHeight = 5 * VELTheme::step;
constexpr int padding = 2 * VELTheme::step;
constexpr int numberWidth = 11 * VELTheme::step;
constexpr int boxWidth = 7 * VELTheme::step;
constexpr qsizetype mostUnits = 400; // of a line; more is never seen

/// What of a text is drawn, and the marks in it.
struct Shown
{
    QString text;
    QList<TextDifference::Stretch> marks;
};

/// One line of `text` that fits into `width`, beginning late enough to show the first mark.
Shown fitted(const QString &text, const QList<TextDifference::Stretch> &marks, const QFontMetrics &metrics, int width)
{
    qsizetype from = 0;
    if (!marks.isEmpty()) {
        constexpr qsizetype context = 6;
        const auto &first = marks.first();
        const qsizetype end = std::min(first.start + first.length, first.start + context);
        if (metrics.horizontalAdvance(text.first(std::min(end, mostUnits))) > width || end > mostUnits)
            from = std::max<qsizetype>(0, first.start - context);
    }
    QString line = (from > 0 ? u"…"_s : QString()) + text.sliced(from, std::min(text.size() - from, mostUnits));
    line.replace(u'\n', u'↵');
    const qsizetype shift = (from > 0 ? 1 : 0) - from;
    const QString elided = metrics.elidedText(line, Qt::ElideRight, width);
    const qsizetype visible = elided == line ? line.size() : elided.size() - 1;
    Shown shown{.text = elided, .marks = {}};
    for (const TextDifference::Stretch &mark : marks) {
        const qsizetype start = std::clamp<qsizetype>(mark.start + shift, 0, visible);
        const qsizetype end = std::clamp<qsizetype>(mark.start + mark.length + shift, 0, visible);
        if (end > start)
            shown.marks += {.start = start, .length = end - start};
    }
    return shown;
}

void paintMarked(QPainter &painter, const QRect &room, const QFont &font, const QString &text,
                 const QList<TextDifference::Stretch> &marks, const QColor &ground)
{
    const QFontMetrics metrics(font);
    const Shown shown = fitted(text, marks, metrics, room.width());
    QTextLayout layout(shown.text, font);
    QList<QTextLayout::FormatRange> formats;
    for (const TextDifference::Stretch &mark : shown.marks) {
        QTextLayout::FormatRange range;
        range.start = int(mark.start);
        range.length = int(mark.length);
        range.format.setBackground(ground);
        formats += range;
    }
    layout.setFormats(formats);
    layout.beginLayout();
    QTextLine line = layout.createLine();
    line.setNumColumns(int(shown.text.size()));
    layout.endLayout();
    layout.draw(&painter, QPointF(room.left(), room.top() + (room.height() - line.height()) / 2));
}

void paintHeading(QPainter &painter, const QRect &room, const ComparedRow &row, const QFont &font,
                  const VELTheme::Colors &colors)
{
    QFont bold = font;
    bold.setWeight(QFont::DemiBold);
    painter.setFont(row.before.isEmpty() ? font : bold);
    painter.setPen(colors.text);
    painter.drawText(QRect(room.left(), room.top(), room.width(), lineHeight), Qt::AlignVCenter, row.before);
    painter.setFont(VELTheme::smallFont());
    painter.setPen(colors.secondary);
    const QRect remark = row.before.isEmpty() ? room : room.adjusted(0, lineHeight, 0, 0);
    painter.drawText(remark, Qt::AlignVCenter | Qt::TextWordWrap, row.after);
}

void paintComparison(QPainter &painter, const QRect &room, const ComparedRow &row, const QFont &font,
                     const VELTheme::Colors &colors)
{
    const bool isSingle = row.after.isEmpty();
    const bool isNoted = row.kind == ComparedRow::Kind::noted;
    const QRect number(room.left(), room.top(), numberWidth - padding, isSingle ? room.height() : lineHeight);
    const QRect words = room.adjusted(row.number.isEmpty() ? 0 : numberWidth, 0, 0, 0);
    const QRect first(words.left(), words.top(), words.width(), number.height());
    const QRect second(words.left(), words.top() + lineHeight, words.width(), lineHeight);
    painter.setFont(VELTheme::smallFont());
    painter.setPen(colors.secondary);
    painter.drawText(number, Qt::AlignVCenter | Qt::AlignRight, row.number);
    if (!isSingle && !isNoted)
        painter.drawText(QRect(number.left(), second.top(), number.width(), lineHeight),
                         Qt::AlignVCenter | Qt::AlignRight, u"↓"_s);
    painter.setPen(isSingle || isNoted ? colors.text : colors.secondary);
    paintMarked(painter, first, font, row.before, row.beforeMarks, colors.removed);
    painter.setPen(isNoted ? colors.secondary : row.isRemark ? colors.warning : colors.text);
    if (!isSingle)
        paintMarked(painter, second, isNoted ? VELTheme::smallFont() : font, row.after, row.afterMarks, colors.added);
}

bool isTickable(const QModelIndex &index)
{
    return index.flags().testFlag(Qt::ItemIsUserCheckable);
}

} // namespace

void MarkedTextDelegate::install(QListView &list)
{
    list.setItemDelegate(new MarkedTextDelegate(&list));
    list.setUniformItemSizes(true);
    list.setEditTriggers(QAbstractItemView::NoEditTriggers);
    list.setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    list.setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
}

void MarkedTextDelegate::paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    const VELTheme::Colors &colors = VELTheme::colors(*option.widget);
    const auto row = index.data(comparedRole).value<ComparedRow>();
    const QRect cell = option.rect;
    painter->save();
    if (option.state & QStyle::State_Selected)
        painter->fillRect(cell, colors.selection);
    else
        painter->fillRect(cell.left(), cell.bottom(), cell.width(), 1, colors.border);
    QRect room = cell.adjusted(padding, (cell.height() - 2 * lineHeight) / 2, -padding, 0);
    room.setHeight(2 * lineHeight);
    if (isTickable(index)) {
        const bool isTicked = index.data(Qt::CheckStateRole).toInt() == Qt::Checked;
        CheckBox::paintBox(*painter, QRect(room.left(), room.top(), CheckBox::boxSize, room.height()), *option.widget,
                           isTicked, true);
        room.setLeft(room.left() + boxWidth - padding);
    }
    if (row.kind == ComparedRow::Kind::heading) {
        paintHeading(*painter, room, row, option.font, colors);
    } else {
        if (!row.warning.isEmpty()) {
            painter->setFont(VELTheme::smallFont());
            const int width = painter->fontMetrics().horizontalAdvance(row.warning);
            painter->setPen(colors.warning);
            painter->drawText(room.adjusted(room.width() - width, 0, 0, 0), Qt::AlignVCenter, row.warning);
            room.setRight(room.right() - width - padding);
        }
        paintComparison(*painter, room, row, option.font, colors);
    }
    if (option.state & QStyle::State_HasFocus && option.state & QStyle::State_Selected) {
        painter->setPen(colors.accent);
        painter->setBrush(Qt::NoBrush);
        painter->drawRect(cell.adjusted(0, 0, -1, -1));
    }
    painter->restore();
}

QSize MarkedTextDelegate::sizeHint(const QStyleOptionViewItem & /*option*/, const QModelIndex & /*index*/) const
{
    return {0, 2 * lineHeight + 3 * VELTheme::step};
}

bool MarkedTextDelegate::editorEvent(QEvent *event, QAbstractItemModel *model, const QStyleOptionViewItem & /*option*/,
                                     const QModelIndex &index)
{
    if (!isTickable(index))
        return false;
    const bool isSpace =
        event->type() == QEvent::KeyPress && (static_cast<QKeyEvent *>(event)->key() == Qt::Key_Space ||
                                              static_cast<QKeyEvent *>(event)->key() == Qt::Key_Select);
    const bool isClick =
        event->type() == QEvent::MouseButtonRelease && static_cast<QMouseEvent *>(event)->button() == Qt::LeftButton;
    if (!isSpace && !isClick)
        return false;
    const bool isTicked = index.data(Qt::CheckStateRole).toInt() == Qt::Checked;
    return model->setData(index, isTicked ? Qt::Unchecked : Qt::Checked, Qt::CheckStateRole);
}
