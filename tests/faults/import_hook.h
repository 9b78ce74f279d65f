#pragma once

// A platform function that this program imports, replaced in its table of imports: calls of the agent's rooms
// and of the local store, which are linked in, go through it, those of other libraries do not.

/// Puts `replacement` in the place of an imported function, for the rest of the process. Returns the function
/// itself, or null if this program does not import one of that name.
void* ReplaceImport(const char* function, void* replacement);
