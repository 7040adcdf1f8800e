#include "app/Lintora/cues/Inspector.h"

#include "app/Lintora/controls/ElidedLabel.h"
#include "app/Lintora/controls/Theme.h"
#include "app/Lintora/cues/TitlePreview.h"

#include <QHBoxLayout>
#include <QVBoxLayout>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

constexpr int lowest = 22 * VELTheme::step;
constexpr int highest = 40 * VELTheme::step;

} // namespace

namespace CueNumbers {

QString summary(const Subtitle &cue)
{
    const double seconds = double(cue.end - cue.start) / 1000.0;
    const CueWarnings::Read read = CueWarnings::readCharacters(cue.text);
    const auto counted = [&](qint64 characters, const QString &unit) {
        const QString speed = seconds > 0 ? QString::number(double(characters) / seconds, 'f', 1) : u"–"_s;
        // Both in one line leave no room to say everything twice.
        const QString form = read.chinese > 0 && read.latin > 0 ? u" · %1 %2 %3/秒"_s : u" · %1 %2 · %3 %2/秒"_s;
        return form.arg(QString::number(characters), unit, speed);
    };
    QString numbers = u"时长 %1 s"_s.arg(QString::number(seconds, 'f', 1));
    if (read.chinese > 0 || read.latin == 0)
        numbers += counted(read.chinese, u"字"_s);
    if (read.latin > 0)
        numbers += counted(read.latin, u"字符"_s);
    return numbers;
}

QString gap(const Subtitle &cue, const Subtitle *next, const FrameRate &rate)
{
    if (!next)
        return u"最后一条"_s;
    const auto end = rate.frame(cue.end);
    const auto start = rate.frame(next->start);
    if (!end || !start)
        return {};
    const qint64 frames = *start - *end;
    return frames >= 0 ? u"下一条间隔 %1 帧"_s.arg(frames) : u"与下一条重叠 %1 帧"_s.arg(-frames);
}

} // namespace CueNumbers

Inspector::Inspector(LintoraModel &model, CueTableModel &cues, QWidget *parent)
    : QWidget(parent)
    , m_model(model)
    , m_cues(cues)
    , m_preview(new TitlePreview(this))
    , m_numbers(new ElidedLabel(this))
    , m_gap(new ElidedLabel(this))
    , m_warnings(new ElidedLabel(this))
{
    setMinimumHeight(lowest);
    setMaximumHeight(highest);
    m_gap->setProperty("secondary", true);
    for (ElidedLabel *const label : {m_gap, m_warnings})
        label->setFont(VELTheme::smallFont());
    m_numbers->setAccessibleName(u"所选字幕"_s);
    m_warnings->setAccessibleName(u"提醒"_s);

    auto *const words = new QVBoxLayout;
    words->setSpacing(VELTheme::step);
    words->addWidget(m_numbers);
    words->addWidget(m_gap);
    words->addWidget(m_warnings);
    words->addStretch();
    auto *const layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(3 * VELTheme::step);
    layout->addWidget(m_preview);
    layout->addLayout(words, 1);

    connect(&cues, &CueTableModel::changed, this, &Inspector::update);
    connect(&model, &LintoraModel::picturedChanged, this, &Inspector::update);
    update();
}

void Inspector::show(std::optional<int> cue)
{
    m_cue = cue;
    update();
}

/// A title is wide: so is the room for its picture.
void Inspector::shapePreview()
{
    m_preview->setFixedWidth(std::max(1, width() / 2));
}

void Inspector::resizeEvent(QResizeEvent * /*event*/)
{
    shapePreview();
}

void Inspector::showPicture(const QImage &picture, qint64 ms)
{
    m_picture = picture;
    m_pictureMS = ms;
    const bool isCue = m_cue && *m_cue < m_cues.rowCount();
    updatePreview(isCue ? &m_cues.cue(*m_cue) : nullptr);
}

void Inspector::setPlaying(bool isPlaying)
{
    m_isPlaying = isPlaying;
    showPicture(m_picture, m_pictureMS);
}

void Inspector::updatePreview(const Subtitle *cue)
{
    // Where a cue was played to its end, it stays in sight.
    const bool isThen = cue && cue->start <= m_pictureMS && m_pictureMS <= cue->end;
    const bool hasPicture = !m_picture.isNull() && (isThen || m_isPlaying || !cue);
    m_preview->setBackdrop(hasPicture ? m_picture : QImage());
    m_preview->show(cue && (isThen || !hasPicture) ? cue->text : QString(), m_model.pictured());
}

void Inspector::update()
{
    if (!m_cue || *m_cue >= m_cues.rowCount()) {
        m_numbers->setText(u"选中一条字幕，查看时长与画面"_s);
        m_gap->clear();
        m_warnings->clear();
        updatePreview(nullptr);
        return;
    }
    const Subtitle &cue = m_cues.cue(*m_cue);
    const Subtitle *const next = *m_cue + 1 < m_cues.rowCount() ? &m_cues.cue(*m_cue + 1) : nullptr;
    m_numbers->setText(CueNumbers::summary(cue));
    m_gap->setText(CueNumbers::gap(cue, next, m_model.options().rate));
    const QString warnings = m_cues.index(*m_cue, 0).data(CueTableModel::warningsRole).toStringList().join(u" · "_s);
    m_warnings->setText(warnings);
    QPalette palette = m_warnings->palette();
    palette.setColor(QPalette::WindowText, VELTheme::colors(*this).warning);
    m_warnings->setPalette(palette);
    updatePreview(&cue);
}
