#pragma once

#include "app/Lintora/controls/Sheet.h"
#include "app/model/LintoraModel.h"

class QLabel;
class QPlainTextEdit;

/// Where the list of filler words is edited.
class CleanupWorkspace : public Sheet
{
    Q_OBJECT

public:
    /// `model` must live as long as this.
    CleanupWorkspace(LintoraModel &model, QWidget *content);

    void present(); ///< Opens with the list that is kept.

    QString undoTitle() const override;
    QString redoTitle() const override;
    void undo() override;
    void redo() override;

private:
    void restoreDefaults();
    void save();
    void setNote(const QString &note, bool isFailure);

    LintoraModel &m_model;
    QPlainTextEdit *m_text;
    QLabel *m_note;
    QString m_kept; ///< The text as it was shown or saved last.
};
