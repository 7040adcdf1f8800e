#pragma once

#include "app/model/LintoraModel.h"

#include <QWidget>

class QVBoxLayout;

/// The files that were opened of late and the subtitles whose place others have taken, to be brought back by a click.
/// Hidden while there are none.
class RecentList : public QWidget
{
    Q_OBJECT

public:
    /// `model` must live as long as this.
    explicit RecentList(LintoraModel &model, QWidget *parent = nullptr);

private:
    void follow();

    LintoraModel &m_model;
    QVBoxLayout *m_rows;
};
