#pragma once

#include "app/model/LintoraModel.h"

#include <QObject>

class QDropEvent;
class QWidget;

/// Lets files, and documents dragged out of Final Cut Pro, be dropped onto a widget, and hands them to the model.
///
/// Cards of our own are not taken: what they carry comes from here.
class MaterialDrop : public QObject
{
    Q_OBJECT

public:
    /// Belongs to `area`. `model` must live as long.
    MaterialDrop(QWidget &area, LintoraModel &model);

    bool isHovering() const { return m_hovering; } ///< Whether something that can be taken is held over the area.

    bool eventFilter(QObject *watched, QEvent *event) override;

Q_SIGNALS:
    void hoveringChanged();

private:
    void hover(QDropEvent &event);
    void drop(QDropEvent &event);
    void setHovering(bool hovering);
    bool canTake(const QMimeData &pasteboard) const;

    LintoraModel &m_model;
    bool m_hovering = false;
};
