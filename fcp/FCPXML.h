#pragma once

#include "fcp/titles/TitleDocument.h"

#include <optional>
#include <vector>

/// Final Cut Pro's interchange documents: titles written, the user's projects read.
///
/// Times of documents are exact rationals, titles lie on the frame grid. No external entity is ever loaded. What takes
/// a `check` calls it every few milliseconds.
namespace FCPXML {

/// The effect behind every title, Final Cut Pro's Basic Title.
inline constexpr QByteArrayView uid = TitleDocument::basicTitle;

/// Files up to this size are read, in bytes.
inline constexpr qint64 largestFile = 16 * 1024 * 1024;

/// The project file at `path`, or the "Info.fcpxml" of the bundle there.
QString fileOf(const QString &path);

/// The bytes of a project file, or of the "Info.fcpxml" of a bundle.
/// @throws PlatformError when it cannot be read; ConversionError "FCPXML 文件过大，请分段导入。"
QByteArray bytes(const QString &path);

/// Reads a project file, or the "Info.fcpxml" of a bundle ("fcpxmld"). "src" values without a scheme become absolute
/// file URLs, resolved against the file's folder.
/// @throws PlatformError when it cannot be read or is no XML.
/// @throws ConversionError "FCPXML 文件过大，请分段导入。" or "不支持含外部实体的 XML。"
XmlDocument document(const QString &path);

/// The same for the bytes of a document that lies in `folder`.
XmlDocument document(QByteArrayView bytes, const QString &folder, const Check &check = {});

/// Refuses dragged data that is not to be parsed. @throws ConversionError "FCP 数据过大或含不支持的 XML 实体。"
void checkDragged(QByteArrayView data);

/// The document of data that was dragged, which lies in no folder.
/// @throws ConversionError as checkDragged does
/// @throws PlatformError when it is no XML
XmlDocument draggedDocument(QByteArrayView data, const Check &check = {});

/// The projects of a document: under its root, its events or the events of its library.
std::vector<xmlNode *> projects(const XmlDocument &document);

/// The one project of a document.
/// @throws ConversionError "请选择只包含一个项目的 FCPXML。" when there is none, or several.
xmlNode *project(const XmlDocument &document);

/// The one project of a document that bears `name`; with an empty name as above.
/// @throws ConversionError as above, "找不到名为“…”的项目。", or "有多个名为“…”的项目。"
xmlNode *project(const XmlDocument &document, const QString &name);

/// `options` with frame rate, frame size, font size (height ÷ 45) and name taken from the document's project, the one
/// that bears `projectName` where that is not empty.
/// @throws ConversionError as project does, "找不到项目画面格式。" or "项目帧率暂不支持。"
Options settings(Options options, const XmlDocument &document, const QString &projectName = {});

/// The same for a timeline of that name with `format`, a "format" resource.
/// @throws ConversionError "项目帧率暂不支持。"
Options settings(Options options, const xmlNode *format, const QString &name);

/// A document with one Basic Title for each cue: into `base`, the user's own project, which takes the options' name and
/// keeps everything else; or, without a base, a new document of version 1.10 with one project. `projectName` chooses
/// one of several projects of the base.
/// @throws ConversionError with the sentence that says what is wrong; nothing is written then.
TitleDocument convert(const QList<Subtitle> &cues, std::optional<XmlDocument> base, const Options &options,
                      const QString &projectName = {}, const Check &check = {});

/// The same for several tracks, each on its lane and in its style, and for native captions.
/// @throws ConversionError also when the tracks do not go together
TitleDocument convert(const std::vector<TitleTrack> &tracks, std::optional<XmlDocument> base,
                      const QString &projectName = {}, const Check &check = {});

} // namespace FCPXML
