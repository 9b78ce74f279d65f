#pragma once

#include <string>

/// A choice of both folders, as the two calls take it.
struct FolderChoice {
    std::wstring contacts;
    std::wstring calendars;
};

/// The calls that clients make at once, each the more often the more often its letter stands there.
struct Calls {
    std::wstring letters;
    FolderChoice otherFolders;
    std::wstring mapPrefix;
    long items = 0;  ///< of each kind, that each folder holds at least
};

/// Adds an item of each kind to the other folders and then lets clients loose for some seconds. Prints
/// "NUMBER calls", and how many of them had each outcome: "NUMBER succeeded LETTER", "NUMBER failed LETTER
/// STATUS" for a status of the RPC runtime, and "NUMBER nothing LETTER CAUSE" for what the agent refused or
/// did not do. Throws std::runtime_error if it cannot begin.
void Overlap(unsigned long seconds, unsigned long clients, unsigned seed, const Calls& all);
