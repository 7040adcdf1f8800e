#include "app/Lintora/drag/CardRow.h"

#include "app/Lintora/controls/Controls.h"
#include "app/Lintora/controls/ElidedLabel.h"
#include "app/Lintora/drag/DragSubtitleCard.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QMenu>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

CardRow::CardRow(LintoraModel &model, std::function<bool()> mayAct, QWidget *parent)
    : QWidget(parent)
    , m_model(model)
    , m_mayAct(std::move(mayAct))
    , m_cards(new QHBoxLayout)
    , m_exportSRT(Controls::quietButton(u"导出 SRT"_s, this))
    , m_exportFCPXML(Controls::quietButton(u"导出 FCPXML"_s, this))
{
    auto *const hint = new ElidedLabel(u"按住下方卡片，拖入 FCP 时间线"_s, this);
    hint->setFont(VELTheme::smallFont());
    hint->setProperty("secondary", true);
    auto *const heading = new QHBoxLayout;
    heading->setSpacing(VELTheme::step);
    heading->addWidget(hint, 1);
    heading->addWidget(m_exportSRT);
    heading->addWidget(m_exportFCPXML);
    m_cards->setSpacing(VELTheme::gap);
    auto *const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(VELTheme::step);
    layout->addLayout(heading);
    layout->addLayout(m_cards);

    offerExports();
    connect(&model, &LintoraModel::tracksChanged, this, &CardRow::follow);
    connect(&model, &LintoraModel::splitOriginalChanged, this, &CardRow::follow);
    connect(&model, &LintoraModel::itemsChanged, this, &CardRow::follow);
    follow();
}

void CardRow::offerExports()
{
    connect(m_exportSRT, &QPushButton::clicked, this, [this] { perform(&LintoraModel::exportSRT); });
    auto *const menu = new QMenu(m_exportFCPXML);
    const auto add = [this, menu](const QString &title, void (LintoraModel::*action)()) {
        QAction *const entry = menu->addAction(title);
        connect(entry, &QAction::triggered, this, [this, action] { perform(action); });
        return entry;
    };
    add(u"独立文档"_s, &LintoraModel::exportFCPXML);
    add(u"写入项目…"_s, &LintoraModel::exportToProject);
    add(u"写回项目标题…"_s, &LintoraModel::showTitleWriting);
    m_ofAll = {menu->addSeparator(), add(u"独立文档（全部语言）"_s, &LintoraModel::exportAllFCPXML),
               add(u"写入项目（全部语言）…"_s, &LintoraModel::exportAllToProject)};
    m_exportFCPXML->setMenu(menu);
    m_exportFCPXML->setIcon(VELTheme::icon(VELTheme::Glyph::more, *m_exportFCPXML));
    m_exportFCPXML->setLayoutDirection(Qt::RightToLeft); // The sign stands behind the words.
    menu->setLayoutDirection(Qt::LeftToRight);
}

void CardRow::perform(void (LintoraModel::*action)())
{
    if (m_mayAct())
        (m_model.*action)();
}

void CardRow::addCard(DragSubtitleCard *card)
{
    card->installEventFilter(this);
    m_cards->addWidget(card, 1);
    setTabOrder(m_shown.isEmpty() ? m_exportFCPXML : m_shown.last(), card);
    m_shown += card;
}

void CardRow::follow()
{
    m_exportSRT->setEnabled(!m_model.items().isEmpty());
    m_exportFCPXML->setEnabled(!m_model.items().isEmpty());
    QList<QUuid> tracks;
    for (const SubtitleTrack &track : m_model.visibleTracks())
        tracks += track.id;
    if (tracks == m_tracks)
        return;
    m_tracks = tracks;
    qDeleteAll(m_shown);
    m_shown.clear();
    for (const QUuid &track : tracks)
        addCard(new DragSubtitleCard(m_model, track, this));
    const bool areSeveral = tracks.size() > 1;
    if (areSeveral)
        addCard(new DragSubtitleCard(m_model, DragSubtitleCard::AllTracks(), this));
    for (QAction *const each : m_ofAll)
        each->setVisible(areSeveral);
}

bool CardRow::eventFilter(QObject * /*watched*/, QEvent *event)
{
    return event->type() == QEvent::MouseButtonPress && !m_mayAct();
}
