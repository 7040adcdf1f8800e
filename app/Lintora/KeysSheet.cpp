#include "app/Lintora/KeysSheet.h"

#include "app/Lintora/controls/Controls.h"
#include "app/Lintora/cues/CueTable.h"
#include "app/Lintora/sound/TransportKeys.h"

#include <QGridLayout>
#include <QScrollArea>
#include <QVBoxLayout>

#include <utility>

using namespace Qt::StringLiterals;

namespace {

/// Two columns of keys beside each other, each with what it does.
class KeyGrid
{
public:
    explicit KeyGrid(QWidget &page)
        : m_page(page)
        , m_grid(new QGridLayout(&page))
    {
        m_grid->setContentsMargins(0, 0, VELTheme::gap, 0);
        m_grid->setHorizontalSpacing(3 * VELTheme::step);
        m_grid->setVerticalSpacing(VELTheme::step);
        m_grid->setColumnStretch(1, 1);
        m_grid->setColumnStretch(3, 1);
    }

    void addGroup(const QString &title)
    {
        m_row += m_column > 0 ? 1 : 0;
        m_column = 0;
        QLabel *const heading = Controls::note(title, &m_page);
        heading->setContentsMargins(0, m_row > 0 ? VELTheme::gap : 0, 0, 0);
        m_grid->addWidget(heading, m_row++, 0, 1, 4);
    }

    void add(const QString &keys, const QString &what)
    {
        auto *const left = new QLabel(keys, &m_page);
        left->setTextFormat(Qt::PlainText);
        auto *const right = new QLabel(what, &m_page);
        right->setTextFormat(Qt::PlainText);
        right->setProperty("secondary", true);
        m_grid->addWidget(left, m_row, 2 * m_column);
        m_grid->addWidget(right, m_row, 2 * m_column + 1);
        m_column = 1 - m_column;
        m_row += m_column == 0 ? 1 : 0;
    }

    void end() { m_grid->setRowStretch(m_row + 1, 1); }

private:
    QWidget &m_page;
    QGridLayout *m_grid;
    int m_row = 0;
    int m_column = 0;
};

} // namespace

KeysSheet::KeysSheet(LintoraModel &model, QWidget *content)
    : Sheet(Extent::whole, content)
    , m_model(model)
    , m_area(new QScrollArea(this))
{
    addHeading(u"键盘操作"_s);
    m_area->setWidgetResizable(true);
    m_area->setFrameShape(QFrame::NoFrame);
    m_area->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_area->setAccessibleName(u"键盘操作"_s);
    m_area->setFocusPolicy(Qt::StrongFocus);
    m_area->viewport()->setAutoFillBackground(false);
    body()->addWidget(m_area, 1);
    connect(this, &Sheet::closeRequested, this, [this] { m_model.window().setKeysVisible(false); });
}

void KeysSheet::present()
{
    if (isVisible())
        return;
    list();
    open(m_area);
}

/// Anew each time: what a menu's entry does may have changed, and so its words.
void KeysSheet::list()
{
    auto *const page = new QWidget;
    KeyGrid grid(*page);
    grid.addGroup(u"字幕列表"_s);
    for (const CueTable::Key &key : CueTable::keys())
        grid.add(key.keys, key.what);
    grid.addGroup(u"时间条显示时，在列表或时间条里"_s);
    for (const TransportKeys::Key &key : TransportKeys::keys())
        grid.add(key.keys, key.what);
    QString menu;
    const auto &ask = m_model.window().menuKeys;
    for (const WindowState::MenuKey &key : ask ? ask() : QList<WindowState::MenuKey>()) {
        if (std::exchange(menu, key.menu) != key.menu)
            grid.addGroup(key.menu);
        grid.add(key.keys, key.title);
    }
    grid.end();
    m_area->setWidget(page); // which deletes the one before
    page->setAutoFillBackground(false);
}
