#pragma once

// The functions of the RPC runtime and of the process on which the agent's life depends. They stand in a
// table so that a test can have each of them fail; the agent itself never changes it.

#include <windows.h>

#include <rpc.h>

#include <cstdlib>

struct RpcRuntime {
    decltype(&::RpcServerUseProtseqEpW) serverUseProtseqEp = &::RpcServerUseProtseqEpW;
    decltype(&::RpcServerRegisterIf) serverRegisterIf = &::RpcServerRegisterIf;
    decltype(&::RpcServerListen) serverListen = &::RpcServerListen;
    decltype(&::RpcMgmtStopServerListening) mgmtStopServerListening = &::RpcMgmtStopServerListening;
    decltype(&::RpcServerUnregisterIf) serverUnregisterIf = &::RpcServerUnregisterIf;
    decltype(&::RpcStringBindingComposeW) stringBindingCompose = &::RpcStringBindingComposeW;
    decltype(&::RpcBindingFromStringBindingW) bindingFromStringBinding = &::RpcBindingFromStringBindingW;
    decltype(&::RpcStringFreeW) stringFree = &::RpcStringFreeW;
    decltype(&::CreateThread) createThread = &::CreateThread;
    decltype(&::Sleep) sleep = &::Sleep;
    void (*exitProcess)(int status) = &::exit;
};

/// Process-wide; set before the entry function.
extern RpcRuntime g_rpc;

/// Most calls that the runtime runs at once.
constexpr unsigned kMaxCalls = 1234;
