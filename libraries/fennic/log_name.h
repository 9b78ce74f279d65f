#pragma once

#include "support/text.h"

/// The file name of a module's log: the module's name with whatever a file name cannot hold replaced by "_",
/// cut to a sensible length, and ".log". A name of which nothing is left becomes "unnamed.log".
CString LogFileName(WideView module);
