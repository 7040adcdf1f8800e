#include "app/Lintora/drag/UnifiedImportArea.h"

#include "app/Lintora/controls/Theme.h"
#include "app/Lintora/drag/CardFrame.h"
#include "app/Lintora/drag/ImportTexts.h"

#include <QKeyEvent>
#include <QPainter>

namespace {

constexpr int lineHeight = 36; // points

} // namespace

UnifiedImportArea::UnifiedImportArea(LintoraModel &model, QWidget *parent)
    : QAbstractButton(parent)
    , m_drop(new MaterialDrop(*this, model))
    , m_layout(new QBoxLayout(QBoxLayout::TopToBottom, this))
    , m_title(new QLabel(this))
    , m_detail(new QLabel(this))
{
    setToolTip(ImportTexts::help);
    setAccessibleName(ImportTexts::description);
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_Hover);
    for (QLabel *const label : {m_title, m_detail}) {
        label->setAttribute(Qt::WA_TransparentForMouseEvents);
        label->setForegroundRole(QPalette::Text); // what belongs on the frame's ground, instead of a button's
    }
    connect(this, &QAbstractButton::clicked, &model, &LintoraModel::chooseImport);
    connect(m_drop, &MaterialDrop::hoveringChanged, this, &UnifiedImportArea::showTexts);
    m_detail->setProperty("secondary", true);
    setForm(Form::large);
    applyColours();
    showTexts();
}

void UnifiedImportArea::setForm(Form form)
{
    m_form = form;
    const bool isLarge = form == Form::large;
    while (m_layout->count() > 0)
        delete m_layout->takeAt(0);
    m_layout->setDirection(isLarge ? QBoxLayout::TopToBottom : QBoxLayout::LeftToRight);
    m_layout->setContentsMargins(12, 4, 12, 4);
    m_layout->setSpacing(8);
    if (isLarge)
        m_layout->addStretch();
    m_layout->addWidget(m_title, 0, isLarge ? Qt::AlignHCenter : Qt::AlignVCenter);
    if (!isLarge)
        m_layout->addStretch();
    m_layout->addWidget(m_detail, 0, isLarge ? Qt::AlignHCenter : Qt::AlignVCenter);
    if (isLarge)
        m_layout->addStretch();
    setSizePolicy(QSizePolicy::Expanding, isLarge ? QSizePolicy::Expanding : QSizePolicy::Fixed);
    applyFonts();
    updateGeometry();
}

void UnifiedImportArea::applyFonts()
{
    m_title->setFont(m_form == Form::large ? VELTheme::headingFont() : VELTheme::textFont());
    m_detail->setFont(VELTheme::smallFont());
}

void UnifiedImportArea::showTexts()
{
    m_title->setText(m_drop->isHovering() ? ImportTexts::hovering : ImportTexts::title);
    m_detail->setText(ImportTexts::detail);
    update();
}

void UnifiedImportArea::applyColours()
{
    QPalette quiet = palette();
    quiet.setColor(QPalette::Text, CardFrame::secondaryText(palette()));
    m_detail->setPalette(quiet);
}

QSize UnifiedImportArea::sizeHint() const
{
    const QSize texts = m_layout->sizeHint();
    return m_form == Form::large ? texts.expandedTo({320, 160})
                                 : QSize(texts.width(), std::max(texts.height(), lineHeight));
}

QSize UnifiedImportArea::minimumSizeHint() const
{
    const QSize texts = m_layout->minimumSize();
    return {texts.width(), std::max(texts.height(), lineHeight)};
}

void UnifiedImportArea::paintEvent(QPaintEvent * /*event*/)
{
    QPainter painter(this);
    CardFrame::paint(painter, rect(), palette(), CardFrame::Edge::dashed,
                     {.highlighted = m_drop->isHovering() || underMouse() || isDown(), .focused = hasFocus()});
}

void UnifiedImportArea::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
        click();
    else
        QAbstractButton::keyPressEvent(event);
}

void UnifiedImportArea::changeEvent(QEvent *event)
{
    QAbstractButton::changeEvent(event);
    if (event->type() == QEvent::PaletteChange)
        applyColours();
    else if (event->type() == QEvent::FontChange)
        applyFonts();
}

bool UnifiedImportArea::event(QEvent *event)
{
    if (event->type() == QEvent::HoverEnter || event->type() == QEvent::HoverLeave)
        update();
    return QAbstractButton::event(event);
}
