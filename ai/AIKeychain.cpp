#include "ai/AIKeychain.h"

#include "core/ConversionError.h"

#include <QSemaphore>
#include <QThread>

#include <qt6keychain/keychain.h>

using namespace Qt::StringLiterals;

namespace AIKeychain {

namespace {

const QString service = u"local.lintora.workflow.ai"_s;

struct Outcome
{
    QKeychain::Error error = QKeychain::OtherError;
    QString reason; ///< The system's own words.
    QString text;   ///< What was read.
};

/// Where the library works. Its queue belongs to the thread that uses it first and stands still when that one ends, so
/// it has a thread that lasts as long as the program.
QObject &keychainThread()
{
    static QObject *const home = [] {
        auto *const thread = new QThread;
        auto *const inThread = new QObject;
        inThread->moveToThread(thread);
        thread->start();
        return inThread;
    }();
    return *home;
}

/// Runs one of the library's jobs to its end. `prepare` gives it what it works with.
template <class KeychainJob, class Prepare>
Outcome run(const QString &account, const Prepare &prepare)
{
    Outcome outcome;
    QSemaphore isDone;
    QMetaObject::invokeMethod(
        &keychainThread(),
        [&] {
            auto *const job = new KeychainJob(service); // which deletes itself
            job->setKey(account);
            prepare(*job);
            QObject::connect(job, &QKeychain::Job::finished, job, [&, job] {
                outcome.error = job->error();
                outcome.reason = job->errorString();
                if constexpr (std::is_same_v<KeychainJob, QKeychain::ReadPasswordJob>)
                    outcome.text = job->textData();
                isDone.release();
            });
            job->start();
        },
        Qt::QueuedConnection);
    isDone.acquire();
    return outcome;
}

template <class KeychainJob>
Outcome run(const QString &account)
{
    return run<KeychainJob>(account, [](KeychainJob & /*job*/) {});
}

} // namespace

QString read(const QString &account)
{
    const Outcome read = run<QKeychain::ReadPasswordJob>(account);
    return read.error == QKeychain::NoError ? read.text : QString();
}

void save(const QString &value, const QString &account)
{
    if (value.isEmpty()) {
        const Outcome removed = run<QKeychain::DeletePasswordJob>(account);
        if (removed.error != QKeychain::NoError && removed.error != QKeychain::EntryNotFound)
            throw ConversionError(u"钥匙串未能移除密钥。"_s, removed.reason);
        return;
    }
    const bool isThere = !read(account).isEmpty();
    const Outcome written =
        run<QKeychain::WritePasswordJob>(account, [&](QKeychain::WritePasswordJob &job) { job.setTextData(value); });
    if (written.error != QKeychain::NoError)
        throw ConversionError(isThere ? u"钥匙串未能更新密钥。"_s : u"钥匙串未能保存密钥。"_s, written.reason);
}

} // namespace AIKeychain
