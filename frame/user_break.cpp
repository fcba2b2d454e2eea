#include "frame/user_break.h"

#include "velquad/platform.h"

namespace velquad::frame {

int matPollUserBreak() {
    constexpr WPARAM kEscapeCharacter = 27;
    MSG message{};
    if (PeekMessageW(&message, nullptr, WM_KEYDOWN, WM_UNICHAR, PM_REMOVE) == 0) return 0;
    if (message.message == WM_CHAR && message.wParam == kEscapeCharacter) return 1;
    TranslateMessage(&message);
    DispatchMessageW(&message);
    return 0;
}

}  // namespace velquad::frame
