#include "app/window/PlayMenu.h"

using namespace Qt::StringLiterals;

PlayMenu::PlayMenu(LintoraModel &model, QWidget *parent)
    : QMenu(u"播放"_s, parent)
    , m_model(model)
    , m_strip(addAction(u"时间条"_s))
{
    WindowState &window = model.window();
    m_strip->setShortcut(Qt::CTRL | Qt::Key_T);
    m_strip->setCheckable(true);
    connect(m_strip, &QAction::triggered, &window, &WindowState::setStripShown);
    addSeparator();
    add(u"播放或停止"_s, PlayCommand::playOrStop);
    add(u"播放这一条"_s, PlayCommand::playCue, Qt::CTRL | Qt::Key_P);
    add(u"播放开头半秒"_s, PlayCommand::playFirst);
    add(u"播放结尾半秒"_s, PlayCommand::playLast);
    add(u"循环播放"_s, PlayCommand::loop, Qt::CTRL | Qt::Key_L);
    add(u"逐条播放"_s, PlayCommand::review, Qt::CTRL | Qt::SHIFT | Qt::Key_P);
    addSeparator();
    add(u"开始时间设为播放头"_s, PlayCommand::startHere, Qt::CTRL | Qt::Key_BracketLeft);
    add(u"结束时间设为播放头"_s, PlayCommand::endHere, Qt::CTRL | Qt::Key_BracketRight);
    add(u"在播放头拆分"_s, PlayCommand::cutHere, Qt::CTRL | Qt::SHIFT | Qt::Key_K);
    connect(&window, &WindowState::stripShownChanged, this, &PlayMenu::follow);
    connect(&model, &LintoraModel::itemsChanged, this, &PlayMenu::follow);
    follow();
}

void PlayMenu::add(const QString &title, PlayCommand command, const QKeySequence &key)
{
    QAction *const action = addAction(title);
    action->setShortcut(key);
    connect(action, &QAction::triggered, &m_model.window(), [this, command] { m_model.window().play(command); });
    m_commands += action;
}

void PlayMenu::follow()
{
    m_strip->setChecked(m_model.window().stripShown());
    for (QAction *const command : m_commands)
        command->setEnabled(m_model.window().stripShown() && !m_model.items().isEmpty());
}
