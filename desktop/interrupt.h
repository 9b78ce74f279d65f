#pragma once

/// Makes Ctrl+C and Ctrl+Break set a mark instead of ending the program. The second one ends it at once.
void WatchForInterrupt();

/// True if the user has asked for an end. Callable from any thread.
bool Interrupted();
