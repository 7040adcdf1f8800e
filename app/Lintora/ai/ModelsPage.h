#pragma once

#include "app/model/LintoraModel.h"

#include <QWidget>

class ModelRow;
class OwnModel;
class TextField;

/// The models of the local engines: those of the catalog, a person's own, and where they are downloaded from.
class ModelsPage : public QWidget
{
    Q_OBJECT

public:
    /// `model` must live as long as this.
    explicit ModelsPage(LintoraModel &model, QWidget *parent = nullptr);

    QWidget *first() const; ///< What the keyboard goes to.

Q_SIGNALS:
    void removalRequested(const LocalModel &model); ///< To be confirmed.

private:
    void follow();

    LintoraModel &m_model;
    QList<ModelRow *> m_rows;
    TextField *m_hosts = nullptr;
};
