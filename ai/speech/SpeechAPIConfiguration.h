#pragma once

#include <QString>
#include <QUrl>

/// A transcription service, online or on this machine, as the person has set it up.
struct SpeechAPIConfiguration
{
    QString baseURL;             ///< As typed.
    QString model;               ///< As typed.
    QString apiKey;              ///< From the keychain; never stored with the others.
    bool wordTimestamps = false; ///< Cues are put together of words, in short phrases.

    /// Where audio goes. @throws ConversionError for an address that is not safe, a service for text, an empty model
    QUrl endpoint() const;

    bool isLocal() const; ///< Whether the address is one of this machine.
};
