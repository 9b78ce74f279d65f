#include "desktop/callback_service.h"

#include <mutex>

#include "desktop/failure.h"
#include "support/rpc_endpoints.h"

extern "C" {
#include "callback.h"
}

namespace {

constexpr unsigned kMaxCalls = RPC_C_LISTEN_MAX_CALLS_DEFAULT;

/// Guards the receiver and what it does.
std::mutex g_receiverMutex;
/// Who takes the documents; null while no read runs.
ItemReceiver* g_receiver = nullptr;

void SetReceiver(ItemReceiver* receiver) {
    const std::lock_guard lock(g_receiverMutex);
    g_receiver = receiver;
}

/// One read runs at a time, of one kind, so both kinds go to the one receiver.
void Receive(const wchar_t* xml) {
    const std::lock_guard lock(g_receiverMutex);
    // A write of an appointment ends with an empty text, which is no item.
    if (g_receiver != nullptr && *xml != L'\0') {
        g_receiver->Receive(xml);
    }
}

void RequireOk(RPC_STATUS status) {
    if (status != RPC_S_OK) {
        throw Failure(
            ExitCode::kBusy,
            CString::Format(L"%s cannot be served (RPC status %ld); is another desktop program running?",
                            kCallbackEndpoint, status));
    }
}

}  // namespace

// The remote procedures of the callback interface.

void MAPIServerShutdown() {
    // The notice that the agent is going away. Whoever waits for the agent sees its pipe close.
}

void MAPISendBackOneContact(wchar_t* xml) {
    Receive(xml);
}

void MAPISendBackOneCalenda(wchar_t* xml) {
    Receive(xml);
}

CallbackService::CallbackService() {
    RequireOk(
        RpcServerUseProtseqEpW(RpcText(kProtocolSequence), kMaxCalls, RpcText(kCallbackEndpoint), nullptr));
    RequireOk(RpcServerRegisterIf(ZebAgentCallback_v1_0_s_ifspec, nullptr, nullptr));
    RequireOk(RpcServerListen(1, kMaxCalls, TRUE));
}

Reception::Reception(ItemReceiver& receiver) {
    SetReceiver(&receiver);
}

Reception::~Reception() {
    SetReceiver(nullptr);
}
