#include "localstore/failure.h"

namespace localstore {

HRESULT CodeOfFileError(DWORD error) {
    switch (error) {
        case ERROR_FILE_NOT_FOUND:
        case ERROR_PATH_NOT_FOUND:
        case ERROR_INVALID_NAME:
            return MAPI_E_NOT_FOUND;
        case ERROR_ACCESS_DENIED:
        case ERROR_WRITE_PROTECT:
            return MAPI_E_NO_ACCESS;
        case ERROR_SHARING_VIOLATION:
        case ERROR_LOCK_VIOLATION:
            return MAPI_E_BUSY;
        case ERROR_DISK_FULL:
        case ERROR_HANDLE_DISK_FULL:
            return MAPI_E_NOT_ENOUGH_DISK;
        case ERROR_NOT_ENOUGH_MEMORY:
        case ERROR_OUTOFMEMORY:
        case ERROR_NO_SYSTEM_RESOURCES:
        case ERROR_COMMITMENT_LIMIT:
        case ERROR_WORKING_SET_QUOTA:
        case ERROR_NONPAGED_SYSTEM_RESOURCES:
        case ERROR_PAGED_SYSTEM_RESOURCES:
        case ERROR_PAGEFILE_QUOTA:
            return MAPI_E_NOT_ENOUGH_MEMORY;
        case ERROR_ALREADY_EXISTS:
        case ERROR_FILE_EXISTS:
            return MAPI_E_COLLISION;
        default:
            return MAPI_E_DISK_ERROR;
    }
}

void ThrowFileError() {
    throw StoreError(CodeOfFileError(GetLastError()));
}

}  // namespace localstore
