#include "app/Lintora/HeightBar.h"

#include "app/Lintora/controls/Controls.h"
#include "app/Lintora/controls/ElidedLabel.h"

#include <QApplication>
#include <QHBoxLayout>

using namespace Qt::StringLiterals;

HeightBar::HeightBar(LintoraModel &model, std::function<bool()> mayAct, QWidget *parent)
    : QWidget(parent)
    , m_model(model)
{
    auto *const text = new ElidedLabel(u"各语言在同一高度，先后拖入时间线会叠在一起"_s, this);
    text->setFont(VELTheme::smallFont());
    auto *const stack = Controls::button(u"错开高度"_s, this, u"按行数给每种语言不同的底部距离，可撤销"_s);
    auto *const decline = Controls::signButton(VELTheme::Glyph::close, u"保持同一高度"_s, this);
    auto *const row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(VELTheme::gap);
    row->addWidget(text, 1);
    row->addWidget(stack);
    row->addWidget(decline);
    connect(stack, &QPushButton::clicked, this, [this, mayAct = std::move(mayAct)] {
        if (mayAct())
            m_model.stackTracks();
    });
    connect(decline, &QToolButton::clicked, this, [this] {
        m_declined = m_model.splitOriginal();
        follow();
    });
    connect(&model, &LintoraModel::splitOriginalChanged, this, &HeightBar::follow);
    connect(&model, &LintoraModel::tracksChanged, this, &HeightBar::follow);
    follow();
}

void HeightBar::follow()
{
    const std::optional<QUuid> separated = m_model.splitOriginal();
    if (!separated)
        m_declined.reset();
    const bool isOffered = separated && separated != m_declined && m_model.areTracksOnTop();
    if (!isOffered && isAncestorOf(QApplication::focusWidget()))
        Q_EMIT keyboardFreed();
    setVisible(isOffered);
}
