#pragma once

#include "app/Lintora/controls/Sheet.h"
#include "app/fonts/FontCatalogue.h"
#include "app/model/LintoraModel.h"

class DocumentControls;
class FontPicker;
class LookControls;
class PresetShelf;
class QBoxLayout;
class QScrollArea;
class QStackedWidget;
class QuestionSheet;
class StyleControls;
class StyleStage;
class TitlePicker;

/// Where it is decided how titles look: a large picture of one, and beside or below it the controls, which it follows.
class StyleWorkspace : public Sheet
{
    Q_OBJECT

public:
    /// Where fonts come from, so that a test can have others.
    struct Fonts
    {
        QString indexFile;
        FontCatalogue::Source source;
    };

    static Fonts installedFonts();

    /// `model` must live as long as this. Fonts are not looked for before they are needed.
    StyleWorkspace(LintoraModel &model, QWidget *content, const Fonts &fonts = installedFonts());
    ~StyleWorkspace() override;

    void present();
    void showCue(std::optional<qsizetype> cue); ///< Its position in the selected track; absent: a sample is shown.

    QString undoTitle() const override;
    bool editsSession() const override { return true; }
    void undo() override;

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    QWidget *makeControls();
    QWidget *makeFontPage();
    QWidget *makeTitlePage();
    void arrange();
    void showTitle();
    void preview(std::optional<Options> options);
    void openFonts();
    void leaveFonts();
    void chooseFont(const QString &family, const QString &face);
    void openTitles();
    void leaveTitles();
    void previewLook(const TitleTemplate &look);
    void followLook();
    QWidget *firstControl() const;
    Options withFont(const QString &family, const QString &face) const;

    LintoraModel &m_model;
    FontCatalogue m_catalogue;
    QBoxLayout *m_columns;
    QWidget *m_stageColumn = nullptr;
    QWidget *m_rule = nullptr; ///< Between the picture and what is scrolled below it.
    StyleStage *m_stage = nullptr;
    QStackedWidget *m_pages = nullptr;
    QScrollArea *m_scroll = nullptr;
    LookControls *m_look = nullptr;
    StyleControls *m_controls = nullptr;
    DocumentControls *m_document = nullptr;
    FontPicker *m_fonts = nullptr;
    TitlePicker *m_titles = nullptr;
    QuestionSheet *m_questions = nullptr;
    PresetShelf *m_presets = nullptr;
    std::optional<qsizetype> m_cue;
    std::optional<Options> m_pending; ///< What is looked at and not chosen yet.
    QString m_pendingLook;            ///< The name of the look that is looked at; empty for none.
    bool m_isWide = false;
    bool m_isLoadingFonts = false;
    bool m_removedPresetLast = false; ///< Whether no change of the session came after that of a preset.
};
