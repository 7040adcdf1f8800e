#pragma once

#include <QtGlobal>

#include <functional>
#include <utility>

/// What a long operation without a job of its own calls now and then: whatever it throws ends the operation, and
/// passes through. Null where nobody wants to end it.
using Check = std::function<void()>;

/// A check for tight loops, which may ask at every step: one step in a thousand calls it.
class SparseCheck
{
public:
    explicit SparseCheck(Check check)
        : m_check(std::move(check))
    {}

    void operator()()
    {
        constexpr quint32 steps = 1024; // a step takes some microseconds at most
        if (++m_steps % steps == 0 && m_check)
            m_check();
    }

private:
    Check m_check;
    quint32 m_steps = 0;
};
