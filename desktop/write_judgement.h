#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "desktop/folder_state.h"

/// What a document asks for, as bits of its flag. Of several the first in this order is done.
enum class WriteKind : std::int32_t { kNothing = 0, kAdd = 8, kChange = 4, kDelete = 32 };

[[nodiscard]] WriteKind WriteKindOf(std::int32_t flag);

/// What is known of one write behind its call.
struct WriteFacts {
    WriteKind kind = WriteKind::kNothing;
    CString id;    ///< the identifier that came back
    CString time;  ///< the time that came back
};

enum class WriteOutcome {
    kDone,      ///< proved: it is in the folder, or gone from it
    kRefused,   ///< proved: the folder is as it was
    kUnproven,  ///< neither
};

/// Tells of each write whether it was done, since its status does not. `before` and `after` are what the
/// folder held in front of the first write and behind the last one; no contact may have two of the writes,
/// and the first write must be in a later second than `before`. Null for a state that could not be had: then
/// nothing is proved but that what asks for nothing was not done.
[[nodiscard]] std::vector<WriteOutcome> JudgeWrites(std::span<const WriteFacts> writes,
                                                    const FolderState* before, const FolderState* after);

/// The form of an identifier in which a folder's state has it.
[[nodiscard]] std::string StateKey(WideView identifier);
