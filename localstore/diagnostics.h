#pragma once

// What the store has to say to whoever looks after its files: which file was skipped and why. Lines go to the
// debugger and, if the environment variable LOCALSTORE_LOG names one, to a file in UTF-8.

#include <string>
#include <vector>

#include "localstore/property.h"

namespace localstore {

/// Reports that a file or folder was left out. `reason` is an English clause such as "it is empty". Never
/// fails.
void ReportSkipped(const Text& path, const char* reason) noexcept;

/// The lines of this process so far, of which only a recording build keeps any.
std::vector<std::string> DiagnosticLines();
void ClearDiagnosticLines() noexcept;

}  // namespace localstore
