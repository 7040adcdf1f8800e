#include "cli/Arguments.h"

#include "cli/Interrupt.h"
#include "cli/StandardStreams.h"
#include "core/ConversionError.h"
#include "core/Failure.h"
#include "core/PlatformError.h"
#include "core/files/FileReader.h"
#include "fcp/FCPXML.h"
#include "fcp/texts/ProjectTexts.h"

#include <QDir>
#include <QFile>
#include <QStringConverter>

#include <limits>

using namespace Qt::StringLiterals;

namespace Arguments {

const CLI::Validator
    notEmpty([](const std::string &value) { return value.empty() ? std::string("不能为空") : std::string(); }, "");

WrongUse::WrongUse(const QString &message)
    : std::runtime_error(message.toStdString())
{}

QString toText(const std::string &argument)
{
    return QString::fromStdString(argument);
}

QString toPath(const std::string &argument)
{
    return QFile::decodeName(argument.c_str());
}

FrameRate toRate(const std::string &argument)
{
    const QString label = toText(argument);
    QStringList labels;
    for (const FrameRate &rate : FrameRate::all()) {
        if (rate.label == label)
            return rate;
        labels += rate.label;
    }
    throw WrongUse(u"帧率无效：%1（可用：%2）"_s.arg(label, labels.join(u"、")));
}

QByteArray readInput(const std::string &argument)
{
    return readInput(argument, std::numeric_limits<qint64>::max());
}

QByteArray readInput(const std::string &argument, qint64 limit)
{
    const bool unlimited = limit == std::numeric_limits<qint64>::max();
    std::optional<QByteArray> bytes;
    if (argument == "-")
        bytes = StandardStreams::readUpTo(limit);
    else if (StandardStreams::isPipe(toPath(argument)))
        bytes = StandardStreams::readPipe(toPath(argument), limit);
    else if (unlimited)
        bytes = FileReader::readAll(toPath(argument));
    else
        bytes = FileReader::readUpTo(toPath(argument), limit);
    if (!bytes)
        throw PlatformError(u"文件过大：%1"_s.arg(toPath(argument)));
    return *std::move(bytes);
}

namespace {

/// Whether an input is no file in a folder: standard input, or a pipe.
bool isStream(const std::string &argument)
{
    return argument == "-" || StandardStreams::isPipe(toPath(argument));
}

} // namespace

QByteArray readProjectBytes(const std::string &argument)
{
    if (!isStream(argument))
        return FCPXML::bytes(toPath(argument));
    auto bytes = argument == "-" ? StandardStreams::readUpTo(FCPXML::largestFile)
                                 : StandardStreams::readPipe(toPath(argument), FCPXML::largestFile);
    if (!bytes)
        throw ConversionError(u"FCPXML 文件过大，请分段导入。"_s);
    return *std::move(bytes);
}

XmlDocument readProject(const std::string &argument)
{
    if (!isStream(argument))
        return FCPXML::document(toPath(argument));
    return FCPXML::document(readProjectBytes(argument), QDir::currentPath());
}

XmlDocument readProjectTexts(const std::string &argument)
{
    const QByteArray bytes = readProjectBytes(argument);
    const auto read = [&] { return ProjectTexts::document(bytes, Interrupt::check); };
    return isStream(argument) ? read() : Failure::naming(FCPXML::fileOf(toPath(argument)), read);
}

QString readText(const std::string &argument)
{
    const QByteArray bytes = readInput(argument);
    const auto encoding = QStringConverter::encodingForData(bytes).value_or(QStringConverter::Utf8);
    QStringDecoder decoder(encoding, QStringConverter::Flag::Stateless);
    QString text = decoder(bytes);
    // The decoder lets half a character of UTF-16 pass.
    const bool isWhole = encoding == QStringConverter::Utf8 || bytes.size() % 2 == 0;
    if (decoder.hasError() || !isWhole || !text.isValidUtf16())
        throw ConversionError(u"文本编码不支持。请先另存为 UTF-8 或 UTF-16。"_s);
    text.replace(u"\r\n"_s, u"\n"_s).replace(u'\r', u'\n');
    return text;
}

void addCues(CLI::App &command, std::string &input)
{
    command.add_option("input", input, "SRT 文件，- 表示标准输入")->required()->type_name("IN.srt")->check(notEmpty);
}

void addProject(CLI::App &command, std::string &input, const char *what)
{
    command.add_option("project", input, std::string(what) + "（.fcpxml 或 .fcpxmld），- 表示标准输入")
        ->required()
        ->type_name("PROJECT")
        ->check(notEmpty);
}

void Output::addPath(CLI::App &command)
{
    command.add_option("-o,--output", path, "结果写入此文件（整体替换；缺省为标准输出）")
        ->type_name("文件")
        ->check(notEmpty)
        ->take_last();
}

void Output::addJson(CLI::App &command)
{
    command.add_flag("--json", json, "输出机器可读的 JSON");
}

void Output::addProgress(CLI::App &command)
{
    command.add_flag("--progress", progress, "始终在标准错误上显示进度");
    command.add_flag("-q,--quiet", quiet, "不显示进度");
}

bool Output::isHeard() const
{
    return !quiet && (progress || StandardStreams::errorIsTerminal());
}

void Output::report(const QString &line) const
{
    if (isHeard())
        StandardStreams::writeError(line.toUtf8());
}

} // namespace Arguments
