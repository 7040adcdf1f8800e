#pragma once

/// What a change of the session is to the history.
enum class EditStep
{
    record,  ///< A step.
    load,    ///< A step that brings in another session.
    gesture, ///< A step, or a part of the step that a gesture is.
    amend    ///< No step of its own.
};

/// Which changes make one step of the history together.
///
/// ```
///   gesture   begin ── gesture ── gesture ── record      the first two are one step; the third ends the gesture
///   group     begin ── record ── load ── record ── end   all are one step
/// ```
class EditGrouping
{
public:
    void beginGesture();
    void endGesture() { m_isGesture = false; }

    /// A group inside a group is part of it.
    void beginGroup();
    void endGroup() { --m_groups; }

    /// Takes note of a change. Whether it belongs to the step before, instead of being one by itself.
    bool joinsLast(EditStep change);

private:
    bool m_isGesture = false;
    bool m_gestureHasStep = false; ///< Whether its first change has come.
    int m_groups = 0;              ///< Those that are open, one inside the other.
    bool m_groupHasStep = false;
};
