#include "app/Lintora/look/StyleStage.h"

#include "app/Lintora/controls/CheckBox.h"
#include "app/Lintora/controls/Controls.h"
#include "app/Lintora/controls/ElidedLabel.h"
#include "core/ConversionError.h"

#include <QFile>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QImageReader>
#include <QStyle>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace {

/// Pixels along the longer side that are kept of a still: more is not seen in the preview.
constexpr int longestSide = 2560;

/// A file that cannot be read any further once its job is cancelled: the decoders read piece by piece.
class StillFile : public QFile
{
public:
    StillFile(const QString &path, Job &job)
        : QFile(path)
        , m_job(job)
    {}

protected:
    qint64 readData(char *data, qint64 room) override { return m_job.isCancelled() ? -1 : QFile::readData(data, room); }

private:
    Job &m_job;
};

/// Blocks, and belongs on a worker. @throws ConversionError when there is no picture in the file.
QImage readStill(const QString &path, Job &job)
{
    StillFile file(path, job);
    file.open(QIODevice::ReadOnly);
    QImageReader reader(&file);
    reader.setAutoTransform(true);
    reader.setDecideFormatFromContent(true);
    const QSize size = reader.size();
    if (size.isValid() && std::max(size.width(), size.height()) > longestSide)
        reader.setScaledSize(size.scaled(longestSide, longestSide, Qt::KeepAspectRatio));
    const QImage still = reader.read();
    job.check();
    if (still.isNull())
        throw ConversionError(u"“%1”不是可用的图片，背景没有更换。"_s.arg(QFileInfo(path).fileName()));
    return still.convertToFormat(QImage::Format_ARGB32_Premultiplied);
}

} // namespace

StyleStage::StyleStage(FileDialogs dialogs, QWidget *parent)
    : QWidget(parent)
    , m_dialogs(std::move(dialogs))
    , m_preview(new StylePreview(this))
    , m_remark(new ElidedLabel(this))
{
    m_remark->setFont(VELTheme::smallFont());
    m_remark->setAccessibleName(u"预览提示"_s);
    auto *const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(VELTheme::step);
    layout->addWidget(m_preview, 1);
    layout->addWidget(makeTools());
    layout->addWidget(m_remark);
    connect(m_preview, &StylePreview::remarkChanged, this, &StyleStage::followRemark);
}

QWidget *StyleStage::makeTools()
{
    auto *const tools = new QWidget(this);
    auto *const row = new QHBoxLayout(tools);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(VELTheme::step);
    auto *const label = new QLabel(u"背景"_s, tools);
    label->setProperty("secondary", true);
    label->setFont(VELTheme::smallFont());
    row->addWidget(label);
    row->addSpacing(VELTheme::step);
    for (QPushButton *const each :
         {addBackdrop(u"黑"_s, TitleBackdrop::Kind::black), addBackdrop(u"白"_s, TitleBackdrop::Kind::white),
          addBackdrop(u"灰阶"_s, TitleBackdrop::Kind::greys)})
        row->addWidget(each);
    m_still = addBackdrop(u"画面…"_s, TitleBackdrop::Kind::still);
    m_still->setToolTip(u"选一张画面截图作背景"_s);
    row->addWidget(m_still);
    auto *const guides = new CheckBox(u"安全区"_s, tools);
    guides->setAccessibleName(u"安全区"_s);
    guides->setToolTip(u"显示字幕安全区（实线）与动作安全区（虚线）"_s);
    guides->setChecked(true);
    connect(guides, &CheckBox::toggled, m_preview, &StylePreview::setGuidesVisible);
    QPushButton *const magnify = Controls::quietButton(u"放大"_s, tools);
    magnify->setToolTip(u"放大到三倍，细看字样"_s);
    magnify->setCheckable(true);
    connect(magnify, &QPushButton::toggled, m_preview, &StylePreview::setMagnified);
    row->addStretch();
    row->addWidget(guides);
    row->addWidget(magnify);
    m_backdrops.first()->setChecked(true);
    return tools;
}

QPushButton *StyleStage::addBackdrop(const QString &name, TitleBackdrop::Kind kind)
{
    QPushButton *const button = Controls::quietButton(name, this);
    button->setAccessibleName(u"背景：%1"_s.arg(name));
    button->setCheckable(true);
    m_backdrops += button;
    connect(button, &QPushButton::clicked, this, [this, button, kind] {
        if (kind == TitleBackdrop::Kind::still) {
            button->setChecked(m_preview->backdrop().kind == kind);
            chooseStill();
            return;
        }
        m_reading.cancel();
        for (QPushButton *const each : m_backdrops)
            each->setChecked(each == button);
        setRefusal({});
        m_preview->setBackdrop({.kind = kind});
    });
    return button;
}

void StyleStage::chooseStill()
{
    if (!m_dialogs.open)
        return;
    m_dialogs.open({.title = u"选择背景画面"_s,
                    .extensions = {u"png"_s, u"jpg"_s, u"jpeg"_s, u"webp"_s, u"bmp"_s, u"tif"_s, u"tiff"_s, u"gif"_s}},
                   [stage = QPointer(this)](const QString &path) {
                       if (stage)
                           stage->loadStill(path);
                   });
}

void StyleStage::loadStill(const QString &path)
{
    setRefusal({});
    m_reading.run(
        u"正在读取画面…"_s, [path](Job &job, const ProgressReport & /*report*/) { return readStill(path, job); },
        [this](const QImage &still) { takeStill(still); },
        [this](const Failure &failure) { setRefusal(failure.sentence); });
}

void StyleStage::takeStill(const QImage &still)
{
    for (QPushButton *const each : m_backdrops)
        each->setChecked(each == m_still);
    m_preview->setBackdrop({.kind = TitleBackdrop::Kind::still, .still = still});
}

void StyleStage::setCaveat(const QString &sentence)
{
    m_caveat = sentence;
    followRemark();
}

void StyleStage::setRefusal(const QString &sentence)
{
    m_refusal = sentence;
    followRemark();
}

void StyleStage::followRemark()
{
    const bool isFailure = !m_refusal.isEmpty();
    QStringList remarks{m_caveat, m_preview->remark()};
    remarks.removeAll(QString());
    m_remark->setText(isFailure ? m_refusal : remarks.join(u" · "_s));
    QPalette palette = m_remark->palette();
    const VELTheme::Colors &colors = VELTheme::colors(*this);
    palette.setColor(QPalette::WindowText, isFailure ? colors.failure : colors.warning);
    m_remark->setPalette(palette);
}
