// A map that is taken for good is exactly the text that would be written for it; no damaged one makes an item
// that is there count as gone.

#include <cstdio>
#include <string>

#include "libraries/dunmere/comparison.h"
#include "support/fnv.h"
#include "tests/fuzz/fuzz_input.h"

namespace {

/// The text behind the header line and in front of a checksum that fits: without one, hardly an input would
/// pass the first check.
std::string MapOf(const std::string& lines) {
    std::string text = "DunmereMap 1\n" + lines;
    char checksum[32];
    (void)std::snprintf(checksum, sizeof(checksum), "checksum %016llX\n",
                        static_cast<unsigned long long>(Fnv1a(std::string_view(text))));
    return text + checksum;
}

void RequireSound(const std::string& text) {
    ChangeMap map;
    if (ReadMap(text, map) != MapState::kGood) {
        Require(map.sections.empty());
        return;
    }
    Require(WriteMap(map) == text);
    LogItems items;
    for (const wide* id : {WIDE("A"), WIDE("B")}) {
        tagLogItem item;
        item.m_strId = id;
        items.Add(item);
    }
    for (const MapSection& section : map.sections) {
        for (const tagLogItem& gone : Compare(items, section.items).gone) {
            Require(gone.m_strId != WIDE("A") && gone.m_strId != WIDE("B"));
        }
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string input(reinterpret_cast<const char*>(data), size);
    RequireSound(input);
    RequireSound(MapOf(input));
    return 0;
}
