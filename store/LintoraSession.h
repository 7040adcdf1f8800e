#pragma once

#include "core/Check.h"
#include "store/SubtitleTrack.h"

/// A whole subtitle session: what the draft file keeps, and what we share with the workflow extension. What takes a
/// `check` calls it every few milliseconds.
struct LintoraSession
{
    static constexpr qint64 currentSchema = 2;

    /// Bytes of the largest file that decode takes.
    static constexpr qint64 sizeLimit = 16'777'216;

    qint64 schema = currentSchema;
    QList<Subtitle> items = {}; ///< The cues of the selected track.
    QString source = {};        ///< Display name of what the cues came from: a file name or a project.
    Options options = {};
    bool removeFillers = false;                        ///< Cleanup switch: remove filler words.
    bool removePunctuation = false;                    ///< Cleanup switch: remove punctuation and split sentences.
    std::optional<QList<Subtitle>> previousItems = {}; ///< The cues before the last cleanup; absent: nothing to undo.
    bool cleaned = false;                              ///< Whether the cleanup has been applied to `items`.
    std::optional<QList<SubtitleTrack>> tracks = {};   ///< Absent in a single-track session of an older writer.
    std::optional<QUuid> selectedTrackID = {};
    std::optional<QUuid> splitOriginal = {}; ///< The track that holds the text from before language separation.
    std::optional<TitleTemplate> look = {};  ///< As a track has one. Other readers pass it over.

    /// The record as JSON: compact, keys sorted, absent fields left out. Equal records give equal bytes. The size is
    /// not limited here.
    /// @throws PlatformError when an option is no finite number.
    QByteArray encoded() const;

    /// Reads what encoded() writes, of schema 1 or 2. All fields but the optional ones are required.
    /// @throws ConversionError "字幕会话过大。", "字幕会话版本不支持。"
    /// @throws PlatformError naming the key path or the byte where the JSON is wrong.
    static LintoraSession decode(QByteArrayView data, const Check &check = {});

    /// Reads the file at `path`, and no more of it than the limit.
    /// @throws ConversionError, PlatformError as decode does, and when the file cannot be read.
    static LintoraSession read(const QString &path, const Check &check = {});

    friend bool operator==(const LintoraSession &, const LintoraSession &) = default;
};

/// Reads the object that writeLintoraSession writes, of any schema.
/// @throws PlatformError naming the key path that is missing or of another type.
LintoraSession readLintoraSession(JsonReader &json);

/// Writes the object that LintoraSession::decode reads.
void writeLintoraSession(JsonWriter &json, const LintoraSession &session);
