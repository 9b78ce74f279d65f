#include "callbacks.h"

#include <windows.h>

#include <rpc.h>

#include <stdexcept>

#include "callback.h"
#include "support/rpc_endpoints.h"
#include "support/rpc_guard.h"
#include "tests/rpc_binding.h"

namespace bench {

Callback BindCallback(const std::wstring& kind) {
    if (const RPC_STATUS status = MakeBinding(kCallbackEndpoint, &g_hOutlookBinding); status != RPC_S_OK) {
        throw std::runtime_error("the binding gives " + std::to_string(status));
    }
    return kind == L"contacts" ? MAPISendBackOneContact : MAPISendBackOneCalenda;
}

void Send(Callback callback, wchar_t* xml) {
    GuardedRpc([callback, xml] { callback(xml); });
}

}  // namespace bench
