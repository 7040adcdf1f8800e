#include "app/model/CueTools.h"

#include "core/PlatformError.h"
#include "core/files/AtomicFile.h"
#include "core/files/FileReader.h"

#include <utility>

using namespace Qt::StringLiterals;

CueTools::CueTools(EditedSession &session, CueOwnership &owner, Preferences &preferences)
    : m_session(session)
    , m_owner(owner)
    , m_preferences(preferences)
{
    m_settings.limits = preferences.checkLimits();
    connect(&session, &EditedSession::changed, this, [this](const LintoraSession &before) {
        const LintoraSession &now = m_session.state();
        if (m_tool && (before.items != now.items || before.options.rate != now.options.rate))
            update();
    });
    connect(&owner, &CueOwnership::busyChanged, this, [this] {
        if (m_owner.isBusy())
            close();
    });
}

void CueTools::open(Tool tool)
{
    if (m_tool == tool || m_owner.refuses(u"请等待当前任务完成后再整理。"_s))
        return;
    close();
    m_tool = tool;
    Q_EMIT toolChanged();
    update();
}

void CueTools::close()
{
    if (!std::exchange(m_tool, std::nullopt))
        return;
    m_task.cancel();
    m_proposal = {};
    m_prepared = {};
    m_selected.clear();
    m_isCurrent = false;
    Q_EMIT rowsChanged();
    Q_EMIT toolChanged();
}

void CueTools::setSettings(const Settings &settings)
{
    const Settings before = std::exchange(m_settings, settings);
    if (before == settings)
        return;
    if (before.limits != settings.limits)
        m_preferences.setCheckLimits(settings.limits);
    Q_EMIT settingsChanged();
    if (m_tool)
        update();
}

void CueTools::readLimits(const QString &file)
{
    m_files.run(
        u"正在读取规则…"_s,
        [file](Job & /*job*/, const ProgressReport & /*report*/) {
            const auto document = FileReader::readUpTo(file, CheckLimits::largestDocument);
            if (!document)
                throw PlatformError(u"文件过大：%1"_s.arg(file));
            return CheckLimits::read(*document);
        },
        [this](const CheckLimits &limits) {
            Settings settings = m_settings;
            settings.limits = limits;
            setSettings(settings);
        },
        [this](const Failure &failure) { setStatus(u"规则未能载入：%1"_s.arg(failure.sentence), true); });
}

void CueTools::writeLimits(const QString &file)
{
    m_files.run(
        u"正在存储规则…"_s,
        [file, bytes = m_settings.limits.written()](Job & /*job*/, const ProgressReport & /*report*/) {
            AtomicFile target(file);
            target.write(bytes);
            target.commit(AtomicFile::Durability::powerCut);
            return 0;
        },
        [this](int) { setStatus(u"规则已存储"_s); },
        [this](const Failure &failure) { setStatus(u"规则未能存储：%1"_s.arg(failure.sentence), true); });
}

FrameGrid CueTools::grid() const
{
    const FrameRate &rate = m_session.state().options.rate;
    return {.numerator = rate.numerator, .denominator = rate.denominator};
}

/// What is shown stays until what takes its place is there.
void CueTools::update()
{
    m_task.run(
        u"正在整理字幕…"_s,
        [tool = *m_tool, settings = m_settings, items = m_session.state().items, grid = grid(),
         prepared = m_prepared](Job &job, const ProgressReport & /*report*/) {
            return propose(tool, settings, items, grid, prepared, [&] { job.check(); });
        },
        [this](const Outcome &outcome) { take(outcome); },
        [this](const Failure &failure) { setStatus(failure.sentence, true); }, [this] { setStatus(u"已取消"_s); });
    m_isCurrent = false;
    setStatus(u"正在整理字幕…"_s);
}

namespace {

CueProposal brokenBy(const CueTools::Settings &settings, const BreakableCues &breakable, const QList<Subtitle> &items,
                     FrameGrid grid, const Check &check)
{
    switch (settings.way) {
    case CueTools::Way::lines:
        return CueProposals::wrapped(breakable, items, settings.columns, check);
    case CueTools::Way::joined:
        return CueProposals::joined(items, settings.columns, check);
    case CueTools::Way::cues:
        break;
    }
    return CueProposals::broken(breakable, items, {.columns = settings.columns, .lines = settings.lines, .grid = grid},
                                check);
}

} // namespace

CueTools::Outcome CueTools::propose(Tool tool, const Settings &settings, const QList<Subtitle> &items, FrameGrid grid,
                                    SharedPrepared prepared, const Check &check)
{
    const auto checkAlways = [&check] { check(); };
    if (!prepared || prepared->items != items || prepared->terms != settings.limits.terms) {
        auto fresh = std::make_shared<Prepared>();
        fresh->items = items;
        fresh->terms = settings.limits.terms;
        if (tool == Tool::breaking)
            fresh->breakable = std::make_unique<BreakableCues>(items, checkAlways);
        if (tool == Tool::checking)
            fresh->checked = std::make_unique<CheckedCues>(items, settings.limits.terms, checkAlways);
        prepared = std::move(fresh);
    }
    Outcome outcome{.prepared = prepared, .proposal = {}};
    switch (tool) {
    case Tool::breaking:
        outcome.proposal = brokenBy(settings, *prepared->breakable, items, grid, check);
        break;
    case Tool::checking:
        outcome.proposal = CueProposals::checked(*prepared->checked, settings.limits, grid, check);
        break;
    case Tool::script:
        outcome.proposal = CueProposals::converted(items, settings.script, settings.kept, check);
        break;
    }
    return outcome;
}

void CueTools::take(const Outcome &outcome)
{
    m_prepared = outcome.prepared;
    m_proposal = outcome.proposal;
    m_isCurrent = true;
    m_selected.clear();
    for (qsizetype i = 0; i < m_proposal.rows.size(); ++i) {
        if (m_proposal.rows[i].isFixable)
            m_selected.insert(m_selected.end(), i);
    }
    Q_EMIT rowsChanged();
    setStatus(summary());
}

QString CueTools::summary() const
{
    const qsizetype rows = m_proposal.rows.size();
    switch (*m_tool) {
    case Tool::breaking:
        if (rows == 0)
            return u"没有需要调整的字幕"_s;
        if (m_settings.way == Way::lines)
            return u"将为 %1 条字幕换行"_s.arg(rows);
        return (m_settings.way == Way::joined ? u"合并后：%1 条变为 %2 条"_s : u"断句后：%1 条变为 %2 条"_s)
            .arg(m_session.state().items.size())
            .arg(m_proposal.items.size());
    case Tool::checking:
        return rows == 0 ? u"没有发现问题"_s : u"发现 %1 处，可自动修复 %2 处"_s.arg(rows).arg(selectedCount());
    case Tool::script:
        return rows == 0 ? u"没有需要转换的文字"_s : u"将转换 %1 条字幕"_s.arg(rows);
    }
    return {};
}

bool CueTools::isSelected(qsizetype row) const
{
    return m_selected.contains(row);
}

void CueTools::setSelected(qsizetype row, bool selected)
{
    if (row < 0 || row >= m_proposal.rows.size() || !m_proposal.rows[row].isFixable || isSelected(row) == selected)
        return;
    if (selected)
        m_selected.insert(row);
    else
        m_selected.erase(row);
    Q_EMIT selectionChanged();
}

void CueTools::selectAll(bool selected)
{
    m_selected.clear();
    for (qsizetype i = 0; selected && i < m_proposal.rows.size(); ++i) {
        if (m_proposal.rows[i].isFixable)
            m_selected.insert(m_selected.end(), i);
    }
    Q_EMIT selectionChanged();
}

bool CueTools::canApply() const
{
    if (!m_tool || !m_isCurrent || m_owner.isBusy())
        return false;
    return m_tool == Tool::checking ? !m_selected.empty() : !m_proposal.rows.isEmpty();
}

void CueTools::apply()
{
    if (!canApply())
        return;
    const qsizetype before = m_proposal.items.size();
    switch (*m_tool) {
    case Tool::breaking: {
        const bool joins = m_settings.way == Way::joined;
        if (m_settings.way == Way::lines) {
            put(m_proposal.items, u"换行"_s, u"已为 %1 条字幕换行"_s.arg(rows().size()));
            break;
        }
        const QString message = (joins ? u"已合并：%1 条字幕变为 %2 条"_s : u"已断句：%1 条字幕变为 %2 条"_s)
                                    .arg(m_session.state().items.size())
                                    .arg(before);
        put(m_proposal.items, joins ? u"合并短句"_s : u"断句"_s, message);
        break;
    }
    case Tool::script:
        put(m_proposal.items, u"繁简转换"_s, u"已转换 %1 条字幕"_s.arg(rows().size()));
        break;
    case Tool::checking:
        mend();
        break;
    }
}

/// On a worker, for the texts are looked through once for each rule.
void CueTools::mend()
{
    m_task.run(
        u"正在修复字幕…"_s,
        [proposal = m_proposal, selected = m_selected, limits = m_settings.limits,
         grid = grid()](Job &job, const ProgressReport & /*report*/) {
            return CueProposals::mended(proposal, selected, limits, grid, [&] { job.check(); });
        },
        [this, count = selectedCount()](const QList<Subtitle> &items) {
            put(items, u"修复"_s, u"已修复 %1 处，可撤销"_s.arg(count));
        },
        [this](const Failure &failure) { setStatus(failure.sentence, true); },
        [this] {
            m_isCurrent = true;
            setStatus(u"已取消"_s);
        });
    m_isCurrent = false;
    setStatus(u"正在修复字幕…"_s);
}

/// A change of the cues leads to the next proposal; where there is none, that must be asked for.
void CueTools::put(const QList<Subtitle> &items, const QString &title, const QString &message)
{
    const bool changes = m_session.state().items != items;
    m_session.replaceItems(items, title);
    if (!changes)
        update();
    Q_EMIT done(message);
}

void CueTools::setStatus(const QString &status, bool isRefused)
{
    const bool wasRefused = std::exchange(m_isRefused, isRefused);
    if (std::exchange(m_status, status) != status || wasRefused != isRefused)
        Q_EMIT statusChanged();
}
