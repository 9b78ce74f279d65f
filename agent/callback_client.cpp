#include "agent/callback_client.h"

#include "agent/rpc_runtime.h"
#include "callback.h"
#include "mapi/send_back.h"
#include "support/log.h"
#include "support/rpc_endpoints.h"
#include "support/rpc_guard.h"

int BindOutlookServer() {
    RPC_WSTR text = nullptr;
    RPC_STATUS status = g_rpc.stringBindingCompose(nullptr, RpcText(kProtocolSequence), nullptr,
                                                   RpcText(kCallbackEndpoint), nullptr, &text);
    if (status != RPC_S_OK) {
        Log(kLogFailure, L"RpcStringBindingCompose return =%08x \r\n", status);
        g_rpc.exitProcess(static_cast<int>(status));
    }
    // An earlier binding is not freed: every logon of a process leaves one open.
    const RPC_STATUS bound = g_rpc.bindingFromStringBinding(text, &g_hOutlookBinding);
    if (bound != RPC_S_OK) {
        Log(kLogFailure, L"RpcBindingFromStringBinding return =%08x \r\n", bound);
    }
    status = g_rpc.stringFree(&text);
    if (bound != RPC_S_OK) {
        return 0;
    }
    if (status != RPC_S_OK) {
        Log(kLogFailure, L"faild to bind RpcStringFree----------------------------");
        return 0;
    }
    return 1;
}

void SendServerShutdown() {
    MAPIServerShutdown();
}

void SendBackOneContact(const CString& xml) {
    auto* const text = const_cast<wchar_t*>(xml.c_str());
    GuardedRpc([text] { MAPISendBackOneContact(text); });
}

void SendBackOneCalendar(const CString& xml) {
    auto* const text = const_cast<wchar_t*>(xml.c_str());
    GuardedRpc([text] { MAPISendBackOneCalenda(text); });
}
