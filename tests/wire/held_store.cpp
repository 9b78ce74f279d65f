// The local store as a mail system of which a call can hang: the recording build, of which another process
// holds a call as held_store.h tells. Nothing is recorded.

#include "tests/wire/held_store.h"

#include "localstore/call_guard.h"
#include "localstore/recorder.h"
#include "tests/shared_value.h"

namespace localstore {

namespace {

/// What the test made, opened. Without a test no call hangs.
class Gate {
  public:
    Gate() { recorder::Record(false); }

    void Pass() const {
        if (m_callsToPass && InterlockedDecrement(m_callsToPass.Get()) == 0) {
            SetEvent(m_hangs.Get());
            WaitForSingleObject(m_goesOn.Get(), INFINITE);
        }
    }

  private:
    SharedValue<LONG> m_callsToPass = SharedValue<LONG>::Open(kCallsToPass);
    Handle m_hangs{OpenEventW(EVENT_MODIFY_STATE, FALSE, kCallHangs)};
    Handle m_goesOn{OpenEventW(SYNCHRONIZE, FALSE, kCallGoesOn)};
};

thread_local int t_callDepth = 0;  ///< calls of this thread that have not returned

}  // namespace

// A call that the store makes on itself is part of the one that it serves.

CallHold::CallHold() {
    static const Gate gate;
    if (t_callDepth++ == 0) {
        gate.Pass();
    }
}

CallHold::~CallHold() {
    --t_callDepth;
}

}  // namespace localstore
