#pragma once

// What macOS has in <unistd.h> and the checking system has not.

#include <sys/types.h>

extern "C" int getpeereid(int descriptor, uid_t *user, gid_t *group);
