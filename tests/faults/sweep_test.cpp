// Every call, allocation and platform call of every remote operation fails in turn, once and from then on:
// the operation ends as documented, nothing is left alive, the store holds the old or the new, and the same
// operation succeeds right behind it.

#include <algorithm>
#include <iostream>
#include <optional>
#include <span>
#include <sstream>
#include <string_view>
#include <utility>

#include "localstore/recorder.h"
#include "tests/faults/clean_logs.h"
#include "tests/faults/fault_fixture.h"
#include "tests/faults/living.h"
#include "tests/faults/log_rules.h"
#include "tests/faults/platform_faults.h"
#include "tests/faults/preparations.h"
#include "tests/unit/localstore/scarce_memory.h"
#include "tests/unit/text_printer.h"

namespace {

namespace recorder = localstore::recorder;

/// Runs until what is made once is made.
constexpr int kRunsToSettle = 3;
/// A buffer that is left by design is one allocation, and at most two more are the store's note of it.
constexpr long kPerBuffer = 3;

/// A kind of fault and the codes that a failed call gives.
struct FaultKind {
    const char* name;
    void (*arm)(std::size_t n, bool forever, std::uint32_t code);
    bool (*disarm)();
    std::vector<std::uint32_t> codes;
    /// Documents are made and read with such calls.
    bool reachesDocuments;
    /// Without a full sweep only every so many-th point is failed.
    std::size_t quickStep;
};

template<FaultPoint& Point>
FaultKind PlatformKind(const char* name, std::vector<std::uint32_t> codes, bool reachesDocuments,
                       std::size_t quickStep) {
    return {name,
            [](std::size_t n, bool forever, std::uint32_t code) { Point.Arm(n, forever, code); },
            [] { return Point.Disarm(); },
            std::move(codes),
            reachesDocuments,
            quickStep};
}

void ArmStore(std::size_t n, bool forever, std::uint32_t code) {
    recorder::FailCall(n, forever, static_cast<HRESULT>(code));
}

bool DisarmStore() {
    const bool failed = recorder::HasFailed();
    recorder::ClearFailures();
    return failed;
}

std::optional<localstore_test::ScarceMemory> g_memory;

void ArmMemory(std::size_t n, bool forever, std::uint32_t /*code*/) {
    g_memory.emplace(n, forever);
}

bool DisarmMemory() {
    const bool failed = g_memory->HasFailed();
    g_memory.reset();
    return failed;
}

std::vector<FaultKind> Kinds() {
    const auto code = [](HRESULT result) { return static_cast<std::uint32_t>(result); };
    return {
        {"Store",
         ArmStore,
         DisarmStore,
         {code(E_FAIL), code(MAPI_E_NOT_FOUND), code(MAPI_E_NO_ACCESS), code(MAPI_E_NETWORK_ERROR),
          code(MAPI_E_NOT_ENOUGH_MEMORY), code(MAPI_W_ERRORS_RETURNED), code(S_OK)},
         false,
         3},
        {"Memory", ArmMemory, DisarmMemory, {0}, true, 23},
        PlatformKind<g_comFaults>("Com", {code(E_FAIL), code(E_OUTOFMEMORY), code(S_OK)}, true, 23),
        PlatformKind<g_fileFaults>("Files", {ERROR_ACCESS_DENIED, ERROR_DISK_FULL}, false, 3),
        PlatformKind<g_registryFaults>("Registry", {ERROR_ACCESS_DENIED}, false, 3),
    };
}

void PrintTo(const FaultKind& kind, std::ostream* out) {
    *out << kind.name;
}

class Faults : public FaultTest, public testing::WithParamInterface<std::tuple<FaultKind, Operation>> {
  protected:
    static void SetUpTestSuite() {
        ASSERT_EQ(CoInitialize(nullptr), S_OK);
        static const int replaced = InstallPlatformFaults();
        ASSERT_GT(replaced, 0);
        static const bool counted = PrepareToCountLiving();
        ASSERT_TRUE(counted);
    }
    void SetUp() override {
        FaultTest::SetUp();
        NumberLogLines(recorder::CallCount);
    }
    void TearDown() override {
        NumberLogLines(nullptr);
        m_expectedBuffers = m_buffersLeft;
        FaultTest::TearDown();
    }
    static const FaultKind& Kind() { return std::get<0>(GetParam()); }
    static const Operation& Op() { return std::get<1>(GetParam()); }

    /// Runs the operation, which is prepared, with the n-th call failing; false if there was no such call.
    bool RunWithFault(std::size_t n, bool forever, std::uint32_t code) {
        TakeLog();
        const long objects = recorder::LiveObjects();
        const long buffers = recorder::LiveBuffers();
        recorder::ClearCalls();
        recorder::Record(Kind().arm == ArmStore);
        Kind().arm(n, forever, code);
        Outcome outcome;
        outcome.result = Op().run(State());
        const bool failed = Kind().disarm();
        recorder::Record(false);
        TakeLogInto(outcome);
        outcome.complete = !failed;
        outcome.forever = forever;
        if (failed) {
            Classify(outcome, n, code);
        } else {
            ExpectCleanLog(Op(), State(), outcome.log);
        }
        m_losses += Count([&] { Op().check(State(), outcome); });
        ExpectLog(outcome.log, outcome.result, outcome.memoryFailed);
        if (outcome.storeFailed) {
            m_rules->ExpectStoreFailure(outcome, n, code);
        }
        if (!Op().changesSession) {
            m_leaks += Count([&] {
                EXPECT_GE(recorder::LiveObjects(), objects);
                EXPECT_LE(recorder::LiveObjects(), objects + Op().mostObjectsLeft);
                CountBuffersLeft(recorder::LiveBuffers() - buffers);
            });
        }
        return failed;
    }
    /// Says what it was that failed, from the n-th call on.
    static void Classify(Outcome& outcome, std::size_t n, std::uint32_t code) {
        const bool lied = code == static_cast<std::uint32_t>(S_OK);
        outcome.documentsFailed = Kind().reachesDocuments;
        outcome.storeFailed = Kind().arm == ArmStore;
        outcome.storeLied = outcome.storeFailed && lied;
        outcome.storeWarned =
            outcome.storeFailed && code == static_cast<std::uint32_t>(MAPI_W_ERRORS_RETURNED);
        outcome.fileFailed = Kind().name == std::string_view("Files");
        outcome.memoryFailed = Kind().arm == ArmMemory;
        outcome.serviceLied = outcome.documentsFailed && !outcome.memoryFailed && lied;
        if (outcome.storeFailed) {
            ClassifyCalls(outcome, n);
        }
    }
    static void ClassifyCalls(Outcome& outcome, std::size_t n) {
        const std::vector<recorder::Call> calls = recorder::Calls();
        ASSERT_LE(n, calls.size());
        const auto failed = std::span(calls).subspan(n - 1, outcome.forever ? std::dynamic_extent : 1);
        outcome.commitFailed = std::ranges::any_of(failed, [](const recorder::Call& call) {
            return call.method == "IMessage::SaveChanges" || call.method == "IMAPIFolder::DeleteMessages";
        });
        if (!outcome.forever) {
            outcome.failedCall = failed.front().Text();
        }
    }
    /// Runs expectations; 1 if one of them was not met.
    template<class Expectations>
    static std::size_t Count(const Expectations& expectations) {
        const bool before = HasFailure();
        expectations();
        return !before && HasFailure() ? 1 : 0;
    }
    static void TakeLogInto(Outcome& outcome) {
        outcome.callsBefore = LogNumbers();
        outcome.log = TakeLog();
    }
    /// Runs it once more without any fault.
    Outcome RunClean() {
        Op().prepare(State());
        TakeLog();
        const long buffers = recorder::LiveBuffers();
        recorder::ClearCalls();
        Outcome outcome;
        outcome.result = Op().run(State());
        outcome.complete = true;
        TakeLogInto(outcome);
        EXPECT_EQ(outcome.result, Op().complete);
        ExpectCleanLog(Op(), State(), outcome.log);
        m_losses += Count([&] { Op().check(State(), outcome); });
        if (m_rules) {
            ExpectLog(outcome.log, outcome.result, false);
        }
        if (!Op().changesSession) {
            CountBuffersLeft(recorder::LiveBuffers() - buffers);
        }
        return outcome;
    }
    void CountBuffersLeft(long left) {
        EXPECT_GE(left, 0);
        EXPECT_LE(left, Op().mostBuffersLeft);
        m_buffersLeft += left;
    }
    /// A line whose text has to be put together needs memory, and is lost without.
    void ExpectLog(const LogLines& log, int result, bool mayLack) {
        const std::optional<LogLine> stray = m_rules->Stray(log);
        EXPECT_FALSE(stray) << PrintToString(*stray);
        ExpectOutcomeLine(Op(), log, Op().HasSucceeded(State(), result), mayLack);
        if (!mayLack) {
            ASSERT_FALSE(log.empty());
            EXPECT_TRUE(log.front().text.starts_with(Line(Op().firstLine))) << PrintToString(log.front());
            EXPECT_TRUE(log.back().text.starts_with(Line(Op().lastLine))) << PrintToString(log.back());
        }
    }
    static CString Line(const wchar_t* text) { return CString::Format(L"CMAPIObject::%s", text); }
    static std::string PrintToString(const LogLine& line) { return testing::PrintToString(line); }

    /// Runs it until everything that is made once is there, a trace of the test framework among it, and keeps
    /// what is compared with later.
    void Settle() {
        {
            SCOPED_TRACE(testing::Message() << "a first run, so that all is there that is made once");
            m_rules.emplace(Op(), RunClean());
            Op().prepare(State());
            RunWithFault(1, false, Kind().codes.front());
        }
        Remember(LivingBehindCleanRuns());
    }
    /// Keeps what lives, and how many logons made ready what ran until then.
    void Remember(const Living& living) {
        m_living = living;
        m_logonsMade = State().logonsMade;
    }
    /// What lives behind runs that begin with no message kept by the store.
    Living LivingBehindCleanRuns() {
        recorder::SetRoot(m_root);
        for (int i = 0; i < kRunsToSettle; ++i) {
            RunClean();
        }
        Op().prepare(State());
        return WhatLives();
    }
    /// Sweeps one code; returns the number of runs in which a call failed.
    std::size_t Sweep(std::uint32_t code, bool forever) {
        std::size_t runs = 0;
        for (std::size_t n = 1; !HasFailure(); n += IsFullSweep() ? 1 : Kind().quickStep, ++runs) {
            bool failed = false;
            {
                SCOPED_TRACE(Where(n, forever, code));
                failed = RunWithFault(n, forever, code);
                RunClean();
                Op().prepare(State());
            }
            // Behind the trace, which lives on the heap too.
            if (!HasFailure()) {
                m_leaks += Count([&] { ExpectNothingLeft(n, forever, code); });
            }
            if (!failed) {
                break;
            }
        }
        return runs;
    }
    static std::string Where(std::size_t n, bool forever, std::uint32_t code) {
        std::ostringstream text;
        text << "call " << n << (forever ? " and all behind it" : "") << " with 0x" << std::hex << code;
        return text.str();
    }
    /// Of a run that failed and a clean one nothing is left but what each may leave by design.
    void ExpectNothingLeft(std::size_t n, bool forever, std::uint32_t code) {
        Living now = WhatLives();
        long runs = 2;
        if (!IsWithin(now, runs)) {
            // It may be a message that the store keeps: a write whose name was lost makes one of another
            // name.
            now = LivingBehindCleanRuns();
            runs += kRunsToSettle;
        }
        if (!IsWithin(now, runs)) {
            // Or what the platform makes once. Of the same failure it leaves no more then.
            Remember(now);
            RunWithFault(n, forever, code);
            now = LivingBehindCleanRuns();
            runs = 1 + kRunsToSettle;
        }
        EXPECT_TRUE(IsWithin(now, runs))
            << Where(n, forever, code) << ": " << PrintToString(m_living) << " became " << PrintToString(now);
        Remember(now);
    }
    /// Whether no more lives than before and what some runs may leave by design, and the logons that made
    /// them ready: a logon over a session that fails ends it, so that the next one is prepared by another.
    bool IsWithin(const Living& now, long runs) {
        const long handles = runs * Op().mostHandlesLeft + (State().logonsMade - m_logonsMade) * kZoneKeys;
        return now.handles <= m_living.handles + handles &&
               now.allocations <= m_living.allocations + runs * kPerBuffer * Op().mostBuffersLeft &&
               (Op().savesDocument || now.blocks <= m_living.blocks);
    }
    static std::string PrintToString(const Living& living) {
        std::ostringstream text;
        text << living.allocations << " allocations, " << living.handles << " handles, " << living.blocks
             << " blocks";
        return text.str();
    }

    std::size_t m_leaks = 0;
    std::size_t m_losses = 0;

  private:
    long m_buffersLeft = 0;
    std::optional<LogRules> m_rules;
    Living m_living{};
    long m_logonsMade = 0;
};

TEST_P(Faults, EndAsDocumentedAndLoseNothing) {
    std::size_t points = 0;
    std::size_t runs = 0;
    Settle();
    for (const std::uint32_t code : Kind().codes) {
        for (const bool forever : {false, true}) {
            const std::size_t swept = Sweep(code, forever);
            points = std::max(points, swept);
            runs += swept;
        }
        if (HasFailure() || !IsFullSweep()) {
            break;
        }
    }
    // For the table of docs/testing.md.
    std::cout << "FAULTS: | " << Op().name << " | " << Kind().name << " | " << points << " | " << runs
              << " | " << m_leaks << " | " << m_losses << " |\n";
}

INSTANTIATE_TEST_SUITE_P(Of, Faults,
                         testing::Combine(testing::ValuesIn(Kinds()), testing::ValuesIn(Operations())),
                         [](const testing::TestParamInfo<std::tuple<FaultKind, Operation>>& sweep) {
                             return std::string(std::get<1>(sweep.param).name) + "In" +
                                    std::get<0>(sweep.param).name;
                         });

}  // namespace
