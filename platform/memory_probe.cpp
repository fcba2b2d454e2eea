// Whether memory can be read, asked of the system: a call that copies from the caller's memory answers EFAULT
// where it cannot, and no signal is raised. One question a page is enough, since access is granted by the page.

#include "platform/memory_probe.h"

#include <unistd.h>

#include <bit>
#include <cerrno>
#include <cstddef>

#if defined(__linux__)
#include <sys/syscall.h>
#endif

#include "velquad/platform.h"

namespace velquad::platform {

namespace {

// Keeps the caller's errno.
class ErrnoGuard {
  public:
    ErrnoGuard() : saved_(errno) {}
    ErrnoGuard(const ErrnoGuard&) = delete;
    ErrnoGuard& operator=(const ErrnoGuard&) = delete;
    ~ErrnoGuard() { errno = saved_; }

  private:
    int saved_;
};

class Pipe {
  public:
    Pipe() : isOpen_(pipe(ends_) == 0) {}
    Pipe(const Pipe&) = delete;
    Pipe& operator=(const Pipe&) = delete;
    ~Pipe() {
        if (!isOpen_) return;
        close(ends_[0]);
        close(ends_[1]);
    }

    bool isOpen() const { return isOpen_; }
    int writeEnd() const { return ends_[1]; }

  private:
    int ends_[2] = {-1, -1};
    bool isOpen_;
};

Readability probe(std::uintptr_t address) {
    const Readability answer = probeBySignalMask(address & ~std::uintptr_t{7});
    return answer != Readability::kUnknown ? answer : probeByPipe(address);
}

}  // namespace

Readability probeBySignalMask(std::uintptr_t address) {
#if defined(SYS_rt_sigprocmask)
    // The kernel copies the mask before it looks at `how`, which is none of the known ones: the mask of the thread
    // stays as it is.
    constexpr long kNoSuchOperation = -1;
    constexpr std::size_t kKernelMaskSize = 8;
    const ErrnoGuard guard;
    const long result = syscall(SYS_rt_sigprocmask, kNoSuchOperation, address, nullptr, kKernelMaskSize);
    if (result != -1) return Readability::kUnknown;
    if (errno == EFAULT) return Readability::kUnreadable;
    return errno == EINVAL ? Readability::kReadable : Readability::kUnknown;
#else
    static_cast<void>(address);
    return Readability::kUnknown;
#endif
}

Readability probeByPipe(std::uintptr_t address) {
    const ErrnoGuard guard;
    const Pipe pipe;
    if (!pipe.isOpen()) return Readability::kUnknown;
    for (;;) {
#if defined(SYS_write)
        // The bare call: sanitizers look into what they see go through write().
        const long written = syscall(SYS_write, pipe.writeEnd(), address, std::size_t{1});
#else
        const ssize_t written = write(pipe.writeEnd(), std::bit_cast<const void*>(address), 1);
#endif
        if (written == 1) return Readability::kReadable;
        if (errno == EFAULT) return Readability::kUnreadable;
        if (errno != EINTR) return Readability::kUnknown;
    }
}

}  // namespace velquad::platform

extern "C" BOOL IsBadReadPtr(const void* address, std::uintptr_t size) {
    using namespace velquad::platform;
    // The smallest page of any system; on larger pages some questions are asked twice.
    constexpr std::uintptr_t kPageSize = 4096;
    if (size == 0) return 0;
    const auto first = std::bit_cast<std::uintptr_t>(address);
    if (size - 1 > UINTPTR_MAX - first) return 1;
    const std::uintptr_t last = first + (size - 1);
    for (std::uintptr_t position = first;;) {
        // What cannot be asked about is not called readable.
        if (probe(position) != Readability::kReadable) return 1;
        const std::uintptr_t nextPage = (position | (kPageSize - 1)) + 1;
        if (nextPage == 0 || nextPage > last) return 0;
        position = nextPage;
    }
}
