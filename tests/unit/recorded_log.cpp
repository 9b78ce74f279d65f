#include "tests/unit/recorded_log.h"

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <mutex>
#include <ostream>
#include <string>
#include <utility>

#include "support/output_string.h"
#include "tests/unit/text_printer.h"

namespace {

/// Memory beside operator new, so that a test that makes that scarce still learns what was logged.
template<class T>
struct PlainAllocator {
    using value_type = T;

    PlainAllocator() = default;
    template<class Other>
    PlainAllocator(const PlainAllocator<Other>& /*other*/) noexcept {}

    T* allocate(std::size_t count) {
        void* const memory = std::calloc(count, sizeof(T));
        if (memory == nullptr) {
            std::abort();
        }
        return static_cast<T*>(memory);
    }
    void deallocate(T* memory, std::size_t /*count*/) noexcept { std::free(memory); }

    friend bool operator==(PlainAllocator, PlainAllocator) = default;
};
using PlainText = std::basic_string<wchar_t, std::char_traits<wchar_t>, PlainAllocator<wchar_t>>;

struct KeptLine {
    int level;
    PlainText text;
    std::size_t number;
};

std::mutex g_mutex;
std::vector<KeptLine, PlainAllocator<KeptLine>> g_lines;
std::vector<PlainText, PlainAllocator<PlainText>> g_modules;
CString g_awaited;
std::function<void()> g_action;
std::atomic<std::size_t (*)()> g_number = nullptr;

/// The action that a line was waited for with, once.
std::function<void()> NoteLine(const wchar_t* module, int level, const wchar_t* text) {
    // Outside the lock: what is asked may have one of its own.
    const auto ask = g_number.load();
    const std::size_t number = ask == nullptr ? 0 : ask();
    const std::lock_guard lock(g_mutex);
    g_lines.push_back({level, PlainText(text), number});
    if (std::ranges::find(g_modules, PlainText(module)) == g_modules.end()) {
        g_modules.emplace_back(module);
    }
    return g_awaited == text ? std::exchange(g_action, nullptr) : nullptr;
}

}  // namespace

void OutputString(const wchar_t* module, int level, const wchar_t* text) {
    // Outside the lock: the action may write lines of its own.
    if (const std::function<void()> action = NoteLine(module, level, text)) {
        action();
    }
}

void NumberLogLines(std::size_t (*number)()) {
    g_number = number;
}

std::vector<std::size_t> LogNumbers() {
    const std::lock_guard lock(g_mutex);
    std::vector<std::size_t> numbers;
    numbers.reserve(g_lines.size());
    for (const KeptLine& line : g_lines) {
        numbers.push_back(line.number);
    }
    return numbers;
}

void OnLogLine(const CString& text, std::function<void()> action) {
    const std::lock_guard lock(g_mutex);
    g_awaited = text;
    g_action = std::move(action);
}

void PrintTo(const LogLine& line, std::ostream* out) {
    *out << '\n' << line.level << ' ';
    PrintTo(line.text, out);
}

LogLines TakeLog() {
    const std::lock_guard lock(g_mutex);
    LogLines lines;
    lines.reserve(g_lines.size());
    for (const KeptLine& line : g_lines) {
        lines.push_back({line.level, CString(line.text.c_str(), line.text.size())});
    }
    g_lines.clear();
    return lines;
}

std::vector<CString> LogModules() {
    const std::lock_guard lock(g_mutex);
    std::vector<CString> modules;
    modules.reserve(g_modules.size());
    for (const PlainText& module : g_modules) {
        modules.emplace_back(module.c_str(), module.size());
    }
    return modules;
}
