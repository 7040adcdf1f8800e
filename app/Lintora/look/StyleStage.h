#pragma once

#include "app/Lintora/look/StylePreview.h"
#include "app/model/BackgroundTask.h"
#include "app/model/FileDialogs.h"

class CheckBox;
class ElidedLabel;
class QPushButton;

/// The preview with what belongs to it: what stands behind the title, the guides, how large it is shown, and a line for
/// what is to be known about it.
class StyleStage : public QWidget
{
    Q_OBJECT

public:
    explicit StyleStage(FileDialogs dialogs, QWidget *parent = nullptr);

    StylePreview &preview() { return *m_preview; }

    /// What the preview cannot show; empty when it shows all there is.
    void setCaveat(const QString &sentence);

    /// Puts the picture in the file at `path` behind the title, when it has been read.
    void loadStill(const QString &path);

private:
    QWidget *makeTools();
    QPushButton *addBackdrop(const QString &name, TitleBackdrop::Kind kind);
    void chooseStill();
    void takeStill(const QImage &still);
    void setRefusal(const QString &sentence);
    void followRemark();

    FileDialogs m_dialogs;
    StylePreview *m_preview;
    QList<QPushButton *> m_backdrops;
    QPushButton *m_still;
    ElidedLabel *m_remark;
    QString m_caveat;
    QString m_refusal; ///< Why there is no still; empty when none was refused.
    BackgroundTask m_reading{BackgroundTask::Order::newestOnly};
};
