// Helpers that leave no function behind.
#ifndef VELQUAD_FRAME_INLINE_H
#define VELQUAD_FRAME_INLINE_H

/// An inline function that is always merged into its caller. The kernel files are compiled for several
/// instruction sets and share such helpers: an inline function that stayed a function would be one symbol with
/// several bodies, and the linker could give the body with the newest instructions to everybody.
#define VELQUAD_ALWAYS_INLINE [[gnu::always_inline]] inline

#endif  // VELQUAD_FRAME_INLINE_H
