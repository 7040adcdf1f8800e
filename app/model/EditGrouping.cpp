#include "app/model/EditGrouping.h"

void EditGrouping::beginGesture()
{
    m_isGesture = true;
    m_gestureHasStep = false;
}

void EditGrouping::beginGroup()
{
    if (m_groups++ == 0)
        m_groupHasStep = false;
}

bool EditGrouping::joinsLast(EditStep change)
{
    // A gesture goes on only through its own changes: whatever else happens in the middle is a step by itself.
    if (change == EditStep::record || change == EditStep::load)
        m_isGesture = false;
    const bool joinsGesture = change == EditStep::gesture && m_isGesture && m_gestureHasStep;
    const bool joinsGroup = m_groups > 0 && m_groupHasStep;
    m_gestureHasStep = m_gestureHasStep || change == EditStep::gesture;
    m_groupHasStep = m_groupHasStep || change != EditStep::amend;
    return change == EditStep::amend || joinsGesture || joinsGroup;
}
