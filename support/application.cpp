#include "support/application.h"

bool AfxWinInit(HINSTANCE instance, HINSTANCE /*previous*/, const wchar_t* /*commandLine*/,
                int /*showState*/) {
    if (instance == nullptr) {
        return false;
    }
    SetErrorMode(SetErrorMode(0) | SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX | SEM_NOGPFAULTERRORBOX);
    return true;
}
