#include "libraries/dunmere/compare_with_map.h"

#include <algorithm>
#include <limits>

#include "libraries/dunmere/comparison.h"
#include "libraries/dunmere/library_log.h"
#include "libraries/dunmere/map_file.h"

namespace {

constexpr int kNothingCompared = -1;

/// Appends all or nothing.
void Append(LogItems& items, const std::vector<tagLogItem>& gone) {
    const std::size_t before = items.GetSize();
    try {
        for (const tagLogItem& item : gone) {
            items.Add(item);
        }
    } catch (...) {
        items.SetSize(before);
        throw;
    }
}

void LogComparison(const GetChangeLogArgs& arguments, const Comparison& comparison) {
    const auto added = std::count(comparison.flags.begin(), comparison.flags.end(), kItemNew);
    const auto changed = std::count(comparison.flags.begin(), comparison.flags.end(), kItemChanged);
    LogLibrary(kLibraryTrace, L"%s, %s: %I64u items, %I64d new, %I64d changed, %I64u gone.",
               arguments.m_strKind.c_str(), arguments.m_strDomain.c_str(),
               std::uint64_t{comparison.flags.size()}, std::int64_t{added}, std::int64_t{changed},
               std::uint64_t{comparison.gone.size()});
}

/// Everything that can fail is done before the map file is replaced, and marking the items cannot.
int Mark(LogItems& items, const GetChangeLogArgs& arguments) {
    MapFile file(arguments.m_strMapFile);
    ChangeMap map = file.Read();
    std::vector<KnownItem>& known = map.ItemsOf(arguments.m_strKind.View(), arguments.m_strDomain.View());
    Comparison comparison = Compare(items, known);
    const std::size_t found = comparison.marked + comparison.gone.size();
    LogComparison(arguments, comparison);

    known = std::move(comparison.nowKnown);
    const std::string text = found != 0 || !file.IsGood() ? WriteMap(map) : std::string();
    Append(items, comparison.gone);
    if (!text.empty()) {
        file.Replace(text);
    }
    for (std::size_t i = 0; i < comparison.flags.size(); ++i) {
        items[i].m_lLogFlag = comparison.flags[i];
    }
    return static_cast<int>(std::min<std::size_t>(found, std::numeric_limits<int>::max()));
}

}  // namespace

int CompareWithMap(LogItems* items, const GetChangeLogArgs* arguments) noexcept {
    if (items == nullptr || arguments == nullptr) {
        return kNothingCompared;
    }
    try {
        return Mark(*items, *arguments);
    } catch (...) {
        LogLibrary(kLibraryFailure,
                   L"There is no memory for a comparison of %I64u items with the map file %s.",
                   std::uint64_t{items->GetSize()}, arguments->m_strMapFile.c_str());
        return kNothingCompared;
    }
}
