#pragma once

// What the measuring programs have in common: who measures starts them once and asks them for one repetition
// after the other, so that those of all programs can take turns.

#include <windows.h>

#include <cstdio>
#include <exception>
#include <functional>
#include <iostream>
#include <string>

namespace bench {

/// Seconds that a run takes, by the clock of the performance counter.
inline double SecondsOf(const std::function<void()>& run) {
    LARGE_INTEGER frequency{};
    LARGE_INTEGER begin{};
    LARGE_INTEGER end{};
    QueryPerformanceFrequency(&frequency);
    QueryPerformanceCounter(&begin);
    run();
    QueryPerformanceCounter(&end);
    return static_cast<double>(end.QuadPart - begin.QuadPart) / static_cast<double>(frequency.QuadPart);
}

/// Says "ready", then answers each line of the input by a line of the output, until the input ends.
inline void AnswerLines(const std::function<std::string(const std::string& line)>& answer) {
    std::cout << "ready" << std::endl;
    for (std::string line; std::getline(std::cin, line);) {
        if (!line.empty() && line.back() == '\r') {
            line.pop_back();
        }
        std::cout << answer(line) << std::endl;
    }
}

/// The same for programs that do one thing: each line is one more run of it, and the answer tells its
/// seconds.
inline void AnswerWithSeconds(const std::function<void()>& run) {
    AnswerLines([&](const std::string& /*line*/) { return std::to_string(SecondsOf(run)); });
}

/// The body of an entry function: 0, or 1 and a word on the error output.
inline int Guarded(const char* program, const std::function<void()>& body) {
    try {
        body();
        return 0;
    } catch (const std::exception& failure) {
        std::cerr << program << ": " << failure.what() << std::endl;
        return 1;
    }
}

}  // namespace bench
