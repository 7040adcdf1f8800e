#include "store/DraftFile.h"

#include "core/ConversionError.h"
#include "core/PlatformError.h"
#include "core/files/AtomicFile.h"
#include "core/files/Folder.h"

#include <QFile>
#include <QFileInfo>

#include <utility>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr auto pauseAfterFailure = 5s;

bool isThere(const QFileInfo &file)
{
    return file.exists() || file.isSymLink();
}

} // namespace

DraftFile::DraftFile(QString path, Witness witness, QObject *parent)
    : QObject(parent)
    , m_path(std::move(path))
    , m_witness(std::move(witness))
    , m_outcome(
          this, [this](const QString &description) { Q_EMIT failed(description); }, [this] { Q_EMIT recovered(); })
    , m_thread([this] { return round(); })
{}

DraftFile::~DraftFile()
{
    m_thread.finishRound();
}

std::optional<LintoraSession> DraftFile::load()
{
    AtomicFile::removeLeftovers(m_path);
    const QFileInfo file(m_path);
    // Opening what is no regular file, a pipe for instance, might wait forever.
    if (!file.isFile())
        return std::nullopt;
    try {
        LintoraSession session = LintoraSession::read(m_path);
        const std::lock_guard lock(m_mutex);
        m_isOurs = true;
        m_saved = session;
        return session;
    } catch (const std::exception &) {
        return std::nullopt;
    }
}

void DraftFile::save(const LintoraSession &state, quint64 number)
{
    {
        const std::lock_guard lock(m_mutex);
        m_waiting = Kept{.state = state, .number = number};
        ++m_keptCount;
    }
    m_thread.wake();
}

void DraftFile::flush()
{
    m_thread.finishRound();
    m_outcome.throwFailure();
}

bool DraftFile::isSaved() const
{
    const std::lock_guard lock(m_mutex);
    return m_savedCount == m_keptCount;
}

/// Saves the state that waits.
RoundThread::Pause DraftFile::round()
{
    std::unique_lock lock(m_mutex);
    const std::optional<Kept> kept = std::exchange(m_waiting, std::nullopt);
    const std::optional<LintoraSession> saved = m_saved;
    const quint64 count = m_keptCount;
    lock.unlock();
    if (!kept)
        return std::nullopt;
    try {
        if (kept->state != saved || !QFileInfo::exists(m_path))
            replaceFile(*kept);
        else
            tellWitness(kept->number, [] {});
        m_outcome.noteSuccess();
        noteSaved(count);
        return std::nullopt;
    } catch (const std::exception &) {
        m_outcome.noteFailure();
    }
    lock.lock();
    if (!m_waiting)
        m_waiting = kept;
    return pauseAfterFailure;
}

void DraftFile::noteSaved(quint64 count)
{
    {
        const std::lock_guard lock(m_mutex);
        m_savedCount = count;
    }
    const auto tell = [this] {
        if (isSaved())
            Q_EMIT saved();
    };
    QMetaObject::invokeMethod(this, tell, Qt::QueuedConnection);
}

void DraftFile::replaceFile(const Kept &kept)
{
    const QByteArray bytes = kept.state.encoded();
    if (bytes.size() > LintoraSession::sizeLimit)
        throw ConversionError(u"字幕草稿过大，请导出 SRT 后分批处理"_s);
    const QFileInfo file(m_path);
    Folder::make(file.path());
    std::unique_lock lock(m_mutex);
    const bool isOurs = m_isOurs;
    lock.unlock();
    const bool isForeign = isThere(file) && (!isOurs || !file.isFile());
    // What keeps anything from being written in the draft's place must go first: a folder, a file that may not be
    // written, though our own it was. Any other file stays until its successor is ready.
    const bool isInTheWay = isThere(file) && !(file.isFile() && file.isWritable());
    if (isInTheWay)
        setAside();
    AtomicFile target(m_path);
    target.write(bytes);
    target.sync();
    if (isForeign && !isInTheWay)
        setAside();
    tellWitness(kept.number, [&] { target.commit(AtomicFile::Durability::powerCut); });
    lock.lock();
    m_isOurs = true;
    m_saved = kept.state;
}

/// Calls `replace` between the two that the witness hears of.
template <class Replace>
void DraftFile::tellWitness(quint64 number, const Replace &replace) const
{
    if (m_witness.aboutToReplace)
        m_witness.aboutToReplace(number);
    replace();
    if (m_witness.replaced)
        m_witness.replaced(number);
}

void DraftFile::setAside() const
{
    const QFileInfo file(m_path);
    const QString form = file.path() + u'/' + file.completeBaseName() + u"-unreadable-%1."_s + file.suffix();
    int number = 1;
    while (isThere(QFileInfo(form.arg(number))))
        ++number;
    QFile unreadable(m_path);
    if (!unreadable.rename(form.arg(number)))
        throw PlatformError::aboutFile(m_path, unreadable.errorString());
}
