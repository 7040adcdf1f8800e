#pragma once

#include "app/model/LintoraModel.h"

#include <QWidget>

class ElidedLabel;
class QLabel;

/// The project that was taken in, which titles are matched to and can be written into, and a way to let it go. Hidden
/// without one.
class ProjectTag : public QWidget
{
    Q_OBJECT

public:
    /// `model` must live as long as this.
    explicit ProjectTag(LintoraModel &model, QWidget *parent = nullptr);

Q_SIGNALS:
    void keyboardFreed(); ///< Its button has the keyboard, and is about to go.

private:
    void follow();

    LintoraModel &m_model;
    ElidedLabel *m_name;
    QLabel *m_facts; ///< Rate and size.
};
