#pragma once

// The remote operations, each made ready, run once and looked at.

#include <iosfwd>
#include <vector>

#include "tests/faults/store_state.h"

/// What one run of an operation left.
struct Outcome {
    int result = 0;
    /// A call said that it was made and did nothing, so what is in the store says nothing of the agent.
    bool storeLied = false;
    /// Memory or the document service failed, so documents may lack something.
    bool documentsFailed = false;
    /// Nothing failed, so that all of it has to be done.
    bool complete = false;
};

struct Operation {
    const char* name;
    /// The words that its first line and its last one in the log begin with.
    const wchar_t* firstLine;
    const wchar_t* lastLine;
    /// Brings the agent and the store to where it begins. Nothing fails meanwhile.
    void (*prepare)(StoreState& state);
    int (*run)(StoreState& state);
    /// Expects what is documented of any outcome. Nothing fails meanwhile.
    void (*check)(StoreState& state, const Outcome& outcome);
    int complete;          ///< its result when nothing fails
    long mostBuffersLeft;  ///< buffers and objects that a run may leave by design
    long mostObjectsLeft;
    bool changesSession;  ///< begins or ends a session, which takes objects of its own
};

/// How GoogleTest prints one.
void PrintTo(const Operation& operation, std::ostream* out);

/// All of them, in the order in which a desktop program needs them.
const std::vector<Operation>& Operations();
