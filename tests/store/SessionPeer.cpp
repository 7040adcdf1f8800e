#include "core/PlatformError.h"
#include "core/files/AtomicFile.h"
#include "tests/support/Generator.h"
#include "tests/support/Sessions.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTextStream>
#include <QThread>

#include <cstdlib>

using namespace Qt::StringLiterals;

/// The other program of a shared session: session_peer FILE COUNT writes `COUNT` versions "peer 0", "peer 1" … in every
/// manner, good and bad, and ends with 1 if it ever reads a file that neither program wrote whole.
namespace {

class Peer
{
public:
    explicit Peer(const QString &path)
        : m_path(path)
    {}

    bool readsWhole() const
    {
        QFile file(m_path);
        if (!file.open(QIODevice::ReadOnly))
            return true;
        const QByteArray bytes = file.readAll();
        if (m_torn.startsWith(bytes))
            return true;
        try {
            return Sessions::isUniform(LintoraSession::decode(bytes));
        } catch (const std::exception &error) {
            QTextStream(stderr) << "torn: " << error.what() << ' ' << bytes.size() << Qt::endl;
            return false;
        }
    }

    void write(int number)
    {
        const LintoraSession session = Sessions::uniform(u"peer %1"_s.arg(number), m_generator.number(0, 300));
        const QByteArray bytes = session.encoded();
        switch (m_generator.number(0, 7)) {
        case 0:
            writeSlowly(bytes, bytes.size());
            break;
        case 1:
            writeSlowly(bytes, m_generator.number(0, bytes.size() - 1));
            break;
        case 2:
            QFile::remove(m_path);
            break;
        case 3:
            QFile::remove(m_path);
            QDir().mkdir(m_path);
            break;
        case 4:
            QFile::setPermissions(m_path, {});
            break;
        default:
            writeWhole(bytes);
        }
    }

    void writeWhole(const QByteArray &bytes)
    {
        clear();
        try {
            AtomicFile file(m_path);
            file.write(bytes);
            file.commit();
        } catch (const PlatformError &) {
            // The watcher may have put a file in the way, or taken one away; the next version follows.
        }
    }

private:
    /// Takes a folder out of the way, and lifts a ban on reading.
    void clear() const
    {
        if (QFileInfo(m_path).isDir())
            QDir().rmdir(m_path);
        else
            QFile::setPermissions(m_path, QFile::ReadOwner | QFile::WriteOwner);
    }

    void writeSlowly(const QByteArray &bytes, qsizetype count)
    {
        clear();
        QFile file(m_path);
        if (!file.open(QIODevice::WriteOnly | QIODevice::Unbuffered))
            return;
        m_torn = bytes;
        for (qsizetype at = 0; at < count; at += 512) {
            file.write(bytes.mid(at, std::min<qsizetype>(512, count - at)));
            QThread::usleep(100);
        }
    }

    QString m_path;
    QByteArray m_torn; ///< The version last written so that a part of it may be seen.
    Generator m_generator{7};
};

} // namespace

int main(int argc, char **argv)
{
    if (argc != 3)
        return 2;
    Peer peer(QFile::decodeName(argv[1]));
    const int count = QByteArray(argv[2]).toInt();
    for (int number = 0; number < count; ++number) {
        if (!peer.readsWhole())
            return 1;
        peer.write(number);
        QThread::msleep(2);
    }
    peer.writeWhole(Sessions::uniform(u"peer %1"_s.arg(count)).encoded());
    // Without the search for leaks at the end, which an ordinary user's child of an administrator may not make.
    std::_Exit(0);
}
