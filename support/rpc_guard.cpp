#include "support/rpc_guard.h"

#include <windows.h>

#include <excpt.h>

namespace {

/// A fault of the processor is reported as an error status with parameters, an access violation for one with
/// the address. The runtime raises its statuses without any, also those that stand for a fault in the server.
bool IsOwnFault(const EXCEPTION_RECORD& record) noexcept {
    constexpr DWORD kSeverityMask = 0xC0000000;
    return (record.ExceptionCode & kSeverityMask) == kSeverityMask && record.NumberParameters != 0;
}

}  // namespace

#ifdef __x86_64__

namespace {

/// The code of the exception that this thread caught last; the filter cannot reach the frame that it works
/// for.
thread_local unsigned long t_caughtCode = 0;

}  // namespace

/// Called by the platform while the exception looks for its handler. It stands outside the unnamed namespace
/// because the handler's table names it by its symbol.
extern "C" long RpcGuardFilter(const EXCEPTION_POINTERS* exception, void* /*frame*/) noexcept {
    if (IsOwnFault(*exception->ExceptionRecord)) {
        return EXCEPTION_CONTINUE_SEARCH;
    }
    t_caughtCode = exception->ExceptionRecord->ExceptionCode;
    return EXCEPTION_EXECUTE_HANDLER;
}

// The two macros lay out the table of a structured handler around what stands between them, with labels of
// their own. So they occur once in the program, in a function that is never inlined.
__attribute__((noinline)) unsigned long GuardRpcCall(RpcCall call, void* context) noexcept {
    volatile bool returned = false;
    __try1(RpcGuardFilter);
    call(context);
    returned = true;
    __except1;
    return returned ? 0 : t_caughtCode;
}

#else

namespace {

/// An entry in the thread's chain of structured handlers, with what the handler needs to get back. The first
/// two members are the platform's.
struct GuardFrame {
    GuardFrame* previous;
    PEXCEPTION_HANDLER handler;
    unsigned long code;
    void* resume[5];
};

GuardFrame* TopOfChain() noexcept {
    return reinterpret_cast<GuardFrame*>(__readfsdword(0));
}
void SetTopOfChain(GuardFrame* frame) noexcept {
    __writefsdword(0, reinterpret_cast<DWORD>(frame));
}

/// Called by the platform with the entry that it stands in. Lets the handlers of the frames inside clean up
/// and goes on where the call was made.
EXCEPTION_DISPOSITION __cdecl LeaveGuardedCall(EXCEPTION_RECORD* record, void* establisher,
                                               CONTEXT* /*context*/, void* /*dispatcher*/) {
    constexpr DWORD kUnwinding = EXCEPTION_UNWINDING | EXCEPTION_EXIT_UNWIND;
    if ((record->ExceptionFlags & kUnwinding) != 0 || IsOwnFault(*record)) {
        return ExceptionContinueSearch;
    }
    auto* frame = static_cast<GuardFrame*>(establisher);
    frame->code = record->ExceptionCode;
    RtlUnwind(frame, nullptr, record, nullptr);
    __builtin_longjmp(frame->resume, 1);
}

}  // namespace

// The macros for this processor move the stack pointer behind the compiler's back, and leave the way back to
// the handler; so the chain's entry is made here by hand.
__attribute__((noinline)) unsigned long GuardRpcCall(RpcCall call, void* context) noexcept {
    volatile GuardFrame frame{TopOfChain(), LeaveGuardedCall, 0, {}};
    auto* entry = const_cast<GuardFrame*>(&frame);
    if (__builtin_setjmp(entry->resume) == 0) {
        SetTopOfChain(entry);
        call(context);
    }
    SetTopOfChain(frame.previous);
    return frame.code;
}

#endif
