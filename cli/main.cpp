#include "cli/Arguments.h"
#include "cli/Commands.h"
#include "cli/HelpFormatter.h"
#include "cli/Interrupt.h"
#include "cli/StandardStreams.h"
#include "core/Cancelled.h"
#include "core/Failure.h"
#include "core/Translations.h"

#include <QCoreApplication>
#include <QTranslator>

#include <CLI/Config.hpp>

#include <cstdlib>

using namespace Qt::StringLiterals;

namespace {

enum ExitStatus
{
    done = 0,
    refused = 1,
    wrongUse = 2,
    cancelled = 130
};

/// What goes for every command.
struct Common
{
    bool details = false; ///< Whether a refusal's detail is told too.
};

void addDetails(CLI::App &command, Common &common)
{
    command.add_flag("--details", common.details, "出错时另起一行给出细节：哪一行、哪个片段或哪个文件");
}

void addCommands(CLI::App &app, Commands::Work &run, Common &common)
{
    app.require_subcommand(1);
    app.formatter(std::make_shared<HelpFormatter>());
    app.option_defaults()->group("选项");
    app.set_help_flag("-h,--help", "显示帮助");
    app.set_version_flag("--version", "lintora-cli " LINTORA_VERSION, "显示版本");
    app.footer(
        "示例：\n  lintora-cli titles 访谈.srt -o 访谈.fcpxml --rate 25\n\n每个命令的选项：lintora-cli 命令 --help");
    Commands::addSrt(app, run);
    Commands::addTitles(app, run);
    Commands::addExtract(app, run);
    Commands::addRetext(app, run);
    Commands::addValidate(app, run);
    Commands::addClean(app, run);
    Commands::addReplace(app, run);
    Commands::addSeparate(app, run);
    Commands::addMerge(app, run);
    Commands::addAlign(app, run);
    Commands::addTime(app, run);
    Commands::addPeaks(app, run);
    Commands::addSnap(app, run);
    Commands::addBreak(app, run);
    Commands::addCheck(app, run);
    Commands::addConvertScript(app, run);
    Commands::addSettings(app, run);
    Commands::addPlan(app, run);
    Commands::addRender(app, run);
    Commands::addSession(app, run);
    Commands::addPresets(app, run);
    Commands::addTranscribe(app, run);
    Commands::addTranslate(app, run);
    Commands::addProofread(app, run);
    Commands::addModels(app, run);
    addDetails(app, common);
    for (CLI::App *const command : app.get_subcommands({})) {
        command->group("命令")->set_help_flag("-h,--help", "显示帮助");
        addDetails(*command, common);
    }
}

/// What is wrong with the command line, in Chinese. The library's own words are English and end with the culprit.
QString explain(const CLI::ParseError &error)
{
    const QString detail = QString::fromUtf8(error.what());
    const QString culprit = detail.mid(detail.lastIndexOf(u": ") + 1).trimmed();
    switch (static_cast<CLI::ExitCodes>(error.get_exit_code())) {
    case CLI::ExitCodes::RequiredError:
        return detail.startsWith(u"A subcommand") ? u"缺少命令"_s : u"缺少参数：%1"_s.arg(detail.section(u' ', 0, 0));
    case CLI::ExitCodes::ExtrasError:
        return u"不认识的参数：%1"_s.arg(culprit);
    case CLI::ExitCodes::ArgumentMismatch:
        return u"值的个数不对：%1"_s.arg(detail.section(u':', 0, 0));
    default:
        return u"参数无效：%1"_s.arg(culprit);
    }
}

ExitStatus sayWrongUse(const QString &message)
{
    StandardStreams::writeError((message + u"\n用法见 lintora-cli --help 或 lintora-cli 命令 --help"_s).toUtf8());
    return wrongUse;
}

/// The arguments from the last to the first, as the library takes them. It does not know "--with=" for an empty value,
/// which is what shells make of --with="".
std::vector<std::string> words(int argc, char **argv)
{
    std::vector<std::string> result;
    for (int i = argc - 1; i > 0; --i) {
        const std::string word = argv[i];
        const bool hasEmptyValue = word.size() > 3 && word.starts_with("--") && word.find('=') == word.size() - 1;
        if (hasEmptyValue)
            result.emplace_back();
        result.push_back(hasEmptyValue ? word.substr(0, word.size() - 1) : word);
    }
    return result;
}

ExitStatus run(int argc, char **argv, Common &common)
{
    Commands::Work work;
    CLI::App app("Lintora（VELMORA 字幕助手）命令行", "lintora-cli");
    addCommands(app, work, common);
    try {
        app.parse(words(argc, argv));
    } catch (const CLI::Success &request) {
        // Help and version are results like any other: a full disk must not go unnoticed.
        std::ostringstream text;
        app.exit(request, text, text);
        StandardStreams::write(text.str());
        StandardStreams::finish();
        return done;
    } catch (const CLI::ParseError &error) {
        // The library asks for a command before it looks at what stands in its place.
        const std::vector<std::string> unknown = app.remaining();
        if (app.get_subcommands().empty() && !unknown.empty())
            return sayWrongUse(u"不认识的命令：%1"_s.arg(QString::fromStdString(unknown.front())));
        return sayWrongUse(explain(error));
    }
    work();
    StandardStreams::finish();
    return done;
}

/// Text that is no UTF-8 would be changed on its way into a document, and a file name would name another file.
void checkEncoding(int argc, char **argv)
{
    for (int i = 1; i < argc; ++i) {
        if (!QUtf8StringView(argv[i]).isValidUtf8())
            throw Arguments::WrongUse(u"第 %1 个参数不是有效的 UTF-8"_s.arg(i));
    }
}

ExitStatus guarded(int argc, char **argv)
{
    Common common;
    try {
        checkEncoding(argc, argv);
        return run(argc, argv, common);
    } catch (const Arguments::WrongUse &error) {
        return sayWrongUse(QString::fromUtf8(error.what()));
    } catch (const Cancelled &) {
        return cancelled;
    } catch (const std::bad_alloc &) {
        StandardStreams::writeError("内存不足。");
    } catch (const std::exception &error) {
        const Failure failure = Failure::of(error);
        StandardStreams::writeError((common.details ? failure.text() : failure.sentence).toUtf8());
    }
    return refused;
}

} // namespace

int main(int argc, char **argv)
{
    StandardStreams::reserve();
    Interrupt::watch();
    const QCoreApplication application(argc, argv);
    // A library's warning must not stand beside the one sentence that the user is told.
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &) {});
    QTranslator translator;
    Translations::install(translator);
    const ExitStatus status = guarded(argc, argv);
    // A name that is being looked up cannot be given up, and an orderly end would wait for it.
    if (status == cancelled)
        std::_Exit(status);
    return status;
}
