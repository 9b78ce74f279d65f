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

}  // namespace

void OutputString(const wchar_t* module, int level, const wchar_t* text) {
    const std::lock_guard lock(g_mutex);
    g_lines.push_back({level, CString(text)});
    if (std::ranges::find(g_modules, CString(module)) == g_modules.end()) {
        g_modules.emplace_back(module);
    }
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
