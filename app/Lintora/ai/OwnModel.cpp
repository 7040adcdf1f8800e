#include "app/Lintora/ai/OwnModel.h"

#include "app/Lintora/controls/Controls.h"
#include "app/Lintora/controls/ElidedLabel.h"

#include <QFileInfo>
#include <QHBoxLayout>
#include <QPointer>

using namespace Qt::StringLiterals;

OwnModel::OwnModel(LintoraModel &model, QString AIChoices::*field, const QString &extension, QWidget *parent)
    : QWidget(parent)
    , m_model(model)
    , m_field(field)
    , m_file(new ElidedLabel(this))
    , m_leave(Controls::quietButton(u"改回目录中的模型"_s, this))
{
    auto *const pick = Controls::quietButton(u"使用自己的模型文件…"_s, this);
    m_file->setFont(VELTheme::smallFont());
    m_file->setElideMode(Qt::ElideMiddle);
    m_file->setAccessibleName(u"自己的模型文件"_s);
    auto *const layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(VELTheme::gap);
    layout->addWidget(m_file, 1);
    layout->addWidget(m_leave);
    layout->addWidget(pick);
    connect(pick, &QPushButton::clicked, this, [this, extension] {
        m_model.dialogs().open({.title = u"使用自己的模型文件"_s, .extensions = {extension}},
                               [page = QPointer(this)](const QString &path) {
                                   if (page)
                                       page->choose(path);
                               });
    });
    connect(m_leave, &QPushButton::clicked, this, [this, pick] {
        pick->setFocus(); // before this button goes
        choose({});
    });
    connect(&model.aiSettings(), &AISettings::choicesChanged, this, &OwnModel::follow);
    follow();
}

void OwnModel::choose(const QString &path)
{
    AIChoices choices = m_model.aiSettings().choices();
    choices.*m_field = path;
    m_model.aiSettings().choose(choices);
}

void OwnModel::follow()
{
    const QString path = m_model.aiSettings().choices().*m_field;
    const bool isMissing = !path.isEmpty() && !QFileInfo(path).isFile();
    m_file->setText(isMissing ? u"找不到 %1"_s.arg(path) : path.isEmpty() ? QString() : u"使用中 · "_s + path);
    m_file->setToolTip(path);
    Controls::showAsFailure(m_file, isMissing);
    m_leave->setVisible(!path.isEmpty());
}
