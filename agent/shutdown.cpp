#include "agent/shutdown.h"

#include "agent/callback_client.h"
#include "agent/rpc_runtime.h"
#include "support/log.h"

namespace {

constexpr DWORD kDelayMilliseconds = 500;

}  // namespace

void RequestShutdown() {
    // The handle stays open on purpose: nobody waits for the thread, and the process ends with it.
    g_rpc.createThread(nullptr, 0, ShutdownThreadProc, nullptr, 0, nullptr);
}

DWORD WINAPI ShutdownThreadProc(void* /*unused*/) {
    g_rpc.sleep(kDelayMilliseconds);
    if (g_hOutlookBinding != nullptr) {
        // Unguarded: a desktop program that is gone by now ends this process here.
        SendServerShutdown();
    }
    // The two "returned" lines go out as they are, without a value.
    Log(kLogTrace, L"Calling RpcMgmtStopServerListening\n");
    RPC_STATUS status = g_rpc.mgmtStopServerListening(nullptr);
    Log(kLogTrace, L"RpcMgmtStopServerListening returned: 0x%x\n");
    if (status != RPC_S_OK) {
        g_rpc.exitProcess(static_cast<int>(status));
    }
    // From here on the entry function may end the process at any time.
    Log(kLogTrace, L"Calling RpcServerUnregisterIf\n");
    status = g_rpc.serverUnregisterIf(nullptr, nullptr, FALSE);
    Log(kLogTrace, L"RpcServerUnregisterIf returned 0x%x\n");
    if (status != RPC_S_OK) {
        g_rpc.exitProcess(static_cast<int>(status));
    }
    return 0;
}
