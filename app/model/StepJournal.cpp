#include "app/model/StepJournal.h"

#include <utility>

StepJournal::StepJournal(const QString &path, HistoryRecords::Limits limits)
    : m_limits(limits)
    , m_log(path)
    , m_thread([this] {
        std::unique_lock lock(m_mutex);
        const std::vector<Item> items = std::exchange(m_waiting, {});
        lock.unlock();
        write(items);
        return RoundThread::Pause();
    })
{}

StepJournal::~StepJournal()
{
    m_thread.finishRound();
}

EditHistory StepJournal::takeUp(const LintoraSession &draft, bool isSaved)
{
    EditHistory history(draft);
    // What is damaged in spite of its checks is as what does not fit.
    try {
        if (const QList<QByteArray> records = m_log.open(); isSaved && !records.isEmpty()) {
            HistoryRecords::Replayed replayed = HistoryRecords::replay(records, draft);
            if (replayed.saved) {
                history = std::move(replayed.history);
                m_point = replayed.point;
                m_saved = *replayed.saved;
                m_hasMoved = true;
                for (const QByteArray &record : records)
                    count(record);
            }
        }
    } catch (const std::exception &) {
        history = EditHistory(draft);
    }
    if (!m_hasMoved && m_log.isOpen())
        m_log.discard();
    m_last = history.current();
    m_pointOfLast = m_hasMoved ? std::nullopt : std::optional(m_point);
    return history;
}

void StepJournal::note(HistoryMove move, const QString &title, const LintoraSession &state)
{
    const std::lock_guard lock(m_mutex);
    m_hasMoved = true;
    if (!joinWaiting(move, title, state))
        m_waiting.emplace_back(Step{.move = move, .title = title, .state = state});
}

/// A step that is amended before it was written is written as it became.
bool StepJournal::joinWaiting(HistoryMove move, const QString &title, const LintoraSession &state)
{
    Step *const last = m_waiting.empty() ? nullptr : std::get_if<Step>(&m_waiting.back());
    if (move != HistoryMove::amend || !last || (last->move != HistoryMove::record && last->move != HistoryMove::amend))
        return false;
    last->state = state;
    if (!title.isEmpty())
        last->title = title;
    return true;
}

quint64 StepJournal::point()
{
    std::unique_lock lock(m_mutex);
    if (!std::exchange(m_hasMoved, false))
        return m_point;
    const quint64 number = ++m_point;
    m_waiting.emplace_back(Point{.number = number});
    lock.unlock();
    m_thread.wake();
    return number;
}

void StepJournal::aboutToSave(quint64 point)
{
    {
        const std::lock_guard lock(m_mutex);
        m_waiting.emplace_back(Saving{.saved = m_saved, .saving = point});
    }
    m_thread.finishRound();
}

void StepJournal::saved(quint64 point)
{
    const std::lock_guard lock(m_mutex);
    m_saved = point;
}

void StepJournal::write(const std::vector<Item> &items)
{
    QList<QByteArray> records;
    bool isSaving = false;
    bool isBegun = m_log.isOpen();
    const auto add = [&](const QByteArray &record) {
        count(record);
        records += record;
    };
    try {
        for (const Item &item : items) {
            if (const auto *const step = std::get_if<Step>(&item)) {
                if (!std::exchange(isBegun, true)) {
                    add(HistoryRecords::begin(m_last));
                    if (m_pointOfLast)
                        add(HistoryRecords::point(*m_pointOfLast));
                }
                for (const QByteArray &record : recordsOf(*step))
                    add(record);
                follow(*step);
            } else if (const auto *const point = std::get_if<Point>(&item)) {
                m_pointOfLast = point->number;
                if (isBegun)
                    add(HistoryRecords::point(point->number));
            } else if (isBegun) {
                const Saving &saving = std::get<Saving>(item);
                add(HistoryRecords::draft(saving.saved, saving.saving));
                isSaving = true;
            }
        }
        put(records, isSaving);
    } catch (const std::exception &) {
        giveUp(items);
    }
}

void StepJournal::put(const QList<QByteArray> &records, bool isSaving)
{
    if (records.isEmpty())
        return;
    if (!m_log.isOpen()) {
        m_log.begin(records);
        return;
    }
    m_log.append(records);
    if (isSaving)
        m_log.sync();
    if (isTooLarge())
        shrink();
}

/// What is in the file is no beginning of the truth any more.
void StepJournal::giveUp(const std::vector<Item> &items)
{
    m_log.discard();
    for (const Item &item : items) {
        if (const auto *const step = std::get_if<Step>(&item))
            follow(*step);
    }
}

void StepJournal::follow(const Step &step)
{
    if (step.move != HistoryMove::insertBefore)
        m_last = step.state;
    m_pointOfLast.reset();
}

/// The journal may be shorter than the history that the program has: it was begun later, or its oldest steps are
/// forgotten. What is stepped to beyond its ends is put there.
QList<QByteArray> StepJournal::recordsOf(const Step &step) const
{
    if (step.move == HistoryMove::undo && m_past == 0)
        return {HistoryRecords::step(HistoryMove::insertBefore, m_last, step.state, step.title),
                HistoryRecords::step(HistoryMove::undo, m_last, step.state, {})};
    const bool isForgotten = step.move == HistoryMove::redo && m_future == 0;
    return {HistoryRecords::step(isForgotten ? HistoryMove::record : step.move, m_last, step.state, step.title)};
}

void StepJournal::shrink()
{
    std::unique_lock lock(m_mutex);
    const quint64 saved = m_saved;
    lock.unlock();
    const QList<QByteArray> records = HistoryRecords::compacted(m_log.open(), saved, m_limits);
    for (const QByteArray &record : records)
        count(record);
    if (isTooLarge()) // for the draft has not been saved since
        m_log.discard();
    else
        m_log.begin(records);
}

bool StepJournal::isTooLarge() const
{
    return m_steps > 2 * m_limits.steps || m_bytes > 2 * m_limits.bytes;
}

/// Follows what the records in the file amount to.
void StepJournal::count(const QByteArray &record)
{
    const std::optional<HistoryMove> move = HistoryRecords::moveOf(record);
    if (HistoryRecords::isBegin(record)) {
        m_steps = m_past = m_future = 0;
        m_bytes = 0;
        return;
    }
    m_bytes += record.size();
    if (!move)
        return;
    ++m_steps;
    if (*move == HistoryMove::record)
        m_future = 0;
    m_past += *move == HistoryMove::amend ? 0 : *move == HistoryMove::undo ? -1 : 1;
    m_future += *move == HistoryMove::undo ? 1 : *move == HistoryMove::redo ? -1 : 0;
}
