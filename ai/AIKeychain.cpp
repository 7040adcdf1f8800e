#include "ai/AIKeychain.h"

#include "core/ConversionError.h"

#include <QEventLoop>

#include <qt6keychain/keychain.h>

using namespace Qt::StringLiterals;

namespace AIKeychain {

namespace {

const QString service = u"local.lintora.workflow.ai"_s;

/// Runs `job` to its end.
void wait(QKeychain::Job &job, const QString &account)
{
    QEventLoop loop;
    job.setAutoDelete(false);
    job.setKey(account);
    QObject::connect(&job, &QKeychain::Job::finished, &loop, &QEventLoop::quit);
    job.start();
    loop.exec();
}

} // namespace

QString read(const QString &account)
{
    QKeychain::ReadPasswordJob job(service);
    wait(job, account);
    return job.error() == QKeychain::NoError ? job.textData() : QString();
}

void save(const QString &value, const QString &account)
{
    if (value.isEmpty()) {
        QKeychain::DeletePasswordJob job(service);
        wait(job, account);
        if (job.error() != QKeychain::NoError && job.error() != QKeychain::EntryNotFound)
            throw ConversionError(u"钥匙串未能移除密钥。"_s, job.errorString());
        return;
    }
    const bool isThere = !read(account).isEmpty();
    QKeychain::WritePasswordJob job(service);
    job.setTextData(value);
    wait(job, account);
    if (job.error() != QKeychain::NoError)
        throw ConversionError(isThere ? u"钥匙串未能更新密钥。"_s : u"钥匙串未能保存密钥。"_s, job.errorString());
}

} // namespace AIKeychain
