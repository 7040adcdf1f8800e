// Draws the window's main states, to be looked at: in both appearances and in three sizes.
//
//   lintora_screenshots          the selection that the documentation shows, into docs/images/
//   lintora_screenshots FOLDER   all of them
//   lintora_screenshots FOLDER STATE…   those of these states

#include "app/Lintora/controls/Theme.h"
#include "scripts/screenshots/States.h"
#include "tests/support/Events.h"
#include "tests/support/MemoryKeys.h"

#include <QApplication>
#include <QDir>
#include <QSettings>
#include <QTemporaryDir>

using namespace Qt::StringLiterals;

namespace {

bool isForDocumentation(const QString &state, QSize size, VELTheme::Appearance appearance)
{
    if (size == QSize(640, 790))
        return !QStringList{u"fcp-import"_s,     u"time"_s,         u"confirm"_s,       u"style-name"_s,
                            u"style-portrait"_s, u"speech"_s,       u"speech-online"_s, u"speech-running"_s,
                            u"glossary"_s,       u"text-service"_s, u"speech-service"_s}
                    .contains(state) &&
               (appearance == VELTheme::Appearance::light || state == u"loaded"_s);
    return state == u"loaded"_s && size.width() == 560 && appearance == VELTheme::Appearance::dark;
}

bool draw(const State &state, QSize size, VELTheme::Appearance appearance, const QString &file)
{
    const QTemporaryDir folder;
    LintoraModel model(
        {.draftURL = folder.filePath(u"Draft.json"_s),
         .stylePresetsURL = folder.filePath(u"Presets.json"_s),
         .settings = std::make_shared<QSettings>(folder.filePath(u"settings.ini"_s), QSettings::IniFormat),
         .dialogs = {},
         .keys = MemoryKeys().store()});
    LintoraPanel panel(model);
    VELTheme::setAppearance(panel, appearance);
    panel.resize(size);
    panel.show();
    panel.activateWindow();
    Events::handle();
    state.reach(model, panel);
    for (int i = 0; i < 5; ++i)
        Events::handle();
    if (panel.size() != size)
        qWarning("%ls: %d x %d became %d x %d", qUtf16Printable(state.name), size.width(), size.height(), panel.width(),
                 panel.height());
    return panel.grab().toImage().convertToFormat(QImage::Format_RGB888).save(file, "PNG", 0); // as small as can be
}

} // namespace

int main(int argc, char **argv)
{
    // What is kept in the home folder is none of the pictures' business.
    const QTemporaryDir home;
    qputenv("HOME", home.path().toLocal8Bit());
    const QApplication application(argc, argv);
    const bool wantsAll = argc > 1;
    const QDir folder(wantsAll ? QString::fromLocal8Bit(argv[1]) : u"docs/images"_s);
    if (!folder.mkpath(u"."_s))
        return 1;
    QStringList wanted;
    for (int i = 2; i < argc; ++i)
        wanted += QString::fromLocal8Bit(argv[i]);
    for (const State &state : states()) {
        if (!wanted.isEmpty() && !wanted.contains(state.name))
            continue;
        for (const QSize size : {QSize(560, 650), QSize(640, 790), QSize(1200, 900)}) {
            for (const auto appearance : {VELTheme::Appearance::light, VELTheme::Appearance::dark}) {
                if (!wantsAll && !isForDocumentation(state.name, size, appearance))
                    continue;
                const QString name =
                    u"%1-%2-%3.png"_s.arg(state.name, QString::number(size.width()),
                                          appearance == VELTheme::Appearance::dark ? u"dark"_s : u"light"_s);
                if (!draw(state, size, appearance, folder.filePath(name)))
                    return 1;
            }
        }
    }
    return 0;
}
