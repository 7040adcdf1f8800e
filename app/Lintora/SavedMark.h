#pragma once

#include "app/model/LintoraModel.h"

#include <QWidget>

/// Whether all that was changed is saved: a small sign, and a sentence under the pointer.
class SavedMark : public QWidget
{
    Q_OBJECT

public:
    /// `model` must live as long as this.
    explicit SavedMark(LintoraModel &model, QWidget *parent = nullptr);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    void follow();

    LintoraModel &m_model;
};
