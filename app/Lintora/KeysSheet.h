#pragma once

#include "app/Lintora/controls/Sheet.h"
#include "app/model/LintoraModel.h"

class QScrollArea;

/// What every key does, on one page: those of the menus, as they stand there, and those of the table.
class KeysSheet : public Sheet
{
    Q_OBJECT

public:
    /// `model` must live as long as this.
    KeysSheet(LintoraModel &model, QWidget *content);

    void present();

private:
    void list();

    LintoraModel &m_model;
    QScrollArea *m_area;
};
