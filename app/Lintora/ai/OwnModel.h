#pragma once

#include "app/model/LintoraModel.h"

#include <QWidget>

class ElidedLabel;
class QPushButton;

/// A model file of the person's own that stands in for the catalog's.
class OwnModel : public QWidget
{
    Q_OBJECT

public:
    /// The path is kept in `field`, files end with `extension`. `model` must live as long as this.
    OwnModel(LintoraModel &model, QString AIChoices::*field, const QString &extension, QWidget *parent = nullptr);

private:
    void choose(const QString &path);
    void follow();

    LintoraModel &m_model;
    QString AIChoices::*m_field;
    ElidedLabel *m_file;
    QPushButton *m_leave;
};
