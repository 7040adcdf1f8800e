// Downloads a model with a catalog row of its own: ModelDownloader HOST BYTES SHA256
#include "ai/LocalAIJob.h"
#include "ai/models/LocalModelDownload.h"

#include <QCoreApplication>

#include <cstdio>
#include <exception>

using namespace Qt::StringLiterals;

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    LocalAIJob job;
    const LocalModel model{.id = u"test"_s,
                           .title = u"Test"_s,
                           .filename = u"test.bin"_s,
                           .revision = u"0123456789012345678901234567890123456789"_s,
                           .repository = u"owner/name"_s,
                           .sha256 = arguments.at(3),
                           .bytes = arguments.at(2).toLongLong(),
                           .summary = {}};
    try {
        LocalModelDownload(model, {QUrl(arguments.at(1))}, job, {}).download();
        return 0;
    } catch (const std::exception &error) {
        std::fputs(error.what(), stderr);
        return 1;
    }
}
