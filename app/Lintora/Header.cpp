#include "app/Lintora/Header.h"

#include "app/Lintora/ai/EngineState.h"
#include "app/Lintora/controls/Controls.h"

#include <QHBoxLayout>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

Header::Header(LintoraModel &model, QWidget *parent)
    : QWidget(parent)
{
    WindowState &window = model.window();
    auto *const tagline = Controls::note(u"语音识别 · 中英互译 · FCP"_s, this);
    tagline->setWordWrap(false);
    auto *const titles = new QVBoxLayout;
    titles->setSpacing(0);
    titles->addWidget(Controls::heading(u"VELMORA 字幕助手"_s, this));
    titles->addWidget(tagline);

    auto *const pin = Controls::quietButton(u"置顶"_s, this);
    pin->setIcon(VELTheme::icon(VELTheme::Glyph::pin, *pin));
    pin->setIconSize({VELTheme::iconSize, VELTheme::iconSize});
    pin->setCheckable(true);
    pin->setChecked(window.pinned());
    pin->setToolTip(u"让字幕助手保持在 FCP 前方，再次点击取消"_s);
    pin->setAccessibleDescription(pin->toolTip());
    connect(pin, &QPushButton::clicked, &window, &WindowState::toggleFloating);
    connect(&window, &WindowState::pinnedChanged, pin, [&window, pin] { pin->setChecked(window.pinned()); });

    auto *const layout = new QHBoxLayout(this);
    layout->setContentsMargins(VELTheme::margin, VELTheme::step * 2, VELTheme::margin, VELTheme::step * 2);
    layout->addLayout(titles, 1);
    layout->addWidget(new EngineState(model, this));
    layout->addWidget(pin);
}
