#include "support/errors.h"

#ifdef _WIN32
#include <windows.h>
#endif

void AfxThrowUserException() {
    throw CUserException();
}

void RaiseComError(ComErrorCode code) {
    if (code == kErrorOutOfMemory) {
        throw CMemoryException();
    }
    throw COleException(code);
}

#ifdef _WIN32
void RaiseLastError() {
    RaiseComError(HRESULT_FROM_WIN32(GetLastError()));
}
#endif
