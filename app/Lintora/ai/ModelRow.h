#pragma once

#include "app/model/LintoraModel.h"

#include <QWidget>

class BusyBar;
class ElidedLabel;
class QLabel;
class QMenu;
class QPushButton;
class QToolButton;

/// A model of the catalog: whether it is there, and what can be done about it.
class ModelRow : public QWidget
{
    Q_OBJECT

public:
    /// `model` must live as long as this. `id` is the catalog's.
    ModelRow(LintoraModel &model, QString id, QWidget *parent = nullptr);

    QPushButton *action() const { return m_action; }

Q_SIGNALS:
    void removalRequested(); ///< To be confirmed.

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    const ModelDownloads::Row &row() const;
    bool isChosen() const;
    bool isRunning() const;
    void act();
    void offer();
    void follow();
    void followPace();

    LintoraModel &m_model;
    QString m_id;
    QLabel *m_title;
    ElidedLabel *m_summary;
    ElidedLabel *m_status;
    BusyBar *m_bar;
    QPushButton *m_action;
    QPushButton *m_cancel;
    QToolButton *m_more;
};
