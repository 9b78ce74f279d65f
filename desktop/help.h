#pragma once

#include "support/wide.h"

/// All that a user can know about the program.
extern const WideView kHelpText;
