#pragma once

#include "app/Lintora/controls/Sheet.h"
#include "app/model/LintoraModel.h"

class QLabel;
class QPlainTextEdit;

/// Where a person's own terms are edited, imported and exported.
class GlossarySheet : public Sheet
{
    Q_OBJECT

public:
    /// `model` must live as long as this.
    GlossarySheet(LintoraModel &model, QWidget *content);

    void present(); ///< Opens with the terms that are kept.

    QString undoTitle() const override;
    QString redoTitle() const override;
    void undo() override;
    void redo() override;

private:
    QWidget *makeButtons();
    void showTerms();
    void save();
    void importTerms();
    void exportTerms();
    void setNote(const QString &note, bool isFailure);

    LintoraModel &m_model;
    QPlainTextEdit *m_text;
    QLabel *m_note;
    QString m_kept; ///< The text as it was shown or saved last.
};
