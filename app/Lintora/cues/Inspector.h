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

protected:
    void resizeEvent(QResizeEvent *event) override;

private:
    void update();
    void shapePreview();

    LintoraModel &m_model;
    CueTableModel &m_cues;
    std::optional<int> m_cue;
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
