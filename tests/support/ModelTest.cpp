#include "tests/support/ModelTest.h"

#include "core/SRT.h"
#include "core/files/AtomicFile.h"
#include "core/files/FileReader.h"
#include "tests/support/Events.h"

#include <QMetaMethod>

using namespace Qt::StringLiterals;

ModelTest::ModelTest()
    : m_oldHome(qgetenv("HOME"))
{
    qputenv("HOME", m_home.path().toUtf8());
    model = start();
}

ModelTest::~ModelTest()
{
    model.reset();
    qputenv("HOME", m_oldHome);
}

std::unique_ptr<LintoraModel> ModelTest::start()
{
    const auto reply = [this](const QString &suggestion, const QString &beside, const FileDialogs::Chosen &chosen) {
        asked = suggestion;
        askedBeside = beside;
        if (!answer.isEmpty())
            chosen(answer);
    };
    return std::make_unique<LintoraModel>(LintoraModel::Surroundings{
        .settings = std::make_shared<QSettings>(home(u"settings.ini"_s), QSettings::IniFormat),
        .dialogs = {
            .open = [reply](const auto &request, const auto &chosen) { reply(request.title, request.beside, chosen); },
            .save = [reply](const auto &request,
                            const auto &chosen) { reply(request.suggestion, request.beside, chosen); },
            .folder = [reply](const auto &request,
                              const auto &chosen) { reply(request.title, request.beside, chosen); }},
        .keys = keys.store(),
        .models = models});
}

LintoraModel &ModelTest::restart()
{
    model->shutdownAI();
    model->saveDraft();
    model.reset();
    model = start();
    return *model;
}

QString ModelTest::write(const QString &name, const QByteArray &bytes) const
{
    const QString path = home(name);
    AtomicFile file(path);
    file.write(bytes);
    file.commit();
    return path;
}

QByteArray ModelTest::read(const QString &path)
{
    return FileReader::readAll(path);
}

void ModelTest::load(const QString &path)
{
    model->load(QUrl::fromLocalFile(path));
    settle();
}

void ModelTest::loadCues(const QList<Subtitle> &cues, const QString &name)
{
    load(write(name, SRT::serialize(cues).toUtf8()));
}

void ModelTest::loadTexts(const QStringList &texts)
{
    QList<Subtitle> cues;
    for (const QString &text : texts)
        cues += {.id = cues.size() + 1, .start = cues.size() * 1'000, .end = cues.size() * 1'000 + 900, .text = text};
    loadCues(cues);
}

void ModelTest::settle()
{
    EXPECT_TRUE(Events::waitFor([&] { return !model->activity() || model->aiBusy(); }));
    Events::handle();
}

QStringList ModelTest::texts() const
{
    QStringList texts;
    for (const Subtitle &cue : model->items())
        texts += cue.text;
    return texts;
}

namespace {

/// Hears every signal of a model by way of the meta-object: a new field is heard without a line here.
class Ear : public QObject
{
public:
    explicit Ear(LintoraModel &model, std::shared_ptr<QStringList> said)
        : m_said(std::move(said))
    {
        const QMetaObject *const type = model.metaObject();
        for (int i = type->methodOffset(); i < type->methodCount(); ++i) {
            if (type->method(i).methodType() == QMetaMethod::Signal)
                QMetaObject::connect(&model, i, this, QObject::staticMetaObject.methodCount() + i);
        }
        m_type = type;
    }

    int qt_metacall(QMetaObject::Call call, int id, void **arguments) override
    {
        id = QObject::qt_metacall(call, id, arguments);
        if (id >= 0 && call == QMetaObject::InvokeMetaMethod)
            *m_said += QString::fromLatin1(m_type->method(id).name());
        return -1;
    }

private:
    std::shared_ptr<QStringList> m_said;
    const QMetaObject *m_type = nullptr;
};

} // namespace

Published::Published(LintoraModel &model)
    : m_said(std::make_shared<QStringList>())
{
    m_context = std::make_unique<Ear>(model, m_said);
}

QStringList Published::take()
{
    return std::exchange(*m_said, {});
}
