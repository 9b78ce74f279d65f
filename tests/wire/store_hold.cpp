#include "tests/wire/store_hold.h"

#include <chrono>
#include <stdexcept>

#include "tests/wire/held_store.h"

StoreHold::StoreHold()
    : m_callsToPass(SharedValue<LONG>::Make(kCallsToPass)),
      m_hangs(CreateEventW(nullptr, TRUE, FALSE, kCallHangs)),
      m_goesOn(CreateEventW(nullptr, TRUE, FALSE, kCallGoesOn)) {
    if (!m_callsToPass || !m_hangs || !m_goesOn) {
        throw std::runtime_error("the store's calls cannot be held");
    }
}

StoreHold::~StoreHold() {
    LetGoOn();
}

void StoreHold::HoldCall(long n) {
    ResetEvent(m_hangs.Get());
    ResetEvent(m_goesOn.Get());
    SetCallsToPass(n);
}

bool StoreHold::WaitUntilHeld(const std::future<CallPdu>& answer) const {
    constexpr std::chrono::milliseconds kStep(1);
    while (!IsHeld() && answer.wait_for(kStep) != std::future_status::ready) {
    }
    return IsHeld();
}

bool StoreHold::IsHeld() const {
    return WaitForSingleObject(m_hangs.Get(), 0) == WAIT_OBJECT_0;
}

void StoreHold::LetGoOn() {
    SetCallsToPass(0);
    ResetEvent(m_hangs.Get());
    SetEvent(m_goesOn.Get());
}

void StoreHold::SetCallsToPass(long n) {
    InterlockedExchange(m_callsToPass.Get(), n);
}
