#pragma once

// The MAPI functions that the program looks up at run time. Nothing links to a MAPI provider.

#include <mapiutil.h>
#include <mapix.h>
#include <windows.h>

// The entry point table. Process-wide, filled once before any MAPI object exists; a member that was not found
// is null.
extern LPMAPIINITIALIZE pfnMAPIInitialize;
extern LPMAPIUNINITIALIZE pfnMAPIUninitialize;
extern LPMAPILOGONEX pfnMAPILogonEx;
extern LPMAPIALLOCATEBUFFER pfnMAPIAllocateBuffer;
extern LPMAPIALLOCATEMORE pfnMAPIAllocateMore;
extern LPMAPIFREEBUFFER pfnMAPIFreeBuffer;
extern LPMAPIADMINPROFILES pfnMAPIAdminProfiles;
extern decltype(&HrGetOneProp) pfnHrGetOneProp;
extern decltype(&FreeProws) pfnFreeProws;
extern decltype(&HrQueryAllRows) pfnHrQueryAllRows;

/// Fills the table from a loaded MAPI library, in the order above, and stops at the first function that is
/// missing: the members behind it stay null. Returns 1 if all ten were found and 0 otherwise.
int FillMAPIEntryPoints(HMODULE library);

/// True if the table is complete: it is filled front to back.
inline bool IsMAPILoaded() {
    return pfnHrQueryAllRows != nullptr;
}
