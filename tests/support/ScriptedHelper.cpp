// Plays a helper program as the file NAME.script beside it says, one command a line:
//
//   print TEXT | complain TEXT      a line on standard output, on standard error
//   flood output|errors BYTES       so many bytes on one of them
//   result TEXT                     writes TEXT where -of says, with .json behind; "result-size BYTES" blanks
//   wav SECONDS [HUM]               writes that much silence, and so many seconds of a hum, to the last argument, if
//   that is a file sound SILENT_MS LOUD_MS         so much of it as samples on standard output; loud is half of full
//   scale pause                           waits until a file "go-on" is there ignore                          ignores
//   SIGTERM from now on child [away]                    starts a child that ignores SIGTERM and waits; away: in a
//   session of its own wait                            waits for a signal exit STATUS health STATUS|hang … what /health
//   answers, in turn, the last one again and again; hang: nothing completion echo|crash|hang|status N|answer JSON   the
//   same for /completion, one a line; answer: the content's text serve                           serves on --port, as
//   llama-server does
//
// Its arguments go to NAME.arguments, request bodies to NAME.requests, the process ids of all it starts to "processes".

#include <QByteArray>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QStringList>

#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>

using namespace Qt::StringLiterals;

namespace {

QStringList arguments;
QString self; // this program's path, without which nothing is found

void append(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    if (!file.open(QIODevice::Append) || file.write(bytes) != bytes.size())
        _exit(99);
}

QString besides(const QString &name)
{
    return self.section(u'/', 0, -2) + u'/' + name;
}

void enrol()
{
    append(besides(u"processes"_s), QByteArray::number(getpid()) + '\n');
}

[[noreturn]] void waitForSignals()
{
    for (;;)
        pause();
}

void flood(int stream, qint64 bytes)
{
    const QByteArray block(64 * 1024, 'x');
    while (bytes > 0) {
        const auto written = write(stream, block.constData(), size_t(std::min<qint64>(bytes, block.size())));
        if (written <= 0)
            _exit(98);
        bytes -= written;
    }
}

QString valueOf(const QString &option)
{
    return arguments.value(arguments.indexOf(option) + 1);
}

void writeSound(double silence, double hum)
{
    if (arguments.last().startsWith(u"pipe:"))
        return;
    const auto silent = quint32(silence * 16'000) * 2;
    const auto bytes = silent + quint32(hum * 16'000) * 2;
    const auto number = [](quint32 value, int size) {
        return QByteArray(reinterpret_cast<const char *>(&value), size);
    };
    append(arguments.last(), "RIFF" + number(36 + bytes, 4) + "WAVEfmt " + number(16, 4) + number(1, 2) + number(1, 2) +
                                 number(16'000, 4) + number(32'000, 4) + number(2, 2) + number(16, 2) + "data" +
                                 number(bytes, 4) + QByteArray(silent, '\0') + QByteArray(bytes - silent, '\1'));
}

void writeSamples(qint64 silentMS, qint64 loudMS)
{
    QByteArray bytes(silentMS * 32, '\0');
    for (qint64 i = 0; i < loudMS * 16; ++i)
        bytes.append(i % 2 == 0 ? QByteArray("\x00\x40", 2) : QByteArray("\x00\xc0", 2));
    append(u"/dev/stdout"_s, bytes);
}

void startChild(bool isAway)
{
    int ready[2];
    if (pipe(ready) != 0)
        _exit(97);
    if (fork() == 0) {
        std::signal(SIGTERM, SIG_IGN);
        if (isAway)
            setsid();
        enrol();
        close(ready[1]);
        close(ready[0]);
        waitForSignals();
    }
    close(ready[1]);
    char end = 0;
    [[maybe_unused]] const auto size = read(ready[0], &end, 1);
}

/// What a service answers, in turn.
class Turns
{
public:
    void add(const QString &turn) { m_turns.append(turn); }
    QString next() { return m_turns.size() > 1 ? m_turns.takeFirst() : m_turns.value(0); }

private:
    QStringList m_turns;
};

Turns health;
Turns completion;

/// Every row's text with "译" before it.
QByteArray echo(const QByteArray &body)
{
    const QString prompt = QJsonDocument::fromJson(body).object().value(u"prompt").toString();
    const qsizetype begin = prompt.indexOf(u"<|im_start|>user\n") + 17;
    const qsizetype end = prompt.indexOf(u"\n<|im_end|>", begin);
    const QJsonArray rows = QJsonDocument::fromJson(prompt.mid(begin, end - begin).toUtf8()).array();
    QJsonArray entries;
    for (const auto &row : rows) {
        QJsonObject entry;
        entry.insert(u"id", row.toObject().value(u"id"));
        entry.insert(u"text", QString(u"译"_s + row.toObject().value(u"text").toString()));
        entries.append(entry);
    }
    return QJsonDocument(QJsonObject{{u"translations"_s, entries}}).toJson(QJsonDocument::Compact);
}

void reply(int connection, int status, const QByteArray &body)
{
    const QByteArray text = "HTTP/1.1 " + QByteArray::number(status) +
                            " Scripted\r\nContent-Type: application/json\r\n"
                            "Connection: close\r\nContent-Length: " +
                            QByteArray::number(body.size()) + "\r\n\r\n" + body;
    [[maybe_unused]] const auto written = write(connection, text.constData(), size_t(text.size()));
}

/// Says nothing until the client gives up.
void waitForClient(int connection)
{
    char byte = 0;
    while (read(connection, &byte, 1) > 0) {
    }
}

void complete(int connection, const QByteArray &body)
{
    append(self + u".requests"_s, body + '\n');
    const QString turn = completion.next();
    if (turn == u"crash")
        _exit(3);
    if (turn == u"hang")
        return waitForClient(connection);
    if (turn.startsWith(u"status "))
        return reply(connection, turn.mid(7).toInt(), "{}");
    const QByteArray content = turn == u"echo" ? echo(body) : turn.mid(7).toUtf8();
    const QJsonObject answer{{u"content"_s, QString::fromUtf8(content)}, {u"stop_type"_s, u"eos"_s}};
    reply(connection, 200, QJsonDocument(answer).toJson());
}

void answer(int connection)
{
    QByteArray request;
    char block[4096];
    qsizetype head = -1;
    qsizetype length = 0;
    while (head < 0 || request.size() < head + length) {
        const auto size = read(connection, block, sizeof block);
        if (size <= 0)
            return;
        request.append(block, size);
        head = request.indexOf("\r\n\r\n") + 4;
        if (head < 4)
            head = -1;
        const QByteArray lower = request.toLower();
        const qsizetype at = lower.indexOf("content-length:");
        length = at < 0 ? 0 : lower.mid(at + 15, lower.indexOf('\r', at) - at - 15).trimmed().toLongLong();
    }
    if (!request.startsWith("GET /health")) {
        if (!request.contains("Bearer " + valueOf(u"--api-key"_s).toUtf8()))
            return reply(connection, 401, "{}");
        return complete(connection, request.mid(head));
    }
    const QString turn = health.next();
    if (turn == u"hang")
        return waitForClient(connection);
    reply(connection, turn.toInt(), "{}");
}

[[noreturn]] void serve()
{
    const int listener = socket(AF_INET, SOCK_STREAM, 0);
    const int on = 1;
    setsockopt(listener, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_port = htons(valueOf(u"--port"_s).toUShort());
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (bind(listener, reinterpret_cast<const sockaddr *>(&address), sizeof address) != 0 || listen(listener, 8) != 0)
        _exit(96);
    for (;;) {
        const int connection = accept(listener, nullptr, nullptr);
        answer(connection);
        close(connection);
    }
}

void play(const QString &line)
{
    const QString command = line.section(u' ', 0, 0);
    const QString rest = line.section(u' ', 1);
    if (command == u"print")
        append(u"/dev/stdout"_s, rest.toUtf8() + '\n');
    else if (command == u"complain")
        append(u"/dev/stderr"_s, rest.toUtf8() + '\n');
    else if (command == u"flood")
        flood(rest.startsWith(u"output") ? STDOUT_FILENO : STDERR_FILENO, rest.section(u' ', 1).toLongLong());
    else if (command == u"result")
        append(valueOf(u"-of"_s) + u".json"_s, rest.toUtf8());
    else if (command == u"result-size")
        append(valueOf(u"-of"_s) + u".json"_s, QByteArray(rest.toInt(), ' '));
    else if (command == u"wav")
        writeSound(rest.section(u' ', 0, 0).toDouble(), rest.section(u' ', 1).toDouble());
    else if (command == u"sound")
        writeSamples(rest.section(u' ', 0, 0).toLongLong(), rest.section(u' ', 1).toLongLong());
    else if (command == u"pause")
        while (!QFile::exists(besides(u"go-on"_s)))
            usleep(1'000);
    else if (command == u"ignore")
        std::signal(SIGTERM, SIG_IGN);
    else if (command == u"child")
        startChild(rest == u"away");
    else if (command == u"wait")
        waitForSignals();
    else if (command == u"exit")
        _exit(rest.toInt());
    else if (command == u"health")
        for (const QString &turn : rest.split(u' '))
            health.add(turn);
    else if (command == u"completion")
        completion.add(rest);
    else if (command == u"serve")
        serve();
    else
        _exit(95);
}

} // namespace

int main(int argc, char **argv)
{
    self = QFile::decodeName(argv[0]);
    for (int i = 1; i < argc; ++i)
        arguments.append(QFile::decodeName(argv[i]));
    enrol();
    append(self + u".arguments"_s, arguments.join(u'\n').toUtf8() + "\n\n");
    QFile script(self + u".script"_s);
    if (!script.open(QIODevice::ReadOnly))
        return 94;
    const QStringList lines = QString::fromUtf8(script.readAll()).split(u'\n', Qt::SkipEmptyParts);
    for (const QString &line : lines)
        play(line);
    return 0;
}
