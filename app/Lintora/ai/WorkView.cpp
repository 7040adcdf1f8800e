#include "app/Lintora/ai/WorkView.h"

#include "app/Lintora/controls/BusyBar.h"
#include "app/Lintora/controls/Controls.h"
#include "app/Lintora/controls/DurationText.h"
#include "app/Lintora/controls/ElidedLabel.h"

#include <QHBoxLayout>
#include <QTimerEvent>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

WorkView::WorkView(const AIWork &work, QWidget *parent)
    : QWidget(parent)
    , m_work(work)
    , m_past(Controls::note({}, this))
    , m_now(new ElidedLabel(this))
    , m_times(new ElidedLabel(this))
    , m_bar(new BusyBar(this))
{
    m_past->setAccessibleName(u"已完成的步骤"_s);
    m_now->setAccessibleName(u"正在进行"_s);
    m_times->setAccessibleName(u"用时"_s);
    m_times->setFont(VELTheme::smallFont());
    m_times->setProperty("secondary", true);
    m_bar->setMinimumWidth(0);
    m_bar->setMaximumWidth(QWIDGETSIZE_MAX);
    m_bar->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    QPushButton *const cancel = Controls::button(u"取消"_s, this, u"停止，字幕保持原样"_s);
    setFocusProxy(cancel);
    connect(cancel, &QPushButton::clicked, this, &WorkView::cancelRequested);

    auto *const last = new QHBoxLayout;
    last->setSpacing(VELTheme::gap);
    last->addWidget(m_times, 1);
    last->addWidget(cancel);
    auto *const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(VELTheme::gap);
    layout->addWidget(m_past);
    layout->addWidget(m_now);
    layout->addWidget(m_bar);
    layout->addLayout(last);
    connect(&work, &AIWork::changed, this, &WorkView::follow);
    follow();
}

void WorkView::follow()
{
    const QList<WorkStages::Stage> &stages = m_work.stages().all();
    QStringList past;
    for (const WorkStages::Stage &stage : stages) {
        if (stage.endedMS)
            past += u"%1   %2"_s.arg(stage.what, DurationText::taken(*stage.endedMS - stage.beganMS));
    }
    m_past->setText(past.join(u'\n'));
    m_past->setVisible(!past.isEmpty());
    m_now->setText(m_work.aiStatus());
    m_bar->setShare(m_work.stages().progress().share);
    showTimes();
}

void WorkView::showTimes()
{
    const qint64 elapsedMS = m_work.elapsedMS();
    QString times = u"已用 "_s + DurationText::taken(elapsedMS);
    if (const auto leftMS = m_work.stages().leftMS(elapsedMS))
        times += u" · 这一步"_s + DurationText::left(*leftMS);
    m_times->setText(times);
}

void WorkView::timerEvent(QTimerEvent *event)
{
    if (event->timerId() == m_timer.timerId())
        showTimes();
}

void WorkView::showEvent(QShowEvent * /*event*/)
{
    constexpr int second = 1'000; // milliseconds
    m_timer.start(second, this);
}

void WorkView::hideEvent(QHideEvent * /*event*/)
{
    m_timer.stop();
}
