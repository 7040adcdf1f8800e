#include "app/Lintora/look/TitlePicker.h"

#include "app/Lintora/controls/Controls.h"
#include "app/Lintora/controls/ElidedLabel.h"
#include "app/Lintora/look/TitleRowDelegate.h"

#include <QKeyEvent>
#include <QListView>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

TitlePicker::TitlePicker(LintoraModel &model, QWidget *parent)
    : QWidget(parent)
    , m_model(model)
    , m_titles(model.ownTitles())
    , m_source(new ElidedLabel(this))
    , m_list(new QListView(this))
    , m_status(Controls::note({}, this))
{
    m_source->setAccessibleName(u"标题来源"_s);
    m_list->setModel(&m_titles);
    m_list->setItemDelegate(new TitleRowDelegate(m_list));
    m_list->setUniformItemSizes(true);
    m_list->setMouseTracking(true);
    m_list->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_list->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    m_list->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_list->setAccessibleName(u"项目中的标题"_s);
    m_status->setAlignment(Qt::AlignCenter);
    m_status->setAccessibleName(u"标题列表提示"_s);

    auto *const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(VELTheme::gap);
    layout->addWidget(m_source);
    layout->addWidget(m_list, 1);
    layout->addWidget(m_status, 1);
    layout->addWidget(makeFoot());

    connect(m_list->selectionModel(), &QItemSelectionModel::currentChanged, this, [this](const QModelIndex &current) {
        m_choose->setEnabled(current.isValid());
        if (current.isValid())
            Q_EMIT previewed(m_titles.look(current));
    });
    connect(m_list, &QListView::activated, this, &TitlePicker::choose);
    connect(&m_titles, &TitleListModel::modelReset, this, &TitlePicker::follow);
    follow();
}

QWidget *TitlePicker::makeFoot()
{
    auto *const foot = new QWidget(this);
    m_other = Controls::button(u"其他项目…"_s, foot, u"从另一个 .fcpxml 或 .fcpxmld 中选标题"_s);
    QPushButton *const cancel = Controls::button(u"取消"_s, foot);
    m_choose = Controls::primaryButton(u"选用"_s, foot);
    auto *const row = new QHBoxLayout(foot);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(VELTheme::gap);
    row->addWidget(m_other);
    row->addStretch();
    row->addWidget(cancel);
    row->addWidget(m_choose);
    connect(m_other, &QPushButton::clicked, &m_model, &LintoraModel::chooseOwnTitles);
    connect(cancel, &QPushButton::clicked, this, &TitlePicker::left);
    connect(m_choose, &QPushButton::clicked, this, &TitlePicker::choose);
    return foot;
}

void TitlePicker::begin()
{
    m_model.showOwnTitles();
    m_other->setFocus(Qt::OtherFocusReason);
}

void TitlePicker::follow()
{
    const OwnTitles &titles = m_model.ownTitles();
    const bool isEmpty = m_titles.rowCount() == 0;
    m_source->setText(titles.source().isEmpty()
                          ? u"选一个标题，每条字幕都照它的样子写入"_s
                          : u"“%1”中的标题：选一个，每条字幕都照它的样子写入"_s.arg(titles.source()));
    m_list->setVisible(!isEmpty);
    m_status->setVisible(isEmpty);
    m_status->setText(titles.source().isEmpty() ? u"还没有导入 FCP 项目。点“其他项目…”，选一个含有您的标题的项目。"_s
                                                : titles.status());
    m_choose->setEnabled(false);
    if (isEmpty)
        return;
    const QModelIndex chosen = m_titles.indexOf(m_model.look());
    m_list->setCurrentIndex(chosen.isValid() ? chosen : m_titles.index(0));
    if (isVisible())
        m_list->setFocus(Qt::OtherFocusReason);
}

void TitlePicker::choose()
{
    if (const QModelIndex current = m_list->currentIndex(); current.isValid())
        Q_EMIT chosen(m_titles.look(current));
}

void TitlePicker::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Escape)
        Q_EMIT left();
    else if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
        choose();
    else
        QWidget::keyPressEvent(event);
}
