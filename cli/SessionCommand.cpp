#include "cli/Commands.h"
#include "cli/Result.h"
#include "cli/StandardStreams.h"
#include "store/LaunchLink.h"
#include "store/LintoraSession.h"

#include <QFileInfo>

#include <memory>
#include <optional>

using namespace Qt::StringLiterals;

namespace Commands {

namespace {

struct SessionArguments
{
    std::optional<std::string> input;
    std::optional<std::string> link;
    std::optional<std::string> linkedFile;
    Arguments::Output output;
};

QString summary(const LintoraSession &session)
{
    // One replacement for all, so that a name with "%1" in it stays a name.
    QString text = u"来源：%1\n字幕：%2 条\n"_s.arg(session.source, QString::number(session.items.size()));
    for (const SubtitleTrack &track : session.tracks.value_or(QList<SubtitleTrack>())) {
        const QStringView mark = track.id == session.selectedTrackID ? u"（当前）" : u"";
        text += u"语言组：%1，%2 条%3\n"_s.arg(track.label, QString::number(track.items.size()), mark);
    }
    return text;
}

/// A session from a file, or from what may keep us waiting: standard input or a pipe.
LintoraSession readSession(const std::string &input)
{
    const QString path = Arguments::toPath(input);
    if (input != "-" && !StandardStreams::isPipe(path))
        return LintoraSession::read(path);
    const auto bytes = input == "-" ? StandardStreams::readUpTo(LintoraSession::sizeLimit)
                                    : StandardStreams::readPipe(path, LintoraSession::sizeLimit);
    // More than the limit is more by one byte, too.
    return LintoraSession::decode(bytes.value_or(QByteArray(LintoraSession::sizeLimit + 1, ' ')));
}

void checkSession(const std::string &input, const Arguments::Output &output)
{
    const LintoraSession session = readSession(input);
    Result::deliver(
        output, [&](Utf8Writer &out) { out.text(summary(session)); },
        [&](JsonWriter &json) { writeLintoraSession(json, session); });
}

/// Delivers one line, which the JSON calls `name`.
void deliverLine(const Arguments::Output &output, QByteArrayView name, const QString &line)
{
    Result::deliver(
        output, [&](Utf8Writer &out) { out.text(line + u'\n'); },
        [&](JsonWriter &json) {
            json.beginObject();
            json.key(name).text(line);
            json.endObject();
        });
}

void runSession(const SessionArguments &arguments)
{
    if (arguments.input.has_value() + arguments.link.has_value() + arguments.linkedFile.has_value() != 1)
        throw Arguments::WrongUse(u"请指定一个会话文件、--link 或 --make-link"_s);
    if (arguments.input) {
        checkSession(*arguments.input, arguments.output);
    } else if (arguments.link) {
        const QUrl link(Arguments::toText(*arguments.link), QUrl::StrictMode);
        deliverLine(arguments.output, "file", LaunchLink::sessionFile(link));
    } else {
        const QFileInfo file(Arguments::toPath(*arguments.linkedFile));
        const QUrl link = LaunchLink::launchURL(file.absoluteFilePath());
        deliverLine(arguments.output, "link", QString::fromLatin1(link.toEncoded()));
    }
}

} // namespace

void addSession(CLI::App &app, Work &run)
{
    auto *const command = app.add_subcommand("session", "检查会话或草稿文件，解析或生成启动链接");
    const auto arguments = std::make_shared<SessionArguments>();
    command->add_option("file", arguments->input, "会话或草稿文件，- 表示标准输入")->type_name("FILE");
    command->add_option("--link", arguments->link, "检查启动链接，显示它指向的会话文件")->type_name("链接");
    command->add_option("--make-link", arguments->linkedFile, "生成打开此会话文件的启动链接")
        ->type_name("文件")
        ->check(Arguments::notEmpty);
    arguments->output.addPath(*command);
    arguments->output.addJson(*command);
    arguments->output.addProgress(*command);
    command->footer("示例：\n"
                    "  lintora-cli session 草稿.json --json\n"
                    "  lintora-cli session --link 'lintora://floating?session=/Users/…'");
    command->callback([&run, arguments] { run = [arguments] { runSession(*arguments); }; });
}

} // namespace Commands
