#include "app/Lintora/tools/RepairWorkspace.h"

#include "app/Lintora/controls/ChoiceBox.h"
#include "app/Lintora/controls/Controls.h"
#include "app/Lintora/controls/ElidedLabel.h"
#include "app/Lintora/controls/FieldRow.h"

#include <QFileInfo>
#include <QHBoxLayout>
#include <QListView>
#include <QSignalBlocker>
#include <QVBoxLayout>

#include <algorithm>

using namespace Qt::StringLiterals;

RepairWorkspace::RepairWorkspace(LintoraModel &model, QWidget *content)
    : Sheet(Extent::whole, content)
    , m_repairing(model.fileRepairing())
    , m_name(Controls::note({}, this))
    , m_sample(Controls::note({}, this))
    , m_list(new QListView(this))
    , m_status(new ElidedLabel(this))
    , m_open(Controls::primaryButton(u"修复并打开"_s, this))
{
    addHeading(u"修复并打开"_s);
    body()->addWidget(m_name);
    auto *const row = new FieldRow(u"编码"_s, this);
    m_encoding = new ChoiceBox(u"编码"_s, row);
    row->controls()->addWidget(m_encoding);
    row->controls()->addStretch(1);
    body()->addWidget(row);
    m_sample->setAccessibleName(u"样例"_s);
    m_sample->setTextFormat(Qt::PlainText);
    body()->addWidget(m_sample);
    m_list->setModel(&m_lines);
    m_list->setUniformItemSizes(true);
    m_list->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_list->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    m_list->setAccessibleName(u"修复内容"_s);
    body()->addWidget(m_list, 1);
    body()->addWidget(makeButtons());

    connect(this, &Sheet::closeRequested, &m_repairing, &FileRepairing::close);
    connect(&m_repairing, &FileRepairing::fileChanged, this, &RepairWorkspace::follow);
    connect(m_encoding, &ChoiceBox::activated, this,
            [this](int index) { m_repairing.setEncoding(m_encoding->itemData(index).toString()); });
}

QWidget *RepairWorkspace::makeButtons()
{
    connect(m_open, &QPushButton::clicked, &m_repairing, &FileRepairing::accept);
    return Controls::statusRow(m_status, {m_open}, this);
}

void RepairWorkspace::present()
{
    if (!isVisible())
        open(m_encoding);
    m_name->setText(
        u"“%1”不能照原样读取。下面是将要做的修改，原文件不变。"_s.arg(QFileInfo(m_repairing.path()).fileName()));
    follow();
}

void RepairWorkspace::follow()
{
    if (!isVisible() || !m_repairing.isShown())
        return;
    const std::optional<RepairedFile> &file = m_repairing.file();
    QStringList lines;
    if (file) {
        listEncodings(*file);
        for (const FileRepair &repair : file->repairs)
            lines.append(repair.cue ? u"第 %1 行 · 第 %2 条：%3"_s.arg(repair.line).arg(*repair.cue).arg(repair.what)
                                    : u"第 %1 行：%2"_s.arg(repair.line).arg(repair.what));
    }
    m_lines.setStringList(lines);
    m_status->setText(m_repairing.status());
    Controls::showAsFailure(m_status, m_repairing.isRefused());
    m_open->setEnabled(file.has_value());
}

/// Those that the file may be written in, the likeliest first, and then all others.
void RepairWorkspace::listEncodings(const RepairedFile &file)
{
    const QSignalBlocker silent(m_encoding);
    m_encoding->clear();
    QString sample;
    for (const TextEncoding::Guess &guess : file.guesses) {
        m_encoding->addItem(u"%1（%2%）"_s.arg(guess.name).arg(qRound(guess.certainty * 100)), guess.name);
        if (guess.name == file.encoding)
            sample = guess.sample;
    }
    for (const QString &name : TextEncoding::names()) {
        if (m_encoding->findData(name) < 0)
            m_encoding->addItem(name, name);
    }
    m_encoding->setCurrentIndex(m_encoding->findData(file.encoding));
    m_sample->setText(sample.isEmpty() && !file.items.isEmpty() ? file.items.first().text : sample);
}
