#include "app/window/SystemFileDialogs.h"

#include "tests/app/TemporaryModel.h"
#include "tests/support/Events.h"

#include <gmock/gmock.h>

#include <QApplication>
#include <QDir>
#include <QFileDialog>
#include <QSettings>

using namespace Qt::StringLiterals;

namespace {

class AskingForFiles : public testing::Test
{
protected:
    AskingForFiles() { m_window.show(); }

    QList<QFileDialog *> open() const { return m_window.findChildren<QFileDialog *>(); }

    /// What its button does.
    static void accept(QDialog &dialog) { dialog.accept(); }

    void ask()
    {
        m_dialogs.open({.title = u"导入"_s, .extensions = {u"srt"_s, u"fcpxml"_s}},
                       [this](const QString &path) { m_chosen += path; });
    }

    TemporaryModel m_outside;
    QWidget m_window;
    FileDialogs m_dialogs = systemFileDialogs([this] { return &m_window; });
    QStringList m_chosen;
};

TEST_F(AskingForFiles, answers_with_the_chosen_file_and_later_starts_in_its_folder)
{
    const QString path = m_outside.srt(u"访谈.SRT"_s, 1).toLocalFile();
    ask();
    ASSERT_EQ(open().size(), 1);
    EXPECT_EQ(open().first()->windowTitle(), u"导入"_s);
    EXPECT_EQ(open().first()->nameFilters(), QStringList(u"SRT、FCPXML (*.srt *.SRT *.fcpxml *.FCPXML)"_s));
    open().first()->selectFile(path);
    accept(*open().first());
    EXPECT_EQ(m_chosen, QStringList(path));
    ASSERT_TRUE(Events::waitFor([&] { return open().isEmpty(); }));
    ask();
    EXPECT_EQ(open().first()->directory(), QFileInfo(path).dir());
    // Where the dialogs keep what they remember: in these tests, not in the developer's own.
    EXPECT_THAT(QSettings(QSettings::UserScope, u"QtProject"_s).fileName().toStdString(),
                testing::StartsWith(QDir::tempPath().toStdString()));
}

TEST_F(AskingForFiles, begins_beside_the_file_that_is_named)
{
    const QString path = m_outside.srt(u"a.srt"_s, 1).toLocalFile();
    const auto unanswered = [](const QString &) {};
    const std::function<void(const QString &)> questions[] = {
        [&](const QString &beside) { m_dialogs.open({.title = {}, .extensions = {}, .beside = beside}, unanswered); },
        [&](const QString &beside) {
            m_dialogs.save({.title = {}, .suggestion = u"b.srt"_s, .extension = u"srt"_s, .beside = beside},
                           unanswered);
        },
        [&](const QString &beside) { m_dialogs.folder({.title = {}, .beside = beside}, unanswered); }};
    for (const auto &question : questions) {
        for (const QString &beside : {path, u"/gone/with/its/folder.srt"_s, QString()}) {
            question(beside);
            EXPECT_EQ(open().first()->directory() == QFileInfo(path).dir(), beside == path) << qPrintable(beside);
            open().first()->reject();
            ASSERT_TRUE(Events::waitFor([&] { return open().isEmpty(); }));
        }
    }
}

TEST_F(AskingForFiles, does_not_answer_when_the_person_gives_up)
{
    ask();
    open().first()->reject();
    EXPECT_TRUE(Events::waitFor([&] { return open().isEmpty(); }));
    EXPECT_EQ(m_chosen, QStringList());
}

TEST_F(AskingForFiles, asks_one_thing_at_a_time)
{
    ask();
    ask();
    m_dialogs.save({.title = u"导出"_s, .suggestion = u"a.srt"_s, .extension = u"srt"_s}, [](const QString &) {});
    EXPECT_EQ(open().size(), 1);
}

TEST_F(AskingForFiles, what_was_chosen_may_lead_to_the_next_question)
{
    const QString path = m_outside.srt(u"a.srt"_s, 1).toLocalFile();
    m_dialogs.open({.title = u"导入"_s, .extensions = {u"srt"_s}}, [this](const QString &) {
        m_dialogs.folder({.title = u"导出全部 SRT"_s}, [this](const QString &folder) { m_chosen += folder; });
    });
    open().first()->selectFile(path);
    accept(*open().first());
    ASSERT_EQ(open().last()->windowTitle(), u"导出全部 SRT"_s);
    open().last()->selectFile(m_outside.path(QString()));
    accept(*open().last());
    EXPECT_EQ(m_chosen.size(), 1);
}

TEST_F(AskingForFiles, proposes_a_name_and_completes_the_one_that_is_given)
{
    m_dialogs.save({.title = u"导出 SRT"_s, .suggestion = u"访谈.srt"_s, .extension = u"srt"_s},
                   [this](const QString &path) { m_chosen += path; });
    QFileDialog *const dialog = open().first();
    EXPECT_EQ(dialog->acceptMode(), QFileDialog::AcceptSave);
    EXPECT_EQ(QFileInfo(dialog->selectedFiles().value(0)).fileName(), u"访谈.srt"_s);
    dialog->setDirectory(m_outside.path(QString()));
    dialog->selectFile(u"成片"_s);
    accept(*dialog);
    EXPECT_EQ(m_chosen, QStringList(m_outside.path(u"成片.srt"_s)));
}

} // namespace
