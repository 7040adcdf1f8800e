#include "app/Lintora/look/OptionsForm.h"

#include "app/Lintora/controls/CheckBox.h"
#include "app/Lintora/controls/ColorField.h"
#include "app/Lintora/controls/TextField.h"
#include "app/Lintora/controls/Theme.h"

#include <QLabel>
#include <QScopedValueRollback>
#include <QVBoxLayout>

OptionsForm::OptionsForm(LintoraModel &model, QWidget *parent)
    : QWidget(parent)
    , m_model(model)
    , m_rows(new QVBoxLayout(this))
{
    m_rows->setContentsMargins(0, 0, 0, 0);
    m_rows->setSpacing(VELTheme::gap);
    connect(&model, &LintoraModel::optionsChanged, this, &OptionsForm::follow);
    connect(&model, &LintoraModel::aiBusyChanged, this, [this] { setEnabled(!m_model.aiBusy()); });
    setEnabled(!model.aiBusy());
}

void OptionsForm::addHeading(const QString &text)
{
    auto *const heading = new QLabel(text, this);
    QFont font = VELTheme::textFont();
    font.setWeight(QFont::DemiBold);
    heading->setFont(font);
    if (m_rows->count() > 0)
        m_rows->addSpacing(VELTheme::gap);
    m_rows->addWidget(heading);
}

ValueField *OptionsForm::addValue(const ValueEdit::Kind &kind, ValueField::Reach reach, double Options::*field)
{
    auto *const row = new ValueField(kind, reach, this);
    m_rows->addWidget(row);
    connectGestures(*row);
    connect(row, &ValueField::edited, this,
            [this, field](double value) { change([&](Options &options) { options.*field = value; }); });
    whenChanged([row, field](const Options &options) { row->setValue(options.*field); });
    return row;
}

ColorField *OptionsForm::addColor(const QString &name, QString Options::*field)
{
    auto *const row = new ColorField(name, this);
    m_rows->addWidget(row);
    connect(row, &ColorField::edited, this,
            [this, field](const QString &text) { change([&](Options &options) { options.*field = text; }); });
    connect(row, &ColorField::previewed, this, [this, field](const QString &text) {
        Options options = m_model.options();
        options.*field = text;
        Q_EMIT previewed(options);
    });
    connect(row, &ColorField::previewEnded, this, &OptionsForm::previewEnded);
    connect(row, &ColorField::gestureBegan, this, [this] {
        m_isGesture = true;
        m_model.beginGesture();
    });
    connect(row, &ColorField::gestureEnded, this, [this] {
        m_isGesture = false;
        m_model.endGesture();
    });
    whenChanged([row, field](const Options &options) { row->setText(options.*field, Options().*field); });
    return row;
}

CheckBox *OptionsForm::addSwitch(const QString &text, bool Options::*field)
{
    auto *const box = new CheckBox(text, this);
    box->setAccessibleName(text);
    // Its sign stands where the controls of the other rows begin.
    auto *const row = new QHBoxLayout;
    row->setContentsMargins(FieldRow::labelWidth + VELTheme::gap - VELTheme::step, 0, 0, 0);
    row->addWidget(box);
    row->addStretch();
    m_rows->addLayout(row);
    connect(box, &CheckBox::clicked, this,
            [this, field](bool isOn) { change([&](Options &options) { options.*field = isOn; }); });
    whenChanged([box, field](const Options &options) { box->setChecked(options.*field); });
    return box;
}

TextField *OptionsForm::addText(const QString &name, std::function<QString(const QString &)> judge)
{
    auto *const row = new TextField(name, std::move(judge), this);
    m_rows->addWidget(row);
    return row;
}

void OptionsForm::connectGestures(const ValueField &field)
{
    connect(&field, &ValueField::gestureBegan, this, [this] {
        m_isGesture = true;
        m_model.beginGesture();
    });
    connect(&field, &ValueField::gestureEnded, this, [this] {
        m_isGesture = false;
        m_model.endGesture();
    });
}

void OptionsForm::whenChanged(const Follow &follow)
{
    m_followers += follow;
    follow(m_model.options());
}

void OptionsForm::change(const Change &change)
{
    Options options = m_model.options();
    change(options);
    {
        const QScopedValueRollback changing(m_isChanging, true);
        m_model.setOptions(options);
    }
    if (m_model.options() != options)
        follow(); // It was refused: the control shows what it should not.
}

void OptionsForm::follow()
{
    // What comes from elsewhere in the middle of a gesture is a step of its own, and so is what follows it.
    if (m_isGesture && !m_isChanging)
        m_model.beginGesture();
    for (const Follow &each : m_followers)
        each(m_model.options());
}
