#pragma once

// Remote calls of which a failure becomes a value or a C++ exception.
//
// The RPC runtime reports a failed call by a structured exception, which C++ handlers do not see: unguarded,
// it ends the process. Here, and nowhere else, it is turned into something that C++ code can deal with.

#include <exception>

/// A remote call that failed.
class RpcFailure : public std::exception {
  public:
    explicit RpcFailure(unsigned long status) noexcept : m_status(status) {}
    [[nodiscard]] const char* what() const noexcept override { return "remote call failed"; }
    /// The status of the RPC runtime, such as 1722 when no server listens, or the code that the server's
    /// handler raised.
    [[nodiscard]] unsigned long Status() const noexcept { return m_status; }

  private:
    unsigned long m_status;
};

/// A client stub's call with its arguments behind `context`.
using RpcCall = void (*)(void* context) noexcept;

/// Makes the call and returns 0, or the code of the structured exception that it raised. A fault of the
/// program itself, such as an access violation, is not caught. The call is left in the middle, so it must own
/// nothing that has to be freed.
[[nodiscard]] unsigned long GuardRpcCall(RpcCall call, void* context) noexcept;

/// Runs a callable that makes one remote call, with the same restriction, and throws RpcFailure if the call
/// failed.
template<class Call>
void GuardedRpc(Call call) {
    const RpcCall run = [](void* context) noexcept { (*static_cast<Call*>(context))(); };
    if (const unsigned long status = GuardRpcCall(run, &call); status != 0) {
        throw RpcFailure(status);
    }
}
