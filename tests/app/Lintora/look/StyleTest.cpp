#include "tests/app/Lintora/look/StyleTest.h"

#include "app/Lintora/controls/Theme.h"
#include "tests/support/Events.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QInputMethodEvent>
#include <QLabel>
#include <QTest>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

const QList<FontFamily> &fonts()
{
    const auto family = [](const QString &name, const QString &chinese, const QString &english,
                           const QStringList &faces) {
        return FontFamily{
            .family = name, .chineseName = chinese, .englishName = english, .faces = faces, .pronunciation = {}};
    };
    static const QList<FontFamily> all{
        family(u"FZLanTingHei"_s, u"方正兰亭黑"_s, {}, {u"Light"_s, u"Heavy"_s}),
        family(u"Helvetica"_s, {}, u"Helvetica"_s, {u"Regular"_s, u"Oblique"_s}),
        family(u"STSong"_s, u"华文宋体"_s, {}, {u"Regular"_s}),
        family(u"Source Han Sans CN"_s, u"思源黑体"_s, u"Source Han Sans CN"_s, {u"Bold"_s, u"Regular"_s}),
    };
    return all;
}

const FontFamily &font(const QString &family)
{
    return *std::ranges::find(fonts(), family, &FontFamily::family);
}

FontCatalogue::Source system()
{
    return {.families =
                [] {
                    QStringList names;
                    for (const FontFamily &each : fonts())
                        names += each.family;
                    return names;
                },
            .faces = [](const QString &family) { return font(family).faces; },
            .names =
                [](const QString &family) {
                    return FontNames::Names{
                        .chinese = font(family).chineseName, .english = font(family).englishName, .families = {family}};
                }};
}

} // namespace

StyleTest::StyleTest()
{
    VELTheme::configure(window);
    workspace = new StyleWorkspace(model, &window, {.indexFile = outside.path(u"Fonts.json"_s), .source = system()});
    QObject::connect(&model.window(), &WindowState::settingsVisibleChanged, workspace, [this] {
        if (model.window().settingsVisible())
            workspace->present();
        else
            workspace->dismiss();
    });
    LintoraSession job;
    job.tracks = QList{SubtitleTrack{.id = QUuid::createUuid(),
                                     .label = u"中文"_s,
                                     .items = {{.id = 1, .start = 0, .end = 2'000, .text = u"第一条"_s},
                                               {.id = 2, .start = 2'000, .end = 4'000, .text = QString(90, u'长')}}},
                       SubtitleTrack{.id = QUuid::createUuid(),
                                     .label = u"English"_s,
                                     .items = {{.id = 1, .start = 0, .end = 900, .text = u"One"_s}}}};
    job.selectedTrackID = job.tracks->first().id;
    model.apply(job);
    window.resize(640, 790);
    window.show();
    window.activateWindow();
    EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
    model.window().setSettingsVisible(true);
    Events::handle();
}

void StyleTest::click(const QString &name)
{
    auto *const wanted = find<QAbstractButton>(name);
    ASSERT_NE(wanted, nullptr) << qPrintable(name);
    QTest::mouseClick(wanted, Qt::LeftButton);
    Events::handle();
}

void StyleTest::type(const QString &name, const QString &text)
{
    QLineEdit *const wanted = field(name);
    ASSERT_NE(wanted, nullptr) << qPrintable(name);
    wanted->setFocus();
    wanted->selectAll();
    if (text.isEmpty())
        QTest::keyClick(wanted, Qt::Key_Delete);
    const bool isOnKeyboard = std::ranges::all_of(text, [](QChar each) { return each.unicode() < 0x80; });
    if (isOnKeyboard) {
        QTest::keyClicks(wanted, text);
    } else {
        QInputMethodEvent event;
        event.setCommitString(text);
        QApplication::sendEvent(wanted, &event);
    }
    Events::handle();
}

void StyleTest::enter(const QString &name, const QString &text)
{
    type(name, text);
    press(Qt::Key_Return);
}

void StyleTest::choose(const QString &name, const QString &entry)
{
    QComboBox *const box = choice(name);
    ASSERT_NE(box, nullptr) << qPrintable(name);
    const int index = box->findText(entry);
    ASSERT_GE(index, 0) << qPrintable(entry);
    box->setFocus();
    box->showPopup();
    box->view()->setCurrentIndex(box->model()->index(index, 0));
    QTest::keyClick(box->view(), Qt::Key_Return);
    window.activateWindow();
    EXPECT_TRUE(Events::waitFor([] { return QApplication::focusWidget() != nullptr; }));
}

void StyleTest::press(int key, Qt::KeyboardModifiers modifiers) const
{
    ASSERT_NE(QApplication::focusWidget(), nullptr);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key(key), modifiers);
    Events::handle();
}

QStringList StyleTest::visibleTexts() const
{
    QStringList texts;
    for (const QLabel *const label : window.findChildren<QLabel *>()) {
        if (label->isVisible())
            texts += label->text();
    }
    return texts;
}

int StyleTest::steps()
{
    const LintoraSession now = model.snapshot();
    int count = 0;
    while (model.canUndo()) {
        model.undo();
        ++count;
    }
    for (int i = 0; i < count; ++i)
        model.redo();
    EXPECT_EQ(model.snapshot(), now);
    return count;
}

void StyleTest::settle()
{
    EXPECT_TRUE(Events::waitFor([this] { return !model.activity(); }));
    Events::handle();
}
