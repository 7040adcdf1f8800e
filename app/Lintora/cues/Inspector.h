#pragma once

#include "app/Lintora/cues/CueTableModel.h"

#include <QWidget>

class ElidedLabel;
class TitlePreview;

/// What there is to know about one cue: its picture, its numbers, and what to look at again.
class Inspector : public QWidget
{
    Q_OBJECT

public:
    /// Both must live as long as this.
    Inspector(LintoraModel &model, CueTableModel &cues, QWidget *parent = nullptr);

    void show(std::optional<int> cue); ///< Absent: none.

    /// What is to be seen of the medium at that time; null: nothing. The cue's title lies over it where the cue is
    /// shown then. Where it is not, the picture is seen alone while the medium plays, and the title alone while it
    /// stands.
    void showPicture(const QImage &picture, qint64 ms);
    void setPlaying(bool isPlaying);

protected:
    void resizeEvent(QResizeEvent *event) override;

private:
    void update();
    void updatePreview(const Subtitle *cue);
    void shapePreview();

    LintoraModel &m_model;
    CueTableModel &m_cues;
    std::optional<int> m_cue;
    QImage m_picture; ///< Of the medium at ...
    qint64 m_pictureMS = 0;
    bool m_isPlaying = false;
    TitlePreview *m_preview;
    ElidedLabel *m_numbers;
    ElidedLabel *m_gap;
    ElidedLabel *m_warnings;
};

/// The numbers of a cue in words.
namespace CueNumbers {

QString summary(const Subtitle &cue); ///< "时长 1.5 s · 12 字 · 8.0 字/秒", and 字符 for lines of Latin.
QString gap(const Subtitle &cue, const Subtitle *next, const FrameRate &rate); ///< "下一条间隔 0 帧"

} // namespace CueNumbers
