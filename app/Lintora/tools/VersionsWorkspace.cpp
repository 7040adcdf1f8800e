#include "app/Lintora/tools/VersionsWorkspace.h"

#include "app/Lintora/controls/Controls.h"
#include "app/Lintora/controls/ElidedLabel.h"

#include <QHBoxLayout>
#include <QListView>
#include <QLocale>
#include <QVBoxLayout>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

QString contentOf(const Versions::Version &version)
{
    if (!version.cues)
        return u"无法读取"_s;
    const SessionDifference &difference = version.difference;
    QStringList parts{u"%1 条字幕"_s.arg(QLocale(QLocale::Chinese).toString(*version.cues))};
    if (difference.isNone())
        parts += u"字幕与现在相同"_s;
    for (const auto &[what, count] :
         {std::pair(u"恢复后修改 %1 条"_s, difference.changed), std::pair(u"增加 %1 条"_s, difference.added),
          std::pair(u"减少 %1 条"_s, difference.removed)}) {
        if (count > 0)
            parts += what.arg(count);
    }
    return parts.join(u" · "_s);
}

} // namespace

VersionsWorkspace::VersionsWorkspace(LintoraModel &model, QWidget *content)
    : Sheet(Extent::whole, content)
    , m_versions(model.versions())
    , m_list(makeList(u"历史版本"_s, m_rows))
    , m_difference(makeList(u"恢复后的变化"_s, m_changes))
    , m_status(new ElidedLabel(this))
    , m_restore(Controls::primaryButton(u"恢复此版本"_s, this))
{
    addHeading(u"历史版本"_s);
    body()->addWidget(Controls::note(
        u"编辑时每 10 分钟、以及导入、分离、识别、翻译等成批修改之前自动保留，只存在这台电脑上。恢复后可以撤销。"_s,
        this));
    body()->addWidget(m_list, 2);
    body()->addWidget(Controls::note(u"恢复后的变化"_s, this));
    body()->addWidget(m_difference, 3);
    body()->addWidget(makeButtons());

    connect(this, &Sheet::closeRequested, &m_versions, &Versions::close);
    connect(&m_versions, &Versions::versionsChanged, this, &VersionsWorkspace::follow);
    connect(&m_versions, &Versions::statusChanged, this, &VersionsWorkspace::followStatus);
    connect(m_list->selectionModel(), &QItemSelectionModel::currentChanged, this, &VersionsWorkspace::showDifference);
    connect(m_restore, &QPushButton::clicked, this, [this] { m_versions.restore(chosen()); });
}

QListView *VersionsWorkspace::makeList(const QString &name, ComparedRows &rows)
{
    auto *const list = new QListView(this);
    list->setModel(&rows);
    MarkedTextDelegate::install(*list);
    list->setAccessibleName(name);
    return list;
}

QWidget *VersionsWorkspace::makeButtons()
{
    auto *const row = new QWidget(this);
    auto *const layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, VELTheme::step, 0, 0);
    layout->setSpacing(VELTheme::gap);
    m_status->setFont(VELTheme::smallFont());
    m_status->setProperty("secondary", true);
    m_status->setAccessibleName(u"状态"_s);
    layout->addWidget(m_status, 1);
    layout->addWidget(m_restore);
    return row;
}

void VersionsWorkspace::present()
{
    if (!isVisible())
        open(m_list);
    follow();
    followStatus();
}

qsizetype VersionsWorkspace::chosen() const
{
    const int row = m_list->currentIndex().row();
    return row < m_versions.versions().size() ? row : -1;
}

void VersionsWorkspace::follow()
{
    const int row = std::max(0, m_list->currentIndex().row());
    QList<ComparedRow> rows;
    for (const Versions::Version &version : m_versions.versions())
        rows += {.kind = ComparedRow::Kind::noted,
                 .before = u"%1   %2"_s.arg(version.entry.kept.toString(u"M月d日 HH:mm"_s), version.entry.title),
                 .after = contentOf(version)};
    m_rows.setRows(rows);
    m_list->setCurrentIndex(m_rows.index(std::min(row, int(rows.size()) - 1)));
    showDifference();
}

void VersionsWorkspace::showDifference()
{
    QList<ComparedRow> rows;
    const qsizetype version = chosen();
    if (version >= 0) {
        const SessionDifference &difference = m_versions.versions().at(version).difference;
        for (const SessionDifference::Track &track : difference.tracks) {
            if (difference.tracks.size() > 1)
                rows += {.kind = ComparedRow::Kind::heading,
                         .before = track.label,
                         .after = u"%1 条不同"_s.arg(track.rows.size())};
            for (const CueProposal::Row &row : track.rows)
                rows += {.number = QString::number(row.cue + 1), .before = row.before, .after = row.after};
        }
    }
    m_changes.setRows(rows);
    const bool isReadable = version >= 0 && m_versions.versions().at(version).cues;
    m_restore->setEnabled(isReadable);
}

void VersionsWorkspace::followStatus()
{
    m_status->setText(m_versions.status());
    Controls::showAsFailure(m_status, m_versions.isRefused());
}
