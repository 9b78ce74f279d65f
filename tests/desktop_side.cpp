#include "tests/desktop_side.h"

#include <windows.h>

#include <rpc.h>

#include <stdexcept>
#include <string>

#include "callback.h"
#include "command.h"
#include "support/rpc_endpoints.h"
#include "tests/rpc_binding.h"

namespace {

constexpr unsigned kMaxCalls = 1234;

void Require(RPC_STATUS status, const char* what) {
    if (status != RPC_S_OK) {
        throw std::runtime_error(std::string(what) + " gives " + std::to_string(status));
    }
}

}  // namespace

void ServeCallbacks() {
    Require(
        RpcServerUseProtseqEpW(RpcText(kProtocolSequence), kMaxCalls, RpcText(kCallbackEndpoint), nullptr),
        "RpcServerUseProtseqEp");
    Require(RpcServerRegisterIf(ZebAgentCallback_v1_0_s_ifspec, nullptr, nullptr), "RpcServerRegisterIf");
    Require(RpcServerListen(1, kMaxCalls, TRUE), "RpcServerListen");
}

void BindToAgent() {
    Require(MakeBinding(kCommandEndpoint, &g_hAgentBinding), "the binding");
}
