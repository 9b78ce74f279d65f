#include "agent/start_up.h"

#include <cstdio>

#include "agent/callback_client.h"
#include "agent/rpc_runtime.h"
#include "command.h"
#include "support/application.h"
#include "support/log.h"
#include "support/log_file.h"
#include "support/mapi_entry_points.h"
#include "support/rpc_endpoints.h"
#include "support/settings.h"
#include "support/user_folders.h"

HMODULE g_hMAPI32 = nullptr;

namespace {

constexpr int kDefaultLogLevel = 4;

/// Ends the process with a status of the RPC runtime unless it is 0. The format takes the status.
void RequireOk(RPC_STATUS status, const wchar_t* format) {
    if (status != RPC_S_OK) {
        Log(kLogFailure, format, status);
        g_rpc.exitProcess(static_cast<int>(status));
    }
}

}  // namespace

int RunAgent(HINSTANCE instance) {
    if (!AfxWinInit(instance, nullptr, GetCommandLineW(), 0)) {
        (void)std::fputs("Fatal Error: MFC initialization failed\n", stdout);
        return 1;
    }
    Log(kLogFailure, L"Begin  Rpc Intliaize-----------------------------------");
    RequireOk(
        g_rpc.serverUseProtseqEp(RpcText(kProtocolSequence), kMaxCalls, RpcText(kCommandEndpoint), nullptr),
        L"RpcServerUseProtseqEp return =%08x \r\n");
    RequireOk(g_rpc.serverRegisterIf(ZebAgentCommand_v1_0_s_ifspec, nullptr, nullptr),
              L"RpcServerRegisterIf return =%08x \r\n");
    // Without MAPI the agent listens all the same, and its logons fail.
    InitAgent();
    Log(kLogFailure, L"finish Rpc Intliaize-----------------------------------");
    RequireOk(g_rpc.serverListen(1, kMaxCalls, FALSE), L"RpcServerListen return =%08x \r\n");
    return 0;
}

int InitAgent() {
    g_hOutlookBinding = nullptr;
    CLogFile::Init(L"ZebAgentOutlook64", false, kDefaultLogLevel);
    g_hMAPI32 = LoadLibraryA("MAPI32.dll");
    if (g_hMAPI32 == nullptr) {
        Log(kLogFailure, L"unable open MAPI32.dll failed\n");
        return 0;
    }
    if (LoadMAPIEntryPoints() == 0) {
        Log(kLogFailure, L"LoadLibrary MAPI32.dll failed\n");
        return 0;
    }
    LoadSettings();
    PrepareDataFolder();
    return 1;
}

int LoadMAPIEntryPoints() {
    // The lines name another library; whoever reads the log looks for them.
    Log(kLogFailure, L"#### Load tarnlib32.dll function enter ####");
    if (FillMAPIEntryPoints(g_hMAPI32) == 0) {
        return 0;
    }
    Log(kLogFailure, L"#### Load tarnlib32.dll function return TRUE ####");
    return 1;
}
