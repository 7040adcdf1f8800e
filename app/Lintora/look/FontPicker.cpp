#include "app/Lintora/look/FontPicker.h"

#include "app/Lintora/controls/ChoiceBox.h"
#include "app/Lintora/controls/Controls.h"
#include "app/Lintora/controls/LineEdit.h"
#include "app/Lintora/look/FontFaces.h"
#include "app/Lintora/look/FontRowDelegate.h"

#include <QCoreApplication>
#include <QKeyEvent>
#include <QLineEdit>
#include <QListView>
#include <QScopedValueRollback>
#include <QSignalBlocker>
#include <QVBoxLayout>

#include <utility>

using namespace Qt::StringLiterals;

FontPicker::FontPicker(FontCatalogue &catalogue, Preferences &preferences, QWidget *parent)
    : QWidget(parent)
    , m_catalogue(catalogue)
    , m_fonts(catalogue, preferences)
    , m_query(new LineEdit(this))
    , m_list(new QListView(this))
    , m_rows(new FontRowDelegate(m_list))
    , m_count(Controls::note({}, this))
{
    m_query->setPlaceholderText(u"字体名称、拼音或首字母，如 siyuan、syht"_s);
    m_query->setAccessibleName(u"查找字体"_s);
    m_query->setClearButtonEnabled(true);
    m_query->installEventFilter(this);
    m_list->setModel(&m_fonts);
    m_list->setItemDelegate(m_rows);
    m_list->setUniformItemSizes(true);
    m_list->setMouseTracking(true);
    m_list->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_list->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    m_list->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_list->setAccessibleName(u"字体"_s);
    m_list->installEventFilter(this);

    auto *const top = new QHBoxLayout;
    top->setSpacing(VELTheme::gap);
    top->addWidget(m_query, 1);
    top->addWidget(m_count);
    auto *const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(VELTheme::gap);
    layout->addLayout(top);
    layout->addWidget(m_list, 1);
    layout->addWidget(makeFoot());

    connect(m_query, &QLineEdit::textChanged, this, &FontPicker::search);
    connect(m_list->selectionModel(), &QItemSelectionModel::currentChanged, this, &FontPicker::followCurrent);
    connect(m_list, &QListView::doubleClicked, this, &FontPicker::choose);
    connect(m_rows, &FontRowDelegate::starClicked, this, &FontPicker::toggleFavorite);
    connect(&m_rows->samples(), &FontSamples::drawn, m_list->viewport(), qOverload<>(&QWidget::update));
    connect(&catalogue, &FontCatalogue::changed, this, &FontPicker::followCatalogue);
    followCount();
}

QWidget *FontPicker::makeFoot()
{
    auto *const foot = new QWidget(this);
    m_face = new ChoiceBox(u"字形"_s, foot);
    m_favorite = Controls::signButton(VELTheme::Glyph::star, u"收藏字体"_s, foot, u"收藏的字体排在最前"_s);
    m_favorite->setCheckable(true);
    QPushButton *const cancel = Controls::button(u"取消"_s, foot);
    m_choose = Controls::primaryButton(u"选用"_s, foot);
    auto *const label = new QLabel(u"字形"_s, foot);
    label->setBuddy(m_face);
    auto *const row = new QHBoxLayout(foot);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(VELTheme::gap);
    row->addWidget(label);
    row->addWidget(m_face, 1);
    row->addWidget(m_favorite);
    row->addStretch(1);
    row->addWidget(cancel);
    row->addWidget(m_choose);
    connect(m_face, &ChoiceBox::activated, this, [this](int index) {
        m_wantedFace = m_face->itemText(index);
        Q_EMIT previewed(m_family, m_wantedFace);
    });
    connect(m_favorite, &QToolButton::clicked, this, [this] { toggleFavorite(m_list->currentIndex()); });
    connect(cancel, &QPushButton::clicked, this, &FontPicker::left);
    connect(m_choose, &QPushButton::clicked, this, &FontPicker::choose);
    return foot;
}

void FontPicker::begin(const QString &family, const QString &face)
{
    const QScopedValueRollback refreshing(m_isRefreshing, true);
    m_family = m_firstFamily = family;
    m_wantedFace = m_firstFace = face;
    m_query->clear();
    m_fonts.setQuery({});
    m_list->setCurrentIndex(m_fonts.indexOf(family));
    m_list->scrollTo(m_list->currentIndex(), QAbstractItemView::PositionAtCenter);
    followCount();
    followCurrent();
    m_query->setFocus(Qt::OtherFocusReason);
}

void FontPicker::search()
{
    if (m_isRefreshing)
        return;
    m_fonts.setQuery(m_query->text());
    m_list->setCurrentIndex(m_fonts.index(0));
    m_list->scrollToTop();
    followCount();
    if (m_fonts.rowCount() == 0)
        followCurrent();
}

/// Names come to be known while someone is looking already: what they look at stays.
void FontPicker::followCatalogue()
{
    const QScopedValueRollback refreshing(m_isRefreshing, true);
    m_fonts.refresh();
    m_list->setCurrentIndex(m_fonts.indexOf(m_family));
    m_list->scrollTo(m_list->currentIndex(), QAbstractItemView::PositionAtCenter);
    followCount();
    followCurrent();
}

void FontPicker::followCount()
{
    const int count = m_fonts.rowCount();
    const bool isSearch = !m_fonts.query().isEmpty();
    if (count == 0 && isSearch)
        m_count->setText(u"没有找到"_s);
    else
        m_count->setText(m_catalogue.isReady() ? u"%1 款"_s.arg(count) : u"%1 款 · 正在读取名称"_s.arg(count));
}

void FontPicker::followCurrent()
{
    const QModelIndex current = m_list->currentIndex();
    m_choose->setEnabled(current.isValid());
    m_favorite->setEnabled(current.isValid());
    m_face->setEnabled(current.isValid());
    const QSignalBlocker quietly(m_face);
    m_face->clear();
    if (!current.isValid()) {
        // Nothing was found, not the last of what was passed on the way.
        if (!m_isRefreshing && std::exchange(m_family, m_firstFamily) != m_firstFamily)
            Q_EMIT previewed(m_firstFamily, m_firstFace);
        return;
    }
    const FontFamily &font = m_fonts.family(current);
    const QString face = FontFaces::best(font.faces, m_wantedFace);
    m_face->addItems(font.faces.isEmpty() ? QStringList{face} : font.faces);
    m_face->setCurrentText(face);
    const bool isFavorite = m_fonts.isFavorite(font.family);
    m_favorite->setChecked(isFavorite);
    m_favorite->setIcon(VELTheme::icon(isFavorite ? VELTheme::Glyph::starred : VELTheme::Glyph::star, *m_favorite));
    if (font.family == m_family || m_isRefreshing)
        return;
    m_family = font.family;
    Q_EMIT previewed(font.family, face);
}

void FontPicker::toggleFavorite(const QModelIndex &index)
{
    if (!index.isValid())
        return;
    const QString family = m_fonts.family(index).family;
    m_fonts.setFavorite(family, !m_fonts.isFavorite(family));
    followCurrent();
}

void FontPicker::choose()
{
    const QModelIndex current = m_list->currentIndex();
    if (!current.isValid())
        return;
    const QString family = m_fonts.family(current).family;
    m_fonts.noteUse(family);
    Q_EMIT chosen(family, m_face->currentText());
}

/// Typing searches and the arrow keys go through the list, whichever of the two has the focus.
bool FontPicker::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() != QEvent::KeyPress)
        return QWidget::eventFilter(watched, event);
    auto &key = static_cast<QKeyEvent &>(*event);
    switch (key.key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
        choose();
        return true;
    case Qt::Key_Up:
    case Qt::Key_Down:
    case Qt::Key_PageUp:
    case Qt::Key_PageDown:
        if (watched == m_query)
            QCoreApplication::sendEvent(m_list, event);
        return watched == m_query;
    default:
        break;
    }
    const bool isTyped = !key.text().isEmpty() && key.text().at(0).isPrint();
    if (watched != m_list || !isTyped)
        return false;
    m_query->setFocus(Qt::OtherFocusReason);
    QCoreApplication::sendEvent(m_query, event);
    return true;
}

void FontPicker::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Escape)
        Q_EMIT left();
    else
        QWidget::keyPressEvent(event);
}
