#pragma once

// The functions that the store exports. A program that links the store instead of loading it takes them from
// here; they are the published ones, declared by the platform's headers:
//
//   MAPIInitialize, MAPIUninitialize, MAPILogonEx, MAPIAdminProfiles,
//   MAPIAllocateBuffer, MAPIAllocateMore, MAPIFreeBuffer,
//   HrGetOneProp, FreeProws, HrQueryAllRows

#include <windows.h>

#include <mapiutil.h>
#include <mapix.h>
