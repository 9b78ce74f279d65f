// Every call, allocation and platform call of every remote operation fails in turn, once and from then on:
// the operation ends as documented, nothing is left alive, the store holds the old or the new, and the same
// operation succeeds right behind it.

#include <iostream>
#include <optional>

#include "localstore/recorder.h"
#include "tests/faults/fault_fixture.h"
#include "tests/faults/platform_faults.h"
#include "tests/unit/localstore/scarce_memory.h"
#include "tests/unit/text_printer.h"

namespace {

namespace recorder = localstore::recorder;

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
    }
    void TearDown() override {
        m_expectedBuffers = m_buffersLeft;
        FaultTest::TearDown();
    }
    static const FaultKind& Kind() { return std::get<0>(GetParam()); }
    static const Operation& Op() { return std::get<1>(GetParam()); }

    /// Runs the operation with the n-th call failing; false if there was no such call.
    bool RunWithFault(std::size_t n, bool forever, std::uint32_t code) {
        Op().prepare(State());
        TakeLog();
        const long objects = recorder::LiveObjects();
        const long buffers = recorder::LiveBuffers();
        Kind().arm(n, forever, code);
        Outcome outcome;
        outcome.result = Op().run(State());
        const bool failed = Kind().disarm();
        const LogLines log = TakeLog();
        outcome.complete = !failed;
        outcome.documentsFailed = failed && Kind().reachesDocuments;
        outcome.storeLied = failed && code == static_cast<std::uint32_t>(S_OK) && Kind().arm == ArmStore;
        m_losses += Count([&] { Op().check(State(), outcome); });
        ExpectLines(log);
        if (!Op().changesSession) {
            m_leaks += Count([&] {
                EXPECT_GE(recorder::LiveObjects(), objects);
                EXPECT_LE(recorder::LiveObjects(), objects + Op().mostObjectsLeft);
                CountBuffersLeft(recorder::LiveBuffers() - buffers);
            });
        }
        return failed;
    }
    /// Runs expectations; 1 if one of them was not met.
    template<class Expectations>
    static std::size_t Count(const Expectations& expectations) {
        const bool before = HasFailure();
        expectations();
        return !before && HasFailure() ? 1 : 0;
    }
    /// Runs it once more without any fault.
    void RunClean() {
        Op().prepare(State());
        const long buffers = recorder::LiveBuffers();
        Outcome outcome;
        outcome.result = Op().run(State());
        outcome.complete = true;
        EXPECT_EQ(outcome.result, Op().complete);
        m_losses += Count([&] { Op().check(State(), outcome); });
        if (!Op().changesSession) {
            CountBuffersLeft(recorder::LiveBuffers() - buffers);
        }
    }
    void CountBuffersLeft(long left) {
        EXPECT_GE(left, 0);
        EXPECT_LE(left, Op().mostBuffersLeft);
        m_buffersLeft += left;
    }
    /// A line whose text has to be put together needs memory.
    static void ExpectLines(const LogLines& log) {
        if (Kind().arm == ArmMemory) {
            return;
        }
        ASSERT_FALSE(log.empty());
        EXPECT_TRUE(log.front().text.starts_with(Line(Op().firstLine))) << PrintToString(log.front());
        EXPECT_TRUE(log.back().text.starts_with(Line(Op().lastLine))) << PrintToString(log.back());
    }
    static CString Line(const wchar_t* text) { return CString::Format(L"CMAPIObject::%s", text); }
    static std::string PrintToString(const LogLine& line) { return testing::PrintToString(line); }

    /// Sweeps one code; returns the number of runs in which a call failed.
    std::size_t Sweep(std::uint32_t code, bool forever) {
        std::size_t runs = 0;
        for (std::size_t n = 1; !HasFailure(); n += IsFullSweep() ? 1 : Kind().quickStep, ++runs) {
            SCOPED_TRACE(testing::Message() << "call " << n << (forever ? " and all behind it" : "")
                                            << " with 0x" << std::hex << code);
            const bool failed = RunWithFault(n, forever, code);
            RunClean();
            if (!failed) {
                break;
            }
        }
        return runs;
    }

    std::size_t m_leaks = 0;
    std::size_t m_losses = 0;

  private:
    long m_buffersLeft = 0;
};

TEST_P(Faults, EndAsDocumentedAndLoseNothing) {
    std::size_t points = 0;
    std::size_t runs = 0;
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
