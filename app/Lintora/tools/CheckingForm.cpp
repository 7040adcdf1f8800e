#include "app/Lintora/tools/CheckingForm.h"

#include "app/Lintora/controls/CheckBox.h"
#include "app/Lintora/controls/ChoiceBox.h"
#include "app/Lintora/controls/Controls.h"
#include "app/Lintora/controls/TextField.h"
#include "app/Lintora/controls/ValueField.h"

#include <QGridLayout>
#include <QPushButton>
#include <QRegularExpression>
#include <QScrollArea>
#include <QVBoxLayout>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

constexpr int ruleColumns = 3;

/// "账号/帐号，其他/其它": the ways to write a term, the preferred one first.
QString textOf(const QList<QStringList> &terms)
{
    QStringList all;
    for (const QStringList &ways : terms)
        all += ways.join(u'/');
    return all.join(u'，');
}

QList<QStringList> termsOf(const QString &text)
{
    static const QRegularExpression border(u"\\s*[,，;；]\\s*"_s);
    QList<QStringList> terms;
    for (const QString &term : text.trimmed().split(border, Qt::SkipEmptyParts)) {
        const QStringList ways = term.split(u'/', Qt::SkipEmptyParts);
        if (!ways.isEmpty())
            terms += ways;
    }
    return terms;
}

/// Why the terms are none; a term needs two ways to be written.
QString judgeTerms(const QString &text)
{
    for (const QStringList &ways : termsOf(text)) {
        if (ways.size() < 2)
            return u"“%1”只有一种写法，请写成“账号/帐号”"_s.arg(ways.front());
    }
    return {};
}

QVBoxLayout *column(QWidget *widget)
{
    auto *const layout = new QVBoxLayout(widget);
    layout->setContentsMargins(0, VELTheme::step, 0, VELTheme::step);
    layout->setSpacing(VELTheme::step);
    return layout;
}

} // namespace

CheckingForm::CheckingForm(LintoraModel &model, QWidget *parent)
    : QWidget(parent)
    , m_model(model)
    , m_tools(model.cueTools())
{
    QVBoxLayout &form = *column(this);
    form.addWidget(makeSet());
    auto *const columns = new ValueField({.name = u"每行宽度"_s, .lowest = 4, .highest = 100, .unit = u"字"_s},
                                         {.lowest = 4, .highest = 60}, this);
    addNumber(
        form, columns, [](const CheckLimits &limits) { return limits.columns; },
        [](CheckLimits &limits, double value) { limits.columns = value; });
    m_first = columns->edit();
    addNumber(
        form,
        new ValueField({.name = u"每秒字数"_s, .lowest = 1, .highest = 100, .unit = u"字"_s},
                       {.lowest = 1, .highest = 30}, this),
        [](const CheckLimits &limits) { return double(limits.speed.chinese); },
        [](CheckLimits &limits, double value) { limits.speed.chinese = qRound64(value); });
    m_page = makePage();
    connect(&m_tools, &CueTools::settingsChanged, this, &CheckingForm::follow);
    follow();
}

void CheckingForm::addNumber(QVBoxLayout &form, ValueField *field, std::function<double(const CheckLimits &)> get,
                             std::function<void(CheckLimits &, double)> set)
{
    form.addWidget(field);
    m_numbers.emplace_back(field, std::move(get));
    connect(field, &ValueField::edited, this,
            [this, set = std::move(set)](double value) { change([&](CheckLimits &limits) { set(limits, value); }); });
}

QWidget *CheckingForm::makeSet()
{
    auto *const row = new FieldRow(u"规则"_s, this);
    m_set = new ChoiceBox(u"规则"_s, row);
    m_set->addItems({u"中文"_s, u"英文"_s, u"自定"_s});
    connect(m_set, &ChoiceBox::activated, this, &CheckingForm::choose);
    auto *const all = Controls::button(u"全部限值"_s, row, u"显示全部限值与规则，再按一次回到结果"_s);
    all->setCheckable(true);
    connect(all, &QPushButton::toggled, this, &CheckingForm::pageRequested);
    auto *const load = Controls::button(u"载入…"_s, row, u"载入规则文件，与命令行 check --limits 相同"_s);
    load->setAccessibleName(u"载入规则"_s);
    connect(load, &QPushButton::clicked, this, [this] {
        m_model.dialogs().open({.title = u"载入规则"_s, .extensions = {u"json"_s}},
                               [this](const QString &path) { m_tools.readLimits(path); });
    });
    auto *const save = Controls::button(u"存储…"_s, row, u"存为规则文件，供他人或命令行使用"_s);
    save->setAccessibleName(u"存储规则"_s);
    connect(save, &QPushButton::clicked, this, [this] {
        m_model.dialogs().save({.title = u"存储规则"_s, .suggestion = u"检查规则.json"_s, .extension = u"json"_s},
                               [this](const QString &path) { m_tools.writeLimits(path); });
    });
    row->controls()->addWidget(m_set);
    row->controls()->addStretch(1);
    for (QPushButton *const button : {all, load, save})
        row->controls()->addWidget(button);
    return row;
}

QWidget *CheckingForm::makePage()
{
    auto *const page = new QWidget(this);
    QVBoxLayout &form = *column(page);
    addNumbers(form, page);
    m_terms = new TextField(u"术语"_s, judgeTerms, page);
    m_terms->setNote(u"同一词的几种写法，以 / 分开，首选在前；词与词以逗号分开。"_s);
    connect(m_terms, &TextField::edited, this,
            [this](const QString &text) { change([&](CheckLimits &limits) { limits.terms = termsOf(text); }); });
    form.addWidget(m_terms);
    form.addWidget(makeRules(page));
    form.addStretch(1);
    QScrollArea *const area = Controls::scrolling(page, this);
    area->hide();
    return area;
}

void CheckingForm::addNumbers(QVBoxLayout &form, QWidget *page)
{
    struct Number
    {
        QString name;
        QString unit;
        double lowest;
        double highest; ///< Of what may be typed.
        double reach;   ///< Of the slider.
        qint64 CheckLimits::*limit;
    };
    const Number numbers[] = {{u"每条行数"_s, u"行"_s, 1, 100, 4, &CheckLimits::lines},
                              {u"最短"_s, u"毫秒"_s, 0, 3'600'000, 2'000, &CheckLimits::shortestMS},
                              {u"最长"_s, u"毫秒"_s, 1, 3'600'000, 15'000, &CheckLimits::longestMS},
                              {u"最小间隔"_s, u"帧"_s, 0, 1'000, 12, &CheckLimits::smallestGapFrames},
                              {u"重复间隔"_s, u"毫秒"_s, 0, 3'600'000, 10'000, &CheckLimits::doubledWithinMS}};
    addNumber(
        form,
        new ValueField({.name = u"每秒字母"_s, .lowest = 1, .highest = 1'000, .unit = u"个"_s},
                       {.lowest = 1, .highest = 40}, page),
        [](const CheckLimits &limits) { return double(limits.speed.latin); },
        [](CheckLimits &limits, double value) { limits.speed.latin = qRound64(value); });
    for (const Number &number : numbers) {
        auto *const field = new ValueField(
            {.name = number.name, .lowest = number.lowest, .highest = number.highest, .unit = number.unit},
            {.lowest = number.lowest, .highest = number.reach}, page);
        addNumber(
            form, field, [limit = number.limit](const CheckLimits &limits) { return double(limits.*limit); },
            [limit = number.limit](CheckLimits &limits, double value) { limits.*limit = qRound64(value); });
    }
}

QWidget *CheckingForm::makeRules(QWidget *page)
{
    auto *const row = new FieldRow(u"检查"_s, page);
    auto *const box = new QWidget(row);
    auto *const grid = new QGridLayout(box);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->setSpacing(VELTheme::step);
    for (const CheckRule rule : CheckRules::all()) {
        auto *const check = new CheckBox(CheckRules::title(rule), box);
        check->setAccessibleName(check->text());
        const auto index = static_cast<int>(m_rules.size());
        grid->addWidget(check, index / ruleColumns, index % ruleColumns);
        m_rules.emplace_back(check, rule);
        connect(check, &CheckBox::clicked, this, [this, rule](bool looks) {
            change([&](CheckLimits &limits) {
                if (looks)
                    limits.off.erase(rule);
                else
                    limits.off.insert(rule);
            });
        });
    }
    row->controls()->addWidget(box, 1);
    row->label()->setAlignment(Qt::AlignTop);
    row->label()->setContentsMargins(0, VELTheme::step + 2, 0, 0);
    return row;
}

/// A set that comes with the program; the person's own is what stands, and stays.
void CheckingForm::choose(int index)
{
    if (index < CheckLimits::builtIn().size())
        put(CheckLimits::builtIn().at(index));
    else
        change([](CheckLimits &) {});
}

/// What is no set of the program any more does not go by its name.
void CheckingForm::change(const std::function<void(CheckLimits &)> &change)
{
    CheckLimits changed = limits();
    change(changed);
    const auto &sets = CheckLimits::builtIn();
    if (std::any_of(sets.begin(), sets.end(), [&](const CheckLimits &set) { return set.name == changed.name; }))
        changed.name = u"自定"_s;
    put(changed);
}

void CheckingForm::put(const CheckLimits &limits)
{
    CueTools::Settings settings = m_tools.settings();
    settings.limits = limits;
    m_tools.setSettings(settings);
}

void CheckingForm::follow()
{
    const CheckLimits &now = limits();
    const qsizetype known = CheckLimits::builtIn().indexOf(now);
    const int own = m_set->count() - 1;
    m_set->setItemText(own, known < 0 && !now.name.isEmpty() ? now.name : u"自定"_s);
    m_set->setCurrentIndex(known < 0 ? own : int(known));
    for (const auto &[field, get] : m_numbers)
        field->setValue(get(now));
    for (const auto &[box, rule] : m_rules)
        box->setChecked(now.looksAt(rule));
    m_terms->setText(textOf(now.terms));
}
