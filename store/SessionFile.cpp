#include "store/SessionFile.h"

#include "core/ConversionError.h"
#include "core/PlatformError.h"
#include "core/files/AtomicFile.h"
#include "core/files/FileReader.h"

#include <QFileInfo>

#include <utility>

using namespace Qt::StringLiterals;

SessionFile::SessionFile(QString path, std::chrono::milliseconds interval, QObject *parent)
    : QObject(parent)
    , m_path(std::move(path))
    , m_interval(interval)
    , m_outcome(
          this, [this](const QString &description) { Q_EMIT failed(description); }, [this] { Q_EMIT recovered(); })
    , m_thread([this] { return round(); })
{
    AtomicFile::removeLeftovers(m_path);
    m_thread.wake();
}

SessionFile::~SessionFile()
{
    m_thread.finishRound();
}

void SessionFile::announceChange()
{
    const std::lock_guard lock(m_mutex);
    m_isChanging = true;
}

void SessionFile::retractChange()
{
    {
        const std::lock_guard lock(m_mutex);
        m_isChanging = false;
    }
    m_thread.wake();
}

void SessionFile::save(const LintoraSession &state)
{
    {
        const std::lock_guard lock(m_mutex);
        m_isChanging = false;
        m_waiting = state;
    }
    m_thread.wake();
}

void SessionFile::adopt(const LintoraSession &state)
{
    const std::lock_guard lock(m_mutex);
    m_agreed = state;
}

void SessionFile::refresh()
{
    m_thread.finishRound();
    deliver();
}

void SessionFile::flush()
{
    m_thread.finishRound();
    m_outcome.throwFailure();
}

RoundThread::Pause SessionFile::round()
{
    write();
    look();
    const std::lock_guard lock(m_mutex);
    if (m_arrival)
        QMetaObject::invokeMethod(this, &SessionFile::deliver, Qt::QueuedConnection);
    return m_interval;
}

/// Writes the state that waits, if it is a change.
void SessionFile::write()
{
    std::unique_lock lock(m_mutex);
    const std::optional<LintoraSession> state = std::exchange(m_waiting, std::nullopt);
    const std::optional<LintoraSession> agreed = m_agreed;
    m_isWriting = state.has_value();
    lock.unlock();
    if (!state)
        return;
    bool isWritten = true;
    try {
        if (state != agreed)
            replaceFile(*state);
        m_outcome.noteSuccess();
    } catch (const std::exception &) {
        isWritten = false;
        m_outcome.noteFailure();
    }
    lock.lock();
    m_isWriting = false;
    if (!isWritten && !m_waiting)
        m_waiting = state;
}

void SessionFile::replaceFile(const LintoraSession &state)
{
    QByteArray bytes = state.encoded();
    if (bytes.size() > LintoraSession::sizeLimit)
        throw ConversionError(u"字幕会话过大。"_s);
    std::optional<LintoraSession> replaced;
    if (bytes != m_lastBytes) {
        const QFileInfo file(m_path);
        // Opening a pipe might wait forever, and a link leads out of the folder that the session was confined to; a
        // folder is refused by the platform in its own words.
        if (file.isSymLink() || (file.exists() && !file.isFile() && !file.isDir()))
            throw PlatformError(u"“%1”不是普通文件。"_s.arg(m_path));
        AtomicFile target(m_path);
        target.write(bytes);
        target.sync();
        // What we are about to replace is read at the last moment: a version that came while we wrote must not get
        // lost. One that changed while it was read is read once more.
        std::optional<Version> unseen = newVersion();
        if (!unseen)
            unseen = newVersion();
        if (unseen)
            replaced = std::move(unseen->session);
        target.commit(AtomicFile::Durability::powerCut);
        m_lastBytes = std::move(bytes);
    }
    std::unique_lock lock(m_mutex);
    m_agreed = state;
    std::optional<LintoraSession> undelivered = std::exchange(m_arrival, std::nullopt);
    lock.unlock();
    if (!replaced)
        replaced = std::move(undelivered);
    if (replaced && replaced != state)
        QMetaObject::invokeMethod(
            this, [this, session = *std::move(replaced)] { Q_EMIT overruled(session); }, Qt::QueuedConnection);
}

/// Reads the file, and keeps a new version for delivery.
void SessionFile::look()
{
    std::optional<Version> version = newVersion();
    if (!version)
        return;
    m_lastBytes = std::move(version->bytes);
    const std::lock_guard lock(m_mutex);
    m_arrival = std::move(version->session);
}

/// The version in the file, if it can be read and is neither the one last seen nor the one last written.
std::optional<SessionFile::Version> SessionFile::newVersion()
{
    if (const QFileInfo file(m_path); file.isSymLink() || !file.isFile())
        return std::nullopt;
    const auto read = [&] { return FileReader::readUpTo(m_path, LintoraSession::sizeLimit).value_or(QByteArray()); };
    QByteArray bytes;
    try {
        bytes = read();
        if (bytes == m_lastBytes || bytes == m_refusedBytes)
            return std::nullopt;
        LintoraSession session = LintoraSession::decode(bytes);
        // From a file that is being overwritten in place we may have read parts of two versions that fit together.
        if (read() != bytes)
            return std::nullopt;
        m_refusedBytes.clear();
        return Version{.bytes = std::move(bytes), .session = std::move(session)};
    } catch (const std::exception &) {
        // The other program may be in the middle of writing; the next look will tell.
        m_refusedBytes = std::move(bytes);
        return std::nullopt;
    }
}

/// Delivers the version that has arrived, unless a local state must be judged first. The thread calls again after that.
void SessionFile::deliver()
{
    LintoraSession session;
    {
        const std::lock_guard lock(m_mutex);
        if (!m_arrival || m_waiting || m_isWriting || m_isChanging)
            return;
        session = *std::exchange(m_arrival, std::nullopt);
        m_agreed = session;
    }
    Q_EMIT arrived(session);
}
