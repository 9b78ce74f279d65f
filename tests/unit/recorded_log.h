#pragma once

// The log of a test program: it defines OutputString itself and keeps what was written.

#include <cstddef>
#include <functional>
#include <vector>

#include "support/text.h"

struct LogLine {
    int level = 0;
    CString text;

    friend bool operator==(const LogLine&, const LogLine&) = default;
};
using LogLines = std::vector<LogLine>;

/// How GoogleTest prints a line.
void PrintTo(const LogLine& line, std::ostream* out);

/// All lines since the last call, oldest first.
LogLines TakeLog();

/// Takes a number with each line from now on, such as that of the calls that were made until then. Null: 0.
void NumberLogLines(std::size_t (*number)());

/// The numbers of all lines since the last TakeLog, oldest first.
std::vector<std::size_t> LogNumbers();

/// Runs something when a line of this text is written the next time, in the middle of the operation that
/// writes it. An empty action takes that back.
void OnLogLine(const CString& text, std::function<void()> action);

/// The module names that the lines since the program's start came with, each once.
std::vector<CString> LogModules();
