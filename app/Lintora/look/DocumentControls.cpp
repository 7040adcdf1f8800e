#include "app/Lintora/look/DocumentControls.h"

#include "app/Lintora/controls/ChoiceBox.h"
#include "app/Lintora/controls/Controls.h"
#include "app/Lintora/controls/TextField.h"
#include "app/Lintora/look/FrameSizes.h"
#include "app/Lintora/look/TimeShift.h"
#include "app/model/Imports.h"
#include "core/text/Characters.h"

#include <QLineEdit>
#include <QSignalBlocker>
#include <QVBoxLayout>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

constexpr double longestSide = 16'384; ///< Pixels: twice what any project of today has.

/// What a document cannot carry is refused by its writer; here it is said at once.
QString judgeText(const QString &text)
{
    return Characters::isWritable(text) ? QString() : u"含有无法写入文档的字符。"_s;
}

QString judgeName(const QString &text)
{
    return text.trimmed().isEmpty() ? u"请输入项目名称。"_s : judgeText(text);
}

ValueEdit::Kind sideKind(const QString &name)
{
    ValueEdit::Kind kind;
    kind.name = name;
    kind.lowest = 1;
    kind.highest = longestSide;
    kind.step = 2;
    kind.sentence = u"请输入 1 到 %1 之间的整数。"_s.arg(int(longestSide));
    kind.read = [](const QString &text) {
        const auto value = ValueEdit::readNumber(text, u"像素"_s);
        return value && *value == double(qint64(*value)) ? value : std::nullopt;
    };
    return kind;
}

} // namespace

DocumentControls::DocumentControls(LintoraModel &model, QWidget *parent)
    : OptionsForm(model, parent)
{
    addHeading(u"画面"_s);
    addProject();
    addFrameSize();
    addFrameRate();
    addHeading(u"写入文档"_s);
    addShift();
    addNames();
    connect(&model.keptProject(), &KeptProject::settingsChanged, this, [this] {
        followFrameSize(this->model().options());
        followFrameRate(this->model().options());
        followProject();
    });
    connect(&model, &LintoraModel::selectedTrackIDChanged, this, [this] {
        m_isCustom = false;
        followFrameSize(this->model().options());
    });
}

void DocumentControls::addProject()
{
    m_project = new FieldRow(u"FCP 项目"_s, this);
    m_match = Controls::button(u"匹配项目"_s, m_project, u"采用项目的画面尺寸、帧率、字号和名称"_s);
    m_project->controls()->addWidget(m_match);
    m_project->controls()->addStretch();
    rows()->addWidget(m_project);
    connect(m_match, &QPushButton::clicked, &model(), &LintoraModel::matchProject);
    whenChanged([this](const Options & /*options*/) { followProject(); });
}

void DocumentControls::followProject()
{
    const auto &settings = model().keptProject().settings();
    m_project->setVisible(settings.has_value());
    if (!settings)
        return;
    m_project->setNote(u"%1 · %2 · %3 帧/秒"_s.arg(settings->name, FrameSizes::write(settings->width, settings->height),
                                                   settings->rate.label));
    m_match->setEnabled(Imports::matching(model().options(), *settings) != model().options());
}

void DocumentControls::addFrameSize()
{
    auto *const row = new FieldRow(u"画面尺寸"_s, this);
    m_size = new ChoiceBox(u"画面尺寸"_s, row);
    row->label()->setBuddy(m_size);
    row->controls()->addWidget(m_size, 1);
    row->setNote(u"更改画面高度时，字号按比例适配。"_s);
    rows()->addWidget(row);

    m_custom = new FieldRow(u"宽 × 高"_s, this);
    m_width = new ValueEdit(sideKind(u"画面宽度"_s), m_custom);
    m_height = new ValueEdit(sideKind(u"画面高度"_s), m_custom);
    for (ValueEdit *const edit : {m_width, m_height}) {
        edit->setFixedWidth(ValueField::editWidth + VELTheme::gap);
        connect(edit, &ValueEdit::edited, this,
                [this] { setFrameSize(qint64(m_width->value()), qint64(m_height->value())); });
        connect(edit, &ValueEdit::sentenceChanged, this, [this] {
            m_custom->setSentence(m_width->sentence().isEmpty() ? m_height->sentence() : m_width->sentence());
        });
    }
    m_custom->controls()->addWidget(m_width);
    m_custom->controls()->addWidget(new QLabel(u"×"_s, m_custom));
    m_custom->controls()->addWidget(m_height);
    m_custom->controls()->addWidget(new QLabel(u"像素"_s, m_custom));
    m_custom->controls()->addStretch();
    rows()->addWidget(m_custom);

    connect(m_size, &ChoiceBox::activated, this, [this](int index) {
        const QVariant size = m_size->itemData(index);
        m_isCustom = !size.isValid();
        if (m_isCustom)
            followFrameSize(model().options());
        else
            setFrameSize(size.toSize().width(), size.toSize().height());
    });
    whenChanged([this](const Options &options) { followFrameSize(options); });
}

void DocumentControls::setFrameSize(qint64 width, qint64 height)
{
    change([&](Options &options) { options = FrameSizes::resized(options, width, height); });
    followFrameSize(model().options());
}

void DocumentControls::followFrameSize(const Options &options)
{
    const QSignalBlocker quietly(m_size);
    m_size->clear();
    for (const FrameSizes::Choice &choice : FrameSizes::choices())
        m_size->addItem(choice.caption, choice.size);
    if (const auto &settings = model().keptProject().settings()) {
        const QSize size(int(settings->width), int(settings->height));
        m_size->addItem(u"项目自己的尺寸 %1"_s.arg(FrameSizes::write(settings->width, settings->height)), size);
    }
    m_size->addItem(u"自定义"_s);
    const int known = m_size->findData(QSize(int(options.width), int(options.height)));
    m_size->setCurrentIndex(m_isCustom || known < 0 ? m_size->count() - 1 : known);
    m_width->setValue(double(options.width));
    m_height->setValue(double(options.height));
    m_custom->setVisible(m_size->currentIndex() == m_size->count() - 1);
}

void DocumentControls::addFrameRate()
{
    auto *const row = new FieldRow(u"帧率"_s, this);
    m_rate = new ChoiceBox(u"帧率"_s, row);
    row->label()->setBuddy(m_rate);
    row->controls()->addWidget(m_rate, 1);
    rows()->addWidget(row);
    connect(m_rate, &ChoiceBox::activated, this, [this](int index) {
        const FrameRate rate = m_rates.at(index);
        if (rate != model().options().rate)
            change([&](Options &options) { options.rate = rate; });
        followFrameRate(model().options());
    });
    whenChanged([this](const Options &options) { followFrameRate(options); });
}

void DocumentControls::followFrameRate(const Options &options)
{
    const QSignalBlocker quietly(m_rate);
    m_rate->clear();
    m_rates.clear();
    const auto add = [this](const QString &caption, const FrameRate &rate) {
        m_rate->addItem(caption.arg(rate.label));
        m_rates += rate;
    };
    for (const FrameRate &rate : FrameRate::all())
        add(u"%1 帧/秒"_s, rate);
    if (const auto &settings = model().keptProject().settings())
        add(u"项目 · %1 帧/秒"_s, settings->rate);
    if (!m_rates.contains(options.rate))
        add(u"%1 帧/秒"_s, options.rate);
    m_rate->setCurrentIndex(int(m_rates.indexOf(options.rate)));
}

void DocumentControls::addShift()
{
    ValueEdit::Kind kind;
    kind.name = u"时间偏移"_s;
    kind.lowest = double(-TimeShift::longest);
    kind.highest = double(TimeShift::longest);
    kind.step = 100;
    kind.unit = u"毫秒"_s;
    kind.sentence = u"请输入毫秒数（如 -500），或 时:分:秒,毫秒（如 -00:00:01,500），不超过 24 小时。"_s;
    kind.read = [](const QString &text) {
        const auto shift = TimeShift::parse(text);
        return shift ? std::optional(double(*shift)) : std::nullopt;
    };
    auto *const row = new ValueField(kind, {.lowest = -5000, .highest = 5000, .step = 10}, this);
    rows()->addWidget(row);
    connectGestures(*row);
    connect(row, &ValueField::edited, this,
            [this](double value) { change([&](Options &options) { options.shiftMS = qint64(value); }); });
    whenChanged([row](const Options &options) {
        row->setValue(double(options.shiftMS));
        row->setNote(options.shiftMS == 0 ? QString() : TimeShift::describe(options.shiftMS));
    });
}

void DocumentControls::addNames()
{
    TextField *const name = addText(u"项目名称"_s, judgeName);
    connect(name, &TextField::edited, this,
            [this](const QString &text) { change([&](Options &options) { options.name = text; }); });
    whenChanged([name](const Options &options) { name->setText(options.name); });

    TextField *const role = addText(u"字幕角色"_s, judgeText);
    role->edit()->setPlaceholderText(u"titles.字幕"_s);
    connect(role, &TextField::edited, this, [this](const QString &text) {
        const QString trimmed = text.trimmed();
        change(
            [&](Options &options) { options.titleRole = trimmed.isEmpty() ? std::nullopt : std::optional(trimmed); });
    });
    whenChanged([role](const Options &options) { role->setText(options.titleRole.value_or(QString())); });
}
