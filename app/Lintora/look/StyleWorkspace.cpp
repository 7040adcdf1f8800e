#include "app/Lintora/look/StyleWorkspace.h"

#include "app/Lintora/controls/Controls.h"
#include "app/Lintora/controls/QuestionSheet.h"
#include "app/Lintora/look/DocumentControls.h"
#include "app/Lintora/look/FontFaces.h"
#include "app/Lintora/look/FontPicker.h"
#include "app/Lintora/look/LookControls.h"
#include "app/Lintora/look/PresetShelf.h"
#include "app/Lintora/look/StyleControls.h"
#include "app/Lintora/look/StyleStage.h"
#include "app/Lintora/look/TitlePicker.h"
#include "store/Locations.h"

#include <QKeyEvent>
#include <QScrollArea>
#include <QScrollBar>
#include <QStackedWidget>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace {

constexpr int widthForColumns = 220 * VELTheme::step; ///< Of the window, from which controls stand beside the picture.
constexpr int controlsWidth = 108 * VELTheme::step;   ///< Where they do.
constexpr int scrollBarRoom = 3 * VELTheme::step;

const QString &sampleText()
{
    static const QString text = u"大家好，欢迎回来"_s;
    return text;
}

} // namespace

StyleWorkspace::Fonts StyleWorkspace::installedFonts()
{
    return {.indexFile = Locations::fontIndex(), .source = FontCatalogue::installed()};
}

StyleWorkspace::StyleWorkspace(LintoraModel &model, QWidget *content, const Fonts &fonts)
    : Sheet(Extent::wide, content)
    , m_model(model)
    , m_catalogue(fonts.indexFile, fonts.source)
    , m_columns(new QBoxLayout(QBoxLayout::TopToBottom))
{
    // The keyboard goes through the controls in the order in which they are made.
    addHeading(u"VELMORA  /  STYLE"_s);
    m_stageColumn = new QWidget(this);
    m_stage = new StyleStage(model.dialogs(), m_stageColumn);
    m_rule = Controls::rule(this);
    m_questions = new QuestionSheet(this);
    m_presets = new PresetShelf(model, *m_questions, this);
    m_pages = new QStackedWidget(this);
    m_columns->setSpacing(VELTheme::gap);
    body()->addLayout(m_columns, 1);
    auto *const column = new QVBoxLayout(m_stageColumn);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(3 * VELTheme::step);
    column->addWidget(m_stage, 3);
    m_pages->addWidget(makeControls());
    m_pages->addWidget(makeFontPage());
    m_pages->addWidget(makeTitlePage());
    m_columns->addWidget(m_stageColumn);
    m_columns->addWidget(m_rule);
    m_columns->addWidget(m_pages);
    arrange();

    connect(this, &Sheet::closeRequested, &model, [&model] { model.window().setSettingsVisible(false); });
    connect(&model, &LintoraModel::optionsChanged, this, [this] { preview(std::nullopt); });
    connect(&model, &LintoraModel::lookChanged, this, &StyleWorkspace::followLook);
    connect(&m_catalogue, &FontCatalogue::ready, this, [this] { m_isLoadingFonts = false; });
    connect(&m_catalogue, &FontCatalogue::indexNotSaved, &model,
            [&model](const QString &reason) { model.report(u"字体名称未能存下，下次需重新读取：%1"_s.arg(reason)); });
    connect(&model, &LintoraModel::itemsChanged, this, &StyleWorkspace::showTitle);
    const auto follow = [this](bool isRemoved) {
        m_removedPresetLast = isRemoved;
        Q_EMIT undoChanged();
    };
    StylePresets &presets = model.stylePresets();
    connect(&presets, &StylePresets::changed, this, [&presets, follow] { follow(presets.canRestore()); });
    connect(&model, &LintoraModel::historyChanged, this, [follow] { follow(false); });
}

StyleWorkspace::~StyleWorkspace() = default;

/// A removed preset is in no history of the session.
QString StyleWorkspace::undoTitle() const
{
    return m_removedPresetLast ? u"删除预设"_s : QString();
}

void StyleWorkspace::undo()
{
    m_model.stylePresets().restore();
}

QWidget *StyleWorkspace::makeControls()
{
    auto *const content = new QWidget(m_pages);
    m_look = new LookControls(m_model, content);
    m_controls = new StyleControls(m_model, content);
    m_document = new DocumentControls(m_model, content);
    auto *const layout = new QVBoxLayout(content);
    layout->setContentsMargins(0, 0, scrollBarRoom, 0);
    layout->setSpacing(4 * VELTheme::step);
    layout->addWidget(m_look);
    layout->addWidget(m_controls);
    layout->addWidget(m_document);
    layout->addStretch();
    m_scroll = Controls::scrolling(content, m_pages);
    for (OptionsForm *const form : {static_cast<OptionsForm *>(m_controls), static_cast<OptionsForm *>(m_document)}) {
        connect(form, &OptionsForm::previewed, this, [this](const Options &options) { preview(options); });
        connect(form, &OptionsForm::previewEnded, this, [this] { preview(std::nullopt); });
    }
    connect(m_controls, &StyleControls::fontRequested, this, &StyleWorkspace::openFonts);
    connect(m_look, &LookControls::requested, this, &StyleWorkspace::openTitles);
    return m_scroll;
}

QWidget *StyleWorkspace::makeFontPage()
{
    m_fonts = new FontPicker(m_catalogue, m_model.preferences(), m_pages);
    connect(m_fonts, &FontPicker::previewed, this,
            [this](const QString &family, const QString &face) { preview(withFont(family, face)); });
    connect(m_fonts, &FontPicker::chosen, this, &StyleWorkspace::chooseFont);
    connect(m_fonts, &FontPicker::left, this, &StyleWorkspace::leaveFonts);
    return m_fonts;
}

QWidget *StyleWorkspace::makeTitlePage()
{
    m_titles = new TitlePicker(m_model, m_pages);
    connect(m_titles, &TitlePicker::previewed, this, &StyleWorkspace::previewLook);
    connect(m_titles, &TitlePicker::chosen, this, [this](const TitleTemplate &look) {
        m_model.setLook(look);
        leaveTitles();
    });
    connect(m_titles, &TitlePicker::left, this, &StyleWorkspace::leaveTitles);
    return m_titles;
}

void StyleWorkspace::present()
{
    if (isVisible())
        return;
    // Each time, for fonts come and go while the program runs; what is known of the others is kept.
    if (!m_isLoadingFonts) {
        m_isLoadingFonts = true;
        m_catalogue.load();
    }
    m_pages->setCurrentWidget(m_scroll);
    followLook();
    open(firstControl());
    arrange();
}

void StyleWorkspace::showCue(std::optional<qsizetype> cue)
{
    m_cue = cue;
    showTitle();
}

void StyleWorkspace::showTitle()
{
    if (!isVisible())
        return;
    const QList<Subtitle> &cues = m_model.items();
    const QString text = m_cue && *m_cue < cues.size() ? cues.at(*m_cue).text : QString();
    m_stage->preview().show(text.trimmed().isEmpty() ? sampleText() : text, m_pending.value_or(m_model.pictured()));
    const auto &look = m_model.look();
    const QString name = m_pending || !look ? m_pendingLook : look->name();
    m_stage->setCaveat(name.isEmpty() ? QString()
                                      : u"预览只画文字：“%1”的动画、图形与准确位置请在 FCP 里看"_s.arg(name));
}

void StyleWorkspace::preview(std::optional<Options> options)
{
    m_pending = std::move(options);
    m_pendingLook.clear();
    showTitle();
}

void StyleWorkspace::previewLook(const TitleTemplate &look)
{
    m_pending = TitleLooks::drawn(look, m_model.options());
    m_pendingLook = look.name();
    showTitle();
}

/// A title of the user's own brings its style with it.
void StyleWorkspace::followLook()
{
    m_controls->setVisible(!m_model.look());
    preview(std::nullopt);
}

QWidget *StyleWorkspace::firstControl() const
{
    return m_model.look() ? m_look->chooseButton() : m_controls->fontButton();
}

void StyleWorkspace::openTitles()
{
    m_pages->setCurrentWidget(m_titles);
    m_titles->begin();
}

void StyleWorkspace::leaveTitles()
{
    m_pages->setCurrentWidget(m_scroll);
    m_look->chooseButton()->setFocus(Qt::OtherFocusReason);
    m_model.ownTitles().close();
    preview(std::nullopt);
}

void StyleWorkspace::keyPressEvent(QKeyEvent *event)
{
    if (event->matches(QKeySequence::Undo))
        m_model.undo();
    else if (event->matches(QKeySequence::Redo))
        m_model.redo();
    else
        Sheet::keyPressEvent(event);
}

void StyleWorkspace::resizeEvent(QResizeEvent *event)
{
    Sheet::resizeEvent(event);
    arrange();
}

/// Where there is room, the controls stand beside the picture and the presets below it.
void StyleWorkspace::arrange()
{
    const bool isWide = width() >= widthForColumns;
    if (isWide == m_isWide && m_presets->parentWidget() != this)
        return;
    m_isWide = isWide;
    m_columns->setDirection(isWide ? QBoxLayout::LeftToRight : QBoxLayout::TopToBottom);
    m_columns->setSpacing(isWide ? 6 * VELTheme::step : VELTheme::step);
    m_columns->setStretch(0, isWide ? 1 : 4);
    m_columns->setStretch(2, isWide ? 0 : 5);
    m_rule->setVisible(!isWide);
    m_pages->setMinimumWidth(isWide ? controlsWidth : 0);
    m_pages->setMaximumWidth(isWide ? controlsWidth : QWIDGETSIZE_MAX);
    if (isWide)
        static_cast<QBoxLayout *>(m_stageColumn->layout())->addWidget(m_presets, 2);
    else
        static_cast<QBoxLayout *>(m_scroll->widget()->layout())->insertWidget(0, m_presets);
    m_presets->setForm(isWide ? PresetShelf::Form::grid : PresetShelf::Form::strip);
    m_presets->show();
}

Options StyleWorkspace::withFont(const QString &family, const QString &face) const
{
    Options options = m_model.options();
    options.font = family;
    options.fontFace = FontFaces::kept(face);
    return options;
}

void StyleWorkspace::openFonts()
{
    const Options &options = m_model.options();
    m_pages->setCurrentWidget(m_fonts);
    m_fonts->begin(options.font, FontFaces::shown(options.fontFace));
}

void StyleWorkspace::leaveFonts()
{
    m_pages->setCurrentWidget(m_scroll);
    m_controls->fontButton()->setFocus(Qt::OtherFocusReason);
    preview(std::nullopt);
}

void StyleWorkspace::chooseFont(const QString &family, const QString &face)
{
    m_model.setOptions(withFont(family, face));
    leaveFonts();
}
