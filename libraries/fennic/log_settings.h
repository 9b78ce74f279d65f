#pragma once

#include <cstdint>

#include "support/text.h"

/// What decides where lines go and which of them are written.
struct LogSettings {
    /// Lines below the level of failures are written too. They carry telephone numbers and identifiers.
    bool privateLines = false;
    /// One file for the lines of all modules; empty if each module has its own.
    CString namedFile;
    /// Where the folder Logs is made; empty if it is not known.
    CString imageFolder;
    /// Where the files go if they cannot be opened there.
    CString temporaryFolder;
    /// A file that has reached this size, in bytes, is moved aside.
    std::uint64_t sizeLimit = 10ULL * 1024 * 1024;
};

/// The settings of this process, from its environment, the registry and the place of its image.
LogSettings ReadLogSettings();
