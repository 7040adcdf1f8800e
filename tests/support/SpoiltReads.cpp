// A disk that does not give back what was written to it: stands in front of the system's own pread() where it is
// preloaded or linked, and says "SPOILT" for "INTACT" while the environment variable LINTORA_SPOILT_READS is set.
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <string_view>

extern "C" ssize_t pread(int descriptor, void *bytes, size_t size, off_t offset)
{
    const long got = syscall(SYS_pread64, descriptor, bytes, size, offset);
    if (got <= 0 || getenv("LINTORA_SPOILT_READS") == nullptr)
        return got;
    constexpr std::string_view intact = "INTACT";
    constexpr std::string_view spoilt = "SPOILT";
    char *const end = static_cast<char *>(bytes) + got;
    for (char *at = static_cast<char *>(bytes); (at = std::search(at, end, intact.begin(), intact.end())) != end;)
        std::ranges::copy(spoilt, at);
    return got;
}
