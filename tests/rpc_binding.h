#pragma once

// A binding to a pipe, for programs of the tests on either side of the two interfaces.

#include <windows.h>

#include <rpc.h>

#include "support/rpc_endpoints.h"

/// Makes a binding to a pipe of this machine, whether anybody serves it or not. Returns the status of the RPC
/// runtime; the binding is the caller's.
inline RPC_STATUS MakeBinding(const wchar_t* endpoint, RPC_BINDING_HANDLE* binding) {
    RPC_WSTR text = nullptr;
    RPC_STATUS status = RpcStringBindingComposeW(nullptr, RpcText(kProtocolSequence), nullptr,
                                                 RpcText(endpoint), nullptr, &text);
    if (status == RPC_S_OK) {
        status = RpcBindingFromStringBindingW(text, binding);
        RpcStringFreeW(&text);
    }
    return status;
}
