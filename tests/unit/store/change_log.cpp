#include "tests/unit/store/change_log.h"

#include "libraries/dunmere/compare_with_map.h"

namespace {

std::function<int(LogItems&, const GetChangeLogArgs&)> g_action;

}  // namespace

void OnGetChangeLog(std::function<int(LogItems& items, const GetChangeLogArgs& arguments)> action) {
    g_action = std::move(action);
}

int GetChangeLog(LogItems* items, const GetChangeLogArgs* arguments) {
    return g_action ? g_action(*items, *arguments) : CompareWithMap(items, arguments);
}
