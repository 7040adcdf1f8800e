#include "tests/app/Lintora/PanelTest.h"

#include "app/Lintora/StatusLine.h"
#include "tests/support/Events.h"

#include <QApplication>
#include <QInputMethodEvent>
#include <QLabel>
#include <QTest>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace {

QList<Subtitle> cuesOf(const QStringList &texts)
{
    QList<Subtitle> cues;
    for (const QString &text : texts) {
        const qint64 start = cues.size() * 2'000;
        cues += Subtitle{.id = cues.size() + 1, .start = start, .end = start + 2'000, .text = text};
    }
    return cues;
}

} // namespace

PanelTest::PanelTest(const QList<LocalModel> &models)
    : model([&] {
        outside.models = models;
        return outside.surroundings();
    }())
{
    auto *const layout = new QVBoxLayout(&window);
    layout->setContentsMargins(0, 0, 0, 0);
    panel = new LintoraPanel(model, &window);
    layout->addWidget(panel);
    window.resize(640, 790);
    window.show();
    window.activateWindow();
    EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
}

void PanelTest::load(const QStringList &texts)
{
    LintoraSession job;
    job.tracks = QList{SubtitleTrack{.id = QUuid::createUuid(), .label = u"中文"_s, .items = cuesOf(texts)}};
    model.apply(job);
    Events::handle();
}

void PanelTest::loadTracks(const QStringList &chinese, const QStringList &english)
{
    LintoraSession job;
    job.tracks = QList{SubtitleTrack{.id = QUuid::createUuid(), .label = u"中文"_s, .items = cuesOf(chinese)},
                       SubtitleTrack{.id = QUuid::createUuid(), .label = u"English"_s, .items = cuesOf(english)}};
    job.selectedTrackID = job.tracks->first().id;
    model.apply(job);
    Events::handle();
}

QStringList PanelTest::texts() const
{
    QStringList texts;
    for (const Subtitle &cue : model.items())
        texts += cue.text;
    return texts;
}

QString PanelTest::status() const
{
    return panel->findChild<StatusLine *>()->text();
}

QStringList PanelTest::visibleTexts() const
{
    QStringList texts;
    for (const QLabel *const label : panel->findChildren<QLabel *>()) {
        if (label->isVisible())
            texts += label->text();
    }
    return texts;
}

void PanelTest::click(const QString &name)
{
    QAbstractButton *const wanted = button(name);
    ASSERT_NE(wanted, nullptr) << qPrintable(name);
    QTest::mouseClick(wanted, Qt::LeftButton);
    Events::handle();
}

CueTextEditor *PanelTest::editor() const
{
    for (CueTextEditor *const each : panel->findChildren<CueTextEditor *>()) {
        if (each->isVisible())
            return each;
    }
    return nullptr;
}

void PanelTest::edit(int cue)
{
    const QModelIndex index = table().model()->index(cue, CueTableModel::textColumn);
    table().scrollTo(index);
    const QPoint place = table().visualRect(index).center();
    QTest::mouseClick(table().viewport(), Qt::LeftButton, {}, place);
    QTest::mouseDClick(table().viewport(), Qt::LeftButton, {}, place);
    Events::handle();
}

void PanelTest::press(int key, Qt::KeyboardModifiers modifiers) const
{
    ASSERT_NE(QApplication::focusWidget(), nullptr);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key(key), modifiers);
    Events::handle();
}

void PanelTest::type(const QString &text) const
{
    QInputMethodEvent event;
    event.setCommitString(text);
    QApplication::sendEvent(QApplication::focusWidget(), &event);
    Events::handle();
}

void PanelTest::compose(const QString &text) const
{
    QInputMethodEvent event(text, {});
    QApplication::sendEvent(QApplication::focusWidget(), &event);
    Events::handle();
}
