#include "app/Lintora/tools/CueToolWorkspace.h"

#include "app/Lintora/controls/ChoiceBox.h"
#include "app/Lintora/controls/Controls.h"
#include "app/Lintora/controls/ElidedLabel.h"
#include "app/Lintora/controls/LineEdit.h"
#include "app/Lintora/controls/MarkedTextDelegate.h"
#include "app/Lintora/controls/ValueField.h"
#include "app/Lintora/tools/CheckingForm.h"

#include <QHBoxLayout>
#include <QLineEdit>
#include <QListView>
#include <QRegularExpression>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace {

struct Words
{
    QString heading;
    QString note;
    QString action;
};

Words words(CueTools::Tool tool)
{
    switch (tool) {
    case CueTools::Tool::breaking:
        return {.heading = u"断句"_s,
                .note = u"在标点、连词与词界处断开，不拆词、数量与引号；文字不变，时间按文字长短分配。"_s,
                .action = u"应用"_s};
    case CueTools::Tool::checking:
        return {.heading = u"检查字幕"_s,
                .note = u"勾选的问题会一次修复，其余请逐条查看（双击跳到该条）。"_s,
                .action = u"修复勾选"_s};
    case CueTools::Tool::script:
        break;
    }
    return {.heading = u"繁简转换"_s, .note = u"按词转换，时间码不变。"_s, .action = u"转换"_s};
}

/// A row of the form with a choice in it.
ChoiceBox *addChoice(QVBoxLayout &form, const QString &name, const QStringList &choices, int current, QWidget *parent)
{
    auto *const row = new FieldRow(name, parent);
    auto *const box = new ChoiceBox(name, row);
    box->addItems(choices);
    box->setCurrentIndex(current);
    row->controls()->addWidget(box);
    row->controls()->addStretch(1);
    form.addWidget(row);
    return box;
}

ValueField *addValue(QVBoxLayout &form, const ValueEdit::Kind &kind, double highest, double value, QWidget *parent)
{
    auto *const field = new ValueField(kind, {.lowest = kind.lowest, .highest = highest}, parent);
    field->setValue(value);
    form.addWidget(field);
    return field;
}

QVBoxLayout &formOf(QWidget *controls)
{
    auto *const form = new QVBoxLayout(controls);
    form->setContentsMargins(0, VELTheme::step, 0, VELTheme::step);
    form->setSpacing(VELTheme::step);
    return *form;
}

} // namespace

CueToolWorkspace::CueToolWorkspace(LintoraModel &model, CueTools::Tool tool, QWidget *content)
    : Sheet(Extent::whole, content)
    , m_model(model)
    , m_tools(model.cueTools())
    , m_tool(tool)
    , m_rows(model.cueTools())
    , m_list(new QListView(this))
    , m_status(new ElidedLabel(this))
    , m_all(Controls::button({}, this))
    , m_apply(Controls::primaryButton(words(tool).action, this))
{
    addHeading(words(tool).heading);
    body()->addWidget(Controls::note(words(tool).note, this));
    body()->addWidget(makeControls());
    body()->addWidget(makeList(), 1);
    if (m_page)
        body()->addWidget(m_page, 1);
    body()->addWidget(makeButtons());

    connect(this, &Sheet::closeRequested, &m_tools, &CueTools::close);
    for (const auto signal : {&CueTools::rowsChanged, &CueTools::selectionChanged, &CueTools::statusChanged})
        connect(&m_tools, signal, this, &CueToolWorkspace::follow);
    connect(&model, &LintoraModel::aiBusyChanged, this, &CueToolWorkspace::follow);
}

QWidget *CueToolWorkspace::makeControls()
{
    auto *const controls = new QWidget(this);
    switch (m_tool) {
    case CueTools::Tool::breaking:
        addBreaking(controls);
        break;
    case CueTools::Tool::checking:
        addChecking(controls);
        break;
    case CueTools::Tool::script:
        addScript(controls);
        break;
    }
    return controls;
}

void CueToolWorkspace::change(const std::function<void(Settings &)> &change)
{
    Settings settings = m_tools.settings();
    change(settings);
    m_tools.setSettings(settings);
}

void CueToolWorkspace::addBreaking(QWidget *controls)
{
    QVBoxLayout &form = formOf(controls);
    const Settings &now = m_tools.settings();
    auto *const way = addChoice(form, u"方式"_s, {u"拆开长字幕"_s, u"只换行，不拆开"_s, u"合并短句"_s},
                                static_cast<int>(now.way), controls);
    auto *const columns = addValue(form, {.name = u"每行宽度"_s, .lowest = 4, .highest = 100, .unit = u"字"_s}, 40,
                                   now.columns, controls);
    auto *const lines =
        addValue(form, {.name = u"每条行数"_s, .lowest = 1, .highest = 10, .unit = u"行"_s}, 4, now.lines, controls);
    lines->setEnabled(now.way == CueTools::Way::cues);
    connect(way, &ChoiceBox::currentIndexChanged, this, [this, lines](int index) {
        lines->setEnabled(index == 0);
        change([&](Settings &settings) { settings.way = static_cast<CueTools::Way>(index); });
    });
    connect(columns, &ValueField::edited, this,
            [this](double value) { change([&](Settings &settings) { settings.columns = qRound(value); }); });
    connect(lines, &ValueField::edited, this,
            [this](double value) { change([&](Settings &settings) { settings.lines = qRound(value); }); });
    m_first = columns->edit();
}

void CueToolWorkspace::addChecking(QWidget *controls)
{
    auto *const form = new CheckingForm(m_model, controls);
    QVBoxLayout &column = formOf(controls);
    column.setContentsMargins(0, 0, 0, 0);
    column.addWidget(form);
    m_page = form->page();
    connect(form, &CheckingForm::pageRequested, this, [this](bool shown) {
        m_page->setVisible(shown);
        m_list->setVisible(!shown);
    });
    m_first = form->first();
}

void CueToolWorkspace::addScript(QWidget *controls)
{
    QVBoxLayout &form = formOf(controls);
    const Settings &now = m_tools.settings();
    auto *const target = addChoice(form, u"转换为"_s, {u"简体"_s, u"繁体"_s},
                                   now.script == ChineseScript::Target::simplified ? 0 : 1, controls);
    auto *const row = new FieldRow(u"保留"_s, controls);
    auto *const kept = new LineEdit(now.kept.join(u'，'), row);
    kept->setPlaceholderText(u"不转换的人名、地名，用逗号分隔"_s);
    kept->setAccessibleName(u"保留的专名"_s);
    row->controls()->addWidget(kept, 1);
    form.addWidget(row);
    connect(target, &ChoiceBox::currentIndexChanged, this, [this](int index) {
        change([&](Settings &settings) {
            settings.script = index == 0 ? ChineseScript::Target::simplified : ChineseScript::Target::traditional;
        });
    });
    connect(kept, &QLineEdit::textChanged, this, [this](const QString &text) {
        static const QRegularExpression border(u"[,，、\\s]+"_s);
        change([&](Settings &settings) { settings.kept = text.split(border, Qt::SkipEmptyParts); });
    });
    m_first = target;
}

QWidget *CueToolWorkspace::makeList()
{
    m_list->setModel(&m_rows);
    MarkedTextDelegate::install(*m_list);
    m_list->setAccessibleName(u"预览"_s);
    connect(m_list, &QListView::doubleClicked, this,
            [this](const QModelIndex &index) { Q_EMIT cueRequested(m_rows.cueOf(index)); });
    return m_list;
}

QWidget *CueToolWorkspace::makeButtons()
{
    connect(m_all, &QPushButton::clicked, this, [this] { m_tools.selectAll(m_tools.selectedCount() == 0); });
    connect(m_apply, &QPushButton::clicked, &m_tools, &CueTools::apply);
    return Controls::statusRow(m_status, {m_all, m_apply}, this);
}

void CueToolWorkspace::present()
{
    if (isVisible())
        return;
    open(m_first);
    follow();
}

void CueToolWorkspace::follow()
{
    if (!isVisible() || m_tools.tool() != m_tool)
        return;
    m_status->setText(m_tools.status());
    Controls::showAsFailure(m_status, m_tools.isRefused());
    const bool checks = m_tool == CueTools::Tool::checking;
    m_all->setVisible(checks && !m_tools.rows().isEmpty());
    m_all->setText(m_tools.selectedCount() == 0 ? u"全选"_s : u"全不选"_s);
    m_all->setAccessibleName(m_all->text());
    if (checks)
        m_apply->setText(u"%1 · %2"_s.arg(words(m_tool).action).arg(m_tools.selectedCount()));
    m_apply->setAccessibleName(m_apply->text());
    m_apply->setEnabled(m_tools.canApply());
}
