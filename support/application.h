#pragma once

#include <windows.h>

/// The class library's application start-up: the process reports failures by results and opens no box in
/// which the system would wait for a user. The previous instance, the command line and the show state are not
/// used. False without a module handle.
bool AfxWinInit(HINSTANCE instance, HINSTANCE previous, const wchar_t* commandLine, int showState);
