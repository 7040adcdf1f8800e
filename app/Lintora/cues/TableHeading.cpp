#include "app/Lintora/cues/TableHeading.h"

#include "app/Lintora/controls/Controls.h"
#include "app/Lintora/cues/FilterField.h"
#include "app/Lintora/cues/TrackTabs.h"

#include <QHBoxLayout>

using namespace Qt::StringLiterals;

TableHeading::TableHeading(LintoraModel &model, CueTable &table, QWidget *parent)
    : QWidget(parent)
    , m_model(model)
    , m_table(table)
    , m_count(new QLabel(this))
    , m_warnings(Controls::quietButton(u"只看提醒"_s, this))
    , m_filter(new FilterField(this))
    , m_strip(Controls::signButton(VELTheme::Glyph::sound, u"时间条"_s, this))
    , m_fold(Controls::signButton(VELTheme::Glyph::inspector, u"预览"_s, this))
{
    constexpr int filterWidth = 36 * VELTheme::step;
    auto *const tabs = new TrackTabs(
        model, [this] { return m_table.commitEdit(); }, this);
    m_count->setFont(VELTheme::smallFont());
    m_count->setProperty("secondary", true);
    m_count->setAccessibleName(u"显示的字幕"_s);
    m_warnings->setProperty("tight", true);
    m_warnings->setCheckable(true);
    m_warnings->setToolTip(u"只显示需要留意的字幕"_s);
    m_warnings->setAccessibleDescription(m_warnings->toolTip());
    m_filter->setFixedWidth(filterWidth);
    auto *const row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(VELTheme::gap);
    row->addWidget(tabs, 1);
    row->addWidget(m_count);
    row->addWidget(m_warnings);
    row->addWidget(m_filter);
    row->addWidget(m_strip);
    row->addWidget(m_fold);
    m_strip->setCheckable(true);
    m_fold->setCheckable(true);

    // As the eye goes: what the heading is about comes behind it, though it is there first.
    setTabOrder(tabs, m_warnings);
    setTabOrder(m_warnings, m_filter);
    setTabOrder(m_filter, m_strip);
    setTabOrder(m_strip, m_fold);
    setTabOrder(m_fold, &table);

    connect(m_warnings, &QPushButton::toggled, &table, &CueTable::setOnlyWarnings);
    connect(m_filter, &FilterField::textChanged, &table, &CueTable::setFilter);
    connect(m_filter, &FilterField::textChanged, &table, &CueTable::setSearch);
    connect(m_filter, &FilterField::left, &table, &CueTable::takeKeyboard);
    connect(m_filter, &FilterField::nextRequested, &table, &CueTable::findNext);
    connect(m_filter, &FilterField::previousRequested, &table, &CueTable::findPrevious);
    connect(&table, &CueTable::searchRequested, m_filter, qOverload<>(&FilterField::setFocus));
    WindowState &window = model.window();
    connect(m_fold, &QToolButton::clicked, &window, &WindowState::setInspectorShown);
    const auto followFold = [this, &window] {
        m_fold->setChecked(window.inspectorShown());
        m_fold->setToolTip(window.inspectorShown() ? u"收起画面预览（⌘I）"_s : u"展开画面预览（⌘I）"_s);
    };
    connect(&window, &WindowState::inspectorShownChanged, this, followFold);
    followFold();
    connect(m_strip, &QToolButton::clicked, &window, &WindowState::setStripShown);
    const auto followStrip = [this, &window] {
        m_strip->setChecked(window.stripShown());
        m_strip->setToolTip(window.stripShown() ? u"收起时间条（⌘T）"_s : u"展开时间条：波形与播放（⌘T）"_s);
    };
    connect(&window, &WindowState::stripShownChanged, this, followStrip);
    followStrip();
    connect(&table, &CueTable::shownCuesChanged, this, &TableHeading::follow);
    connect(&model, &LintoraModel::loaded, this, &TableHeading::showAll); // what was looked for is of another session
    follow();
}

void TableHeading::showAll()
{
    m_warnings->setChecked(false);
    m_filter->clear();
}

void TableHeading::follow()
{
    const bool isFiltered = !m_table.filter().isEmpty() || m_table.showsOnlyWarnings();
    m_count->setVisible(isFiltered);
    m_count->setText(u"%1 / %2"_s.arg(m_table.shownCues()).arg(m_model.items().size()));
    m_count->setToolTip(u"显示 %1 条，共 %2 条"_s.arg(m_table.shownCues()).arg(m_model.items().size()));
}
