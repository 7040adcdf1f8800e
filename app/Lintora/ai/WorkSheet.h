#pragma once

#include "app/Lintora/controls/Sheet.h"
#include "app/model/LintoraModel.h"

class FieldRow;
class QLabel;
class QPushButton;
class WorkView;

/// A sheet in which work that owns the cues is set up, started and watched. The work goes on when the sheet is closed;
/// what comes of it closes the sheet, for then the cues are what is to be looked at.
class WorkSheet : public Sheet
{
    Q_OBJECT

public:
    void present(); ///< Opens with the keyboard on what there is to be done next.

protected:
    struct Texts
    {
        QString heading;
        QString about; ///< What comes of it, in a sentence.
        QString start; ///< On the button.
        QString going; ///< While it goes on.
    };

    /// `model` must live as long as this.
    WorkSheet(LintoraModel &model, QWidget *content, const Texts &texts);

    LintoraModel &model() const { return m_model; }
    QWidget *form() const { return m_form; } ///< All that is chosen before. Its layout takes the rows.
    QPushButton *startButton() const { return m_start; }

    FieldRow *addRow(const QString &name);

    void change(const std::function<void(AIChoices &)> &change); ///< Of what a person chose, kept between runs.
    void closeWhenDone();                                        ///< To be told when the work has come to something.

    virtual bool isRunning() const = 0; ///< Whether the work under way is this sheet's.
    virtual bool canStart() const = 0;  ///< As long as the cues have no owner.
    virtual void showChoices() = 0;
    virtual WindowState::AISettingsTab settingsTab() const = 0; ///< Where the one who is to do it is set up.

    void follow(); ///< To be called whenever one of these may answer otherwise.

private:
    QWidget *makeFooter();
    void takeKeyboard();

    LintoraModel &m_model;
    QString m_going;
    QWidget *m_form;
    WorkView *m_work;
    QLabel *m_note;
    QPushButton *m_start;
};
