#pragma once

#include <QString>
#include <QUrl>

/// The link by which the workflow extension opens us: lintora://floating?session=PATH.
///
/// Anything may send us a link. Only JSON files that bear a UUID as their name and lie directly in the extension's
/// sessions folder are ever read or written because of one.
namespace LaunchLink {

/// The link to the session file at the absolute path `file`. The file is neither looked at nor judged.
QUrl launchURL(const QString &file);

/// The session file that `link` names, without "..", and with all symbolic links resolved. It need not exist.
/// @throws ConversionError "悬浮窗口链接无效。" for a link of another form, "字幕会话位置无效。" for any other file.
QString sessionFile(const QUrl &link);

} // namespace LaunchLink
