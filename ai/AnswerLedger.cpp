#include "ai/AnswerLedger.h"

#include "core/PlatformError.h"
#include "core/files/AtomicFile.h"
#include "core/files/FileReader.h"
#include "core/json/JsonReader.h"
#include "core/json/JsonWriter.h"

#include <QCryptographicHash>
#include <QDateTime>
#include <QDir>
#include <QUuid>

#include <sys/stat.h>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

const QString extension = u".answers.json"_s;
constexpr qint64 largestFile = 1024 * 1024; ///< Bytes. A batch has some thousand.

/// The digest of several values, each with its length before it, so that none runs into the next.
QByteArray digestOf(const QList<QByteArray> &values)
{
    QCryptographicHash hash(QCryptographicHash::Sha256);
    for (const QByteArray &value : values) {
        hash.addData(QByteArray::number(value.size()) + ':');
        hash.addData(value);
    }
    return hash.result().toHex();
}

/// The files of a ledger, the oldest first, and those that writers have left unfinished or write now.
QFileInfoList entriesOf(const QString &folder)
{
    return QDir(folder).entryInfoList({u'*' + extension + u'*'}, QDir::Files, QDir::Time | QDir::Reversed);
}

/// Takes away what is too old or too much.
void bound(const QString &folder)
{
    const QFileInfoList entries = entriesOf(folder);
    const QDateTime oldest = QDateTime::currentDateTime().addDays(-AnswerLedger::oldestDays);
    qint64 total = 0;
    for (const QFileInfo &entry : entries)
        total += entry.size();
    for (const QFileInfo &entry : entries) {
        if (total <= AnswerLedger::largest && entry.lastModified() >= oldest)
            return;
        total -= entry.size();
        QFile::remove(entry.filePath());
    }
}

QHash<QByteArray, QString> readFile(const QString &path)
{
    QHash<QByteArray, QString> answers;
    const QByteArray bytes = FileReader::readUpTo(path, largestFile).value_or(QByteArray());
    JsonReader json(bytes);
    json.readObject({"answers"}, [&](QByteArrayView field) {
        if (field == "answers")
            json.readObject({}, [&](QByteArrayView key) { answers.insert(key.toByteArray(), json.readText()); });
    });
    json.finish();
    return answers;
}

/// The same, where what is damaged or gone holds nothing.
QHash<QByteArray, QString> readWhatThereIs(const QString &path)
{
    try {
        return readFile(path);
    } catch (const PlatformError &) {
        return {};
    }
}

} // namespace

AnswerLedger::AnswerLedger(QString folder, const Work &work)
    : m_folder(std::move(folder))
    , m_work(digestOf({work.kind.toUtf8(), work.direction.toUtf8(), work.instruction.toUtf8(), work.model,
                       work.endpoint.toUtf8(), work.isQuick ? "quick" : "full"}))
{
    bound(m_folder);
    for (const QString &file : files())
        m_answers.insert(readWhatThereIs(file));
}

std::optional<QString> AnswerLedger::answer(const Line &line) const
{
    const auto found = m_answers.constFind(digest(line));
    return found == m_answers.cend() ? std::nullopt : std::optional(*found);
}

void AnswerLedger::keep(const QList<Line> &lines, const QStringList &answers)
{
    Answers batch;
    for (qsizetype i = 0; i < lines.size(); ++i)
        batch.insert(digest(lines[i]), answers[i]);
    write(batch);
    m_answers.insert(batch);
    bound(m_folder);
}

void AnswerLedger::drop(const QList<Line> &lines)
{
    QSet<QByteArray> dropped;
    for (const Line &line : lines)
        dropped.insert(digest(line));
    m_answers.removeIf([&](const Answers::iterator &entry) { return dropped.contains(entry.key()); });
    for (const QString &file : files()) {
        Answers answers = readWhatThereIs(file);
        if (answers.removeIf([&](const Answers::iterator &entry) { return dropped.contains(entry.key()); }) == 0)
            continue;
        // What another text still needs stays, in a file of its own.
        if (!answers.isEmpty())
            write(answers);
        QFile::remove(file);
    }
}

QString AnswerLedger::defaultFolder()
{
    return QDir::homePath() + u"/Library/Application Support/Lintora/Answers"_s;
}

void AnswerLedger::clear(const QString &folder)
{
    for (const QFileInfo &entry : entriesOf(folder))
        QFile::remove(entry.filePath());
}

QByteArray AnswerLedger::digest(const Line &line) const
{
    QList<QByteArray> values = {m_work, line.text.toUtf8()};
    if (line.reference)
        values.append(line.reference->toUtf8());
    if (!line.terms.isEmpty())
        values.append("terms " + line.terms);
    return digestOf(values);
}

QStringList AnswerLedger::files() const
{
    QStringList result;
    const QFileInfoList entries = entriesOf(m_folder);
    for (const QFileInfo &entry : entries) {
        const QString name = entry.fileName();
        if (name.startsWith(QLatin1StringView(m_work.first(16))) && name.endsWith(extension))
            result.append(entry.filePath());
    }
    return result;
}

void AnswerLedger::write(const Answers &answers) const
{
    // What stands in the user's subtitles is for the user alone.
    if (!QDir(m_folder).exists() && QDir().mkpath(m_folder))
        chmod(QFile::encodeName(m_folder).constData(), 0700);
    const QString name = QString::fromLatin1(m_work.first(16)) + u'-' + QUuid::createUuid().toString(QUuid::Id128);
    AtomicFile file(m_folder + u'/' + name + extension);
    QList<QByteArray> keys = answers.keys();
    std::ranges::sort(keys);
    file.write(jsonBytes([&](JsonWriter &json) {
        json.beginObject();
        json.key("answers").beginObject();
        for (const QByteArray &key : keys)
            json.key(key).text(answers.value(key));
        json.endObject();
        json.endObject();
    }));
    file.commit(AtomicFile::Durability::powerCut);
}
