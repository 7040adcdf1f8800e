#pragma once

#include <QString>

/// The keys of online services, in the system's keychain and nowhere else.
///
/// The calls wait for the keychain, which may ask the person. They may be made from any thread.
namespace AIKeychain {

inline const QString textAccount = QStringLiteral("text-api");     ///< The key of the chat service.
inline const QString speechAccount = QStringLiteral("speech-api"); ///< The key of the transcription service.

/// Empty when there is none, or none to be read.
QString read(const QString &account);

/// Replaces the key; an empty one removes it. Where this fails the keychain is as it was, and nothing is kept anywhere.
/// @throws ConversionError "钥匙串未能移除密钥。", "钥匙串未能保存密钥。" or "钥匙串未能更新密钥。", with the
/// system's reason as the detail
void save(const QString &value, const QString &account);

} // namespace AIKeychain
