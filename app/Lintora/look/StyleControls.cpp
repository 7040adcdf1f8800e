#include "app/Lintora/look/StyleControls.h"

#include "app/Lintora/controls/CheckBox.h"
#include "app/Lintora/controls/ChoiceBox.h"
#include "app/Lintora/controls/ColorField.h"
#include "app/Lintora/look/FontFaces.h"

#include <QFontDatabase>
#include <QLabel>
#include <QSignalBlocker>
#include <QVBoxLayout>

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

namespace {

ValueEdit::Kind kind(const QString &name, double highest, double step, const QString &unit)
{
    ValueEdit::Kind kind;
    kind.name = name;
    kind.highest = highest;
    kind.step = step;
    kind.unit = unit;
    return kind;
}

/// From a half to twelve hundredths of the frame's height: what can be read, and what a caption ever is.
ValueField::Reach sizesFor(const Options &options)
{
    const auto height = double(options.height);
    return {.lowest = std::max(1.0, std::round(height * 0.005)), .highest = std::max(2.0, std::round(height * 0.12))};
}

} // namespace

StyleControls::StyleControls(LintoraModel &model, QWidget *parent)
    : OptionsForm(model, parent)
{
    addHeading(u"文字"_s);
    addFont();
    addSize();
    addColor(u"颜色"_s, &Options::fontColor);
    addValue(kind(u"距底部"_s, 40, 0.5, u"%"_s), {.lowest = 0, .highest = 40, .step = 0.5}, &Options::bottomPercent);
    addStroke();
    addShadow();
}

QWidget *StyleControls::fontButton() const
{
    return m_font;
}

void StyleControls::addFont()
{
    auto *const row = new FieldRow(u"字体"_s, this);
    m_font = new ChoiceBox(u"字体"_s, row);
    m_font->setToolTip(u"查找并选择字体"_s);
    m_font->setListedElsewhere(true);
    m_face = new ChoiceBox(u"字形"_s, row);
    row->label()->setBuddy(m_font);
    row->controls()->addWidget(m_font, 3);
    row->controls()->addWidget(m_face, 2);
    rows()->addWidget(row);
    connect(m_font, &ChoiceBox::listRequested, this, &StyleControls::fontRequested);
    connect(m_face, &ChoiceBox::activated, this, [this](int index) {
        const QString face = m_face->itemText(index);
        if (face != FontFaces::shown(model().options().fontFace))
            change([&](Options &options) { options.fontFace = FontFaces::kept(face); });
    });
    whenChanged([this](const Options &options) {
        m_font->clear();
        m_font->addItem(options.font);
        followFaces(options);
    });
}

void StyleControls::followFaces(const Options &options)
{
    const QSignalBlocker quietly(m_face);
    QStringList faces = QFontDatabase::styles(options.font);
    const QString face = FontFaces::shown(options.fontFace);
    if (!faces.contains(face))
        faces.prepend(face); // Kept, though it cannot be shown here.
    m_face->clear();
    m_face->addItems(faces);
    m_face->setCurrentIndex(int(faces.indexOf(face)));
}

void StyleControls::addSize()
{
    ValueEdit::Kind size = kind(u"字号"_s, 10'000, 1, u"点"_s);
    size.lowest = 0.1;
    ValueField *const row = addValue(size, sizesFor(model().options()), &Options::fontSize);
    whenChanged([row](const Options &options) { row->setReach(sizesFor(options)); });
}

void StyleControls::addStroke()
{
    addHeading(u"描边"_s);
    addSwitch(u"给文字加描边"_s, &Options::strokeEnabled);
    ColorField *const color = addColor(u"描边颜色"_s, &Options::strokeColor);
    ValueField *const width = addValue(kind(u"描边宽度"_s, 20, 0.5, u"像素"_s),
                                       {.lowest = 0, .highest = 20, .step = 0.1}, &Options::strokeWidth);
    whenChanged([color, width](const Options &options) {
        color->setEnabled(options.strokeEnabled);
        width->setEnabled(options.strokeEnabled);
    });
}

void StyleControls::addShadow()
{
    addHeading(u"阴影"_s);
    addSwitch(u"给文字加阴影"_s, &Options::shadowEnabled);
    ColorField *const color = addColor(u"阴影颜色"_s, &Options::shadowColor);
    ValueField *const blur = addValue(kind(u"阴影模糊"_s, 30, 0.5, u"像素"_s),
                                      {.lowest = 0, .highest = 30, .step = 0.1}, &Options::shadowBlur);
    whenChanged([color, blur](const Options &options) {
        color->setEnabled(options.shadowEnabled);
        blur->setEnabled(options.shadowEnabled);
    });
}
