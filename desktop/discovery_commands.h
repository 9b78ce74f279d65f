#pragma once

#include "desktop/arguments.h"

/// Prints the mail profiles of the user, for which nobody has to log on. Throws a Failure.
void PrintProfiles(const Arguments& arguments);

/// Prints the folders of all stores of the profile that the arguments name. Throws a Failure.
void PrintFolders(const Arguments& arguments);
