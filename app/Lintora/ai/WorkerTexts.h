#pragma once

#include "ai/models/LocalModel.h"
#include "app/model/ai/AIChoices.h"

/// What the sheets say of who does the work.
namespace WorkerTexts {

QString status(const LocalModel &model); ///< Whether it is there, and how large it is.

/// What leaves this machine, and to whom.
QString leaving(const QString &what, const QString &address);

QString textWorker(const AIChoices &choices); ///< Who translates and proofreads, and where.

} // namespace WorkerTexts
