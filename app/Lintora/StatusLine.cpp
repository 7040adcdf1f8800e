#include "app/Lintora/StatusLine.h"

#include "app/Lintora/SavedMark.h"
#include "app/Lintora/controls/BusyBar.h"
#include "app/Lintora/controls/Controls.h"
#include "app/Lintora/controls/DurationText.h"
#include "app/Lintora/controls/ElidedLabel.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QStyle>

using namespace Qt::StringLiterals;

namespace {

QString sentence(const Progress &progress)
{
    return progress.leftMS ? progress.what + u" · "_s + DurationText::left(*progress.leftMS) : progress.what;
}

} // namespace

StatusLine::StatusLine(LintoraModel &model, QWidget *parent)
    : QWidget(parent)
    , m_model(model)
    , m_text(new ElidedLabel(this))
    , m_repair(Controls::button(u"修复并打开…"_s, this, u"查看将要做的修改，再决定是否打开"_s))
    , m_skip(Controls::button(u"跳过这些片段"_s, this))
    , m_titles(
          Controls::button({}, this, u"项目里已有的标题与说明字幕成为可编辑的字幕，原来的字幕保留在“最近的字幕”中"_s))
    , m_copy(Controls::signButton(VELTheme::Glyph::copy, u"复制出错信息"_s, this))
    , m_busy(new BusyBar(this))
    , m_cancel(Controls::quietButton(u"取消"_s, this))
{
    m_text->setFont(VELTheme::smallFont());
    m_text->setAccessibleName(u"状态"_s);
    m_text->setAlignment(Qt::AlignVCenter | Qt::AlignLeft);
    auto *const layout = new QHBoxLayout(this);
    layout->setContentsMargins(VELTheme::margin, 0, VELTheme::gap, 0);
    layout->setSpacing(VELTheme::gap);
    layout->addWidget(m_text, 1);
    layout->addWidget(m_repair);
    layout->addWidget(m_skip);
    layout->addWidget(m_titles);
    layout->addWidget(m_copy);
    layout->addWidget(m_busy);
    layout->addWidget(m_cancel);
    layout->addWidget(new SavedMark(model, this));
    setFixedHeight(VELTheme::controlHeight + 2 * VELTheme::step);

    connect(m_copy, &QToolButton::clicked, this, &StatusLine::copy);
    m_repair->setProperty("tight", true);
    connect(m_repair, &QPushButton::clicked, &model,
            [&model] { model.fileRepairing().show(model.fileRepairing().offered()); });
    connect(&model.fileRepairing(), &FileRepairing::offeredChanged, this, &StatusLine::update);
    connect(&model.fileRepairing(), &FileRepairing::shownChanged, this, &StatusLine::update);
    m_skip->setProperty("tight", true);
    connect(m_skip, &QPushButton::clicked, &model, [&model] { model.recognition().takeOffered(); });
    connect(&model.recognition(), &Recognition::offeredChanged, this, &StatusLine::update);
    m_titles->setProperty("tight", true);
    connect(m_titles, &QPushButton::clicked, &model, &LintoraModel::readProjectTitles);
    connect(&model.keptProject(), &KeptProject::offeredChanged, this, &StatusLine::update);
    connect(m_cancel, &QPushButton::clicked, &model, &LintoraModel::cancelActivity);
    connect(&model, &LintoraModel::messageChanged, this, &StatusLine::update);
    connect(&model, &LintoraModel::failureChanged, this, &StatusLine::update);
    connect(&model, &LintoraModel::activityChanged, this, &StatusLine::update);
    update();
}

QString StatusLine::text() const
{
    return m_text->text();
}

void StatusLine::update()
{
    const std::optional<Progress> activity = m_model.activity();
    const std::optional<QString> failure = m_model.failure();
    const QString doing = activity ? sentence(*activity) : QString();
    m_text->setText(failure.value_or(activity ? doing : m_model.message()));
    const bool canCopy = failure || (!activity && !m_model.messageDetail().isEmpty());
    m_text->setToolTip(canCopy ? detailedText() : QString());
    if (m_text->property("failure").toBool() != failure.has_value()) {
        m_text->setProperty("failure", failure.has_value());
        m_text->style()->unpolish(m_text);
        m_text->style()->polish(m_text);
    }
    // Before it goes by itself to whatever comes first in the window.
    if ((m_cancel->hasFocus() && !activity) || (m_copy->hasFocus() && !canCopy))
        Q_EMIT keyboardFreed();
    m_repair->setVisible(!m_model.fileRepairing().offered().isEmpty() && !m_model.fileRepairing().isShown());
    const std::optional<FCPAudioPlan> &offered = m_model.recognition().offeredTimeline();
    m_skip->setVisible(offered.has_value());
    m_skip->setToolTip(offered ? u"接入其余的音频，不含："_s + offered->unreadableNotice().value_or(QString())
                               : QString());
    const qsizetype titles = m_model.keptProject().offered();
    if (titles == 0 && m_titles->hasFocus())
        Q_EMIT keyboardFreed();
    m_titles->setVisible(titles > 0);
    m_titles->setText(u"读取其中的 %1 条字幕"_s.arg(titles));
    m_titles->setAccessibleName(m_titles->text());
    m_copy->setVisible(canCopy);
    m_copy->setAccessibleName(failure ? u"复制出错信息"_s : u"复制详情"_s);
    m_copy->setToolTip(m_copy->accessibleName());
    m_busy->setVisible(activity.has_value());
    m_busy->setToolTip(doing);
    m_busy->setShare(activity ? activity->share : std::nullopt);
    m_cancel->setVisible(activity.has_value());
}

QString StatusLine::detailedText() const
{
    if (const auto failure = m_model.failure())
        return Failure{.sentence = *failure, .detail = m_model.failureDetail()}.text();
    return m_model.message() + u'\n' + m_model.messageDetail();
}

void StatusLine::copy() const
{
    QGuiApplication::clipboard()->setText(detailedText());
}
