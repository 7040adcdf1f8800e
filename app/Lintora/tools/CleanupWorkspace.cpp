#include "app/Lintora/tools/CleanupWorkspace.h"

#include "app/Lintora/controls/Controls.h"
#include "app/Lintora/controls/TextEdit.h"
#include "core/text/SubtitleCleanup.h"

#include <QHBoxLayout>
#include <QPlainTextEdit>
#include <QStyle>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

CleanupWorkspace::CleanupWorkspace(LintoraModel &model, QWidget *content)
    : Sheet(Extent::whole, content)
    , m_model(model)
    , m_text(new TextEdit(this))
    , m_note(Controls::note({}, this))
{
    addHeading(u"VELMORA  /  CLEANUP"_s);
    body()->addWidget(Controls::note(u"输入想去掉的语气词，每行一个，也可用逗号分隔。清理时按词表匹配移除。"_s, this));
    m_text->setAccessibleName(u"语气词"_s);
    m_text->setTabChangesFocus(true);
    body()->addWidget(m_text, 1);
    body()->addWidget(
        Controls::note(u"词表只在开启「去语气词」并点击「一键清理」后使用。留空可停用全部词条。"_s, this));

    m_note->setAccessibleName(u"状态"_s);
    auto *const defaults = Controls::button(u"恢复默认词表"_s, this);
    auto *const saving = Controls::primaryButton(u"保存"_s, this);
    auto *const row = new QHBoxLayout;
    row->setSpacing(VELTheme::gap);
    row->addWidget(m_note, 1);
    row->addWidget(defaults);
    row->addWidget(saving);
    body()->addSpacing(VELTheme::step);
    body()->addLayout(row);

    connect(this, &Sheet::closeRequested, &model, [&model] { model.window().setCleanupSettingsVisible(false); });
    connect(defaults, &QPushButton::clicked, this, &CleanupWorkspace::restoreDefaults);
    connect(saving, &QPushButton::clicked, this, &CleanupWorkspace::save);
    connect(m_text, &QPlainTextEdit::textChanged, this, [this] { setNote({}, false); });
    connect(m_text, &QPlainTextEdit::undoAvailable, this, &Sheet::undoChanged);
    connect(m_text, &QPlainTextEdit::redoAvailable, this, &Sheet::undoChanged);
}

void CleanupWorkspace::present()
{
    if (isVisible())
        return;
    // What was typed and not saved is still there; a list changed elsewhere is shown when nothing was.
    const QString kept = m_model.textTools().fillerWords().join(u'\n');
    if (m_text->toPlainText() == m_kept)
        m_text->setPlainText(kept);
    m_kept = kept;
    setNote({}, false);
    open(m_text);
}

QString CleanupWorkspace::undoTitle() const
{
    return m_text->document()->isUndoAvailable() ? u"修改词表"_s : QString();
}

QString CleanupWorkspace::redoTitle() const
{
    return m_text->document()->isRedoAvailable() ? u"修改词表"_s : QString();
}

void CleanupWorkspace::undo()
{
    m_text->undo();
}

void CleanupWorkspace::redo()
{
    m_text->redo();
}

void CleanupWorkspace::restoreDefaults()
{
    m_text->selectAll(); // Replaced as a typed text is, so that it can be taken back.
    m_text->insertPlainText(SubtitleCleanup::defaultFillerWords().join(u'\n'));
    setNote(u"点击保存后生效"_s, false);
}

void CleanupWorkspace::save()
{
    try {
        m_model.textTools().saveFillerWords(m_text->toPlainText());
        m_kept = m_text->toPlainText();
        setNote(u"已保存，下次打开会继续保留"_s, false);
    } catch (const std::exception &error) { // which carries the sentence
        setNote(QString::fromUtf8(error.what()), true);
    }
}

void CleanupWorkspace::setNote(const QString &note, bool isFailure)
{
    m_note->setText(note);
    m_note->setProperty("failure", isFailure);
    m_note->style()->unpolish(m_note);
    m_note->style()->polish(m_note);
}
