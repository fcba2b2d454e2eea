// Large pages by advice; no other kind is asked for, since those need a privilege or a reservation.
#include "platform/large_pages.h"

#if defined(__linux__)
#include <sys/mman.h>

#include <cerrno>
#endif

namespace velquad::platform {

void adviseLargePages(void* start, std::size_t byteCount) noexcept {
#if defined(__linux__) && defined(MADV_HUGEPAGE)
    // A kernel without them refuses, which is no error of the caller's.
    const int savedErrno = errno;
    static_cast<void>(madvise(start, byteCount / kLargePage * kLargePage, MADV_HUGEPAGE));
    errno = savedErrno;
#else
    static_cast<void>(start);
    static_cast<void>(byteCount);
#endif
}

}  // namespace velquad::platform
