#pragma once

#include "ai/models/LocalModel.h"

#include <QTemporaryDir>

/// A models folder of the test's own, and a small model with a right digest.
class TestModel
{
public:
    explicit TestModel(qsizetype bytes = 3'000'000);
    ~TestModel();
    Q_DISABLE_COPY_MOVE(TestModel)

    QTemporaryDir folder;
    QByteArray content;
    LocalModel model;

    QString partial() const; ///< The path of what has arrived of it.

    static QByteArray read(const QString &path);
    static void write(const QString &path, const QByteArray &bytes);
};
