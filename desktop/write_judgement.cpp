#include "desktop/write_judgement.h"

#include <algorithm>
#include <unordered_set>

namespace {

/// The two states of the folder, and which of its new items belong to a write already.
struct Evidence {
    const FolderState& before;
    const FolderState& after;
    std::unordered_set<std::string> claimed;
};

bool IsNewAndUnclaimed(const Evidence& evidence, const std::string& id) {
    return !evidence.before.TimeOf(id) && !evidence.claimed.contains(id);
}

/// An item that came into the folder at that time and under another identifier: reads name it by the
/// long-term one where the store has such, and an add hands back the other, or none if it could not be had.
bool ClaimNewItem(Evidence& evidence, MapSeconds time) {
    const auto& items = evidence.after.Items();
    const auto item = std::ranges::find_if(items, [&](const auto& candidate) {
        return candidate.second == time && IsNewAndUnclaimed(evidence, candidate.first);
    });
    if (item == items.end()) {
        return false;
    }
    evidence.claimed.insert(item->first);
    return true;
}

WriteOutcome JudgeAdd(const WriteFacts& write, Evidence& evidence) {
    const std::string id = StateKey(write.id.View());
    if (evidence.before.TimeOf(id)) {
        return WriteOutcome::kRefused;
    }
    const std::optional<MapSeconds> time = SecondsOfTimeText(write.time.View());
    if (evidence.after.TimeOf(id) || (time && ClaimNewItem(evidence, *time))) {
        return WriteOutcome::kDone;
    }
    // Whoever takes it for refused and adds it again must not get it twice.
    const bool mayBeOneOfTheNew =
        id.empty() && std::ranges::any_of(evidence.after.Items(), [&](const auto& candidate) {
            return IsNewAndUnclaimed(evidence, candidate.first);
        });
    return mayBeOneOfTheNew ? WriteOutcome::kUnproven : WriteOutcome::kRefused;
}

WriteOutcome JudgeChange(const WriteFacts& write, const Evidence& evidence) {
    const std::string id = StateKey(write.id.View());
    const std::optional<MapSeconds> before = evidence.before.TimeOf(id);
    const std::optional<MapSeconds> after = evidence.after.TimeOf(id);
    if (!after) {
        return WriteOutcome::kUnproven;
    }
    if (before == after) {
        return WriteOutcome::kRefused;
    }
    // A change of another time is somebody else's, whatever became of this one.
    const std::optional<MapSeconds> time = SecondsOfTimeText(write.time.View());
    return !time || time == after ? WriteOutcome::kDone : WriteOutcome::kUnproven;
}

WriteOutcome JudgeDeletion(const WriteFacts& write, const Evidence& evidence) {
    const std::string id = StateKey(write.id.View());
    if (evidence.after.TimeOf(id)) {
        return WriteOutcome::kRefused;
    }
    return evidence.before.TimeOf(id) ? WriteOutcome::kDone : WriteOutcome::kUnproven;
}

WriteOutcome Judge(const WriteFacts& write, Evidence& evidence) {
    switch (write.kind) {
        case WriteKind::kAdd:
            return JudgeAdd(write, evidence);
        case WriteKind::kChange:
            return JudgeChange(write, evidence);
        case WriteKind::kDelete:
            return JudgeDeletion(write, evidence);
        case WriteKind::kNothing:
            break;
    }
    return WriteOutcome::kRefused;
}

}  // namespace

WriteKind WriteKindOf(std::int32_t flag) {
    for (const WriteKind kind : {WriteKind::kAdd, WriteKind::kChange, WriteKind::kDelete}) {
        if ((flag & static_cast<std::int32_t>(kind)) != 0) {
            return kind;
        }
    }
    return WriteKind::kNothing;
}

std::vector<WriteOutcome> JudgeWrites(std::span<const WriteFacts> writes, const FolderState* before,
                                      const FolderState* after) {
    std::vector<WriteOutcome> outcomes;
    const FolderState nothing{std::string_view()};
    const bool isKnown = before != nullptr && after != nullptr;
    Evidence evidence{isKnown ? *before : nothing, isKnown ? *after : nothing, {}};
    // What is named by its own identifier must not be taken for another one's item.
    for (const WriteFacts& write : writes) {
        evidence.claimed.insert(StateKey(write.id.View()));
    }
    for (const WriteFacts& write : writes) {
        const bool asksForSomething = write.kind != WriteKind::kNothing;
        outcomes.push_back(isKnown || !asksForSomething ? Judge(write, evidence) : WriteOutcome::kUnproven);
    }
    return outcomes;
}

std::string StateKey(WideView identifier) {
    std::string key;
    key.reserve(identifier.size());
    for (const wide unit : identifier) {
        // No identifier of a folder's state has any other character.
        const char character = unit < 0x80 ? static_cast<char>(unit) : '?';
        key += character >= 'a' && character <= 'f' ? static_cast<char>(character - 'a' + 'A') : character;
    }
    return key;
}
