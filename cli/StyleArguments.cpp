#include "cli/StyleArguments.h"

#include "cli/Arguments.h"
#include "core/ConversionError.h"
#include "core/Failure.h"
#include "core/json/JsonReader.h"
#include "fcp/ColorText.h"
#include "fcp/FCPXML.h"
#include "store/StylePresetStore.h"

#include <QRegularExpression>
#include <QStringList>

#include <CLI/Option.hpp>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

constexpr qint64 largestRecord = 1024 * 1024; // bytes

/// Colours of eight bits a channel, in the form of the record: "1 0.501961 0 1".
QString colorFromHex(const QString &text)
{
    const QByteArray channels = QByteArray::fromHex(text.mid(1).toLatin1());
    QStringList parts;
    for (const char channel : channels) {
        // Six digits tell all 256 levels apart, and are what Final Cut Pro writes.
        parts += QString::number(double(static_cast<quint8>(channel)) / 255, 'g', 6);
    }
    if (parts.size() == 3)
        parts += u"1"_s;
    return parts.join(u' ');
}

bool isHexColor(const QString &text)
{
    return text.startsWith(u'#') && (text.size() == 7 || text.size() == 9) &&
           std::all_of(text.begin() + 1, text.end(),
                       [](QChar c) { return QStringView(u"0123456789abcdefABCDEF").contains(c); });
}

/// Plain decimal notation, "-12.5": neither a locale's comma nor an exponent, hexadecimal or octal.
bool isDecimal(QStringView text)
{
    static const QRegularExpression decimal(u"\\A[+-]?(?:[0-9]+(?:\\.[0-9]*)?|\\.[0-9]+)\\z"_s);
    return decimal.match(text).hasMatch();
}

/// A colour of the record, in plain notation.
bool isRecordColor(const QString &text)
{
    const auto isPlain = [](QStringView part) { return isDecimal(part) && !part.startsWith(u'+'); };
    return ColorText::read(text) && std::ranges::all_of(QStringView(text).split(u' '), isPlain);
}

QString readColor(const std::string &argument)
{
    QString text = Arguments::toText(argument);
    if (isHexColor(text))
        return colorFromHex(text);
    if (!isRecordColor(text))
        throw Arguments::WrongUse(u"颜色无效：%1（应为 \"1 1 1 1\" 或 #RRGGBB[AA]）"_s.arg(text));
    return text;
}

double readNumber(const std::string &argument)
{
    const QString text = Arguments::toText(argument);
    if (!isDecimal(text))
        throw Arguments::WrongUse(u"数值无效：%1"_s.arg(text));
    return text.toDouble();
}

qint64 readInteger(const QString &text)
{
    bool isNumber = false;
    const qint64 value = text.toLongLong(&isNumber);
    if (!isNumber || !isDecimal(text) || text.contains(u'.'))
        throw Arguments::WrongUse(u"整数无效：%1"_s.arg(text));
    return value;
}

void applySize(const std::string &argument, Options &options)
{
    const QString text = Arguments::toText(argument);
    const QStringList parts = text.split(u'x', Qt::KeepEmptyParts, Qt::CaseInsensitive);
    if (parts.size() != 2)
        throw Arguments::WrongUse(u"画面尺寸无效：%1（应为 宽x高，例如 1920x1080）"_s.arg(text));
    options.width = readInteger(parts[0]);
    options.height = readInteger(parts[1]);
}

void replace(double &field, const std::optional<std::string> &given)
{
    if (given)
        field = readNumber(*given);
}

Options readRecord(const std::string &argument)
{
    const QByteArray bytes = Arguments::readInput(argument, largestRecord);
    JsonReader json(bytes);
    Options options = readOptions(json);
    json.finish();
    return options;
}

void replace(bool &field, const std::optional<bool> &given)
{
    if (given)
        field = *given;
}

} // namespace

void StyleArguments::add(CLI::App &command)
{
    const std::string group = "标题样式";
    const auto add = [&](const char *name, auto &value, const char *type, const char *description) {
        command.add_option(name, value, description)->type_name(type)->group(group)->take_last();
    };
    const auto addSwitch = [&](const char *name, std::optional<bool> &value, const char *description) {
        // Not bound to the value: that would set it to false as soon as the switch is known.
        command
            .add_flag_function(
                name, [&value](std::int64_t count) { value = count > 0; }, description)
            ->group(group)
            ->take_last();
    };
    add("--options", m_optionsFile, "文件", "样式记录（settings --json 的输出）");
    add("--preset", m_preset, "名称", "已保存的样式预设；字号按画面高度换算");
    add("--template", m_template, "项目", "样式取自此项目中的一个标题：效果、参数、文字样式与位置");
    add("--template-title", m_templateTitle, "文字", "该标题的文字或名称（缺省为第一个有文字的标题）");
    add("--rate", m_rate, "帧率", "23.976、24、25、29.97、30、50、59.94 或 60");
    add("--size", m_size, "宽x高", "画面尺寸，例如 1920x1080");
    add("--font", m_font, "名称", "字体");
    add("--face", m_face, "名称", "字重，例如 Semibold");
    add("--font-size", m_fontSize, "磅", "字号");
    add("--color", m_color, "颜色", "文字颜色：\"1 1 1 1\" 或 #RRGGBB[AA]");
    addSwitch("--stroke,!--no-stroke", m_stroke, "是否描边");
    add("--stroke-width", m_strokeWidth, "0-20", "描边宽度");
    add("--stroke-color", m_strokeColor, "颜色", "描边颜色");
    addSwitch("--shadow,!--no-shadow", m_shadow, "是否加阴影");
    add("--shadow-blur", m_shadowBlur, "0-30", "阴影模糊半径");
    add("--shadow-color", m_shadowColor, "颜色", "阴影颜色");
    add("--bottom", m_bottom, "0-40", "距画面底部的百分比");
    add("--shift", m_shift, "毫秒", "全部字幕的时间偏移，可为负");
    add("--name", m_name, "名称", "项目名称");
    add("--role", m_role, "角色", "标题角色");
}

Options StyleArguments::applied(Options base) const
{
    Options options = std::move(base);
    if (m_optionsFile)
        options = Failure::naming(Arguments::toPath(*m_optionsFile), [&] { return readRecord(*m_optionsFile); });
    if (m_preset)
        options = withPreset(options, *m_preset);
    if (m_rate)
        options.rate = Arguments::toRate(*m_rate);
    if (m_size)
        applySize(*m_size, options);
    if (m_font)
        options.font = Arguments::toText(*m_font);
    if (m_face)
        options.fontFace = Arguments::toText(*m_face);
    replace(options.fontSize, m_fontSize);
    if (m_color)
        options.fontColor = readColor(*m_color);
    replace(options.strokeEnabled, m_stroke);
    replace(options.strokeWidth, m_strokeWidth);
    if (m_strokeColor)
        options.strokeColor = readColor(*m_strokeColor);
    replace(options.shadowEnabled, m_shadow);
    replace(options.shadowBlur, m_shadowBlur);
    if (m_shadowColor)
        options.shadowColor = readColor(*m_shadowColor);
    replace(options.bottomPercent, m_bottom);
    if (m_shift)
        options.shiftMS = readInteger(Arguments::toText(*m_shift));
    if (m_name)
        options.name = Arguments::toText(*m_name);
    if (m_role)
        options.titleRole = Arguments::toText(*m_role);
    return options;
}

Options StyleArguments::withPreset(const Options &options, const std::string &preset)
{
    const QList<SubtitleStylePreset> presets = StylePresetStore().load();
    return SubtitleStylePresets::named(presets, Arguments::toText(preset)).applying(options);
}

std::optional<TitleTemplate> StyleArguments::lookOfPreset(const std::string &preset)
{
    const QList<SubtitleStylePreset> presets = StylePresetStore().load();
    return SubtitleStylePresets::named(presets, Arguments::toText(preset)).look;
}

std::optional<TitleTemplate> StyleArguments::look(int minorVersion) const
{
    if (m_templateTitle && !m_template)
        throw Arguments::WrongUse(u"--template-title 须与 --template 一起使用"_s);
    if (!m_template)
        return m_preset ? lookOfPreset(*m_preset) : std::nullopt;
    const XmlDocument document = Arguments::readProject(*m_template);
    const auto projects = FCPXML::projects(document);
    const QString text = m_templateTitle ? Arguments::toText(*m_templateTitle) : QString();
    if (projects.empty())
        return TitleTemplates::read(document, nullptr, text, minorVersion);
    // Where there are several, the first that has such a title will do: what is looked for is a look.
    for (size_t i = 0; i + 1 < projects.size(); ++i) {
        try {
            return TitleTemplates::read(document, projects[i], text, minorVersion);
        } catch (const ConversionError &) { // NOLINT(bugprone-empty-catch): the next one may have it
        }
    }
    return TitleTemplates::read(document, projects.back(), text, minorVersion);
}
