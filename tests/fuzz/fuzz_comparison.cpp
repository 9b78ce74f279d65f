// A folder's items compared with what is known of them: each is flagged as a search through the whole list
// flags it, and what is known afterwards comes back from its map and finds nothing new.
//
// Two bytes make an item: its identifier, of which there are few, and its time.

#include <algorithm>

#include "libraries/dunmere/comparison.h"
#include "tests/fuzz/fuzz_input.h"

namespace {

/// Identifiers with what a map has to write in another form, and none at all.
constexpr WideView kIdentifiers[] = {WIDE(""),     WIDE("A"),   WIDE("a"),      WIDE("B"),
                                     WIDE("[A]"),  WIDE("A\t"), WIDE("A B"),    WIDE("\\u0041"),
                                     WIDE("[A\n"), WIDE("\\"),  WIDE("\xD800"), WIDE("checksum")};

COleDateTime DateOfByte(std::uint8_t byte) {
    return {(byte & 63U) * 0.5 - 4.0, byte >> 6U};
}

std::vector<tagLogItem> ItemsOf(const std::uint8_t* data, std::size_t size) {
    std::vector<tagLogItem> items;
    for (std::size_t i = 0; i + 1 < size; i += 2) {
        tagLogItem item;
        item.m_strId = CString(kIdentifiers[data[i] % std::size(kIdentifiers)]);
        item.m_dtModified = DateOfByte(data[i + 1]);
        items.push_back(std::move(item));
    }
    return items;
}

template<class Items, class IdOf>
const typename Items::value_type* FirstOf(const Items& items, const CString& id, IdOf idOf) {
    const auto found =
        std::find_if(items.begin(), items.end(), [&](const auto& one) { return idOf(one) == id; });
    return found == items.end() ? nullptr : &*found;
}

const CString& IdOfItem(const tagLogItem& item) {
    return item.m_strId;
}
const CString& IdOfKnown(const KnownItem& item) {
    return item.id;
}

std::int32_t ExpectedFlag(const std::vector<tagLogItem>& items, const tagLogItem& item,
                          const std::vector<KnownItem>& known) {
    if (item.m_strId.empty() || FirstOf(items, item.m_strId, IdOfItem) != &item) {
        return 0;
    }
    const KnownItem* const before = FirstOf(known, item.m_strId, IdOfKnown);
    if (before == nullptr) {
        return kItemNew;
    }
    return before->modified == ChangeTimeOf(item.m_dtModified) ? 0 : kItemChanged;
}

void RequireGone(const std::vector<tagLogItem>& gone, const std::vector<tagLogItem>& items,
                 const std::vector<KnownItem>& known) {
    std::size_t count = 0;
    for (const KnownItem& one : known) {
        if (FirstOf(known, one.id, IdOfKnown) == &one &&
            (one.id.empty() || FirstOf(items, one.id, IdOfItem) == nullptr)) {
            Require(count < gone.size() && gone[count].m_strId == one.id);
            Require(gone[count].m_lLogFlag == kItemDeleted);
            ++count;
        }
    }
    Require(gone.size() == count);
}

/// What is known stands in a map, and the same items compared with it again are the same.
void RequireKnownAgain(const LogItems& list, const std::vector<KnownItem>& known) {
    ChangeMap map;
    map.ItemsOf(WIDE("contact"), WIDE("a [b]\n")) = known;
    map.ItemsOf(WIDE("calendar"), WIDE("")) = {};
    ChangeMap read;
    Require(ReadMap(WriteMap(map), read) == MapState::kGood);
    Require(read.ItemsOf(WIDE("contact"), WIDE("a [b]\n")) == known && read.sections.size() == 2);
    const Comparison again = Compare(list, known);
    Require(again.marked == 0 && again.gone.empty() && again.nowKnown == known);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::size_t half = size / 2;
    std::vector<KnownItem> known;
    for (const tagLogItem& item : ItemsOf(data, half)) {
        known.push_back({item.m_strId, ChangeTimeOf(item.m_dtModified)});
    }
    const std::vector<tagLogItem> items = ItemsOf(data + half, size - half);
    LogItems list;
    for (const tagLogItem& item : items) {
        list.Add(item);
    }
    const Comparison comparison = Compare(list, known);
    Require(comparison.flags.size() == items.size());
    std::size_t marked = 0;
    for (std::size_t i = 0; i < items.size(); ++i) {
        Require(comparison.flags[i] == ExpectedFlag(items, items[i], known));
        marked += comparison.flags[i] != 0 ? 1U : 0U;
    }
    Require(comparison.marked == marked);
    RequireGone(comparison.gone, items, known);
    RequireKnownAgain(list, comparison.nowKnown);
    return 0;
}
