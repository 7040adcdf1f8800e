#include "cli/Commands.h"
#include "cli/Result.h"
#include "fcp/FCPXML.h"

#include <QLocale>

#include <memory>

using namespace Qt::StringLiterals;

namespace Commands {

namespace {

struct SettingsArguments
{
    std::string input;
    Arguments::Output output;
};

QString summary(const Options &options)
{
    // One replacement for all, so that a name with "%1" in it stays a name.
    return u"名称：%1\n帧率：%2\n画面：%3 × %4\n字号：%5\n"_s.arg(
        options.name, options.rate.label, QString::number(options.width), QString::number(options.height),
        QString::number(options.fontSize, 'f', QLocale::FloatingPointShortest));
}

void runSettings(const SettingsArguments &arguments)
{
    const XmlDocument document = Arguments::readProject(arguments.input);
    const Options options = FCPXML::settings(Options(), document);
    Result::deliver(
        arguments.output, [&](Utf8Writer &out) { out.text(summary(options)); },
        [&](JsonWriter &json) { writeOptions(json, options); });
}

} // namespace

void addSettings(CLI::App &app, Work &run)
{
    auto *const command = app.add_subcommand("settings", "显示与项目匹配的导出设置");
    const auto arguments = std::make_shared<SettingsArguments>();
    Arguments::addProject(*command, arguments->input);
    arguments->output.addPath(*command);
    arguments->output.addJson(*command);
    arguments->output.addProgress(*command);
    command->footer("示例：\n  lintora-cli settings 粗剪.fcpxmld --json > 样式.json");
    command->callback([&run, arguments] { run = [arguments] { runSettings(*arguments); }; });
}

} // namespace Commands
