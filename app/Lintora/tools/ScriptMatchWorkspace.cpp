#include "app/Lintora/tools/ScriptMatchWorkspace.h"

#include "app/Lintora/controls/CheckBox.h"
#include "app/Lintora/controls/Controls.h"
#include "app/Lintora/controls/ElidedLabel.h"
#include "app/Lintora/controls/MarkedTextDelegate.h"
#include "app/Lintora/controls/TextEdit.h"

#include <QHBoxLayout>
#include <QListView>
#include <QPlainTextEdit>
#include <QTabBar>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;
using Way = WindowState::ScriptWay;

ScriptMatchWorkspace::ScriptMatchWorkspace(LintoraModel &model, QWidget *content)
    : Sheet(Extent::whole, content)
    , m_model(model)
    , m_matching(model.scriptMatching())
    , m_rows(m_matching)
    , m_ways(Controls::tabs(u"方式"_s, {u"校正现有字幕"_s, u"按文稿生成字幕"_s}, this))
    , m_note(Controls::note({}, this))
    , m_text(new TextEdit(this))
    , m_list(new QListView(this))
    , m_all(Controls::button(u"全选"_s, this, u"勾选全部改动，或全部不选"_s))
    , m_status(new ElidedLabel(this))
    , m_match(Controls::button(u"开始匹配"_s, this))
    , m_undo(Controls::button(u"撤销修改"_s, this))
    , m_apply(Controls::primaryButton({}, this))
{
    m_heading = addHeading({});
    body()->addWidget(m_ways);
    body()->addWidget(m_note);
    m_text->setAccessibleName(u"文稿正文"_s);
    m_text->setTabChangesFocus(true);
    m_text->setPlainText(m_matching.text());
    m_list->setModel(&m_rows);
    MarkedTextDelegate::install(*m_list);
    m_list->setAccessibleName(u"对照"_s);
    body()->addWidget(m_text, 1);
    body()->addWidget(m_list, 3);
    m_choices = makeChoices();
    body()->addWidget(m_choices);
    m_buttons = makeButtons();
    body()->addWidget(m_buttons);

    connect(this, &Sheet::closeRequested, &model, [&model] { model.window().setScriptMatchPresented(false); });
    connect(m_ways, &QTabBar::currentChanged, &model, [&model](int way) { model.window().setScriptWay(Way(way)); });
    connect(&model.window(), &WindowState::scriptMatchPresentedChanged, this, &ScriptMatchWorkspace::follow);
    connect(m_text, &QPlainTextEdit::textChanged, this, [this] { m_matching.setText(m_text->toPlainText()); });
    connect(&m_matching, &ScriptMatching::rowsChanged, this, &ScriptMatchWorkspace::follow);
    connect(&m_matching, &ScriptMatching::statusChanged, this, &ScriptMatchWorkspace::follow);
    for (const auto signal : {&LintoraModel::historyChanged, &LintoraModel::activityChanged,
                              &LintoraModel::aiBusyChanged, &LintoraModel::selectedTrackIDChanged})
        connect(&model, signal, this, &ScriptMatchWorkspace::follow);
}

void ScriptMatchWorkspace::addTiming(QWidget *timing)
{
    m_timing = timing;
    body()->addWidget(timing);
    followWay();
}

QWidget *ScriptMatchWorkspace::makeChoices()
{
    auto *const row = new QWidget(this);
    auto *const layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    auto *const punctuation = new CheckBox(u"忽略标点差异"_s, row);
    punctuation->setAccessibleName(punctuation->text());
    punctuation->setToolTip(u"只有标点或空格不同的字幕保持原样"_s);
    punctuation->setChecked(m_matching.leavesPunctuation());
    layout->addWidget(punctuation);
    layout->addStretch(1);
    layout->addWidget(m_all);
    connect(punctuation, &CheckBox::clicked, &m_matching, &ScriptMatching::setLeavesPunctuation);
    connect(m_all, &QPushButton::clicked, this, [this] { m_matching.selectAll(m_rows.ticked() == 0); });
    return row;
}

QWidget *ScriptMatchWorkspace::makeButtons()
{
    connect(m_undo, &QPushButton::clicked, &m_matching, &ScriptMatching::undo);
    connect(m_match, &QPushButton::clicked, &m_matching, &ScriptMatching::match);
    connect(m_apply, &QPushButton::clicked, &m_matching, &ScriptMatching::apply);
    return Controls::statusRow(m_status, {m_undo, m_match, m_apply}, this);
}

void ScriptMatchWorkspace::present()
{
    if (isVisible())
        return;
    if (m_text->toPlainText() != m_matching.text())
        m_text->setPlainText(m_matching.text());
    open(m_text);
    follow();
}

void ScriptMatchWorkspace::followWay()
{
    const Way way = m_model.window().scriptWay();
    const bool isTiming = way == Way::timing;
    m_ways->setCurrentIndex(int(way));
    m_heading->setText(isTiming ? u"按文稿生成字幕，时间取自声音。"_s : u"按文稿校正文字，保留字幕时间。"_s);
    setAccessibleName(m_heading->text());
    m_note->setText(isTiming ? u"文字与文稿一字不差，一行一条，长行断开；结果先列出，应用后成为新的语言组"_s
                             : u"本机匹配 · 时间码不变"_s);
    m_text->setPlaceholderText(isTiming ? u"在这里粘贴文稿正文…\n一行一条，无需填写时间码，顺序应与所说一致。"_s
                                        : u"在这里粘贴文稿正文…\n无需填写时间码，段落顺序应与字幕一致。"_s);
    m_buttons->setVisible(!isTiming);
    if (m_timing)
        m_timing->setVisible(isTiming);
}

void ScriptMatchWorkspace::follow()
{
    if (!isVisible())
        return;
    followWay();
    const bool hasRows = !m_matching.rows().isEmpty() && m_model.window().scriptWay() == Way::wording;
    const qsizetype ticked = m_rows.ticked();
    m_list->setVisible(hasRows);
    m_choices->setVisible(hasRows);
    m_all->setText(ticked == 0 ? u"全选"_s : u"全不选"_s);
    m_all->setAccessibleName(m_all->text());
    m_status->setText(m_matching.status());
    Controls::showAsFailure(m_status, m_matching.isRefused());
    m_match->setEnabled(!m_model.aiBusy() && !m_model.items().isEmpty());
    m_undo->setVisible(m_matching.canUndo());
    m_apply->setText(u"应用勾选 · %1"_s.arg(ticked));
    m_apply->setAccessibleName(m_apply->text());
    m_apply->setVisible(hasRows);
    m_apply->setEnabled(ticked > 0 && !m_model.aiBusy());
}
