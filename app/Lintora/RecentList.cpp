#include "app/Lintora/RecentList.h"

#include "app/Lintora/controls/Controls.h"

#include <QHBoxLayout>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

RecentList::RecentList(LintoraModel &model, QWidget *parent)
    : QWidget(parent)
    , m_model(model)
    , m_rows(new QVBoxLayout)
{
    auto *const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, VELTheme::gap, 0, 0);
    layout->setSpacing(VELTheme::step);
    layout->addWidget(Controls::note(u"最近的字幕"_s, this));
    layout->addLayout(m_rows);
    m_rows->setSpacing(0);
    connect(&model, &LintoraModel::recentWorkChanged, this, &RecentList::follow);
    follow();
}

void RecentList::follow()
{
    while (QLayoutItem *const item = m_rows->takeAt(0)) {
        item->widget()->deleteLater();
        item->widget()->hide();
        delete item;
    }
    for (const RecentWork::Entry &entry : m_model.recentWork()) {
        const QString kept = RecentWork::nameOf(entry.kind) + u" · "_s + entry.kept.toString(u"M月d日 HH:mm"_s);
        auto *const row = Controls::quietButton({}, this);
        const int room = 90 * VELTheme::step;
        QString title = row->fontMetrics().elidedText(entry.title, Qt::ElideMiddle, room);
        row->setText(u"%1   %2"_s.arg(title.replace(u'&', u"&&"_s), kept));
        row->setToolTip(entry.kind == RecentWork::Kind::session ? entry.title : entry.file);
        row->setAccessibleName(u"%1，%2"_s.arg(entry.title, kept));
        connect(row, &QPushButton::clicked, this, [this, entry] { m_model.openRecent(entry); });
        m_rows->addWidget(row, 0, Qt::AlignLeft);
    }
    setVisible(!m_model.recentWork().isEmpty());
}
