#pragma once

#include "store/LintoraSession.h"
#include "store/RoundThread.h"
#include "store/SaveOutcome.h"

#include <QObject>

#include <functional>
#include <mutex>

/// The file that brings a session back after a crash, a power cut or a full disk.
///
/// States are encoded and saved on a thread of its own; a newer state takes the place of one that still waits, and the
/// next save starts when the one under way ends. A saved state has reached the disk. A state that cannot be saved
/// leaves the file as it was and is tried again until it or a newer one is saved.
///
/// The file may hold work that this program cannot read. Unless load() has read it, the first save moves it aside, to a
/// name beside its own ("Draft-unreadable-1.json").
///
/// Lives on the main thread.
class DraftFile : public QObject
{
    Q_OBJECT

public:
    /// Whoever must know which state the file holds. Both are called on the saving thread, with the state's number,
    /// also for a state that the file holds already.
    struct Witness
    {
        std::function<void(quint64 number)> aboutToReplace; ///< All is ready but the renaming.
        std::function<void(quint64 number)> replaced;       ///< The file holds that state for good.
    };

    explicit DraftFile(QString path, Witness witness = {}, QObject *parent = nullptr);

    /// Saves what still waits. Nobody is told when that fails: call flush() before.
    ~DraftFile() override;

    /// The state that the last run left; absent when there is no file or it cannot be read, which is no error.
    std::optional<LintoraSession> load();

    /// Keeps `state` for saving, and returns at once. A state that equals the saved one costs no write. `number` is
    /// what the witness knows it by.
    void save(const LintoraSession &state, quint64 number = 0);

    /// Saves what still waits, before it returns.
    /// @throws ConversionError "字幕草稿过大，请导出 SRT 后分批处理", PlatformError when the newest state could not be
    /// saved.
    void flush();

    bool isSaved() const; ///< Whether the newest state has reached the disk.

Q_SIGNALS:
    void saved(); ///< isSaved() has become true.

    /// A state could not be saved, for the reason given. Said once, until another reason comes up or a save succeeds.
    void failed(const QString &description);

    /// After a failure, a state was saved.
    void recovered();

private:
    RoundThread::Pause round();
    void noteSaved(quint64 count);
    struct Kept
    {
        LintoraSession state;
        quint64 number;
    };

    void replaceFile(const Kept &kept);
    template <class Replace>
    void tellWitness(quint64 number, const Replace &replace) const;
    void setAside() const;

    const QString m_path;
    const Witness m_witness;

    mutable std::mutex m_mutex;            ///< Guards what follows. Not held while files are touched.
    std::optional<Kept> m_waiting;         ///< The newest state that is not saved.
    std::optional<LintoraSession> m_saved; ///< What the file holds, as far as we know.
    quint64 m_keptCount = 0;               ///< Of states that were kept for saving.
    quint64 m_savedCount = 0;              ///< Of those up to the newest that has reached the disk.
    bool m_isOurs = false;                 ///< Whether the file was read or written here.

    SaveOutcome m_outcome;

    RoundThread m_thread; ///< Last, so that it ends first.
};
