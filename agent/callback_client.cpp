#include "agent/callback_client.h"

#include "agent/rpc_runtime.h"
#include "callback.h"
#include "mapi/send_back.h"
#include "support/log.h"
#include "support/rpc_endpoints.h"
#include "support/rpc_guard.h"

namespace {

/// Calls one of the procedures that take a text.
void SendBack(void (*procedure)(wchar_t*), const CString& xml) {
    if (g_hOutlookBinding == nullptr) {
        // What the runtime raises then. Wine's returns instead, and leaves a handler of exceptions behind on
        // the thread that is none any more: the next exception there would end the process.
        throw RpcFailure(RPC_S_INVALID_BINDING);
    }
    auto* const text = const_cast<wchar_t*>(xml.c_str());
    GuardedRpc([procedure, text] { procedure(text); });
}

}  // namespace

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
    SendBack(&MAPISendBackOneContact, xml);
}

void SendBackOneCalendar(const CString& xml) {
    SendBack(&MAPISendBackOneCalenda, xml);
}
