#include "app/Lintora/sound/TransportKeys.h"

#include <QKeyEvent>
#include <QWidget>

using namespace Qt::StringLiterals;

namespace {

struct Binding
{
    QKeyCombination keys;
    PlayCommand command;
    bool repeats = false; ///< While the key is held down.
};

constexpr Binding bindings[] = {
    {.keys = Qt::Key_Space, .command = PlayCommand::playOrStop},
    {.keys = Qt::SHIFT | Qt::Key_Space, .command = PlayCommand::playCue},
    {.keys = Qt::Key_J, .command = PlayCommand::goBack, .repeats = true},
    {.keys = Qt::Key_K, .command = PlayCommand::stop},
    {.keys = Qt::Key_L, .command = PlayCommand::playFaster},
    {.keys = Qt::CTRL | Qt::Key_Left, .command = PlayCommand::playFirst},
    {.keys = Qt::CTRL | Qt::Key_Right, .command = PlayCommand::playLast},
};

} // namespace

TransportKeys::TransportKeys(Transport &transport, QObject *parent)
    : QObject(parent)
    , m_transport(transport)
{}

void TransportKeys::giveTo(QWidget &widget, std::function<bool()> isFree)
{
    m_widgets.insert(&widget, std::move(isFree));
    widget.installEventFilter(this);
}

bool TransportKeys::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() != QEvent::KeyPress)
        return false;
    const auto widget = m_widgets.constFind(watched);
    if (widget == m_widgets.cend() || (*widget && !(*widget)()))
        return false;
    const auto &key = static_cast<const QKeyEvent &>(*event);
    const QKeyCombination pressed(key.modifiers() & ~Qt::KeypadModifier, Qt::Key(key.key()));
    for (const Binding &each : bindings) {
        if (each.keys != pressed)
            continue;
        if (!key.isAutoRepeat() || each.repeats)
            m_transport.perform(each.command);
        return true;
    }
    return false;
}

QList<TransportKeys::Key> TransportKeys::keys()
{
    const auto text = [](const QKeySequence &keys) { return keys.toString(QKeySequence::NativeText); };
    return {{u"空格"_s, u"播放或停止"_s},
            {text(Qt::SHIFT) + u"空格"_s, u"播放这一条"_s},
            {u"J"_s, u"后退一秒"_s},
            {u"L"_s, u"播放；再按加快"_s},
            {u"K"_s, u"停止；再按回到原速"_s},
            {text(Qt::CTRL | Qt::Key_Left), u"播放开头半秒"_s},
            {text(Qt::CTRL | Qt::Key_Right), u"播放结尾半秒"_s},
            {u"← →"_s, u"时间条里逐帧移动播放头"_s},
            {u"↑ ↓"_s, u"时间条里到上一条、下一条"_s},
            {u"+ −"_s, u"时间条里放大、缩小"_s}};
}
