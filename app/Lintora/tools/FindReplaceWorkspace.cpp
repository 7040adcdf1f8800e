#include "app/Lintora/tools/FindReplaceWorkspace.h"

#include "app/Lintora/controls/Controls.h"
#include "app/Lintora/controls/LineEdit.h"
#include "app/Lintora/controls/MarkedTextDelegate.h"

#include <QGridLayout>
#include <QLineEdit>
#include <QListView>
#include <QShortcut>
#include <QStackedWidget>
#include <QStyle>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

FindReplaceWorkspace::FindReplaceWorkspace(LintoraModel &model, QWidget *content)
    : Sheet(Extent::whole, content)
    , m_model(model)
    , m_query(new LineEdit(this))
    , m_replacement(new LineEdit(this))
    , m_note(Controls::note({}, this))
    , m_placeholder(Controls::note({}, this))
    , m_list(new QListView(this))
    , m_preview(new QStackedWidget(this))
    , m_replace(Controls::primaryButton({}, this))
    , m_undo(Controls::button(u"撤销本次替换"_s, this))
{
    addHeading(u"VELMORA  /  FIND & REPLACE"_s);
    body()->addWidget(Controls::note(u"精确匹配，区分英文大小写。只替换当前语言，保留时间码。"_s, this));
    body()->addWidget(makeFields());
    body()->addWidget(makePreview(), 1);
    body()->addWidget(makeButtons());

    connect(this, &Sheet::closeRequested, &model, [&model] { model.window().setFindReplaceVisible(false); });
    for (QLineEdit *const field : {m_query, m_replacement}) {
        connect(field, &QLineEdit::textChanged, this, [this] {
            setNote({}, false);
            preview();
        });
    }
    connect(m_query, &QLineEdit::textChanged, this, &FindReplaceWorkspace::queryChanged);
    connect(&model, &LintoraModel::itemsChanged, this, &FindReplaceWorkspace::preview);
    connect(&model, &LintoraModel::historyChanged, this, &FindReplaceWorkspace::followUndo);
    connect(&model, &LintoraModel::selectedTrackIDChanged, this, &FindReplaceWorkspace::followUndo);
}

QWidget *FindReplaceWorkspace::makeFields()
{
    auto *const fields = new QWidget(this);
    auto *const grid = new QGridLayout(fields);
    grid->setContentsMargins(0, VELTheme::step, 0, VELTheme::step);
    grid->setVerticalSpacing(VELTheme::step);
    const auto add = [&](int row, const QString &text, QLineEdit *field) {
        auto *const label = new QLabel(text, fields);
        label->setFont(VELTheme::smallFont());
        label->setBuddy(field);
        field->setAccessibleName(text);
        grid->addWidget(label, row, 0);
        grid->addWidget(field, row + 1, 0);
    };
    add(0, u"关键词"_s, m_query);
    add(2, u"替换为（留空则删除关键词）"_s, m_replacement);
    return fields;
}

QWidget *FindReplaceWorkspace::makePreview()
{
    m_list->setModel(&m_matches);
    MarkedTextDelegate::install(*m_list);
    m_list->setAccessibleName(u"匹配的字幕"_s);
    const auto request = [this](const QModelIndex &index) { Q_EMIT cueRequested(m_matches.cueOf(index)); };
    connect(m_list, &QListView::doubleClicked, this, request);
    // Where Return means editing, the list itself asks for nothing.
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter}) {
        auto *const chosen = new QShortcut(key, m_list, nullptr, nullptr, Qt::WidgetShortcut);
        connect(chosen, &QShortcut::activated, this, [this, request] {
            if (m_list->currentIndex().isValid())
                request(m_list->currentIndex());
        });
    }
    m_placeholder->setAlignment(Qt::AlignCenter);
    m_preview->addWidget(m_placeholder);
    m_preview->addWidget(m_list);
    return m_preview;
}

QWidget *FindReplaceWorkspace::makeButtons()
{
    auto *const row = new QWidget(this);
    auto *const layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, VELTheme::step, 0, 0);
    layout->setSpacing(VELTheme::gap);
    m_note->setAccessibleName(u"状态"_s);
    layout->addWidget(m_note, 1);
    layout->addWidget(m_undo);
    layout->addWidget(m_replace);
    connect(m_replace, &QPushButton::clicked, this, &FindReplaceWorkspace::replace);
    connect(m_undo, &QPushButton::clicked, this, &FindReplaceWorkspace::undoReplacement);
    return row;
}

void FindReplaceWorkspace::present()
{
    if (isVisible())
        return;
    open(m_query);
    m_query->selectAll();
    setNote({}, false);
    preview();
    followUndo();
}

void FindReplaceWorkspace::preview()
{
    if (!isVisible())
        return;
    m_matches.show(m_model.items(), m_query->text(), m_replacement->text());
    const bool hasMatches = m_matches.rowCount() > 0;
    m_placeholder->setText(m_query->text().isEmpty() ? u"输入关键词，预览所有匹配字幕。"_s : u"没有找到匹配内容"_s);
    m_preview->setCurrentWidget(hasMatches ? static_cast<QWidget *>(m_list) : m_placeholder);
    m_replace->setText(u"替换全部 · %1"_s.arg(m_matches.occurrences()));
    m_replace->setAccessibleName(m_replace->text());
    m_replace->setEnabled(!m_query->text().isEmpty());
}

void FindReplaceWorkspace::replace()
{
    const auto replaced = m_model.textTools().replaceKeywords(m_query->text(), m_replacement->text());
    if (!replaced)
        setNote(m_model.failure().value_or(QString()), true);
    else
        setNote(*replaced == 0 ? u"没有需要替换的内容"_s : m_model.message(), false);
    followUndo();
}

void FindReplaceWorkspace::undoReplacement()
{
    m_model.textTools().undoReplacement();
    setNote(u"已撤销，字幕恢复为替换前内容"_s, false);
    followUndo();
    m_query->setFocus();
}

void FindReplaceWorkspace::followUndo()
{
    m_undo->setVisible(m_model.textTools().canUndoReplacement());
}

void FindReplaceWorkspace::setNote(const QString &note, bool isFailure)
{
    m_note->setText(note);
    m_note->setProperty("failure", isFailure);
    m_note->style()->unpolish(m_note);
    m_note->style()->polish(m_note);
}
