#pragma once

#include "desktop/arguments.h"
#include "desktop/failure.h"

/// Runs the program with its arguments, without its own name, and returns its exit status. Messages go to
/// standard error.
ExitCode RunDesktop(const std::vector<CString>& arguments);
