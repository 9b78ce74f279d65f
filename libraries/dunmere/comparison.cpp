#include "libraries/dunmere/comparison.h"

#include <unordered_map>
#include <utility>

namespace {

/// What is known of an identifier, and whether an item had it.
struct Place {
    const KnownItem* known = nullptr;
    bool seen = false;
};
using Places = std::unordered_map<WideView, Place>;

Places PlacesOf(const std::vector<KnownItem>& known, std::size_t items) {
    Places places;
    places.reserve(known.size() + items);
    for (const KnownItem& item : known) {
        places.try_emplace(item.id.View(), Place{&item, false});
    }
    return places;
}

std::int32_t FlagOf(const KnownItem* known, const ChangeTime& modified) {
    if (known == nullptr) {
        return kItemNew;
    }
    return known->modified == modified ? 0 : kItemChanged;
}

}  // namespace

Comparison Compare(const LogItems& items, const std::vector<KnownItem>& known) {
    Places places = PlacesOf(known, items.GetSize());
    Comparison comparison;
    comparison.flags.resize(items.GetSize());
    comparison.nowKnown.reserve(items.GetSize());
    for (std::size_t i = 0; i < items.GetSize(); ++i) {
        const tagLogItem& item = items[i];
        Place& place = places[item.m_strId.View()];
        if (item.m_strId.empty() || place.seen) {
            continue;
        }
        place.seen = true;
        const ChangeTime modified = ChangeTimeOf(item.m_dtModified);
        comparison.flags[i] = FlagOf(place.known, modified);
        comparison.marked += comparison.flags[i] != 0 ? 1U : 0U;
        comparison.nowKnown.push_back({item.m_strId, modified});
    }
    for (const KnownItem& item : known) {
        if (!std::exchange(places[item.id.View()].seen, true)) {
            comparison.gone.push_back({kItemDeleted, 0, item.id, DateOf(item.modified)});
        }
    }
    return comparison;
}
