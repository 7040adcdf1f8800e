#include "cli/Arguments.h"

#include "cli/StandardStreams.h"
#include "core/ConversionError.h"
#include "core/FileReader.h"

#include <QFile>
#include <QFileInfo>
#include <QStringConverter>

using namespace Qt::StringLiterals;

namespace Arguments {

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

QByteArray readInput(const std::string &argument)
{
    if (argument == "-")
        return StandardStreams::readAll();
    const QFileInfo file(toPath(argument));
    const bool isPipe = file.exists() && !file.isFile() && !file.isDir();
    return isPipe ? StandardStreams::readPipe(file.filePath()) : FileReader::readAll(file.filePath());
}

QString readText(const std::string &argument)
{
    const QByteArray bytes = readInput(argument);
    const auto encoding = QStringConverter::encodingForData(bytes).value_or(QStringConverter::Utf8);
    QStringDecoder decoder(encoding, QStringConverter::Flag::Stateless);
    QString text = decoder(bytes);
    if (decoder.hasError())
        throw ConversionError(u"文本编码不支持。请先另存为 UTF-8 或 UTF-16。"_s);
    text.replace(u"\r\n"_s, u"\n"_s).replace(u'\r', u'\n');
    return text;
}

void Output::addPath(CLI::App &command)
{
    command.add_option("-o,--output", path, "结果写入此文件（整体替换；缺省为标准输出）")->type_name("文件");
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

void Output::report(const QString &line) const
{
    if (!quiet && (progress || StandardStreams::errorIsTerminal()))
        StandardStreams::writeError(line.toUtf8());
}

} // namespace Arguments
