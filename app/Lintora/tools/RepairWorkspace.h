#pragma once

#include "app/Lintora/controls/Sheet.h"
#include "app/model/LintoraModel.h"

#include <QStringListModel>

class ChoiceBox;
class ElidedLabel;
class QLabel;
class QListView;
class QPushButton;

/// A damaged or foreign subtitle file before it is opened: its encoding to choose by a sample, and what would be done
/// to it, cue by cue.
class RepairWorkspace : public Sheet
{
    Q_OBJECT

public:
    /// `model` must live as long as this.
    RepairWorkspace(LintoraModel &model, QWidget *content);

    void present();

private:
    QWidget *makeButtons();
    void follow();
    void listEncodings(const RepairedFile &file);

    FileRepairing &m_repairing;
    QLabel *m_name;
    ChoiceBox *m_encoding;
    QLabel *m_sample;
    QStringListModel m_lines;
    QListView *m_list;
    ElidedLabel *m_status;
    QPushButton *m_open;
};
