#pragma once

#include <string>

/// What a process uses, as seen from outside.
struct ProcessFigures {
    unsigned long handles = 0;
    unsigned long long bytes = 0;       ///< private memory
    unsigned long long heapBlocks = 0;  ///< allocated in its heaps and not freed
    unsigned long long heapBytes = 0;   ///< of those blocks, as they were asked for
};

/// The figures of the one process of a program, which must lie still: its heaps are walked by a library that
/// is loaded into it. Throws std::runtime_error if they cannot be had.
ProcessFigures QueryFigures(const std::wstring& program);
