#pragma once

#include "app/model/ai/ScriptSpeech.h"

#include <QAbstractListModel>

/// What a script has come to on its sound, in one list: the passages that were not heard, those that are in no script,
/// and the cues with their times and how sure these are, each under its heading.
class ScriptCueRows : public QAbstractListModel
{
    Q_OBJECT

public:
    /// `speech` must live as long as this.
    explicit ScriptCueRows(ScriptSpeech &speech, QObject *parent = nullptr);

    bool showsOnlyUnsure() const { return m_showsOnlyUnsure; }
    void setShowsOnlyUnsure(bool onlyUnsure); ///< Of the cues.

    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;

private:
    enum class Kind
    {
        unspokenHeading,
        unspoken,
        unscriptedHeading,
        unscripted,
        cuesHeading,
        cue
    };

    struct Entry
    {
        Kind kind = Kind::cue;
        qsizetype index = 0; ///< Of the passage or cue; of a heading how many there are.
    };

    void follow();
    void append(Kind heading, Kind kind, qsizetype count);

    ScriptSpeech &m_speech;
    bool m_showsOnlyUnsure = false;
    ScriptTimingResult m_result; ///< As it is shown.
    QList<Entry> m_entries;
};
