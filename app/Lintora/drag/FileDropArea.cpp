#include "app/Lintora/drag/FileDropArea.h"

#include "app/Lintora/drag/CardFrame.h"
#include "app/Lintora/drag/ImportTexts.h"

#include <QHBoxLayout>
#include <QPainter>

FileDropArea::FileDropArea(LintoraModel &model, Form form, const QString &prompt, QWidget *parent)
    : QWidget(parent)
    , m_form(form)
    , m_prompt(prompt.isEmpty() ? ImportTexts::dropPrompt : prompt)
    , m_drop(new MaterialDrop(*this, model))
    , m_label(new QLabel(ImportTexts::dropLabel, this))
{
    m_label->setForegroundRole(QPalette::Text);
    m_label->setAlignment(Qt::AlignCenter);
    m_label->setWordWrap(form == Form::large);
    auto *const layout = new QHBoxLayout(this);
    layout->setContentsMargins(12, 4, 12, 4);
    layout->addWidget(m_label);
    setSizePolicy(QSizePolicy::Expanding, form == Form::large ? QSizePolicy::Expanding : QSizePolicy::Fixed);
    setMinimumHeight(form == Form::large ? 72 : 36);
    setAccessibleName(m_prompt);
    connect(m_drop, &MaterialDrop::hoveringChanged, this, &FileDropArea::showText);
    showText();
}

void FileDropArea::showText()
{
    m_label->setText(m_drop->isHovering() ? ImportTexts::hovering : m_prompt);
    update();
}

QSize FileDropArea::sizeHint() const
{
    const QSize text = QWidget::sizeHint();
    return m_form == Form::large ? text.expandedTo({320, 120}) : text;
}

void FileDropArea::paintEvent(QPaintEvent * /*event*/)
{
    QPainter painter(this);
    CardFrame::paint(painter, rect(), palette(), CardFrame::Edge::dashed, {.highlighted = m_drop->isHovering()});
}
