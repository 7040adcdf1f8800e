#include "app/window/EditMenu.h"

#include <QAbstractSpinBox>
#include <QApplication>
#include <QComboBox>
#include <QLineEdit>
#include <QMenuBar>
#include <QMetaMethod>
#include <QPlainTextEdit>
#include <QTextEdit>

using namespace Qt::StringLiterals;

namespace {

/// The field that shows the text of `control`; null when that shows none.
QWidget *textField(QWidget *control)
{
    if (const auto *const box = qobject_cast<QComboBox *>(control))
        return box->lineEdit();
    if (qobject_cast<QAbstractSpinBox *>(control))
        return control->findChild<QLineEdit *>();
    const bool isField = qobject_cast<QLineEdit *>(control) || qobject_cast<QTextEdit *>(control) ||
                         qobject_cast<QPlainTextEdit *>(control);
    return isField ? control : nullptr;
}

/// What can be done in a text field.
struct Text
{
    bool editable = false;
    bool canUndo = false;
    bool canRedo = false;
    bool hasSelection = false; ///< That may leave the field.
    bool isEmpty = true;
};

template <typename TextEdit>
Text state(const TextEdit &field)
{
    return {.editable = !field.isReadOnly(),
            .canUndo = field.document()->isUndoAvailable(),
            .canRedo = field.document()->isRedoAvailable(),
            .hasSelection = field.textCursor().hasSelection(),
            .isEmpty = field.document()->isEmpty()};
}

Text state(const QLineEdit &field)
{
    return {.editable = !field.isReadOnly(),
            .canUndo = field.isUndoAvailable(),
            .canRedo = field.isRedoAvailable(),
            .hasSelection = field.hasSelectedText() && field.echoMode() == QLineEdit::Normal,
            .isEmpty = field.text().isEmpty()};
}

/// Absent when `field` is no text field.
std::optional<Text> textOf(QWidget *field)
{
    if (const auto *const line = qobject_cast<QLineEdit *>(field))
        return state(*line);
    if (const auto *const plain = qobject_cast<QPlainTextEdit *>(field))
        return state(*plain);
    if (const auto *const rich = qobject_cast<QTextEdit *>(field))
        return state(*rich);
    return std::nullopt;
}

/// The nearest of `control` and what it lies in that has this slot; null when none has.
QWidget *responder(QWidget *control, const char *slot)
{
    const QByteArray signature = QByteArray(slot) + "()";
    while (control && control->metaObject()->indexOfMethod(signature.constData()) < 0)
        control = control->isWindow() ? nullptr : control->parentWidget();
    return control;
}

} // namespace

EditMenu::EditMenu(LintoraModel &model, QWidget *parent)
    : QMenu(u"编辑"_s, parent)
    , m_model(model)
    , m_watch(std::make_unique<QObject>())
{
    m_undo = add(u"撤销"_s, Qt::CTRL | Qt::Key_Z, "undo");
    m_redo = add(u"重做"_s, Qt::CTRL | Qt::SHIFT | Qt::Key_Z, "redo");
    m_cut = add(u"剪切"_s, Qt::CTRL | Qt::Key_X, "cut");
    m_copy = add(u"复制"_s, Qt::CTRL | Qt::Key_C, "copy");
    m_paste = add(u"粘贴"_s, Qt::CTRL | Qt::Key_V, "paste");
    m_selectAll = add(u"全选"_s, Qt::CTRL | Qt::Key_A, "selectAll");

    connect(&model, &LintoraModel::historyChanged, this, &EditMenu::update);
    connect(qApp, &QApplication::focusChanged, this, [this](QWidget *, QWidget *now) { follow(now); });
    follow(QApplication::focusWidget());
    update();
}

EditMenu::~EditMenu() = default;

QAction *EditMenu::add(const QString &title, const QKeySequence &key, const char *slot)
{
    QAction *const action = addAction(title);
    action->setShortcut(key);
    connect(action, &QAction::triggered, this, [this, slot] { perform(slot); });
    return action;
}

void EditMenu::follow(QWidget *focus)
{
    // A menu that is open acts on what had the focus before.
    if (!focus || qobject_cast<QMenu *>(focus) || qobject_cast<QMenuBar *>(focus))
        return;
    m_target = focus;
    m_watch = std::make_unique<QObject>();
    QWidget *const field = textField(focus);
    const auto changed = [this] { update(); };
    if (const auto *const line = qobject_cast<QLineEdit *>(field)) {
        connect(line, &QLineEdit::textChanged, m_watch.get(), changed);
        connect(line, &QLineEdit::selectionChanged, m_watch.get(), changed);
    } else if (const auto *const plain = qobject_cast<QPlainTextEdit *>(field)) {
        connect(plain, &QPlainTextEdit::textChanged, m_watch.get(), changed);
        connect(plain, &QPlainTextEdit::selectionChanged, m_watch.get(), changed);
    } else if (const auto *const rich = qobject_cast<QTextEdit *>(field)) {
        connect(rich, &QTextEdit::textChanged, m_watch.get(), changed);
        connect(rich, &QTextEdit::selectionChanged, m_watch.get(), changed);
    }
    connect(focus, &QObject::destroyed, m_watch.get(), changed);
    update();
}

void EditMenu::update()
{
    const std::optional<Text> text = textOf(textField(m_target));
    const bool isEdited = text && text->editable;
    m_undo->setEnabled(isEdited ? text->canUndo : m_model.canUndo());
    m_redo->setEnabled(isEdited ? text->canRedo : m_model.canRedo());
    m_cut->setEnabled(text ? text->editable && text->hasSelection : responder(m_target, "cut") != nullptr);
    m_copy->setEnabled(text ? text->hasSelection : responder(m_target, "copy") != nullptr);
    // Whether there is anything to paste is not asked: the answer may take the time of another program.
    m_paste->setEnabled(text ? text->editable : responder(m_target, "paste") != nullptr);
    m_selectAll->setEnabled(text ? !text->isEmpty : responder(m_target, "selectAll") != nullptr);
}

void EditMenu::perform(const char *slot)
{
    QWidget *const field = textField(m_target);
    const std::optional<Text> text = textOf(field);
    const QByteArrayView name(slot);
    const bool isHistory = name == "undo" || name == "redo";
    if (isHistory && !(text && text->editable)) {
        if (name == "undo")
            m_model.undo();
        else
            m_model.redo();
    } else if (QWidget *const target = text ? field : responder(m_target, slot)) {
        QMetaObject::invokeMethod(target, slot);
    }
    update();
}
