#pragma once

#include "desktop/arguments.h"

/// Gives the agent settings if it has none, and says what was done. Throws a Failure if the agent is not
/// there, or if it has settings with which the lists of profiles and folders do not work.
void SetUpAgent(const Arguments& arguments);
