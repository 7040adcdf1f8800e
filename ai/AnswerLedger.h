#pragma once

#include <QByteArray>
#include <QHash>
#include <QSet>
#include <QString>
#include <QStringList>

#include <optional>

/// What a language model has answered in a run that has not ended yet, line by line, on disk: the next run of the same
/// work need not ask, and pay, for it again.
///
/// One object is one run. Every batch is a file of its own that is written whole and never changed, so that runs at the
/// same time, crashes and other programs do no harm. Answers are found again by a digest of all that decides them; no
/// key of a service is among it. The ledger is bounded: 8 MiB and 30 days, the oldest go first.
class AnswerLedger
{
public:
    /// What all lines of a run have in common.
    struct Work
    {
        QString kind;        ///< Translation or proofreading.
        QString direction;   ///< Between which languages.
        QString instruction; ///< What the model is told, word for word.
        QByteArray model;    ///< What tells the model from others.
        QString endpoint;    ///< Where an online service is; empty for this machine.
        bool isQuick = false;
    };

    struct Line
    {
        QString text;
        std::optional<QString> reference = {};
        QByteArray terms = {}; ///< What is said of terms in it; mostly empty.
    };

    static constexpr qint64 largest = 8 * 1024 * 1024; ///< Bytes of all files together.
    static constexpr qint64 oldestDays = 30;

    /// Reads what earlier runs of `work` have left in `folder`, which need not exist. What cannot be read is passed
    /// over.
    AnswerLedger(QString folder, const Work &work);

    /// The answer to a line that was kept earlier; absent when it must be asked for.
    std::optional<QString> answer(const Line &line) const;

    /// Keeps a batch: `answers` in the order of `lines`. On the disk when this returns. @throws PlatformError
    void keep(const QList<Line> &lines, const QStringList &answers);

    /// Forgets the answers to these lines: the run has ended whole, and asking again shall ask again.
    void drop(const QList<Line> &lines);

    /// The folder of the person's own ledger.
    static QString defaultFolder();

    /// Removes every entry of the ledger in `folder`.
    static void clear(const QString &folder);

private:
    using Answers = QHash<QByteArray, QString>; ///< By the digest of a line, in hexadecimal digits.

    QByteArray digest(const Line &line) const;
    QStringList files() const;
    void write(const Answers &answers) const;

    QString m_folder;
    QByteArray m_work; ///< The digest of the work.
    Answers m_answers;
};
