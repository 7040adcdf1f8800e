#pragma once

#include "app/model/LintoraModel.h"
#include "tests/support/MemoryKeys.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

/// A model in a home folder of its own, whose file dialogs answer by themselves.
class ModelTest : public ::testing::Test
{
protected:
    ModelTest();
    ~ModelTest() override;

    /// A model as a start of the program makes it: the draft, the settings and the home folder stay from model to
    /// model.
    std::unique_ptr<LintoraModel> start();
    LintoraModel &restart(); ///< Ends `model` as a quit does and starts the next one.

    QString home(const QString &name) const { return m_home.filePath(name); }
    QString write(const QString &name, const QByteArray &bytes) const; ///< Returns the path.
    static QByteArray read(const QString &path);

    /// Imports a file and waits until it is there, or refused.
    void load(const QString &path);
    void loadCues(const QList<Subtitle> &cues, const QString &name = QStringLiteral("片段.srt"));
    void loadTexts(const QStringList &texts); ///< A cue of 900 ms each, one a second.

    /// Waits until no long work is under way, but what owns the cues, and all that it leads to is done.
    void settle();

    QString failure() const { return model->failure().value_or(QString()); }
    QStringList texts() const; ///< Of the selected track's cues.

    QString answer;                                    ///< What the next dialog is answered with; empty: given up.
    QString asked;                                     ///< What the last dialog suggested, or its title.
    QString askedBeside;                               ///< The file beside which it was to begin.
    QList<LocalModel> models = LocalModels::catalog(); ///< What the next start knows of models.
    MemoryKeys keys;                                   ///< The keychain, which stays from model to model.

private:
    QTemporaryDir m_home;
    QByteArray m_oldHome;

protected:
    std::unique_ptr<LintoraModel> model;
};

/// How often each published field of a model said that it changed, by the signal's name.
class Published
{
public:
    explicit Published(LintoraModel &model);

    QStringList take(); ///< The signals since the last call, in order.

private:
    std::unique_ptr<QObject> m_context;
    std::shared_ptr<QStringList> m_said;
};
