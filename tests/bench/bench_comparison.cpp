// The comparison of a folder's list with the map and nothing else: bench_comparison MAP ITEMS; each line of
// the input is one more comparison of the same list, in which nothing changed since the one at the start.

#include <windows.h>

#include <cstdlib>
#include <stdexcept>

#include "changelog/get_change_log.h"
#include "command_loop.h"

namespace {

/// Identifiers of the local store have 56 bytes, which are two digits each.
constexpr std::size_t kIdDigits = 112;

LogItems MakeItems(unsigned long count) {
    LogItems items;
    for (unsigned long i = 0; i < count; ++i) {
        tagLogItem item;
        // What differs between the identifiers of a folder stands at their end.
        const CString number = CString::Format(L"%08lX", i);
        item.m_strId.assign(kIdDigits - number.size(), L'A');
        item.m_strId += number;
        item.m_dtModified.m_dt = 40000.0 + i * 0.01;
        item.m_dtModified.m_status = kDateValid;
        items.Add(std::move(item));
    }
    return items;
}

void Run(const wchar_t* map, unsigned long count) {
    LogItems items = MakeItems(count);
    const GetChangeLogArgs arguments{L"contact", L"pim", map};
    if (GetChangeLog(&items, &arguments) != static_cast<int>(count)) {
        throw std::runtime_error("the first comparison does not find every item new");
    }
    bench::AnswerWithSeconds([&] {
        if (GetChangeLog(&items, &arguments) != 0) {
            throw std::runtime_error("a comparison finds a change where there is none");
        }
    });
}

}  // namespace

int wmain(int count, wchar_t** arguments) {
    return bench::Guarded("bench_comparison", [&] {
        if (count != 3) {
            throw std::invalid_argument("bench_comparison MAP ITEMS");
        }
        Run(arguments[1], std::wcstoul(arguments[2], nullptr, 10));
    });
}
