#include "app/Lintora/ProjectTag.h"

#include "app/Lintora/controls/Controls.h"
#include "app/Lintora/controls/ElidedLabel.h"

#include <QApplication>
#include <QHBoxLayout>

using namespace Qt::StringLiterals;

ProjectTag::ProjectTag(LintoraModel &model, QWidget *parent)
    : QWidget(parent)
    , m_model(model)
    , m_name(new ElidedLabel(this))
    , m_facts(new QLabel(this))
{
    m_name->setFont(VELTheme::smallFont());
    m_name->setElideMode(Qt::ElideMiddle);
    m_name->setAccessibleName(u"FCP 项目"_s);
    m_facts->setFont(VELTheme::smallFont());
    m_facts->setProperty("secondary", true);
    m_facts->setAccessibleName(u"项目规格"_s);
    auto *const release =
        Controls::signButton(VELTheme::Glyph::close, u"放开项目"_s, this, u"不再写入这个项目；字幕和样式不变"_s);
    auto *const row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(VELTheme::step);
    row->addWidget(m_name, 1);
    row->addWidget(m_facts);
    row->addWidget(release);
    connect(release, &QToolButton::clicked, &model, &LintoraModel::releaseProject);
    connect(&model.keptProject(), &KeptProject::projectChanged, this, &ProjectTag::follow);
    connect(&model.keptProject(), &KeptProject::settingsChanged, this, &ProjectTag::follow);
    follow();
}

void ProjectTag::follow()
{
    const auto &project = m_model.keptProject().project();
    const auto &settings = m_model.keptProject().settings();
    const bool isThere = project || settings;
    if (!isThere && isAncestorOf(QApplication::focusWidget()))
        Q_EMIT keyboardFreed();
    setVisible(isThere);
    if (!isThere)
        return;
    const QString name = project ? project->name : settings->name;
    QString facts = u"%1 帧/秒"_s.arg(project ? project->rate.label : settings->rate.label);
    if (settings)
        facts += u" · %1×%2"_s.arg(settings->width).arg(settings->height);
    m_name->setText(name);
    m_facts->setText(facts);
    const QString use = project ? u"导出时可以写入这个项目"_s : u"帧率和画面已与它匹配，但不能写入其中"_s;
    m_name->setToolTip(name + u'\n' + use);
    m_facts->setToolTip(m_name->toolTip());
}
