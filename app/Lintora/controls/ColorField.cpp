#include "app/Lintora/controls/ColorField.h"

#include "app/Lintora/controls/Slider.h"
#include "app/Lintora/controls/Theme.h"
#include "app/Lintora/controls/ValueField.h"
#include "app/titles/TitleColor.h"

#include <QLabel>
#include <QPainter>
#include <QPainterPath>
#include <QSignalBlocker>

#include <cmath>

using namespace Qt::StringLiterals;

namespace {

constexpr int codeWidth = 22 * VELTheme::step;

std::optional<double> readCode(const QString &text)
{
    QString digits = text.normalized(QString::NormalizationForm_KC).trimmed();
    if (digits.startsWith(u'#'))
        digits.remove(0, 1);
    bool isNumber = false;
    const uint code = digits.toUInt(&isNumber, 16);
    return isNumber && digits.size() == 6 ? std::optional<double>(code) : std::nullopt;
}

QString writeCode(double code)
{
    return u"#%1"_s.arg(uint(code), 6, 16, QChar(u'0')).toUpper();
}

ValueEdit::Kind codeKind(const QString &name)
{
    ValueEdit::Kind kind;
    kind.name = u"%1色值"_s.arg(name);
    kind.highest = 0xffffff;
    kind.step = 0;
    kind.sentence = u"请输入六位十六进制色值，如 #FFD400。"_s;
    kind.read = readCode;
    kind.write = writeCode;
    return kind;
}

ValueEdit::Kind opacityKind(const QString &name)
{
    ValueEdit::Kind kind;
    kind.name = u"%1不透明度"_s.arg(name);
    kind.unit = u"%"_s;
    return kind;
}

} // namespace

ColorSwatch::ColorSwatch(const QString &name, QWidget *parent)
    : QAbstractButton(parent)
{
    setAccessibleName(name);
    setToolTip(u"选取颜色"_s);
    setFocusPolicy(Qt::StrongFocus);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

QSize ColorSwatch::sizeHint() const
{
    return {12 * VELTheme::step, VELTheme::controlHeight};
}

void ColorSwatch::setColor(const QColor &color)
{
    m_color = color;
    update();
}

void ColorSwatch::paintEvent(QPaintEvent * /*event*/)
{
    const VELTheme::Colors &colors = VELTheme::colors(*this);
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const double pen = hasFocus() ? 2 : 1;
    const QRectF outline = QRectF(rect()).adjusted(pen / 2, pen / 2, -pen / 2, -pen / 2);
    QPainterPath shape;
    shape.addRoundedRect(outline, VELTheme::radius, VELTheme::radius);
    painter.save();
    painter.setClipPath(shape);
    constexpr int square = 7;
    for (int y = 0; y * square < height(); ++y) {
        for (int x = 0; x * square < width(); ++x)
            painter.fillRect(x * square, y * square, square, square, (x + y) % 2 == 0 ? Qt::white : Qt::lightGray);
    }
    QColor shown = m_color;
    if (!isEnabled())
        shown.setAlphaF(shown.alphaF() * 0.35F);
    painter.fillRect(rect(), shown);
    painter.restore();
    painter.setPen(QPen(hasFocus() ? colors.accent : isEnabled() ? colors.outline : colors.border, pen));
    painter.drawPath(shape);
}

ColorField::ColorField(const QString &name, QWidget *parent)
    : FieldRow(name, parent)
    , m_swatch(new ColorSwatch(name, this))
    , m_code(new ValueEdit(codeKind(name), this))
    , m_slider(new Slider(this))
    , m_opacity(new ValueEdit(opacityKind(name), this))
{
    label()->setBuddy(m_swatch);
    m_code->setFixedWidth(codeWidth);
    controls()->addWidget(m_swatch);
    controls()->addWidget(m_code);
    makeOpacity(name);

    connect(m_swatch, &ColorSwatch::clicked, this, &ColorField::choose);
    connect(m_code, &ValueEdit::edited, this, [this](double code) {
        QColor color = QColor::fromRgb(QRgb(code));
        color.setAlphaF(m_color.alphaF());
        edit(color);
    });
    const auto fade = [this](double percent) {
        QColor color = m_color;
        color.setAlphaF(float(percent / 100));
        edit(color);
    };
    connect(m_opacity, &ValueEdit::edited, this, fade);
    connect(m_slider, &Slider::valueChanged, this, fade);
    connect(m_slider, &Slider::gestureBegan, this, &ColorField::gestureBegan);
    connect(m_slider, &Slider::gestureEnded, this, &ColorField::gestureEnded);
    for (ValueEdit *const edit : {m_code, m_opacity}) {
        connect(edit, &ValueEdit::gestureBegan, this, &ColorField::gestureBegan);
        connect(edit, &ValueEdit::gestureEnded, this, &ColorField::gestureEnded);
        connect(edit, &ValueEdit::sentenceChanged, this, &ColorField::followSentences);
    }
}

void ColorField::makeOpacity(const QString &name)
{
    m_slider->setRange(0, 100);
    m_slider->setPageStep(10);
    m_slider->setAccessibleName(u"%1不透明度滑块"_s.arg(name));
    m_opacity->setFixedWidth(ValueField::editWidth);
    m_opacity->setAlignment(Qt::AlignRight);
    for (QWidget *const control : {static_cast<QWidget *>(m_slider), static_cast<QWidget *>(m_opacity)})
        control->setToolTip(u"不透明度"_s);
    auto *const unit = new QLabel(u"%"_s, this);
    unit->setProperty("secondary", true);
    unit->setFont(VELTheme::smallFont());
    unit->setFixedWidth(ValueField::unitWidth);
    controls()->addWidget(m_slider, 1);
    controls()->addWidget(m_opacity);
    controls()->addWidget(unit);
}

void ColorField::setText(const QString &text, const QString &otherwise)
{
    if (text == m_text)
        return;
    m_text = text;
    const auto color = TitleColor::read(text);
    m_isReadable = color.has_value();
    setColor(color ? *color : TitleColor::read(otherwise).value_or(QColor(Qt::white)));
    followSentences();
}

void ColorField::setColor(const QColor &color)
{
    m_color = color;
    m_swatch->setColor(color);
    m_swatch->setAccessibleDescription(writeCode(color.rgb() & 0xffffffU));
    m_code->setValue(color.rgb() & 0xffffffU);
    const double percent = std::round(double(color.alphaF()) * 100);
    m_opacity->setValue(percent);
    const QSignalBlocker quietly(m_slider);
    m_slider->setValue(int(percent));
    m_slider->update();
}

void ColorField::edit(const QColor &color)
{
    m_text = TitleColor::write(color);
    m_isReadable = true;
    setColor(color);
    followSentences();
    Q_EMIT edited(m_text);
}

void ColorField::choose()
{
    if (m_dialog) {
        m_dialog->raise();
        return;
    }
    // As a child of the window's content it would take on the look of our own controls, for which it is not made.
    m_dialog = new QColorDialog(m_color, window());
    m_dialog->setWindowTitle(label()->text());
    m_dialog->setOption(QColorDialog::ShowAlphaChannel);
    m_dialog->setAttribute(Qt::WA_DeleteOnClose);
    connect(m_dialog, &QColorDialog::currentColorChanged, this, [this](const QColor &color) {
        m_swatch->setColor(color);
        Q_EMIT previewed(TitleColor::write(color));
    });
    connect(m_dialog, &QColorDialog::finished, this, [this](int result) {
        if (result == QDialog::Accepted && m_dialog->selectedColor() != m_color) {
            edit(m_dialog->selectedColor());
            return;
        }
        m_swatch->setColor(m_color);
        Q_EMIT previewEnded();
    });
    m_dialog->open();
}

void ColorField::followSentences()
{
    if (!m_code->sentence().isEmpty())
        setSentence(m_code->sentence());
    else if (!m_opacity->sentence().isEmpty())
        setSentence(m_opacity->sentence());
    else
        setSentence(m_isReadable ? QString() : u"颜色“%1”无法识别，暂按默认颜色显示。"_s.arg(m_text));
}
