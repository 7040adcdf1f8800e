#pragma once

#include <QByteArray>
#include <QElapsedTimer>
#include <QFile>
#include <QList>
#include <QUrl>

struct LocalModel;

/// What has arrived of a model so far. It lies in the models folder under the digest that the whole will have, and
/// outlives a broken connection, the program and the system.
class PartialDownload
{
public:
    /// Takes up what there is, or begins with nothing. The models folder must exist.
    /// @throws ConversionError "此模型正在下载，请等待完成后再试。" when somebody else, in whatever program, is at it
    /// @throws PlatformError when the folder does not let us
    explicit PartialDownload(const LocalModel &model);
    Q_DISABLE_COPY_MOVE(PartialDownload)

    QString path() const { return m_file.fileName(); }
    qint64 size() const { return m_size; } ///< Bytes that have arrived, counted from the front of the file.

    /// What the server of `url` called the version of which these bytes are; empty when it did not, or when they come
    /// from elsewhere.
    QByteArray validator(const QUrl &url) const;

    /// Throws away what has arrived, and notes where the next bytes come from. @throws PlatformError
    void startOver(const QUrl &url, const QByteArray &validator);

    /// Bytes are brought to the disk every few seconds. @throws PlatformError
    void append(QByteArrayView bytes);

    void sync(); ///< Brings everything to the disk. @throws PlatformError

    void clear();        ///< Throws away what has arrived. @throws PlatformError
    void removeRecord(); ///< Forgets where it came from, once the file has been moved into its place.

    struct Kept
    {
        QString path;
        QString sha256; ///< Of the whole file that it is a part of.
        qint64 bytes = 0;
    };

    static QList<Kept> all();             ///< In the models folder, ordered by name.
    static void remove(const Kept &kept); ///< Unless it is being downloaded. @throws as the constructor does

private:
    QString recordPath() const { return path() + QStringLiteral(".json"); }
    void open();
    bool isStillInPlace() const;

    QFile m_file;
    qint64 m_size = 0;
    QElapsedTimer m_sinceSync;
};
