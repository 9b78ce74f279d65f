#pragma once

#include <windows.h>

/// Starts the stop sequence on a thread of its own and returns at once.
void RequestShutdown();

/// The stop sequence: half a second later the desktop program is told, and the listening ends. The session is
/// not released: a desktop program that wants a clean end logs off before. Returns 0.
DWORD WINAPI ShutdownThreadProc(void* unused);
