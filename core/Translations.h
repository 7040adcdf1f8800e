#pragma once

class QTranslator;

/// The platform's own texts in Chinese, where Qt's translations are installed: descriptions of failed file operations,
/// and in a window the system's dialogs.
namespace Translations {

/// Loads them into `translator`, which serves as long as it lives. There must be an application.
void install(QTranslator &translator);

} // namespace Translations
