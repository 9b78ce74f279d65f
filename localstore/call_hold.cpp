// The call that the recording build holds on request. It stands apart from the recorder, so that a program
// can hold calls in a way of its own.

#include <condition_variable>
#include <mutex>

#include "localstore/call_guard.h"
#include "localstore/recorder.h"

namespace localstore {

namespace {

/// The call that is held. It waits outside the store's lock, so that others get through.
struct HoldState {
    std::mutex mutex;
    std::condition_variable changed;
    std::size_t holdIn = 0;
    bool holding = false;
};

HoldState& Hold() {
    static HoldState hold;
    return hold;
}

thread_local int t_callDepth = 0;  ///< calls of this thread that have not returned

}  // namespace

CallHold::CallHold() {
    if (t_callDepth++ > 0) {
        return;
    }
    HoldState& hold = Hold();
    std::unique_lock lock(hold.mutex);
    if (hold.holdIn == 0 || --hold.holdIn != 0) {
        return;
    }
    hold.holding = true;
    hold.changed.wait(lock, [&] { return !hold.holding; });
}

CallHold::~CallHold() {
    --t_callDepth;
}

namespace recorder {

void HoldCall(std::size_t n) {
    const std::lock_guard lock(Hold().mutex);
    Hold().holdIn = n;
}

bool IsHolding() {
    const std::lock_guard lock(Hold().mutex);
    return Hold().holding;
}

void ReleaseCall() {
    const std::lock_guard lock(Hold().mutex);
    Hold().holdIn = 0;
    Hold().holding = false;
    Hold().changed.notify_all();
}

}  // namespace recorder

}  // namespace localstore
