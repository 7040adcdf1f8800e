#pragma once

#include "app/model/LintoraModel.h"

#include <QWidget>

class ElidedLabel;

/// Offers, once languages are separated, to set their titles above each other: dragged one after the other they would
/// lie on top of each other. Hidden when they do not, or when it was declined.
class HeightBar : public QWidget
{
    Q_OBJECT

public:
    /// `model` must live as long as this. Before anything is done `mayAct` is asked.
    HeightBar(LintoraModel &model, std::function<bool()> mayAct, QWidget *parent = nullptr);

Q_SIGNALS:
    void keyboardFreed(); ///< A button that has the keyboard is about to go.

private:
    void follow();

    LintoraModel &m_model;
    std::optional<QUuid> m_declined; ///< For that original, as long as it is separated.
};
