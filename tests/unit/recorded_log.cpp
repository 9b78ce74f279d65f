#include "tests/unit/recorded_log.h"

#include <algorithm>
#include <mutex>
#include <ostream>
#include <utility>

#include "support/output_string.h"
#include "tests/unit/text_printer.h"

namespace {

std::mutex g_mutex;
LogLines g_lines;
std::vector<CString> g_modules;
CString g_awaited;
std::function<void()> g_action;

/// The action that a line was waited for with, once.
std::function<void()> NoteLine(const wchar_t* module, int level, const wchar_t* text) {
    const std::lock_guard lock(g_mutex);
    g_lines.push_back({level, CString(text)});
    if (std::ranges::find(g_modules, CString(module)) == g_modules.end()) {
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
    return std::exchange(g_lines, {});
}

std::vector<CString> LogModules() {
    const std::lock_guard lock(g_mutex);
    return g_modules;
}
