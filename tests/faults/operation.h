#pragma once

// The remote operations, each made ready, run once and looked at.

#include <cstddef>
#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

#include "tests/faults/store_state.h"
#include "tests/unit/recorded_log.h"

/// What one run of an operation left.
struct Outcome {
    int result = 0;
    /// A call said that it was made and did nothing, so what is in the store says nothing of the agent.
    bool storeLied = false;
    /// A call of the store was made and gave a warning.
    bool storeWarned = false;
    /// A call of the store failed, one that lied or warned among it.
    bool storeFailed = false;
    /// What failed of the store, as it was called, if it was one call alone.
    std::string failedCall;
    /// The save of a message or the deletion was among what failed of the store.
    bool commitFailed = false;
    /// Memory or the document service failed, so documents may lack something.
    bool documentsFailed = false;
    /// Memory failed, so that the log may lack lines.
    bool memoryFailed = false;
    /// A file failed, that of a picture or one of the store's.
    bool fileFailed = false;
    /// The document service or another part of COM said that a call was made, and did nothing.
    bool serviceLied = false;
    /// Every call behind the first one that failed did so too.
    bool forever = false;
    /// Another client logged on or chose a folder before the outcome is looked at.
    bool foldersReplaced = false;
    /// Nothing failed, so that all of it has to be done.
    bool complete = false;
    LogLines log;
    /// With each line of the log, how many calls of the store had begun before it.
    std::vector<std::size_t> callsBefore;
};

struct Operation {
    const char* name = nullptr;
    /// The words that its first line and its last one in the log begin with.
    const wchar_t* firstLine = nullptr;
    const wchar_t* lastLine = nullptr;
    /// The words of the line that tells how it ended, either way. Null if none does.
    const wchar_t* successLine = nullptr;
    const wchar_t* failureLine = nullptr;
    /// Brings the agent and the store to where it begins. Nothing fails meanwhile.
    void (*prepare)(StoreState& state) = nullptr;
    int (*run)(StoreState& state) = nullptr;
    /// Expects what is documented of any outcome. Nothing fails meanwhile.
    void (*check)(StoreState& state, const Outcome& outcome) = nullptr;
    /// Whether a run succeeded by what it gave back. Empty if it did not come to what the line tells of. Null
    /// for an operation of which the result alone says that.
    std::optional<bool> (*succeeded)(const StoreState& state) = nullptr;
    int complete = 0;  ///< its result when nothing fails
    /// Buffers, objects and process handles that a run may leave by design, without what prepares it.
    long mostBuffersLeft = 0;
    long mostObjectsLeft = 0;
    long mostHandlesLeft = 0;
    /// It saves a document. Wine's service then loses all of it by itself, so that blocks cannot be compared.
    bool savesDocument = false;
    /// The walk through folders that Stop ends; null for an operation that goes on to its end.
    const wchar_t* stoppedWalk = nullptr;
    bool changesSession = false;  ///< begins or ends a session, which takes objects of its own

    /// The same as `succeeded` for any operation.
    [[nodiscard]] std::optional<bool> HasSucceeded(const StoreState& state, int result) const {
        return succeeded == nullptr ? result == complete : succeeded(state);
    }
};

/// How GoogleTest prints one.
void PrintTo(const Operation& operation, std::ostream* out);

/// All of them, in the order in which a desktop program needs them.
const std::vector<Operation>& Operations();
