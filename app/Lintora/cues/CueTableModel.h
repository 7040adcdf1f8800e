#pragma once

#include "app/Lintora/cues/CueWarnings.h"
#include "app/model/LintoraModel.h"

#include <QAbstractTableModel>
#include <QHash>

class TitleMeasure;

/// The cues of the selected track as rows.
///
/// Follows the model: a change of its cues becomes the rows that came, went or changed, so that views keep their place
/// and their selection; another track, or a session from elsewhere, is a reset. Edits go to the model, which may
/// refuse.
class CueTableModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    enum Column
    {
        numberColumn, ///< Its accessible text is the place in the list, from 1.
        startColumn,
        endColumn,
        textColumn,
        columns
    };

    enum Role
    {
        warningsRole = Qt::UserRole, ///< QStringList of sentences; the same in each column.
        suspectRole,                 ///< Whether the cue is one that was likely invented.
        tickedRole                   ///< Whether it is ticked to be taken away.
    };

    /// `model` must live as long as this.
    explicit CueTableModel(LintoraModel &model, QObject *parent = nullptr);
    ~CueTableModel() override;

    const std::optional<QUuid> &trackID() const { return m_trackID; } ///< Whose cues these are; absent without any.
    const Subtitle &cue(int row) const { return m_items.at(row); }
    QList<CueWarnings::Warning> warnings(int row) const;
    bool hasWarnings(int row) const; ///< Whether warningsRole says anything.

    void startOver(); ///< A reset with the same cues, for who shows others of them from now on.

    /// Whether rows are just being brought in line with cues that have changed; no edit is taken meanwhile.
    bool isFollowing() const { return m_isFollowing; }

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;

    /// Takes the text, or a time in milliseconds. False when the model refused.
    bool setData(const QModelIndex &index, const QVariant &value, int role) override;

    /// Where a row stands once the rows have become those of `items`; absent when it goes.
    std::optional<int> rowAfter(int row, const QList<Subtitle> &items) const;

Q_SIGNALS:
    void aboutToFollow(const QList<Subtitle> &items); ///< The rows become those of `items`, of the same track.
    void changed();                                   ///< After rows came, went or changed.

private:
    /// How other cues differ from ours, row by row.
    struct Difference
    {
        int head;    ///< Rows at the beginning that are equal.
        int kept;    ///< Rows that stay where they are; of these, those behind `head` have changed.
        int surplus; ///< Rows that come behind the kept ones; where negative, that go there.
    };

    void follow();
    void reload();
    Difference difference(const QList<Subtitle> &items) const;
    void takeDifference(const QList<Subtitle> &items);
    void forgetStyle();
    void forgetWarnings();
    QStringList warningSentences(int row) const;

    LintoraModel &m_model;
    QList<Subtitle> m_items; ///< As the views know them.
    std::optional<QUuid> m_trackID;
    bool m_isLoading = false;
    bool m_isFollowing = false;
    mutable QHash<int, QStringList> m_warnings; ///< Of rows that were shown since the last change.
    mutable std::unique_ptr<TitleMeasure> m_measure;
};
