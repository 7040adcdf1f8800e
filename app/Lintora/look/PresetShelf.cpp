#include "app/Lintora/look/PresetShelf.h"

#include "app/Lintora/controls/Controls.h"
#include "app/Lintora/controls/QuestionSheet.h"
#include "app/Lintora/look/PresetDelegate.h"
#include "core/text/Characters.h"

#include <QListView>
#include <QScrollBar>
#include <QShortcut>
#include <QVBoxLayout>

#include <utility>

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype longestName = 60;

QString judgeName(const QString &name)
{
    const qsizetype length = Characters::count(name.trimmed());
    if (length == 0)
        return u"请输入名称。"_s;
    return length > longestName ? u"名称最多 60 个字。"_s : QString();
}

} // namespace

PresetShelf::PresetShelf(LintoraModel &model, QuestionSheet &questions, QWidget *parent)
    : QWidget(parent)
    , m_model(model)
    , m_questions(questions)
    , m_presets(model.stylePresets())
    , m_apply(Controls::quietButton(u"套用"_s, this))
    , m_rename(Controls::quietButton(u"改名…"_s, this))
    , m_remove(Controls::quietButton(u"删除"_s, this))
    , m_restore(Controls::quietButton(u"撤销删除"_s, this))
    , m_save(Controls::button(u"保存预设…"_s, this))
    , m_list(new QListView(this))
{
    m_list->setModel(&m_presets);
    m_list->setItemDelegate(new PresetDelegate(m_list));
    m_list->setAccessibleName(u"样式预设"_s);
    m_list->setViewMode(QListView::IconMode);
    m_list->setMovement(QListView::Static);
    m_list->setResizeMode(QListView::Adjust);
    m_list->setUniformItemSizes(true);
    m_list->setMouseTracking(true);
    m_list->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_list->setGridSize(PresetDelegate::cellSize() + QSize(VELTheme::step, VELTheme::step));
    m_list->setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
    m_list->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    auto *const empty = Controls::note(u"还没有预设。调好样式后，点“保存预设…”留着下次用。"_s, this);
    empty->setAlignment(Qt::AlignCenter);
    m_empty = empty;

    auto *const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(VELTheme::step);
    layout->addWidget(makeActions());
    layout->addWidget(m_list, 1);
    layout->addWidget(m_empty, 1);
    layout->addWidget(
        Controls::note(u"预设保存字体、字号、颜色、位置、描边和阴影；切换画面时字号按比例适配。"_s, this));
    setForm(Form::strip);

    connect(m_list->selectionModel(), &QItemSelectionModel::selectionChanged, this, [this] {
        if (const auto preset = selected())
            m_selected = preset->id;
        update();
    });
    connect(m_list, &QListView::activated, this, &PresetShelf::apply);
    connect(&m_presets, &PresetListModel::modelReset, this, &PresetShelf::followPresets);
    connect(&model, &LintoraModel::aiBusyChanged, this, &PresetShelf::update);
    connect(new QShortcut(QKeySequence::Delete, m_list, nullptr, nullptr, Qt::WidgetShortcut), &QShortcut::activated,
            this, &PresetShelf::remove);
    followPresets();
}

QWidget *PresetShelf::makeActions()
{
    auto *const actions = new QWidget(this);
    auto *const title = new QLabel(u"样式预设"_s, actions);
    QFont font = VELTheme::textFont();
    font.setWeight(QFont::DemiBold);
    title->setFont(font);
    auto *const row = new QHBoxLayout(actions);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(VELTheme::step);
    row->addWidget(title);
    row->addStretch();
    for (QPushButton *const each : {m_apply, m_rename, m_remove, m_restore, m_save})
        row->addWidget(each);
    connect(m_apply, &QPushButton::clicked, this, &PresetShelf::apply);
    connect(m_rename, &QPushButton::clicked, this, &PresetShelf::rename);
    connect(m_remove, &QPushButton::clicked, this, &PresetShelf::remove);
    connect(m_restore, &QPushButton::clicked, &m_model.stylePresets(), &StylePresets::restore);
    connect(m_save, &QPushButton::clicked, this, &PresetShelf::askForName);
    return actions;
}

void PresetShelf::setForm(Form form)
{
    const bool isStrip = form == Form::strip;
    m_list->setWrapping(!isStrip);
    m_list->setFlow(QListView::LeftToRight);
    m_list->setVerticalScrollBarPolicy(isStrip ? Qt::ScrollBarAlwaysOff : Qt::ScrollBarAsNeeded);
    m_list->setHorizontalScrollBarPolicy(isStrip ? Qt::ScrollBarAsNeeded : Qt::ScrollBarAlwaysOff);
    m_form = form;
    fit();
}

/// A strip is as high as its pictures, and its scroll bar when there are more than fit.
void PresetShelf::fit()
{
    constexpr int scrollBar = 10;
    constexpr int frame = 1;
    const QSize cell = m_list->gridSize();
    const bool isFull = m_presets.rowCount() * cell.width() > width() - 2 * frame;
    const int row = cell.height() + 2 * frame + (m_form == Form::strip && isFull ? scrollBar : 0);
    for (QWidget *const each : {static_cast<QWidget *>(m_list), m_empty}) {
        each->setMinimumHeight(row);
        each->setMaximumHeight(m_form == Form::strip ? row : QWIDGETSIZE_MAX);
    }
}

void PresetShelf::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    fit();
}

std::optional<SubtitleStylePreset> PresetShelf::selected() const
{
    const QModelIndexList indexes = m_list->selectionModel()->selectedIndexes();
    return indexes.isEmpty() ? std::nullopt : std::optional(m_presets.preset(indexes.first()));
}

void PresetShelf::apply()
{
    if (const auto preset = selected())
        m_model.applyStylePreset(preset->id);
}

void PresetShelf::askForName()
{
    const auto preset = selected();
    m_questions.askName({.title = u"保存样式预设"_s, .text = {}, .answer = u"保存"_s},
                        preset ? preset->name : QString(), judgeName, [this](const QString &name) { save(name); });
}

void PresetShelf::save(const QString &name)
{
    const auto keep = [this, name] {
        m_savedName = name;
        m_model.saveStylePreset(name);
    };
    if (!m_presets.indexOf(name).isValid()) {
        keep();
        return;
    }
    m_questions.ask({.title = u"替换“%1”？"_s.arg(name.trimmed()),
                     .text = u"已有同名的样式预设，它将被当前样式替换。"_s,
                     .answer = u"替换"_s},
                    keep);
}

void PresetShelf::rename()
{
    const auto preset = selected();
    if (!preset)
        return;
    const auto judge = [this, id = preset->id](const QString &name) {
        const QModelIndex same = m_presets.indexOf(name);
        if (same.isValid() && m_presets.preset(same).id != id)
            return u"已有同名的样式预设，请换一个名称。"_s;
        return judgeName(name);
    };
    m_questions.askName({.title = u"给预设改名"_s, .text = {}, .answer = u"改名"_s}, preset->name, judge,
                        [this, id = preset->id](const QString &name) { m_model.stylePresets().rename(id, name); });
}

void PresetShelf::remove()
{
    if (const auto preset = selected())
        m_model.stylePresets().remove(preset->id);
}

void PresetShelf::update()
{
    const bool isSelected = selected().has_value();
    m_apply->setEnabled(isSelected && !m_model.aiBusy());
    m_rename->setEnabled(isSelected);
    m_remove->setEnabled(isSelected);
    m_restore->setVisible(m_model.stylePresets().canRestore());
}

void PresetShelf::followPresets()
{
    const QModelIndex saved = m_savedName.isEmpty() ? QModelIndex() : m_presets.indexOf(std::exchange(m_savedName, {}));
    const QModelIndex current = saved.isValid() ? saved : m_presets.indexOf(m_selected);
    if (current.isValid())
        m_list->setCurrentIndex(current);
    const bool isEmpty = m_presets.rowCount() == 0;
    m_list->setVisible(!isEmpty);
    m_empty->setVisible(isEmpty);
    fit();
    update();
}
