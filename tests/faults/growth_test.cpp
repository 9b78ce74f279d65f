// Operations that come again and again leave nothing behind: what is allocated, and what is counted by the
// store, is the same after each of them.

#include "localstore/recorder.h"
#include "tests/faults/fault_fixture.h"
#include "tests/unit/localstore/scarce_memory.h"

namespace {

namespace recorder = localstore::recorder;

/// Runs until caches hold what they hold, and then those that are compared.
constexpr int kRunsToSettle = 3;
constexpr int kRuns = 10;
/// A buffer that is left by design is one allocation, and at most two more are the store's note of it.
constexpr std::size_t kPerBuffer = 3;

class Growth : public FaultTest, public testing::WithParamInterface<Operation> {
  protected:
    void TearDown() override {
        m_expectedBuffers = m_buffersLeft;
        FaultTest::TearDown();
    }
    /// One run; returns the allocations that live behind it.
    std::size_t Run() {
        const long buffers = recorder::LiveBuffers();
        GetParam().prepare(State());
        EXPECT_EQ(GetParam().run(State()), GetParam().complete);
        TakeSent();
        TakeSentCalendars();
        TakeLog();
        if (!GetParam().changesSession) {
            m_buffersLeft += recorder::LiveBuffers() - buffers;
        }
        return localstore_test::LiveAllocations();
    }

  private:
    long m_buffersLeft = 0;
};

TEST_P(Growth, NothingIsLeftBehind) {
    std::size_t before = 0;
    for (int i = 0; i < kRunsToSettle; ++i) {
        before = Run();
    }
    for (int i = 0; i < kRuns; ++i) {
        const std::size_t now = Run();
        EXPECT_GE(now, before) << "run " << i;
        EXPECT_LE(now, before + kPerBuffer * static_cast<std::size_t>(GetParam().mostBuffersLeft))
            << "run " << i;
        before = now;
    }
}

INSTANTIATE_TEST_SUITE_P(Of, Growth, testing::ValuesIn(Operations()),
                         [](const testing::TestParamInfo<Operation>& operation) {
                             return std::string(operation.param.name);
                         });

}  // namespace
