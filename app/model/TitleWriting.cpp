#include "app/model/TitleWriting.h"

#include "app/model/Imports.h"
#include "core/ConversionError.h"
#include "core/files/AtomicFile.h"
#include "fcp/FCPXML.h"
#include "fcp/texts/ProjectTexts.h"

#include <QSet>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

/// How many cues of `track` came from one of these titles.
qsizetype originsAmong(const SubtitleTrack &track, const QList<TextOrigin> &titles)
{
    QSet<qint64> numbers;
    for (const TextOrigin &title : titles)
        numbers += title.number;
    return std::ranges::count_if(track.origins,
                                 [&](const TextOrigin &origin) { return numbers.contains(origin.number); });
}

/// How many cues of `track` begin when one of `standing` does.
qsizetype sharedStarts(const SubtitleTrack &track, const QList<Subtitle> &standing)
{
    QSet<qint64> starts;
    for (const Subtitle &cue : standing)
        starts += cue.start;
    return std::ranges::count_if(track.items, [&](const Subtitle &cue) { return starts.contains(cue.start); });
}

/// The label of the project's track that `track` was read from, else of the one that is most like it in its times.
/// @throws ConversionError when it is like none
QString standingTrack(const XmlDocument &document, const SubtitleTrack &track, const Check &check)
{
    QString label;
    std::pair<qsizetype, qsizetype> most;
    const auto standing = ProjectTexts::read(document, FCPXML::project(document), check);
    const auto origins = ProjectTexts::origins(document, standing, check);
    for (size_t i = 0; i < standing.size(); ++i) {
        const std::pair likeness(originsAmong(track, origins[i]), sharedStarts(track, standing[i].items));
        if (likeness > most) {
            most = likeness;
            label = standing[i].label;
        }
    }
    if (label.isEmpty())
        throw ConversionError(u"项目里没有与“%1”对应的标题，请先从这个项目读取字幕。"_s.arg(track.label));
    return label;
}

Retext::Result result(const FCPProject &project, const SubtitleTrack &track, Retext::Scope scope, Job &job)
{
    const Check check = [&] { job.check(); };
    const QString label = standingTrack(Imports::document(project, check), track, check);
    check();
    return Retext::apply(project.document,
                         {.project = {}, .track = label, .cues = track.items, .origins = track.origins, .scope = scope},
                         check);
}

} // namespace

void TitleWriting::show(const FCPProject &project, const SubtitleTrack &track)
{
    m_project = project;
    m_name = project.name;
    m_track = track;
    m_scope = Retext::Scope::texts;
    update();
    Q_EMIT shownChanged();
}

void TitleWriting::close()
{
    if (!std::exchange(m_project, std::nullopt))
        return;
    m_task.cancel();
    m_result.reset();
    m_name.clear();
    Q_EMIT shownChanged();
}

void TitleWriting::setScope(Retext::Scope scope)
{
    if (isShown() && std::exchange(m_scope, scope) != scope)
        update();
}

void TitleWriting::update()
{
    m_result.reset();
    m_task.run(
        u"正在与项目对照…"_s,
        [project = *m_project, track = m_track, scope = m_scope](Job &job, const ProgressReport & /*report*/) {
            return result(project, track, scope, job);
        },
        [this](const Retext::Result &result) {
            m_result = result;
            setStatus(summary(result.receipt, m_scope), false);
        },
        [this](const Failure &failure) { setStatus(failure.sentence, true); },
        [this] { setStatus(u"已取消"_s, false); });
    setStatus(u"正在与项目对照…"_s, false);
}

void TitleWriting::setStatus(const QString &status, bool isRefused)
{
    m_status = status;
    m_isRefused = isRefused;
    Q_EMIT changed();
}

std::optional<Retext::Receipt> TitleWriting::receipt() const
{
    return m_result ? std::optional(m_result->receipt) : std::nullopt;
}

bool TitleWriting::canWrite() const
{
    return isShown() && m_result && m_result->document != m_project->document;
}

std::optional<QString> TitleWriting::folder() const
{
    return m_project ? m_project->folder : std::nullopt;
}

void TitleWriting::write(const QString &path)
{
    if (!canWrite())
        return;
    m_files.run(
        u"正在写入标题…"_s,
        [path, document = m_result->document](Job &job, const ProgressReport & /*report*/) {
            AtomicFile file(path);
            file.write(document);
            file.sync();
            job.check();
            file.commit(AtomicFile::Durability::powerCut);
            return true;
        },
        [this, said = summary(m_result->receipt, m_scope)](bool /*done*/) { Q_EMIT done(u"已写回 · "_s + said); },
        [this](const Failure &failure) { Q_EMIT refused(failure); });
    close();
}

QString TitleWriting::summary(const Retext::Receipt &receipt, Retext::Scope scope)
{
    const QString note = scope == Retext::Scope::texts ? u"（只列出）"_s : QString();
    QStringList said{u"%1 条文字改动"_s.arg(receipt.changed.size())};
    const auto add = [&](const QString &what, qsizetype count, const QString &aside) {
        if (count > 0)
            said += what.arg(count) + aside;
    };
    add(u"移动 %1 条"_s, receipt.moved.size(), note);
    add(u"新增 %1 条"_s, receipt.added.size(), note);
    add(u"删除 %1 条"_s, receipt.removed.size(), note);
    add(u"%1 条不能写入"_s, receipt.refused.size(), {});
    return said.join(u" · "_s);
}
