/// @file
/// What the library expects of the system below it: integer and handle names, points and rectangles of the
/// user interface, movable memory blocks and the message queue of a thread.
///
/// On Windows this is <windows.h> and nothing else. Elsewhere the same names are declared here and exported by
/// the module with the effects that a Windows program relies on. Handles are opaque: never dereference one.
///
/// **Threads.** Every function of this header may be called from any thread at any time. A message queue
/// belongs to one thread; other threads reach it by `PostThreadMessageW` only.
#ifndef VELQUAD_PLATFORM_H
#define VELQUAD_PLATFORM_H

#if defined(_WIN32)
#if defined(VELQUAD_STATIC)
#define VELQUAD_API
#elif defined(VELQUAD_BUILDING)
#define VELQUAD_API __declspec(dllexport)
#else
#define VELQUAD_API __declspec(dllimport)
#endif
#else
#define VELQUAD_API __attribute__((visibility("default")))
#endif

/// Stands before the exported members that a header defines inline; the one file of the module that holds their
/// exported copies gives it a meaning.
#if !defined(VELQUAD_EMIT_INLINE)
#define VELQUAD_EMIT_INLINE
#endif

#if defined(_WIN32)

#if !defined(NOMINMAX)
#define NOMINMAX
#endif
#if !defined(WIN32_LEAN_AND_MEAN)
#define WIN32_LEAN_AND_MEAN
#endif
#include <windows.h>

#else

#include <cstddef>
#include <cstdint>

using BYTE = std::uint8_t;
using WORD = std::uint16_t;
using DWORD = std::uint32_t;
using BOOL = int;
using UINT = unsigned int;
using LONG = std::int32_t;
using SIZE_T = std::size_t;
using WPARAM = std::uintptr_t;
using LPARAM = std::intptr_t;
using LRESULT = std::intptr_t;
using HANDLE = void*;
using HGLOBAL = void*;
using HINSTANCE = void*;
using HWND = void*;

#if !defined(FALSE)
#define FALSE 0
#endif
#if !defined(TRUE)
#define TRUE 1
#endif

/// A pixel position, y downwards.
struct tagPOINT {
    LONG x;
    LONG y;
};
using POINT = tagPOINT;

/// The extent of a pixel rectangle.
struct tagSIZE {
    LONG cx;
    LONG cy;
};
using SIZE = tagSIZE;

/// A pixel rectangle. Whether `right` and `bottom` belong to it is told by each function; in this library they
/// do unless said otherwise.
struct tagRECT {
    LONG left;
    LONG top;
    LONG right;
    LONG bottom;
};
using RECT = tagRECT;

/// One message of a thread's queue.
struct tagMSG {
    HWND hwnd;
    UINT message;
    WPARAM wParam;
    LPARAM lParam;
    DWORD time;
    POINT pt;
};
using MSG = tagMSG;

inline constexpr UINT GMEM_FIXED = 0x0000;           ///< The handle is the address; the block never moves.
inline constexpr UINT GMEM_MOVEABLE = 0x0002;        ///< A block with a handle; locked to be reached.
inline constexpr UINT GMEM_ZEROINIT = 0x0040;        ///< New bytes are zero.
inline constexpr UINT GMEM_MODIFY = 0x0080;          ///< `GlobalReAlloc` changes attributes, not the size.
inline constexpr UINT GMEM_DISCARDED = 0x4000;       ///< `GlobalFlags`: the block has no contents.
inline constexpr UINT GMEM_LOCKCOUNT = 0x00FF;       ///< `GlobalFlags`: mask of the lock count.
inline constexpr UINT GMEM_INVALID_HANDLE = 0x8000;  ///< `GlobalFlags`: not a live handle.

inline constexpr UINT PM_NOREMOVE = 0x0000;
inline constexpr UINT PM_REMOVE = 0x0001;
inline constexpr UINT WM_KEYFIRST = 0x0100;
inline constexpr UINT WM_KEYDOWN = 0x0100;
inline constexpr UINT WM_KEYUP = 0x0101;
inline constexpr UINT WM_CHAR = 0x0102;
inline constexpr UINT WM_UNICHAR = 0x0109;
inline constexpr UINT WM_USER = 0x0400;
inline constexpr WPARAM VK_ESCAPE = 0x1B;

extern "C" {

/// @name Movable memory
/// A block is known by its handle. `GlobalLock` pins it and gives its address, `GlobalUnlock` releases it, and
/// only a locked block may be read or written. A handle is never an address, unless the block is fixed.
///
/// A null, stale or foreign handle or address is refused with the failure value and is never read.
/// @{

/// Allocates `size` bytes; movable with GMEM_MOVEABLE, zero-filled with GMEM_ZEROINIT. A movable block of no
/// bytes begins as a discarded one, which cannot be locked until `GlobalReAlloc` gives it contents; a fixed one
/// has an address of its own.
/// @return the handle of the unlocked block, or null when there is no memory.
VELQUAD_API HGLOBAL GlobalAlloc(UINT flags, SIZE_T size);

/// Pins a block and counts the lock.
/// @return the address of its contents, aligned for every fundamental type; null for a refused handle and for
///         a discarded block.
VELQUAD_API void* GlobalLock(HGLOBAL handle);

/// Takes one lock away.
/// @return non-zero while locks remain, and always for a fixed block, which cannot be unlocked; 0 when the block
///         is unlocked now, was not locked, or is refused.
VELQUAD_API BOOL GlobalUnlock(HGLOBAL handle);

/// Resizes a block and keeps its contents up to the smaller size. With GMEM_ZEROINIT a grown tail is zero. A
/// locked or fixed block moves only when GMEM_MOVEABLE is given; without it the block grows in place or not at
/// all. A fixed block that moves has a new handle.
///   (1) Size 0 discards an unlocked movable block: the handle stays valid, the contents are gone until the next
///       `GlobalReAlloc`. A locked one is refused.
///   (2) With GMEM_MODIFY the size is ignored; GMEM_MODIFY with GMEM_MOVEABLE makes a fixed block movable, where
///       it is.
/// @return the block's handle from now on; null on failure, with the old block as it was.
VELQUAD_API HGLOBAL GlobalReAlloc(HGLOBAL handle, SIZE_T size, UINT flags);

/// Finds the handle of the block that begins at `address`.
/// @return the handle, or null for any other address.
VELQUAD_API HGLOBAL GlobalHandle(const void* address);

/// @return the size in bytes as last asked for; 0 for a refused handle or a discarded block.
VELQUAD_API SIZE_T GlobalSize(HGLOBAL handle);

/// Releases a block, locked or not.
/// @return null on success; `handle` itself when it is refused. A null handle gives null.
VELQUAD_API HGLOBAL GlobalFree(HGLOBAL handle);

/// @return the lock count (at most 255) in GMEM_LOCKCOUNT, and GMEM_DISCARDED where it applies;
///         GMEM_INVALID_HANDLE for a refused handle.
VELQUAD_API UINT GlobalFlags(HGLOBAL handle);
/// @}

/// @name The calling thread's message queue
/// @{

/// Looks for the first posted message with `first <= message <= last` (0, 0: any message). `window` is null for
/// thread messages, the only ones there are here. With PM_REMOVE the message is taken from the queue.
/// @return non-zero when `*message` was filled; 0 for an empty queue or a null `message`.
VELQUAD_API BOOL PeekMessageW(MSG* message, HWND window, UINT first, UINT last, UINT flags);

/// Posts the WM_CHAR that belongs to a WM_KEYDOWN with a character (virtual keys of ASCII control characters,
/// space, digits and letters, which give lower case) to the end of the calling thread's queue.
/// @return non-zero when `message` is a key press or release, with a character or without; 0 for any other
///         message and for null.
VELQUAD_API BOOL TranslateMessage(const MSG* message);

/// Hands a message to the dispatch handler of the calling thread.
/// @return the handler's result; 0 when there is none.
VELQUAD_API LRESULT DispatchMessageW(const MSG* message);

/// Appends a message to the queue of a living thread that has one: a thread gets its queue when it first calls
/// `GetCurrentThreadId` or `PeekMessageW`.
/// @return non-zero when posted; 0 for an unknown thread, a full queue (10 000 messages) or no memory.
VELQUAD_API BOOL PostThreadMessageW(DWORD threadId, UINT message, WPARAM wParam, LPARAM lParam);

/// @return the id of the calling thread, never 0, as `PostThreadMessageW` takes it.
VELQUAD_API DWORD GetCurrentThreadId();

/// Sees the messages that `DispatchMessageW` hands on.
using MessageDispatchHandler = LRESULT (*)(const MSG* message);

/// Sets the calling thread's dispatch handler; null for none. Not available on Windows, where a message goes to
/// its window.
/// @return the handler that was set before.
VELQUAD_API MessageDispatchHandler SetMessageDispatchHandler(MessageDispatchHandler handler);
/// @}

/// @name Rectangles, debug text, memory probe
/// @{

/// Stores the four coordinates. @return 1, or 0 for a null rectangle.
VELQUAD_API BOOL SetRect(RECT* rect, int left, int top, int right, int bottom);

/// Copies a rectangle. @return 1, or 0 for a null pointer.
VELQUAD_API BOOL CopyRect(RECT* destination, const RECT* source);

/// Writes text to the debug sink. A null text is ignored. The default sink writes UTF-8, with U+FFFD in place of
/// what is no character of Unicode.
VELQUAD_API void OutputDebugStringW(const wchar_t* text);

/// Receives the text of `OutputDebugStringW`, on the thread that wrote it.
using DebugOutputSink = void (*)(const wchar_t* text);

/// Replaces the sink of the process; null restores the default, standard error. Not available on Windows.
/// @return the sink that was set before, or null for the default one.
VELQUAD_API DebugOutputSink SetDebugOutputSink(DebugOutputSink sink);

/// Tells whether a range can be read by this process at this moment, without touching it.
/// @return 0 when all `size` bytes are readable (also for size 0); non-zero otherwise.
VELQUAD_API BOOL IsBadReadPtr(const void* address, std::uintptr_t size);
/// @}

}  // extern "C"

#endif  // _WIN32

#endif  // VELQUAD_PLATFORM_H
