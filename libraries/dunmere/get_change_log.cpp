#include "libraries/dunmere/compare_with_map.h"

int GetChangeLog(LogItems* items, const GetChangeLogArgs* arguments) {
    return CompareWithMap(items, arguments);
}
