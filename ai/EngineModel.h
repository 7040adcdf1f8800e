#pragma once

#include "core/Progress.h"

#include <QByteArray>
#include <QString>

#include <functional>

class LocalAIJob;
struct LocalModel;

/// A model file that a local engine is to work with.
struct EngineModel
{
    QString file; ///< Its path.

    /// What tells its answers from those of any other model.
    QByteArray identity;

    /// Makes sure that the file can be worked with, which may take seconds. Called once, before anything else is done.
    /// @throws ConversionError in the words for this model; PlatformError, Cancelled
    std::function<void(LocalAIJob &job, const ProgressReport &progress)> prepare;

    /// A file of the person's own, which is taken as it is, as long as it is there: no catalog knows it. It is another
    /// model when its size or its date is another.
    static EngineModel own(const QString &path);

    /// A model of the catalog, which must be there and whole. `missing` refuses it when it is not there; `checking` is
    /// what the person reads while its content is checked, once in a run of the program.
    static EngineModel ofCatalog(const LocalModel &model, const QString &missing, const QString &checking);
};
