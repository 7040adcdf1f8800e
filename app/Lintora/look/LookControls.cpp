#include "app/Lintora/look/LookControls.h"

#include "app/Lintora/controls/Controls.h"
#include "app/Lintora/controls/ElidedLabel.h"
#include "app/Lintora/controls/FieldRow.h"

#include <QVBoxLayout>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

/// What is to be known of the look while it is used.
QString note(const TitleTemplate &look, const QList<Subtitle> &cues)
{
    QString note = u"字体、颜色、描边、阴影和位置都来自这个标题，要改请在 FCP 里改好再选用。"_s;
    const TitleTemplate::Surroundings around = look.surroundings();
    if (const QString others = (around.before + u' ' + around.after).simplified(); !others.isEmpty())
        note += u"其中的“%1”每条都会带上。"_s.arg(others);
    const double last = look.lastKeyframe();
    const auto count =
        std::ranges::count_if(cues, [&](const Subtitle &cue) { return double(cue.end - cue.start) < last * 1000; });
    if (count > 0)
        note += u"它的动画长 %1 秒，有 %2 条字幕更短，看不到结尾。"_s.arg(QString::number(last, 'f', 1)).arg(count);
    return note;
}

} // namespace

LookControls::LookControls(LintoraModel &model, QWidget *parent)
    : QWidget(parent)
    , m_model(model)
    , m_row(new FieldRow(u"标题模板"_s, this))
    , m_name(new ElidedLabel(m_row))
    , m_choose(Controls::button(u"选用标题…"_s, m_row, u"照自己项目里的一个标题来写每条字幕"_s))
    , m_reset(Controls::button(u"恢复基本字幕"_s, m_row, u"改回 FCP 自带的“基本字幕”和下面的样式"_s))
{
    m_name->setAccessibleName(u"标题模板"_s);
    m_row->controls()->addWidget(m_name, 1);
    m_row->controls()->addWidget(m_reset);
    m_row->controls()->addWidget(m_choose);
    auto *const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_row);

    connect(m_choose, &QPushButton::clicked, this, &LookControls::requested);
    connect(m_reset, &QPushButton::clicked, &model, [&model] { model.setLook(std::nullopt); });
    connect(&model, &LintoraModel::lookChanged, this, &LookControls::follow);
    connect(&model, &LintoraModel::itemsChanged, this, &LookControls::follow);
    connect(&model, &LintoraModel::aiBusyChanged, this, [this] { setEnabled(!m_model.aiBusy()); });
    setEnabled(!model.aiBusy());
    follow();
}

QWidget *LookControls::chooseButton() const
{
    return m_choose;
}

void LookControls::follow()
{
    const auto &look = m_model.look();
    m_name->setText(look ? look->name() : u"基本字幕"_s);
    m_row->setNote(look ? note(*look, m_model.items()) : QString());
    if (m_reset->hasFocus() && !look)
        m_choose->setFocus(Qt::OtherFocusReason);
    m_reset->setVisible(look.has_value());
}
