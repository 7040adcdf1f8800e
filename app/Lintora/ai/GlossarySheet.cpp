#include "app/Lintora/ai/GlossarySheet.h"

#include "app/Lintora/controls/Controls.h"
#include "app/Lintora/controls/TextEdit.h"

#include <QPlainTextEdit>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

GlossarySheet::GlossarySheet(LintoraModel &model, QWidget *content)
    : Sheet(Extent::whole, content)
    , m_model(model)
    , m_text(new TextEdit(this))
    , m_note(Controls::note({}, this))
{
    addHeading(u"术语表"_s);
    body()->addWidget(
        Controls::note(u"每行一条：术语,译法,备注。两个翻译方向都适用；只把字幕里出现的术语随字幕发送。"_s, this));
    m_text->setAccessibleName(u"术语"_s);
    m_text->setPlaceholderText(u"调色,color grading,后期\n罗老师,Mr. Luo"_s);
    m_text->setTabChangesFocus(true);
    body()->addWidget(m_text, 1);
    body()->addSpacing(VELTheme::step);
    body()->addWidget(makeButtons());

    connect(this, &Sheet::closeRequested, this, &Sheet::dismiss);
    connect(m_text, &QPlainTextEdit::textChanged, this, [this] { setNote({}, false); });
    connect(m_text, &QPlainTextEdit::undoAvailable, this, &Sheet::undoChanged);
    connect(m_text, &QPlainTextEdit::redoAvailable, this, &Sheet::undoChanged);
    const GlossaryTerms &glossary = model.glossary();
    connect(&glossary, &GlossaryTerms::changed, this, &GlossarySheet::showTerms);
    connect(&glossary, &GlossaryTerms::done, this, [this](const QString &message) { setNote(message, false); });
    connect(&glossary, &GlossaryTerms::refused, this,
            [this](const Failure &failure) { setNote(failure.text(), true); });
}

QWidget *GlossarySheet::makeButtons()
{
    auto *const row = new QWidget(this);
    m_note->setAccessibleName(u"状态"_s);
    QPushButton *const importing = Controls::button(u"导入 CSV…"_s, row, u"加入文件里的术语，同名的以文件为准"_s);
    QPushButton *const exporting = Controls::button(u"导出 CSV…"_s, row, u"把已保存的术语写成 CSV 文件"_s);
    QPushButton *const saving = Controls::primaryButton(u"保存"_s, row);
    auto *const layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(VELTheme::gap);
    layout->addWidget(m_note, 1);
    layout->addWidget(importing);
    layout->addWidget(exporting);
    layout->addWidget(saving);
    connect(importing, &QPushButton::clicked, this, &GlossarySheet::importTerms);
    connect(exporting, &QPushButton::clicked, this, &GlossarySheet::exportTerms);
    connect(saving, &QPushButton::clicked, this, &GlossarySheet::save);
    return row;
}

void GlossarySheet::present()
{
    if (isVisible())
        return;
    showTerms();
    setNote({}, false);
    open(m_text);
}

/// What was typed and not saved is still there; a list changed elsewhere is shown when nothing was.
void GlossarySheet::showTerms()
{
    const QString kept = m_model.glossary().text();
    if (m_text->toPlainText() == m_kept)
        m_text->setPlainText(kept);
    m_kept = kept;
}

QString GlossarySheet::undoTitle() const
{
    return m_text->document()->isUndoAvailable() ? u"修改术语表"_s : QString();
}

QString GlossarySheet::redoTitle() const
{
    return m_text->document()->isRedoAvailable() ? u"修改术语表"_s : QString();
}

void GlossarySheet::undo()
{
    m_text->undo();
}

void GlossarySheet::redo()
{
    m_text->redo();
}

void GlossarySheet::save()
{
    try {
        m_kept = m_text->toPlainText(); // which is then shown as it is kept
        m_model.glossary().save(m_kept);
    } catch (const std::exception &error) { // which carries the sentence
        setNote(QString::fromUtf8(error.what()), true);
    }
}

void GlossarySheet::importTerms()
{
    m_model.dialogs().open({.title = u"导入术语表"_s, .extensions = {u"csv"_s}},
                           [this](const QString &path) { m_model.glossary().importFrom(path); });
}

void GlossarySheet::exportTerms()
{
    m_model.dialogs().save({.title = u"导出术语表"_s, .suggestion = u"术语表.csv"_s, .extension = u"csv"_s},
                           [this](const QString &path) { m_model.glossary().exportTo(path); });
}

void GlossarySheet::setNote(const QString &note, bool isFailure)
{
    m_note->setText(note);
    Controls::showAsFailure(m_note, isFailure);
}
