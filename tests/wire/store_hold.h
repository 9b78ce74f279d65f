#pragma once

// A test's hold on the store of an agent that is started later, on held_store.dll.

#include <windows.h>

#include <future>

#include "support/owners.h"
#include "tests/shared_value.h"
#include "tests/wire/pdu.h"

class StoreHold {
  public:
    /// Throws std::runtime_error if the objects cannot be made.
    StoreHold();
    StoreHold(const StoreHold&) = delete;
    StoreHold& operator=(const StoreHold&) = delete;
    ~StoreHold();

    /// Has the n-th call of the store from now on hang (1 is the next one). The store must lie still.
    void HoldCall(long n);
    /// Waits until a call hangs or an answer is there. True if a call hangs.
    [[nodiscard]] bool WaitUntilHeld(const std::future<CallPdu>& answer) const;
    [[nodiscard]] bool IsHeld() const;
    /// Lets the call go on, and all that come.
    void LetGoOn();

  private:
    void SetCallsToPass(long n);

    SharedValue<LONG> m_callsToPass;
    Handle m_hangs;
    Handle m_goesOn;
};
