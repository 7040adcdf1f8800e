#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

/// The answers of a transcription that has not ended yet, each in a file of its own in one folder: a run that is
/// repeated asks, and pays, only for what is missing. They are kept for a week at most.
class KeptAnswers
{
public:
    explicit KeptAnswers(QString folder);

    /// Removes every answer in `folder`.
    static void clear(const QString &folder);

    /// Beside the other things that the program keeps for itself.
    static QString defaultFolder();

    std::optional<QByteArray> answer(const QByteArray &key) const;

    /// Keeps `answer` under `key`, whole or not at all. A disk that is full must not cost the answer itself: failing is
    /// only logged.
    void keep(const QByteArray &key, const QByteArray &answer) const;

    void drop(const QByteArray &key) const;

private:
    QString path(const QByteArray &key) const;
    void dropOld() const;

    QString m_folder;
};
