#pragma once

#include "ai/models/LocalModels.h"

#include <QSettings>
#include <QString>
#include <QStringList>

/// What a person chose for recognition, translation and proofreading. Keys for services are no part of it: they are
/// never written to the settings.
///
/// Every field is kept in the settings under its own name.
struct AIChoices
{
    QString aiSpeechModelID = LocalModels::speech().id; ///< Of the catalog; an unknown one is the recommended one.
    bool aiUseCloudSpeech = false;                      ///< Recognise through a service instead of on this machine.
    bool aiAutomaticReview = false;                     ///< Proofread what was recognised.
    QString aiSpeechBaseURL = {};                       ///< Of the transcription service, as typed.
    QString aiSpeechAPIModel = QStringLiteral("whisper-1");
    bool aiSpeechWordTimestamps = false; ///< Ask the service for the times of words.
    bool aiUseOnline = false;            ///< Translate and proofread through a service instead of on this machine.
    QString aiAPIBaseURL = {};           ///< Of the text service, as typed.
    QString aiAPIModel = {};
    bool aiAPIQuickReview = true;   ///< Larger requests, no deep thinking.
    bool aiUseReference = false;    ///< Proofread a translation against its original.
    bool aiUseGlossary = false;     ///< Send the terms that apply along with what is translated.
    QStringList aiModelHosts = {};  ///< Where models come from, in the order asked; empty: as the program knows.
    QString aiSpeechModelFile = {}; ///< Path of a model of the person's own, in the catalog's place; may be empty.
    QString aiTextModelFile = {};   ///< The same for translation and proofreading.

    /// What `settings` hold; a value that is missing or of another type is the default.
    static AIChoices read(const QSettings &settings);

    /// Writes the fields that differ from `before`.
    void write(QSettings &settings, const AIChoices &before) const;

    friend bool operator==(const AIChoices &, const AIChoices &) = default;
};
