#include "callbacks.h"

#include <windows.h>

#include <rpc.h>

#include <stdexcept>

#include "callback.h"
#include "support/rpc_endpoints.h"
#include "support/rpc_guard.h"

namespace bench {

namespace {

void Bind() {
    RPC_WSTR text = nullptr;
    RPC_STATUS status = RpcStringBindingComposeW(nullptr, RpcText(kProtocolSequence), nullptr,
                                                 RpcText(kCallbackEndpoint), nullptr, &text);
    if (status == RPC_S_OK) {
        status = RpcBindingFromStringBindingW(text, &g_hOutlookBinding);
        RpcStringFreeW(&text);
    }
    if (status != RPC_S_OK) {
        throw std::runtime_error("the binding gives " + std::to_string(status));
    }
}

}  // namespace

Callback BindCallback(const std::wstring& kind) {
    Bind();
    return kind == L"contacts" ? MAPISendBackOneContact : MAPISendBackOneCalenda;
}

void Send(Callback callback, wchar_t* xml) {
    GuardedRpc([callback, xml] { callback(xml); });
}

}  // namespace bench
