#include "velquad/platform.h"
extern "C" BOOL PeekMessageW(MSG*, HWND, UINT, UINT, UINT) {
    return 0;
}
extern "C" BOOL TranslateMessage(const MSG*) {
    return 0;
}
extern "C" LRESULT DispatchMessageW(const MSG*) {
    return 0;
}
