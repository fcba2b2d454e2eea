// Ways to ask the system whether memory can be read, without reading it.
#ifndef VELQUAD_PLATFORM_MEMORY_PROBE_H
#define VELQUAD_PLATFORM_MEMORY_PROBE_H

#include <cstdint>

namespace velquad::platform {

enum class Readability { kReadable, kUnreadable, kUnknown };

/// Asks about the eight bytes at an address that is a multiple of eight, through a system call that copies a
/// signal mask and then refuses it. Unknown for address 0, which means no mask there, and where the system has no
/// such call or forbids it.
Readability probeBySignalMask(std::uintptr_t address);

/// Asks about the byte at an address by having the system copy it into a pipe. Unknown when no pipe is to be had.
Readability probeByPipe(std::uintptr_t address);

}  // namespace velquad::platform

#endif  // VELQUAD_PLATFORM_MEMORY_PROBE_H
