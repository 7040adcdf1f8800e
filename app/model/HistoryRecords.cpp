#include "app/model/HistoryRecords.h"

#include "app/model/HistoryReplay.h"
#include "core/PlatformError.h"
#include "core/json/JsonReader.h"
#include "core/json/JsonWriter.h"

#include <algorithm>
#include <array>
#include <utility>

using namespace Qt::StringLiterals;

namespace HistoryRecords {

namespace {

constexpr char beginLetter = 'B';
constexpr char pointLetter = 'P';
constexpr char draftLetter = 'D';
constexpr std::array<std::pair<HistoryMove, char>, 5> moveLetters{{{HistoryMove::record, 'R'},
                                                                   {HistoryMove::amend, 'A'},
                                                                   {HistoryMove::insertBefore, 'I'},
                                                                   {HistoryMove::undo, 'U'},
                                                                   {HistoryMove::redo, 'Y'}}};

[[noreturn]] void throwSenseless()
{
    throw PlatformError(u"历史记录无效。"_s);
}

QByteArrayView contentOf(QByteArrayView record)
{
    return record.sliced(1);
}

struct Saving
{
    quint64 saved = 0;
    quint64 saving = 0;
};

Saving readSaving(QByteArrayView record)
{
    Saving result;
    JsonReader json(contentOf(record));
    json.readObject({"saved", "saving"}, [&](QByteArrayView key) {
        if (key == "saved")
            result.saved = quint64(json.readInteger());
        else if (key == "saving")
            result.saving = quint64(json.readInteger());
    });
    json.finish();
    return result;
}

std::optional<quint64> pointOf(QByteArrayView record)
{
    if (record.front() != pointLetter)
        return std::nullopt;
    quint64 point = 0;
    JsonReader json(contentOf(record));
    json.readObject({"point"}, [&](QByteArrayView key) {
        if (key == "point")
            point = quint64(json.readInteger());
    });
    json.finish();
    return point;
}

HistoryReplay replayFrom(QByteArrayView record)
{
    if (!isBegin(record))
        throwSenseless();
    JsonReader json(contentOf(record));
    const LintoraSession first = readLintoraSession(json);
    json.finish();
    if (!first.tracks)
        throwSenseless();
    return HistoryReplay(first);
}

void replayChange(HistoryMove move, QByteArrayView record, HistoryReplay &replay)
{
    SessionChange::Change change;
    QString title;
    JsonReader json(contentOf(record));
    json.readObject({"change", "title"}, [&](QByteArrayView key) {
        if (key == "change")
            change = SessionChange::read(json);
        else if (key == "title")
            title = json.readText();
    });
    json.finish();
    if (move == HistoryMove::record)
        replay.record(change, title);
    else if (move == HistoryMove::amend)
        replay.amend(change, title);
    else
        replay.insertBefore(change, title);
}

void replayStep(QByteArrayView record, HistoryReplay &replay)
{
    const std::optional<HistoryMove> move = moveOf(record);
    if (!move)
        throwSenseless();
    if (move == HistoryMove::undo)
        replay.undo();
    else if (move == HistoryMove::redo)
        replay.redo();
    else
        replayChange(*move, record, replay);
}

/// Goes back from the current state of `history` as far as the limits let it. The records that lead forth again.
QList<QByteArray> goBack(EditHistory &history, const Limits &limits)
{
    QList<QByteArray> steps;
    qint64 bytes = 0;
    while (history.canUndo() && steps.size() < limits.steps) {
        const LintoraSession after = history.current();
        const QString title = history.undoTitle();
        const QByteArray record = step(HistoryMove::record, history.undo(), after, title);
        bytes += record.size();
        if (bytes > limits.bytes) {
            history.redo();
            break;
        }
        steps.prepend(record);
    }
    return steps;
}

} // namespace

QByteArray begin(const LintoraSession &first)
{
    return beginLetter + first.encoded();
}

QByteArray step(HistoryMove move, const LintoraSession &before, const LintoraSession &state, const QString &title)
{
    const char letter = std::ranges::find(moveLetters, move, &std::pair<HistoryMove, char>::first)->second;
    if (move == HistoryMove::undo || move == HistoryMove::redo)
        return {1, letter};
    return letter + jsonBytes([&](JsonWriter &json) {
               json.beginObject();
               json.key("change");
               SessionChange::write(json, before, state);
               json.key("title").text(title);
               json.endObject();
           });
}

QByteArray point(quint64 number)
{
    return pointLetter + jsonBytes([&](JsonWriter &json) {
               json.beginObject();
               json.key("point").integer(qint64(number));
               json.endObject();
           });
}

QByteArray draft(quint64 saved, quint64 saving)
{
    return draftLetter + jsonBytes([&](JsonWriter &json) {
               json.beginObject();
               json.key("saved").integer(qint64(saved));
               json.key("saving").integer(qint64(saving));
               json.endObject();
           });
}

bool isBegin(QByteArrayView record)
{
    return record.front() == beginLetter;
}

std::optional<HistoryMove> moveOf(QByteArrayView record)
{
    const auto *const found = std::ranges::find(moveLetters, record.front(), &std::pair<HistoryMove, char>::second);
    return found == moveLetters.end() ? std::nullopt : std::optional(found->first);
}

Replayed replay(const QList<QByteArray> &records, const LintoraSession &draft)
{
    const auto saving = std::ranges::find(records.rbegin(), records.rend(), draftLetter,
                                          [](const QByteArray &record) { return record.front(); });
    const Saving told = saving == records.rend() ? Saving() : readSaving(*saving); // points begin with 1
    HistoryReplay replay = replayFrom(records.first());
    quint64 point = 0;
    std::optional<quint64> saved;
    for (const QByteArray &record : records.sliced(1)) {
        if (record.front() == draftLetter)
            continue;
        const std::optional<quint64> number = pointOf(record);
        if (!number) {
            replayStep(record, replay);
            continue;
        }
        const bool isFirst = std::exchange(point, *number) == 0;
        const bool isMeant = told.saving == 0 ? isFirst : *number == told.saved || *number == told.saving;
        if (isMeant && replay.current() == draft)
            saved = *number;
    }
    return {.history = replay.history(), .point = point, .saved = saved};
}

QList<QByteArray> compacted(const QList<QByteArray> &records, quint64 saved, const Limits &limits)
{
    qsizetype end = 1;
    HistoryReplay replay = replayFrom(records.first());
    for (; end < records.size() && pointOf(records.at(end)) != saved; ++end) {
        if (moveOf(records.at(end)))
            replayStep(records.at(end), replay);
    }
    EditHistory history = replay.history();
    qsizetype undone = 0;
    for (; history.canRedo(); ++undone)
        history.redo();
    QList<QByteArray> steps = goBack(history, limits);
    if (steps.size() < undone) {
        for (undone -= steps.size(); undone > 0; --undone)
            history.undo();
        steps = goBack(history, limits);
    }
    QList<QByteArray> result{begin(history.current())};
    result += steps;
    result.insert(result.size(), undone, step(HistoryMove::undo, {}, {}, {}));
    return result + records.sliced(end);
}

} // namespace HistoryRecords
