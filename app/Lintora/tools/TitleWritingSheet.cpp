#include "app/Lintora/tools/TitleWritingSheet.h"

#include "app/Lintora/controls/CheckBox.h"
#include "app/Lintora/controls/Controls.h"
#include "app/Lintora/controls/ElidedLabel.h"
#include "core/SRT.h"

#include <QListView>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace {

QString inOneLine(const QString &text)
{
    return QString(text).replace(u'\n', u" / "_s);
}

QStringList lines(const Retext::Receipt &receipt)
{
    QStringList lines;
    for (const Retext::Changed &each : receipt.changed)
        lines +=
            u"第 %1 条：%2 → %3%4"_s.arg(QString::number(each.cue), inOneLine(each.before), inOneLine(each.after),
                                         each.styles ? u"（原有多种样式，改动的文字采用其中第一种）"_s : QString());
    for (const Retext::Moved &each : receipt.moved)
        lines += u"移动 第 %1 条：%2 → %3"_s.arg(QString::number(each.cue.id), SRT::stamp(each.start),
                                                 SRT::stamp(each.cue.start));
    for (const Subtitle &each : receipt.added)
        lines += u"新增 第 %1 条：%2"_s.arg(QString::number(each.id), inOneLine(each.text));
    for (const Subtitle &each : receipt.removed)
        lines += u"删除 项目里第 %1 条：%2"_s.arg(QString::number(each.id), inOneLine(each.text));
    for (const Retext::Refused &each : receipt.refused)
        lines += u"不能写入 第 %1 条：%2"_s.arg(QString::number(each.cue), each.reason);
    return lines;
}

} // namespace

TitleWritingSheet::TitleWritingSheet(LintoraModel &model, QWidget *content)
    : Sheet(Extent::whole, content)
    , m_model(model)
    , m_writing(model.titleWriting())
    , m_everything(new CheckBox(u"时间的改动、新增与删除也写入"_s, this))
    , m_list(new QListView(this))
    , m_status(new ElidedLabel(this))
    , m_write(Controls::primaryButton(u"写入…"_s, this))
{
    addHeading(u"写回项目标题"_s);
    body()->addWidget(
        Controls::note(u"改动的文字写进项目里原来的标题，样式与其他内容不变；写成新的 FCPXML，原文件不动。"_s, this));
    m_everything->setAccessibleName(m_everything->text());
    body()->addWidget(m_everything);
    m_list->setModel(&m_lines);
    m_list->setUniformItemSizes(true);
    m_list->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_list->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    m_list->setAccessibleName(u"将要写入"_s);
    body()->addWidget(m_list, 1);
    body()->addWidget(makeButtons());

    connect(this, &Sheet::closeRequested, &m_writing, &TitleWriting::close);
    connect(&m_writing, &TitleWriting::changed, this, &TitleWritingSheet::follow);
    connect(m_everything, &CheckBox::clicked, this, [this](bool everything) {
        m_writing.setScope(everything ? Retext::Scope::everything : Retext::Scope::texts);
    });
}

QWidget *TitleWritingSheet::makeButtons()
{
    connect(m_write, &QPushButton::clicked, this, &TitleWritingSheet::write);
    return Controls::statusRow(m_status, {m_write}, this);
}

void TitleWritingSheet::present()
{
    if (!isVisible())
        open(m_everything);
    follow();
}

void TitleWritingSheet::follow()
{
    if (!isVisible() || !m_writing.isShown())
        return;
    const auto receipt = m_writing.receipt();
    m_everything->setChecked(m_writing.scope() == Retext::Scope::everything);
    m_lines.setStringList(receipt ? lines(*receipt) : QStringList());
    m_status->setText(m_writing.status());
    Controls::showAsFailure(m_status, m_writing.isRefused());
    m_write->setEnabled(m_writing.canWrite());
}

void TitleWritingSheet::write()
{
    const QString beside = m_writing.folder() ? *m_writing.folder() + u"/."_s : QString();
    m_model.dialogs().save({.title = u"写回项目标题"_s,
                            .suggestion = m_model.titleWritingName(),
                            .extension = u"fcpxml"_s,
                            .beside = beside},
                           [this](const QString &path) { m_writing.write(path); });
}
