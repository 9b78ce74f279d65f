#include "support/rpc_guard.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <rpc.h>

#include "tests/rpc_binding.h"

extern "C" {
#include "command.h"
}

namespace {

unsigned long StatusOf(const auto& call) {
    try {
        GuardedRpc(call);
    } catch (const RpcFailure& failure) {
        return failure.Status();
    }
    return 0;
}

TEST(RpcGuard, LetsACallThrough) {
    int calls = 0;
    EXPECT_EQ(StatusOf([&] { ++calls; }), 0U);
    EXPECT_EQ(calls, 1);
}

TEST(RpcGuard, HandsOnTheStatusOfARealCallWithoutAServer) {
    ASSERT_EQ(MakeBinding(L"\\pipe\\ZebNobodyListensHere", &g_hAgentBinding), RPC_S_OK);
    // Twice, for the first failure must leave everything as it was.
    EXPECT_EQ(StatusOf([] { Stop(); }), static_cast<unsigned long>(RPC_S_SERVER_UNAVAILABLE));
    long status = 7;
    wchar_t profile[] = L"x";
    EXPECT_EQ(StatusOf([&] { MAPILogOn(profile, &status); }),
              static_cast<unsigned long>(RPC_S_SERVER_UNAVAILABLE));
    EXPECT_EQ(status, 7);
    RpcBindingFree(&g_hAgentBinding);
}

TEST(RpcGuard, CatchesAFaultThatTheServerReported) {
    EXPECT_EQ(StatusOf([] { RpcRaiseException(static_cast<RPC_STATUS>(0xC0000005)); }), 0xC0000005U);
}

TEST(RpcGuard, WorksInsideItself) {
    unsigned long inner = 0;
    const unsigned long outer = StatusOf([&] {
        inner = StatusOf([] { RpcRaiseException(RPC_S_CALL_FAILED); });
        RpcRaiseException(RPC_S_CALL_FAILED_DNE);
    });
    EXPECT_EQ(inner, static_cast<unsigned long>(RPC_S_CALL_FAILED));
    EXPECT_EQ(outer, static_cast<unsigned long>(RPC_S_CALL_FAILED_DNE));
}

TEST(RpcGuardDeathTest, LeavesAFaultOfTheProgramAlone) {
    // The program's own header, which cannot be written to. Not null, which a build that checks itself would
    // see before the processor does.
    auto* const fixed = reinterpret_cast<volatile int*>(GetModuleHandleW(nullptr));
    EXPECT_DEATH(StatusOf([&] { *fixed = 1; }), "");
}

}  // namespace
