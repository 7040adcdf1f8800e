#pragma once

#include <sys/types.h>

/// Gives up the administrator's rights while it lives, for tests of permissions, which mean nothing to the
/// administrator.
class Unprivileged
{
public:
    Unprivileged();
    ~Unprivileged();
    Unprivileged(const Unprivileged &) = delete;
    Unprivileged &operator=(const Unprivileged &) = delete;

    /// Whether this process is an ordinary user's now. A test that needs it skips itself otherwise and says so.
    bool holds() const;

private:
    uid_t m_former;
};
