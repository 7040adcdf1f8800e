#include "app/Lintora/controls/ValueField.h"

#include "app/Lintora/controls/Slider.h"
#include "app/Lintora/controls/Theme.h"

#include <QLabel>
#include <QSignalBlocker>

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

ValueField::ValueField(const ValueEdit::Kind &kind, Reach reach, QWidget *parent)
    : FieldRow(kind.name, parent)
    , m_slider(new Slider(this))
    , m_edit(new ValueEdit(kind, this))
{
    m_slider->setAccessibleName(u"%1滑块"_s.arg(kind.name));
    m_edit->setFixedWidth(editWidth);
    m_edit->setAlignment(Qt::AlignRight);
    auto *const unit = new QLabel(kind.unit, this);
    unit->setProperty("secondary", true);
    unit->setFont(VELTheme::smallFont());
    unit->setFixedWidth(unitWidth);
    label()->setBuddy(m_edit);
    controls()->addWidget(m_slider, 1);
    controls()->addWidget(m_edit);
    controls()->addWidget(unit);
    setReach(reach);

    connect(m_slider, &Slider::valueChanged, this, [this](int steps) {
        // As it would be typed: steps of a tenth do not add up to round numbers.
        const double dragged = std::round(steps * m_reach.step * 100) / 100;
        const double value = std::clamp(dragged, m_edit->kind().lowest, m_edit->kind().highest);
        m_edit->setValue(value);
        Q_EMIT edited(value);
    });
    connect(m_edit, &ValueEdit::edited, this, [this](double value) {
        showOnSlider();
        Q_EMIT edited(value);
    });
    connect(m_edit, &ValueEdit::sentenceChanged, this, [this] { setSentence(m_edit->sentence()); });
    connect(m_slider, &Slider::gestureBegan, this, &ValueField::gestureBegan);
    connect(m_slider, &Slider::gestureEnded, this, &ValueField::gestureEnded);
    connect(m_edit, &ValueEdit::gestureBegan, this, &ValueField::gestureBegan);
    connect(m_edit, &ValueEdit::gestureEnded, this, &ValueField::gestureEnded);
}

void ValueField::setValue(double value)
{
    m_edit->setValue(value);
    showOnSlider();
}

void ValueField::setReach(Reach reach)
{
    m_reach = reach;
    showOnSlider();
}

void ValueField::showOnSlider()
{
    const QSignalBlocker quietly(m_slider); // It can only show some of the values, and would tell of others.
    const auto steps = [this](double value) { return int(std::lround(value / m_reach.step)); };
    m_slider->setRange(steps(m_reach.lowest), steps(m_reach.highest));
    m_slider->setPageStep(std::max(1, (m_slider->maximum() - m_slider->minimum()) / 10));
    m_slider->setValue(steps(std::clamp(m_edit->value(), m_reach.lowest, m_reach.highest)));
    m_slider->update();
}
