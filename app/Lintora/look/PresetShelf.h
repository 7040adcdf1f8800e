#pragma once

#include "app/Lintora/look/PresetListModel.h"
#include "app/model/LintoraModel.h"

#include <QWidget>

class QListView;
class QPushButton;
class QuestionSheet;

/// The style presets as pictures, and what can be done with them.
class PresetShelf : public QWidget
{
    Q_OBJECT

public:
    enum class Form
    {
        strip, ///< One row, moved sideways.
        grid   ///< As many rows as there is room for.
    };

    /// `model` must live as long as this. Questions are asked on `questions`.
    PresetShelf(LintoraModel &model, QuestionSheet &questions, QWidget *parent = nullptr);

    void setForm(Form form);

protected:
    void resizeEvent(QResizeEvent *event) override;

private:
    QWidget *makeActions();
    std::optional<SubtitleStylePreset> selected() const;
    void apply();
    void askForName();
    void save(const QString &name);
    void rename();
    void remove();
    void update();
    void followPresets();
    void fit();

    LintoraModel &m_model;
    QuestionSheet &m_questions;
    PresetListModel m_presets;
    Form m_form = Form::strip;
    QPushButton *m_apply;
    QPushButton *m_rename;
    QPushButton *m_remove;
    QPushButton *m_restore;
    QPushButton *m_save;
    QListView *m_list;
    QWidget *m_empty;
    QUuid m_selected;
    QString m_savedName; ///< The name saved under last: its preset is selected once it is there.
};
