#include "desktop/interrupt.h"

#include <windows.h>

#include <atomic>

namespace {

/// Set by the thread on which the console reports a key, read by the others.
std::atomic<bool> g_interrupted{false};

BOOL WINAPI OnConsoleEvent(DWORD event) {
    if (event != CTRL_C_EVENT && event != CTRL_BREAK_EVENT) {
        return FALSE;
    }
    const bool first = !g_interrupted.exchange(true);
    return first ? TRUE : FALSE;
}

}  // namespace

void WatchForInterrupt() {
    SetConsoleCtrlHandler(OnConsoleEvent, TRUE);
}

bool Interrupted() {
    return g_interrupted;
}
