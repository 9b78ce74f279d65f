// The agent's life with an RPC runtime of which each function can be made to fail.

#include "agent/start_up.h"

#include <gtest/gtest.h>

#include <set>

#include "agent/callback_client.h"
#include "agent/rpc_runtime.h"
#include "agent/shutdown.h"
#include "command.h"
#include "support/application.h"
#include "support/mapi_entry_points.h"
#include "support/owners.h"
#include "tests/unit/recorded_log.h"

namespace {

/// What exit() was called with: it ends the process, so it must not return here either.
struct Exited {
    int status;
};

constexpr RPC_STATUS kFailure = 1740;  // RPC_S_DUPLICATE_ENDPOINT
constexpr const wchar_t* kBegin = L"Begin  Rpc Intliaize-----------------------------------";
constexpr const wchar_t* kFinish = L"finish Rpc Intliaize-----------------------------------";
constexpr const wchar_t* kTableBegin = L"#### Load tarnlib32.dll function enter ####";

std::vector<std::string> g_calls;

template<RPC_STATUS status>
RPC_STATUS RPC_ENTRY UseProtseqEp(RPC_WSTR protocol, unsigned calls, RPC_WSTR endpoint, void* security) {
    g_calls.emplace_back("use");
    EXPECT_EQ(CString(reinterpret_cast<wchar_t*>(protocol)), L"ncacn_np");
    EXPECT_EQ(calls, 1234U);
    EXPECT_EQ(CString(reinterpret_cast<wchar_t*>(endpoint)), L"\\pipe\\MapiServer64");
    EXPECT_EQ(security, nullptr);
    return status;
}

template<RPC_STATUS status>
RPC_STATUS RPC_ENTRY RegisterIf(RPC_IF_HANDLE interfaceHandle, UUID* manager, RPC_MGR_EPV* vector) {
    g_calls.emplace_back("register");
    EXPECT_NE(interfaceHandle, nullptr);
    EXPECT_EQ(manager, nullptr);
    EXPECT_EQ(vector, nullptr);
    return status;
}

template<RPC_STATUS status>
RPC_STATUS RPC_ENTRY Listen(unsigned minimumThreads, unsigned calls, unsigned returnAtOnce) {
    g_calls.emplace_back("listen");
    EXPECT_EQ(minimumThreads, 1U);
    EXPECT_EQ(calls, 1234U);
    EXPECT_EQ(returnAtOnce, 0U);
    return status;
}

template<RPC_STATUS status>
RPC_STATUS RPC_ENTRY StopListening(RPC_BINDING_HANDLE binding) {
    g_calls.emplace_back("stop");
    EXPECT_EQ(binding, nullptr);
    return status;
}

template<RPC_STATUS status>
RPC_STATUS RPC_ENTRY UnregisterIf(RPC_IF_HANDLE interfaceHandle, UUID* manager, unsigned wait) {
    g_calls.emplace_back("unregister");
    EXPECT_EQ(interfaceHandle, nullptr);
    EXPECT_EQ(manager, nullptr);
    EXPECT_EQ(wait, 0U);
    return status;
}

template<RPC_STATUS status>
RPC_STATUS RPC_ENTRY Compose(RPC_WSTR object, RPC_WSTR protocol, RPC_WSTR address, RPC_WSTR endpoint,
                             RPC_WSTR options, RPC_WSTR* text) {
    EXPECT_EQ(object, nullptr);
    EXPECT_EQ(CString(reinterpret_cast<wchar_t*>(protocol)), L"ncacn_np");
    EXPECT_EQ(address, nullptr);
    EXPECT_EQ(CString(reinterpret_cast<wchar_t*>(endpoint)), L"\\pipe\\OutlookServer32");
    EXPECT_EQ(options, nullptr);
    return status != RPC_S_OK ? status
                              : RpcStringBindingComposeW(object, protocol, address, endpoint, options, text);
}

template<RPC_STATUS status>
RPC_STATUS RPC_ENTRY FromString(RPC_WSTR /*text*/, RPC_BINDING_HANDLE* /*binding*/) {
    return status;
}

template<RPC_STATUS status>
RPC_STATUS RPC_ENTRY FreeText(RPC_WSTR* text) {
    RpcStringFreeW(text);
    return status;
}

class StartUp : public ::testing::Test {
  protected:
    void SetUp() override {
        g_calls.clear();
        g_rpc.serverUseProtseqEp = &UseProtseqEp<RPC_S_OK>;
        g_rpc.serverRegisterIf = &RegisterIf<RPC_S_OK>;
        g_rpc.serverListen = &Listen<RPC_S_OK>;
        g_rpc.mgmtStopServerListening = &StopListening<RPC_S_OK>;
        g_rpc.serverUnregisterIf = &UnregisterIf<RPC_S_OK>;
        g_rpc.stringBindingCompose = &Compose<RPC_S_OK>;
        g_rpc.sleep = [](DWORD milliseconds) { g_calls.push_back("sleep " + std::to_string(milliseconds)); };
        g_rpc.exitProcess = [](int status) { throw Exited{status}; };
        g_hOutlookBinding = nullptr;
        TakeLog();
    }
    void TearDown() override {
        g_rpc = RpcRuntime();
        TakeLog();
    }

    template<class Action>
    static int ExitStatusOf(Action action) {
        try {
            action();
        } catch (const Exited& exited) {
            return exited.status;
        }
        ADD_FAILURE() << "the process was not ended";
        return 0;
    }
    static int Run() { return RunAgent(GetModuleHandleW(nullptr)); }
};

// The test program runs without a MAPI32.dll beside it: Wine's own would be found, but the run of the tests
// rules it out.
TEST_F(StartUp, WithoutMapiTheAgentListensAllTheSame) {
    EXPECT_EQ(Run(), 0);
    EXPECT_EQ(g_calls, (std::vector<std::string>{"use", "register", "listen"}));
    EXPECT_EQ(TakeLog(), (LogLines{{3, kBegin}, {3, L"unable open MAPI32.dll failed\n"}, {3, kFinish}}));
    EXPECT_EQ(g_hMAPI32, nullptr);
}

TEST_F(StartUp, EveryLineGoesOutUnderOneModuleName) {
    Run();
    EXPECT_EQ(LogModules(), (std::vector<CString>{L"ZebAgentOutlook64"}));
}

TEST_F(StartUp, PipeNameInUseEndsTheProcessWithTheStatus) {
    g_rpc.serverUseProtseqEp = &UseProtseqEp<kFailure>;
    EXPECT_EQ(ExitStatusOf(Run), kFailure);
    EXPECT_EQ(g_calls, (std::vector<std::string>{"use"}));
    EXPECT_EQ(TakeLog(), (LogLines{{3, kBegin}, {3, L"RpcServerUseProtseqEp return =000006cc \r\n"}}));
}

TEST_F(StartUp, InterfaceThatCannotBeRegisteredEndsTheProcess) {
    g_rpc.serverRegisterIf = &RegisterIf<kFailure>;
    EXPECT_EQ(ExitStatusOf(Run), kFailure);
    EXPECT_EQ(g_calls, (std::vector<std::string>{"use", "register"}));
    EXPECT_EQ(TakeLog(), (LogLines{{3, kBegin}, {3, L"RpcServerRegisterIf return =000006cc \r\n"}}));
}

TEST_F(StartUp, FailedListenEndsTheProcess) {
    g_rpc.serverListen = &Listen<kFailure>;
    EXPECT_EQ(ExitStatusOf(Run), kFailure);
    EXPECT_EQ(TakeLog().back(), (LogLine{3, L"RpcServerListen return =000006cc \r\n"}));
}

TEST_F(StartUp, FailedClassLibraryStartUpReturnsOneAndLogsNothing) {
    ::testing::internal::CaptureStdout();
    EXPECT_EQ(RunAgent(nullptr), 1);
    (void)std::fflush(stdout);
    EXPECT_EQ(::testing::internal::GetCapturedStdout(), "Fatal Error: MFC initialization failed\n");
    EXPECT_TRUE(g_calls.empty());
    EXPECT_TRUE(TakeLog().empty());
}

TEST_F(StartUp, MissingFunctionLeavesTheTableShortAndWritesNoSecondLine) {
    g_hMAPI32 = GetModuleHandleW(L"kernel32.dll");
    EXPECT_EQ(LoadMAPIEntryPoints(), 0);
    EXPECT_EQ(TakeLog(), (LogLines{{3, kTableBegin}}));
    EXPECT_EQ(pfnMAPIInitialize, nullptr);
    g_hMAPI32 = nullptr;
}

TEST_F(StartUp, BindingIsMadeWithoutContactingTheDesktopProgram) {
    EXPECT_EQ(BindOutlookServer(), 1);
    EXPECT_NE(g_hOutlookBinding, nullptr);
    EXPECT_TRUE(TakeLog().empty());
}

TEST_F(StartUp, SecondBindingReplacesTheFirstWhichStaysOpen) {
    EXPECT_EQ(BindOutlookServer(), 1);
    RPC_BINDING_HANDLE first = g_hOutlookBinding;
    EXPECT_EQ(BindOutlookServer(), 1);
    EXPECT_NE(g_hOutlookBinding, first);
    // A handle that had been freed could not be reset.
    EXPECT_EQ(RpcBindingReset(first), RPC_S_OK);
}

TEST_F(StartUp, EachLogonLeavesABindingOfItsOwnOpen) {
    constexpr std::size_t kLogons = 7;
    std::set<RPC_BINDING_HANDLE> bindings;
    for (std::size_t i = 0; i < kLogons; ++i) {
        wchar_t profile[] = L"Work";
        long status = 77;
        MAPILogOn(profile, &status);
        MAPILogOff();
        bindings.insert(g_hOutlookBinding);
    }
    EXPECT_EQ(bindings.size(), kLogons);
    for (const RPC_BINDING_HANDLE binding : bindings) {
        EXPECT_EQ(RpcBindingReset(binding), RPC_S_OK);
    }
}

TEST_F(StartUp, BindingTextThatCannotBeComposedEndsTheProcess) {
    g_rpc.stringBindingCompose = &Compose<kFailure>;
    EXPECT_EQ(ExitStatusOf(BindOutlookServer), kFailure);
    EXPECT_EQ(TakeLog(), (LogLines{{3, L"RpcStringBindingCompose return =000006cc \r\n"}}));
}

TEST_F(StartUp, BindingThatCannotBeMadeFails) {
    g_rpc.bindingFromStringBinding = &FromString<kFailure>;
    EXPECT_EQ(BindOutlookServer(), 0);
    EXPECT_EQ(g_hOutlookBinding, nullptr);
    EXPECT_EQ(TakeLog(), (LogLines{{3, L"RpcBindingFromStringBinding return =000006cc \r\n"}}));
}

TEST_F(StartUp, BindingTextThatCannotBeFreedFails) {
    g_rpc.stringFree = &FreeText<kFailure>;
    EXPECT_EQ(BindOutlookServer(), 0);
    EXPECT_EQ(TakeLog(), (LogLines{{3, L"faild to bind RpcStringFree----------------------------"}}));
}

TEST_F(StartUp, StopSequenceStopsListeningThenUnregisters) {
    EXPECT_EQ(ShutdownThreadProc(nullptr), 0U);
    EXPECT_EQ(g_calls, (std::vector<std::string>{"sleep 500", "stop", "unregister"}));
    EXPECT_EQ(TakeLog(), (LogLines{{1, L"Calling RpcMgmtStopServerListening\n"},
                                   {1, L"RpcMgmtStopServerListening returned: 0x%x\n"},
                                   {1, L"Calling RpcServerUnregisterIf\n"},
                                   {1, L"RpcServerUnregisterIf returned 0x%x\n"}}));
}

TEST_F(StartUp, ShutdownRunsTheStopSequenceOnAThreadWhoseHandleStaysOpen) {
    static HANDLE kept = nullptr;
    g_rpc.createThread = [](LPSECURITY_ATTRIBUTES attributes, SIZE_T stack, LPTHREAD_START_ROUTINE start,
                            LPVOID argument, DWORD flags, LPDWORD id) -> HANDLE {
        EXPECT_EQ(attributes, nullptr);
        EXPECT_EQ(stack, 0U);
        EXPECT_EQ(start, &ShutdownThreadProc);
        EXPECT_EQ(argument, nullptr);
        EXPECT_EQ(flags, 0U);
        kept = CreateThread(attributes, stack, start, argument, flags, id);
        return kept;
    };
    RequestShutdown();
    ASSERT_EQ(WaitForSingleObject(kept, INFINITE), WAIT_OBJECT_0);
    EXPECT_EQ(g_calls, (std::vector<std::string>{"sleep 500", "stop", "unregister"}));
    const Handle owned(kept);
}

TEST_F(StartUp, FailedStopEndsTheProcess) {
    g_rpc.mgmtStopServerListening = &StopListening<kFailure>;
    EXPECT_EQ(ExitStatusOf([] { ShutdownThreadProc(nullptr); }), kFailure);
    EXPECT_EQ(g_calls, (std::vector<std::string>{"sleep 500", "stop"}));
    EXPECT_EQ(TakeLog().size(), 2U);
}

TEST_F(StartUp, FailedUnregisterEndsTheProcess) {
    g_rpc.serverUnregisterIf = &UnregisterIf<kFailure>;
    EXPECT_EQ(ExitStatusOf([] { ShutdownThreadProc(nullptr); }), kFailure);
    EXPECT_EQ(TakeLog().size(), 4U);
}

}  // namespace
