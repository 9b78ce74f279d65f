// Every call of every remote operation hangs in turn while another client says Stop and logs on: nobody waits
// for the call that hangs, and once it returns its operation ends, nothing is left alive, the store is whole
// and the agent serves the next call.

#include <algorithm>
#include <atomic>
#include <thread>

#include "localstore/recorder.h"
#include "tests/faults/clean_logs.h"
#include "tests/faults/fault_fixture.h"

namespace {

namespace recorder = localstore::recorder;

/// Without a full sweep only every so many-th call is held.
constexpr std::size_t kQuickStep = 5;

/// The others lie in its sub-folder.
constexpr int kItemsOfUpperFolder = 2;

class Hang : public FaultTest, public testing::WithParamInterface<Operation> {
  protected:
    void SetUp() override {
        FaultTest::SetUp();
        m_buffers = recorder::LiveBuffers();
    }
    void TearDown() override {
        // What is left by design; all else is counted as a leak.
        m_expectedBuffers = recorder::LiveBuffers() - m_buffers;
        EXPECT_LE(m_expectedBuffers, m_runs * GetParam().mostBuffersLeft);
        FaultTest::TearDown();
    }

    /// Runs the operation on a thread of its own with its n-th call held meanwhile; false if there was none.
    bool RunWithHang(std::size_t n) {
        GetParam().prepare(State());
        TakeLog();
        std::atomic<int> sent = 0;
        OnSend([&] { ++sent; });
        std::atomic<bool> ended = false;
        Outcome outcome;
        outcome.foldersReplaced = true;
        recorder::HoldCall(n);
        std::thread client([&] {
            CoInitialize(nullptr);
            outcome.result = GetParam().run(State());
            CoUninitialize();
            ended = true;
        });
        while (!recorder::IsHolding() && !ended) {
            Sleep(1);
        }
        const bool held = recorder::IsHolding();
        if (held) {
            CallMeanwhile();
        }
        recorder::ReleaseCall();
        client.join();
        OnSend({});
        outcome.log = TakeLog();
        if (held && GetParam().stoppedWalk != nullptr) {
            ExpectStopped(outcome, sent);
        }
        ExpectOutcome(outcome);
        return held;
    }

    /// Runs it with no call that hangs.
    void RunClean() {
        GetParam().prepare(State());
        TakeLog();
        Outcome clean;
        clean.result = GetParam().run(State());
        clean.complete = true;
        clean.log = TakeLog();
        EXPECT_EQ(clean.result, GetParam().complete);
        ExpectCleanLog(GetParam(), State(), clean.log);
        GetParam().check(State(), clean);
        ++m_runs;
    }

  private:
    static void CallMeanwhile() {
        g_MAPIObject.Stop();
        EXPECT_EQ(g_MAPIObject.MAPILogOn(0, L"Work"), 1);
    }
    /// A full read that Stop reached has failed, unless there was no item left to stop at: all had arrived,
    /// or all of the upper folder, behind which a stopped read does not ask for sub-folders.
    static void ExpectStopped(const Outcome& outcome, int sent) {
        const CString line =
            CString::Format(L"CMAPIObject::%s - lpContainer->GetHierarchyTable", GetParam().stoppedWalk);
        const bool askedForSubFolders = std::ranges::any_of(
            outcome.log, [&](const LogLine& entry) { return entry.text.starts_with(line); });
        const bool hadNoneLeft =
            sent == StoreState::kItems || (sent == kItemsOfUpperFolder && !askedForSubFolders);
        EXPECT_EQ(outcome.result, hadNoneLeft ? 0 : 1) << sent << " sent";
    }
    /// The session is the second client's now, which serves, or none if the operation ended it.
    void ExpectOutcome(const Outcome& outcome) {
        if (!GetParam().changesSession) {
            EXPECT_EQ(g_MAPIObject.SetContactFolder(L""), 0);
            EXPECT_EQ(static_cast<std::size_t>(g_MAPIObject.GetContactCount()),
                      State().MessagesIn(L"Contacts"));
            GetParam().check(State(), outcome);
        }
        TakeSent();
        TakeSentCalendars();
        g_MAPIObject.MAPILogOff();
        EXPECT_EQ(recorder::LiveObjects(), ObjectsWithoutSession());
        RunClean();
        ++m_runs;
    }

    long m_buffers = 0;
    long m_runs = 0;
};

TEST_P(Hang, EndsOnceTheCallReturnsAndKeepsNobodyWaiting) {
    RunClean();
    std::size_t n = 1;
    for (; !HasFailure(); n += IsFullSweep() ? 1 : kQuickStep) {
        SCOPED_TRACE(testing::Message() << "call " << n);
        if (!RunWithHang(n)) {
            break;
        }
    }
    EXPECT_GT(n, 1U);
}

INSTANTIATE_TEST_SUITE_P(Of, Hang, testing::ValuesIn(Operations()),
                         [](const testing::TestParamInfo<Operation>& operation) {
                             return std::string(operation.param.name);
                         });

}  // namespace
