#pragma once

#include "ai/models/LocalModel.h"

#include <QList>

#include <optional>

class Job;

/// The catalog of models, the folder they lie in, and the check that a file is what the catalog says.
///
/// A file that has passed its check is remembered while the program runs, until its size or its time changes.
namespace LocalModels {

const QList<LocalModel> &speechModels(); ///< In the order in which they are shown.
QList<LocalModel> catalog();             ///< All of them, those for speech first.
const LocalModel &speech();              ///< The recommended one.
const LocalModel &translation();         ///< For translation and proofreading.

/// The speech model with this id; speech() for any other, so that a stale setting never fails.
const LocalModel &speechModel(const QString &id);

/// Where models come from unless the person names other hosts, in the order in which they are asked.
QList<QUrl> defaultHosts();

/// The address of a host as a person types it: https or http, without user, password, query and fragment. Absent when
/// it cannot be one.
std::optional<QUrl> host(const QString &typed);

/// The folder named by VELMORA_SUBTITLE_MODELS, or the user's own. It need not exist.
QString directory();

/// Free bytes where `path` is, or where it would be made; absent when the system does not say.
std::optional<qint64> availableSpace(const QString &path = directory());

/// @throws ConversionError unless `available` bytes are enough to download and check `model`: twice its size and
/// 64 MiB. "无法读取可用磁盘空间，请检查模型文件夹。" or "磁盘空间不足。…"
void checkDownloadSpace(const LocalModel &model, std::optional<qint64> available);

/// Reads `file` once and holds it against the catalog. Takes a second a gigabyte: not for the main thread.
/// @throws ConversionError "模型下载不完整，请重新下载。" by its size, "模型校验未通过，请重新下载。" by its content
/// @throws PlatformError when it cannot be read; Cancelled
void verify(const QString &file, const LocalModel &model, Job *job = nullptr);

/// Whether `file` has passed its check and has not changed since. Quick.
bool isVerified(const QString &file, const LocalModel &model);

/// Checks `temporaryFile`, which stays, and puts a copy in the model's place in one step.
/// @throws as verify does; ConversionError "无法保存模型，原模型已保留。请检查文件夹权限。"; PlatformError, Cancelled.
/// An existing model is then as it was.
void installDownload(const QString &temporaryFile, const LocalModel &model, Job &job);

/// Puts `file`, which lies in the models folder and has been verified, in the model's place in one step.
/// @throws ConversionError as installDownload does
void moveIntoPlace(const QString &file, const LocalModel &model);

} // namespace LocalModels
