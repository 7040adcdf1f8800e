#include "app/Lintora/ai/ModelRow.h"

#include "app/Lintora/controls/BusyBar.h"
#include "app/Lintora/controls/Controls.h"
#include "app/Lintora/controls/DurationText.h"
#include "app/Lintora/controls/ElidedLabel.h"
#include "core/ByteCount.h"

#include <QDesktopServices>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QMenu>
#include <QVBoxLayout>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

using Work = ModelDownloads::Work;

ElidedLabel *smallLabel(QWidget *parent)
{
    auto *const label = new ElidedLabel(parent);
    label->setFont(VELTheme::smallFont());
    label->setProperty("secondary", true);
    return label;
}

} // namespace

ModelRow::ModelRow(LintoraModel &model, QString id, QWidget *parent)
    : QWidget(parent)
    , m_model(model)
    , m_id(std::move(id))
    , m_title(new QLabel(this))
    , m_summary(smallLabel(this))
    , m_status(smallLabel(this))
    , m_bar(new BusyBar(this))
    , m_action(Controls::button({}, this))
    , m_cancel(Controls::quietButton(u"取消"_s, this))
    , m_more(Controls::signButton(VELTheme::Glyph::more, u"更多"_s, this))
{
    m_title->setText(row().model.title);
    m_summary->setText(row().model.summary);
    m_summary->setVisible(!row().model.summary.isEmpty());
    m_status->setAccessibleName(row().model.title + u" 状态"_s);
    m_cancel->setAccessibleName(u"取消 "_s + row().model.title);
    m_cancel->setToolTip(u"停止下载，删除已下载的部分"_s);
    m_more->setAccessibleName(row().model.title + u" 更多"_s);
    m_more->setPopupMode(QToolButton::InstantPopup);
    m_more->installEventFilter(this); // which opens the menu by the keyboard
    m_more->setMenu(new QMenu(m_more));
    m_bar->setMinimumWidth(0);
    m_bar->setMaximumWidth(QWIDGETSIZE_MAX);
    m_bar->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);

    auto *const texts = new QVBoxLayout;
    texts->setSpacing(2);
    texts->addWidget(m_title);
    texts->addWidget(m_summary);
    texts->addWidget(m_status);
    texts->addWidget(m_bar);
    auto *const layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, VELTheme::step, 0, VELTheme::step);
    layout->setSpacing(VELTheme::gap);
    layout->addLayout(texts, 1);
    layout->addWidget(m_cancel);
    layout->addWidget(m_action);
    layout->addWidget(m_more);

    connect(m_action, &QPushButton::clicked, this, &ModelRow::act);
    connect(m_cancel, &QPushButton::clicked, &model.modelDownloads(), &ModelDownloads::discard);
    connect(m_more->menu(), &QMenu::aboutToShow, this, &ModelRow::offer);
    connect(&model.modelDownloads(), &ModelDownloads::rowsChanged, this, &ModelRow::follow);
    connect(&model.modelDownloads(), &ModelDownloads::paceChanged, this, &ModelRow::followPace);
    connect(&model.aiSettings(), &AISettings::choicesChanged, this, &ModelRow::follow);
    follow();
}

bool ModelRow::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::KeyPress && static_cast<const QKeyEvent *>(event)->key() == Qt::Key_Down) {
        m_more->showMenu();
        return true;
    }
    return QWidget::eventFilter(watched, event);
}

const ModelDownloads::Row &ModelRow::row() const
{
    const QList<ModelDownloads::Row> &rows = m_model.modelDownloads().rows();
    return *std::ranges::find_if(rows, [&](const ModelDownloads::Row &each) { return each.model.id == m_id; });
}

/// Whether recognition works with it. Of the other kind there is only one.
bool ModelRow::isChosen() const
{
    const AIChoices &choices = m_model.aiSettings().choices();
    return choices.aiSpeechModelFile.isEmpty() && LocalModels::speechModel(choices.aiSpeechModelID).id == m_id;
}

bool ModelRow::isRunning() const
{
    const auto &running = m_model.modelDownloads().running();
    return running && running->id == m_id;
}

void ModelRow::act()
{
    ModelDownloads &downloads = m_model.modelDownloads();
    if (isRunning()) {
        downloads.pause();
    } else if (!row().isReady) {
        downloads.download(m_id);
    } else {
        AIChoices choices = m_model.aiSettings().choices();
        choices.aiSpeechModelID = m_id;
        choices.aiSpeechModelFile.clear();
        m_model.aiSettings().choose(choices);
    }
}

void ModelRow::offer()
{
    QMenu &menu = *m_more->menu();
    menu.clear();
    const bool isFree = !m_model.modelDownloads().running();
    ModelDownloads &downloads = m_model.modelDownloads();
    menu.addAction(u"校验"_s, &downloads, [this, &downloads] { downloads.verify(m_id); })
        ->setEnabled(isFree && row().isReady);
    menu.addAction(u"在文件夹中显示"_s, this,
                   [] { QDesktopServices::openUrl(QUrl::fromLocalFile(LocalModels::directory())); })
        ->setEnabled(row().isThere || row().arrivedBytes > 0);
    menu.addSeparator();
    menu.addAction(u"删除…"_s, this, &ModelRow::removalRequested)
        ->setEnabled(isFree && (row().isThere || row().arrivedBytes > 0));
}

void ModelRow::follow()
{
    const ModelDownloads &downloads = m_model.modelDownloads();
    const bool isSpeech = row().model != LocalModels::translation();
    const bool isDownloading = downloads.aiDownloadingModelID() == m_id;
    QString action = u"下载"_s;
    if (isRunning())
        action = isDownloading ? u"暂停"_s : u"停止"_s;
    else if (row().isReady)
        action = isChosen() ? u"使用中"_s : u"选用"_s;
    else if (row().arrivedBytes > 0)
        action = u"继续下载"_s;
    m_action->setText(action);
    m_action->setAccessibleName(action + u' ' + row().model.title);
    const bool isUsable = row().isReady ? isSpeech && !isChosen() : !downloads.running();
    m_action->setEnabled(isRunning() || isUsable);
    m_action->setVisible(isSpeech || !row().isReady || isRunning());
    m_cancel->setVisible(isDownloading);
    m_bar->setVisible(isRunning());
    Controls::showAsFailure(m_status, row().isThere && !row().isReady && !isRunning());
    followPace();
}

void ModelRow::followPace()
{
    const ModelDownloads &downloads = m_model.modelDownloads();
    QString status = row().status;
    if (isRunning() && downloads.running()->work != Work::download)
        status = downloads.running()->work == Work::verification ? u"正在校验模型…"_s : u"正在删除…"_s;
    if (downloads.aiDownloadingModelID() == m_id) {
        status = u"%1 / %2"_s.arg(ByteCount::text(row().arrivedBytes), row().model.sizeLabel());
        if (const auto &pace = downloads.pace(); pace && row().arrivedBytes < row().model.bytes) {
            status += u" · %1/秒"_s.arg(ByteCount::text(pace->bytesPerSecond));
            if (pace->leftMS)
                status += u" · "_s + DurationText::left(*pace->leftMS);
        }
        const bool isWhole = row().arrivedBytes >= row().model.bytes;
        m_bar->setShare(isWhole ? std::nullopt : std::optional(double(row().arrivedBytes) / double(row().model.bytes)));
        if (isWhole)
            status = u"正在校验模型…"_s;
    } else {
        m_bar->setShare(std::nullopt);
    }
    m_status->setText(status);
}
