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

/// What undoing or redoing would do now.
struct EditMenu::Step
{
    enum class Of
    {
        nothing,
        text,
        owner,
        session
    };
    Of of = Of::nothing;
    QString title = {};
};

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
    addCueCommands();

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

void EditMenu::addCueCommands()
{
    const auto addCommand = [this](const QString &title, const QKeySequence &key, const char *slot,
                                   Reach reach = Reach::everywhere) {
        QAction *const action = addAction(title);
        action->setShortcut(key);
        const Command command{.action = action, .slot = slot, .reach = reach};
        connect(action, &QAction::triggered, this, [this, command] {
            if (QWidget *const target = performer(command))
                QMetaObject::invokeMethod(target, command.slot);
        });
        m_commands += command;
    };
    addSeparator();
    addCommand(u"插入字幕"_s, Qt::CTRL | Qt::Key_Return, "insertCue");
    addCommand(u"拆分"_s, Qt::CTRL | Qt::Key_K, "splitCue");
    addCommand(u"与下一条合并"_s, Qt::CTRL | Qt::Key_J, "joinWithNext");
    addCommand(u"删除字幕"_s, Qt::CTRL | Qt::Key_Backspace, "deleteCues", Reach::outsideTexts);
    addCommand(u"移动时间…"_s, Qt::CTRL | Qt::SHIFT | Qt::Key_T, "moveTimes");
    addSeparator();
    addCommand(u"查找下一处"_s, Qt::CTRL | Qt::Key_G, "findNext");
    addCommand(u"查找上一处"_s, Qt::CTRL | Qt::SHIFT | Qt::Key_G, "findPrevious");
    addCommand(u"下一处提醒"_s, Qt::CTRL | Qt::Key_Semicolon, "nextWarning");
    addCommand(u"下一处可疑"_s, Qt::CTRL | Qt::Key_Apostrophe, "nextSuspect");
}

/// What a command would be done by; null where it is not offered.
QWidget *EditMenu::performer(const Command &command) const
{
    const bool isInText = textField(m_target) != nullptr;
    return isInText && command.reach == Reach::outsideTexts ? nullptr : responder(m_target, command.slot);
}

void EditMenu::follow(QWidget *focus)
{
    // A menu that is open acts on what had the focus before.
    if (!focus || qobject_cast<QMenu *>(focus) || qobject_cast<QMenuBar *>(focus))
        return;
    m_target = focus;
    m_watch = std::make_unique<QObject>();
    if (m_owner)
        disconnect(m_owner, nullptr, this, nullptr);
    m_owner = responder(focus, "undo");
    if (m_owner && m_owner->metaObject()->indexOfProperty("undoTitle") < 0)
        m_owner = nullptr;
    if (m_owner)
        connect(m_owner, SIGNAL(undoChanged()), this, SLOT(followHistory()));
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

void EditMenu::followHistory()
{
    update();
}

EditMenu::Step EditMenu::nextStep(bool undoes) const
{
    if (const auto text = textOf(textField(m_target)); text && text->editable) {
        const bool isPossible = undoes ? text->canUndo : text->canRedo;
        return isPossible ? Step{.of = Step::Of::text, .title = u"键入"_s} : Step();
    }
    if (m_owner) {
        const QString title = m_owner->property(undoes ? "undoTitle" : "redoTitle").toString();
        if (!title.isEmpty())
            return {.of = Step::Of::owner, .title = title};
        if (!m_owner->property("editsSession").toBool())
            return {};
    }
    const bool isPossible = undoes ? m_model.canUndo() : m_model.canRedo();
    return isPossible ? Step{.of = Step::Of::session, .title = undoes ? m_model.undoTitle() : m_model.redoTitle()}
                      : Step();
}

void EditMenu::update()
{
    const std::optional<Text> text = textOf(textField(m_target));
    const auto show = [this](QAction *action, const QString &word, bool undoes) {
        const Step step = nextStep(undoes);
        action->setEnabled(step.of != Step::Of::nothing);
        action->setText(word + step.title);
    };
    show(m_undo, u"撤销"_s, true);
    show(m_redo, u"重做"_s, false);
    m_cut->setEnabled(text ? text->editable && text->hasSelection : responder(m_target, "cut") != nullptr);
    m_copy->setEnabled(text ? text->hasSelection : responder(m_target, "copy") != nullptr);
    // Whether there is anything to paste is not asked: the answer may take the time of another program.
    m_paste->setEnabled(text ? text->editable : responder(m_target, "paste") != nullptr);
    m_selectAll->setEnabled(text ? !text->isEmpty : responder(m_target, "selectAll") != nullptr);
    for (const Command &command : m_commands)
        command.action->setEnabled(performer(command) != nullptr);
}

void EditMenu::perform(const char *slot)
{
    QWidget *const field = textField(m_target);
    const std::optional<Text> text = textOf(field);
    const QByteArrayView name(slot);
    const bool undoes = name == "undo";
    const bool isHistory = undoes || name == "redo";
    const Step step = isHistory ? nextStep(undoes) : Step();
    if (step.of == Step::Of::session && undoes)
        m_model.undo();
    else if (step.of == Step::Of::session)
        m_model.redo();
    else if (step.of == Step::Of::owner)
        QMetaObject::invokeMethod(m_owner, slot);
    else if (QWidget *const target = text ? field : responder(m_target, slot); target && (text || !isHistory))
        QMetaObject::invokeMethod(target, slot);
    update();
}
