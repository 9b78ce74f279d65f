#include "support/mapi_entry_points.h"

LPMAPIINITIALIZE pfnMAPIInitialize = nullptr;
LPMAPIUNINITIALIZE pfnMAPIUninitialize = nullptr;
LPMAPILOGONEX pfnMAPILogonEx = nullptr;
LPMAPIALLOCATEBUFFER pfnMAPIAllocateBuffer = nullptr;
LPMAPIALLOCATEMORE pfnMAPIAllocateMore = nullptr;
LPMAPIFREEBUFFER pfnMAPIFreeBuffer = nullptr;
LPMAPIADMINPROFILES pfnMAPIAdminProfiles = nullptr;
decltype(&HrGetOneProp) pfnHrGetOneProp = nullptr;
decltype(&FreeProws) pfnFreeProws = nullptr;
decltype(&HrQueryAllRows) pfnHrQueryAllRows = nullptr;

namespace {

// The ordinals under which a MAPI library exports the functions that have no name of their own.
constexpr WORD kOrdinalHrQueryAllRows = 75;
constexpr WORD kOrdinalHrGetOneProp = 135;
constexpr WORD kOrdinalFreeProws = 140;

template<class Function>
bool Find(HMODULE library, LPCSTR name, Function& target) {
    target = reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(library, name)));
    return target != nullptr;
}

}  // namespace

int FillMAPIEntryPoints(HMODULE library) {
    const bool complete = Find(library, "MAPIInitialize", pfnMAPIInitialize) &&
                          Find(library, "MAPIUninitialize", pfnMAPIUninitialize) &&
                          Find(library, "MAPILogonEx", pfnMAPILogonEx) &&
                          Find(library, "MAPIAllocateBuffer", pfnMAPIAllocateBuffer) &&
                          Find(library, "MAPIAllocateMore", pfnMAPIAllocateMore) &&
                          Find(library, "MAPIFreeBuffer", pfnMAPIFreeBuffer) &&
                          Find(library, "MAPIAdminProfiles", pfnMAPIAdminProfiles) &&
                          Find(library, MAKEINTRESOURCEA(kOrdinalHrGetOneProp), pfnHrGetOneProp) &&
                          Find(library, MAKEINTRESOURCEA(kOrdinalFreeProws), pfnFreeProws) &&
                          Find(library, MAKEINTRESOURCEA(kOrdinalHrQueryAllRows), pfnHrQueryAllRows);
    return complete ? 1 : 0;
}
