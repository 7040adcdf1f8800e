#include "tests/support/Unprivileged.h"

#include <unistd.h>

#include <cstdlib>

Unprivileged::Unprivileged()
    : m_former(geteuid())
{
    constexpr uid_t nobody = 65534;
    if (m_former == 0 && seteuid(nobody) != 0)
        m_former = geteuid();
}

Unprivileged::~Unprivileged()
{
    // To go on with other rights than before would falsify every later test.
    if (geteuid() != m_former && seteuid(m_former) != 0)
        std::abort();
}

bool Unprivileged::holds() const
{
    return geteuid() != 0;
}
