#include "app/model/LintoraModel.h"
#include "core/SRT.h"
#include "core/files/Utf8Writer.h"
#include "tests/support/Events.h"
#include "tests/support/Generator.h"

#include <QCoreApplication>
#include <QFile>
#include <QThread>

#include <cstdio>

using namespace Qt::StringLiterals;

namespace {

/// The number of the newest change that a session holds.
qint64 newestChange(const LintoraSession &job)
{
    qint64 newest = 0;
    for (const Subtitle &cue : job.items)
        newest = std::max(newest, cue.text.toLongLong());
    return newest;
}

void printNumber(qint64 number)
{
    std::printf("%lld\n", static_cast<long long>(number));
    std::fflush(stdout);
}

/// Whether the last changes can be undone one by one, and done again.
bool isHistoryWhole(LintoraModel &model)
{
    const qint64 newest = newestChange(model.snapshot());
    const qint64 steps = std::min<qint64>(newest, 100);
    for (qint64 i = 1; i <= steps; ++i) {
        if (!model.canUndo())
            return false;
        model.undo();
        if (newestChange(model.snapshot()) != newest - i)
            return false;
    }
    for (qint64 i = 0; i < steps; ++i)
        model.redo();
    model.saveDraft();
    return newestChange(model.snapshot()) == newest;
}

} // namespace

/// model_editor DRAFT types into a session without end, like an editor in a hurry: the text of change N is N. Each line
/// of its output is a number N: "the changes up to N have been saved". Ends only by a signal, or with 1 when the draft
/// that is there was not taken up with its history.
///
/// model_editor --typing DRAFT does the same at the pace of a person, and says of every change that it was made.
/// model_editor --read DRAFT prints the newest change that a start of the program finds, or ends with 1 as well.
int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (argc != 2 && argc != 3)
        return 2;
    const QString &draft = arguments.last();
    const bool isTyping = arguments.contains(u"--typing"_s);
    const bool isThere = QFile::exists(draft);
    LintoraModel model({.draftURL = draft,
                        .stylePresetsURL = draft + u".presets"_s,
                        .settings = std::make_shared<QSettings>(draft + u".ini"_s, QSettings::IniFormat)});
    if (isThere && (model.items().isEmpty() || !isHistoryWhole(model)))
        return 1;
    if (arguments.contains(u"--read"_s)) {
        printNumber(newestChange(model.snapshot()));
        return 0;
    }
    if (!isThere)
        model.apply({.items = Generator(1).cues(2'000)});
    model.saveDraft();
    for (qint64 change = newestChange(model.snapshot()) + 1;; ++change) {
        const qsizetype index = change % model.items().size();
        model.setText(index, QString::number(change));
        if (change % 7 == 0)
            model.undo();
        if (change % 7 == 0)
            model.redo();
        // Most changes come while a save is under way.
        Events::handle();
        if (isTyping) {
            printNumber(change);
            QThread::msleep(20);
        } else if (change % 20 == 0) {
            model.saveDraft();
            printNumber(change);
        }
    }
}
