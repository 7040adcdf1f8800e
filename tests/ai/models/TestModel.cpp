#include "tests/ai/models/TestModel.h"

#include <QCryptographicHash>
#include <QFile>
#include <QRandomGenerator>

using namespace Qt::StringLiterals;

TestModel::TestModel(qsizetype bytes)
    : content(bytes, Qt::Uninitialized)
{
    QRandomGenerator generator(7);
    for (char &byte : content)
        byte = char(generator.generate() & 0xff);
    model = {.id = u"test"_s,
             .title = u"Test"_s,
             .filename = u"test.bin"_s,
             .revision = u"0123456789012345678901234567890123456789"_s,
             .repository = u"owner/name"_s,
             .sha256 = QString::fromLatin1(QCryptographicHash::hash(content, QCryptographicHash::Sha256).toHex()),
             .bytes = bytes,
             .summary = {}};
    qputenv("VELMORA_SUBTITLE_MODELS", folder.path().toUtf8());
}

TestModel::~TestModel()
{
    qunsetenv("VELMORA_SUBTITLE_MODELS");
}

QString TestModel::partial() const
{
    return folder.filePath(u".partial-"_s + model.sha256);
}

QByteArray TestModel::read(const QString &path)
{
    QFile file(path);
    file.open(QIODevice::ReadOnly);
    return file.readAll();
}

void TestModel::write(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    file.open(QIODevice::WriteOnly);
    file.write(bytes);
}
