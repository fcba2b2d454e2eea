// The keyboard break of long computations.
#ifndef VELQUAD_FRAME_USER_BREAK_H
#define VELQUAD_FRAME_USER_BREAK_H

namespace velquad::frame {

/// Takes at most one keyboard message (WM_KEYDOWN to WM_UNICHAR) from the calling thread's queue. Escape as a
/// character is consumed; every other message is translated and dispatched.
/// @return 1 for Escape, else 0.
int matPollUserBreak();

}  // namespace velquad::frame

#endif  // VELQUAD_FRAME_USER_BREAK_H
