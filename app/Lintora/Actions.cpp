#include "app/Lintora/Actions.h"

#include "app/Lintora/controls/CheckBox.h"
#include "app/Lintora/controls/Controls.h"
#include "app/Lintora/controls/ElidedLabel.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QMenu>

using namespace Qt::StringLiterals;

namespace {

QHBoxLayout *rowIn(QWidget *widget)
{
    auto *const row = new QHBoxLayout(widget);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(VELTheme::gap);
    return row;
}

CheckBox *checkBox(const QString &text, QWidget *parent, const QString &help)
{
    auto *const box = new CheckBox(text, parent);
    box->setToolTip(help);
    box->setAccessibleName(text);
    box->setAccessibleDescription(help);
    return box;
}

} // namespace

MainActions::MainActions(LintoraModel &model, std::function<bool()> mayAct, QWidget *parent)
    : QWidget(parent)
    , m_model(model)
    , m_mayAct(std::move(mayAct))
    , m_tidy(Controls::button(u"整理"_s, this, u"断句、检查与繁简转换"_s))
    , m_source(new ElidedLabel(this))
{
    auto *const speech = Controls::button(u"语音识别"_s, this, u"从音视频或 FCP 时间线生成字幕（⌘⇧O）"_s);
    connect(speech, &QPushButton::clicked, &model, [&model] { model.showAI(WindowState::AIMode::speech); });
    auto *const translate = Controls::button(u"翻译"_s, this, u"把当前字幕译成另一种语言"_s);
    connect(translate, &QPushButton::clicked, &model, [&model] { model.showAI(WindowState::AIMode::translation); });
    auto *const review = Controls::button(u"AI 校对"_s, this, u"校对错别字、识别错误和标点，勾选后才写入"_s);
    connect(review, &QPushButton::clicked, &model, [&model] { model.showAI(WindowState::AIMode::review); });
    auto *const match = Controls::button(u"文稿匹配"_s, this, u"按文稿校正文字，或按文稿从声音生成字幕"_s);
    connect(match, &QPushButton::clicked, &model, &LintoraModel::showScriptMatch);
    m_source->setProperty("secondary", true);
    m_source->setElideMode(Qt::ElideMiddle);
    m_source->setFont(VELTheme::smallFont());
    m_source->setAlignment(Qt::AlignVCenter | Qt::AlignRight);
    m_source->setAccessibleName(u"字幕来源"_s);
    m_source->setText(model.source());
    connect(&model, &LintoraModel::sourceChanged, this, [this] { m_source->setText(m_model.source()); });

    const auto enable = [&model, translate, review] {
        translate->setEnabled(!model.items().isEmpty());
        review->setEnabled(!model.items().isEmpty());
    };
    connect(&model, &LintoraModel::itemsChanged, this, enable);
    enable();

    QHBoxLayout *const row = rowIn(this);
    row->addWidget(speech);
    row->addWidget(translate);
    row->addWidget(review);
    row->addWidget(match);
    row->addWidget(m_tidy);
    row->addWidget(m_source, 1);

    offerTools();
    connect(&model, &LintoraModel::itemsChanged, this, &MainActions::update);
    connect(&model, &LintoraModel::aiBusyChanged, this, &MainActions::update);
    update();
}

void MainActions::offerTools()
{
    auto *const menu = new QMenu(m_tidy);
    const auto add = [&](const QString &title, CueTools::Tool tool) {
        menu->addAction(title, this, [this, tool] {
            if (m_mayAct())
                m_model.cueTools().open(tool);
        });
    };
    add(u"断句…"_s, CueTools::Tool::breaking);
    add(u"检查…"_s, CueTools::Tool::checking);
    add(u"繁简转换…"_s, CueTools::Tool::script);
    m_tidy->setMenu(menu);
}

void MainActions::update()
{
    m_tidy->setEnabled(!m_model.aiBusy() && !m_model.items().isEmpty());
}

EditingActions::EditingActions(LintoraModel &model, std::function<bool()> mayAct, QWidget *parent)
    : QWidget(parent)
    , m_model(model)
    , m_mayAct(std::move(mayAct))
    , m_fillers(checkBox(u"去语气词"_s, this, u"清理时去掉语气词"_s))
    , m_settings(Controls::signButton(VELTheme::Glyph::gear, u"语气词设置"_s, this, u"自定义需要去掉的语气词"_s))
    , m_punctuation(checkBox(u"去标点并分句"_s, this, u"去标点并分句"_s))
    , m_clean(Controls::button(u"一键清理"_s, this, u"按勾选的项目清理当前语言的字幕"_s))
    , m_undo(Controls::signButton(VELTheme::Glyph::undo, u"撤销"_s, this, u"撤销最近一次文字修改"_s))
    , m_find(Controls::button(u"查找替换"_s, this, u"批量查找与替换关键词（⌘F）"_s))
    , m_separate(Controls::button(u"分离中英"_s, this))
{
    auto *const style = Controls::button(u"样式"_s, this, u"设置字幕样式与画面（⌘,）"_s);
    QHBoxLayout *const row = rowIn(this);
    row->setSpacing(VELTheme::step);
    for (QPushButton *const each : {m_clean, m_find, m_separate, style})
        each->setProperty("tight", true);
    row->addWidget(m_fillers);
    row->addWidget(m_settings);
    row->addWidget(m_punctuation);
    row->addWidget(m_clean);
    row->addStretch();
    row->addWidget(m_undo);
    row->addWidget(m_find);
    row->addWidget(m_separate);
    row->addWidget(style);

    connect(m_fillers, &CheckBox::clicked, &model.textTools(), &TextTools::setRemoveFillers);
    connect(m_punctuation, &CheckBox::clicked, &model.textTools(), &TextTools::setRemovePunctuation);
    connect(m_settings, &QToolButton::clicked, this,
            [this] { perform([this] { m_model.window().setCleanupSettingsVisible(true); }); });
    connect(m_clean, &QPushButton::clicked, this, [this] { perform([this] { m_model.textTools().clean(); }); });
    connect(m_undo, &QToolButton::clicked, this, [this] { perform([this] { undo(); }); });
    connect(m_find, &QPushButton::clicked, this,
            [this] { perform([this] { m_model.window().setFindReplaceVisible(true); }); });
    connect(style, &QPushButton::clicked, this,
            [this] { perform([this] { m_model.window().setSettingsVisible(true); }); });
    connect(m_separate, &QPushButton::clicked, this, [this] {
        perform([this] {
            if (m_model.splitOriginal())
                Q_EMIT restoreRequested();
            else
                m_model.textTools().separateLanguages();
        });
    });
    m_undo->setPopupMode(QToolButton::MenuButtonPopup);
    m_undo->installEventFilter(this); // which opens the menu by the keyboard
    m_undo->setMenu(new QMenu(m_undo));
    connect(m_undo->menu(), &QMenu::aboutToShow, this, &EditingActions::offerUndo);

    for (const auto signal :
         {&LintoraModel::removeFillersChanged, &LintoraModel::removePunctuationChanged, &LintoraModel::itemsChanged,
          &LintoraModel::previousItemsChanged, &LintoraModel::historyChanged, &LintoraModel::splitOriginalChanged,
          &LintoraModel::aiBusyChanged})
        connect(&model, signal, this, &EditingActions::update);
    update();
}

bool EditingActions::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_undo && event->type() == QEvent::KeyPress &&
        static_cast<const QKeyEvent *>(event)->key() == Qt::Key_Down) {
        m_undo->showMenu();
        return true;
    }
    return QWidget::eventFilter(watched, event);
}

void EditingActions::perform(const std::function<void()> &action) const
{
    if (m_mayAct())
        action();
}

void EditingActions::update()
{
    const bool isFree = !m_model.aiBusy();
    const bool hasCues = !m_model.items().isEmpty();
    m_fillers->setChecked(m_model.removeFillers());
    m_punctuation->setChecked(m_model.removePunctuation());
    m_clean->setEnabled(isFree && hasCues);
    m_undo->setEnabled(isFree && (m_model.canUndo() || m_model.canRedo() || m_model.previousItems()));
    m_find->setEnabled(isFree);
    const bool isSeparated = m_model.splitOriginal().has_value();
    m_separate->setText(isSeparated ? u"恢复原稿"_s : u"分离中英"_s);
    m_separate->setAccessibleName(m_separate->text());
    m_separate->setToolTip(isSeparated ? u"恢复分离前的原稿"_s : u"把中英双语字幕按语言分开"_s);
    m_separate->setEnabled(isFree && (hasCues || isSeparated));
}

/// A cleanup from an earlier run of the program is in no history, and can be taken back all the same.
void EditingActions::undo()
{
    if (m_model.canUndo())
        m_model.undo();
    else
        m_model.textTools().undoCleanup();
}

void EditingActions::offerUndo()
{
    QMenu &menu = *m_undo->menu();
    menu.clear();
    const auto add = [&](const QString &title, bool enabled, const std::function<void()> &command) {
        menu.addAction(title, this, [this, command] { perform(command); })->setEnabled(enabled);
    };
    add(u"撤销"_s + m_model.undoTitle(), m_model.canUndo(), [this] { m_model.undo(); });
    add(u"重做"_s + m_model.redoTitle(), m_model.canRedo(), [this] { m_model.redo(); });
    menu.addSeparator();
    add(u"恢复到清理前"_s, m_model.previousItems() && !m_model.aiBusy(), [this] { m_model.textTools().undoCleanup(); });
}
