#include "ai/models/FileDigest.h"

#include "core/Job.h"
#include "core/PlatformError.h"

#include <QFile>

#include <openssl/evp.h>

#include <memory>
#include <stdexcept>

namespace FileDigest {

namespace {

/// The library's calls fail for want of memory or of the algorithm, both of which would be news.
void require(int result)
{
    if (result != 1)
        throw std::runtime_error("SHA-256");
}

} // namespace

QByteArray sha256(const QString &path, const Job *job)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
        throw PlatformError(file.errorString());
    const std::unique_ptr<EVP_MD_CTX, decltype(&EVP_MD_CTX_free)> context(EVP_MD_CTX_new(), EVP_MD_CTX_free);
    require(EVP_DigestInit_ex(context.get(), EVP_sha256(), nullptr));
    // What was just read is still in the processor's cache when it is hashed.
    constexpr qint64 blockSize = 256 * 1024; // bytes
    const auto block = std::make_unique_for_overwrite<char[]>(blockSize);
    for (;;) {
        if (job != nullptr)
            job->check();
        const qint64 size = file.read(block.get(), blockSize);
        if (size < 0)
            throw PlatformError(file.errorString());
        if (size == 0)
            break;
        require(EVP_DigestUpdate(context.get(), block.get(), size_t(size)));
    }
    QByteArray digest(EVP_MAX_MD_SIZE, Qt::Uninitialized);
    unsigned int size = 0;
    require(EVP_DigestFinal_ex(context.get(), reinterpret_cast<unsigned char *>(digest.data()), &size));
    digest.truncate(size);
    return digest.toHex();
}

} // namespace FileDigest
