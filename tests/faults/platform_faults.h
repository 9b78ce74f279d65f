#pragma once

// Calls of the platform that fail on request: files, registry, COM and its texts, and the document service.
// Each kind is counted on its own.

#include "tests/faults/fault_point.h"

/// The kinds. The code is a Windows error for files and the registry, and an HRESULT for COM; S_OK means
/// that the call says it succeeded and hands nothing out.
extern FaultPoint g_fileFaults;
extern FaultPoint g_registryFaults;
extern FaultPoint g_comFaults;

/// Puts the kinds in place for the rest of the process. Returns the number of functions and methods that can
/// fail from now on, or 0 if one of them is not there to be replaced.
int InstallPlatformFaults();
