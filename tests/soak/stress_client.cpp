// A desktop program for tests that wears the agent out: many rounds of everything, everything at once, and
// Stop at any moment of a read. It prints what it saw; who runs it decides whether that is well.

#include <windows.h>

#include <rpc.h>

#include <atomic>
#include <cstdio>
#include <cwchar>
#include <random>
#include <stdexcept>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "callback.h"
#include "command.h"
#include "support/rpc_guard.h"
#include "tests/desktop_side.h"
#include "tests/soak/overlapping_calls.h"
#include "tests/soak/process_figures.h"
#include "tests/soak/remote_calls.h"

namespace {

constexpr const char* kUsage =
    "stress_client MAP-PREFIX soak PROGRAM ROUNDS ITEMS   whole days, each writes ITEMS of each kind three "
    "times\n"
    "stress_client MAP-PREFIX logon PROGRAM ROUNDS        logons and logoffs alone\n"
    "stress_client MAP-PREFIX stop ROUNDS SEED            Stop at any moment of a read of each kind\n"
    "stress_client MAP-PREFIX overlap SECONDS CLIENTS SEED LETTERS CONTACTS CALENDARS ITEMS\n"
    "calls at once. CONTACTS and CALENDARS are the identifiers of the folders that the letter i chooses.\n"
    "ITEMS is how many each folder holds at least.\n"
    "PROGRAM is the one that serves the calls, whose figures are told behind each round\n";

std::atomic<unsigned long> g_documents = 0;
/// The document, by its number in a read, whose callback does not return before Stop has been said; 0 for
/// none.
std::atomic<unsigned long> g_held = 0;
std::atomic<bool> g_stopSaid = false;

void PrintFigures(const std::wstring& program, unsigned long round) {
    const ProcessFigures figures = QueryFigures(program);
    std::printf("round %lu handles %lu bytes %llu blocks %llu heap %llu documents %lu\n", round,
                figures.handles, figures.bytes, figures.heapBlocks, figures.heapBytes, g_documents.load());
    (void)std::fflush(stdout);
}

/// Reads everything and what changed, writes in between, and ends with the folder as it was.
void WorkOn(const Kind& kind, const std::wstring& mapPrefix, unsigned long items) {
    const std::wstring map = mapPrefix + kind.map;
    RequireRead(kind, L"");
    RequireRead(kind, map);
    std::vector<std::wstring> ids;
    for (unsigned long i = 0; i < items; ++i) {
        ids.push_back(Add(kind));
        Change(kind, ids.back());
    }
    RequireRead(kind, map);
    for (const std::wstring& id : ids) {
        Delete(kind, id);
    }
    RequireRead(kind, map);
}

void Round(const std::wstring& mapPrefix, unsigned long items) {
    LogOn();
    CallWithText(GetAppFolder, L"");
    for (const Kind& kind : kKinds) {
        WorkOn(kind, mapPrefix, items);
    }
    LogOff();
}

void Soak(const std::wstring& program, const std::wstring& mapPrefix, unsigned long rounds,
          unsigned long items) {
    for (unsigned long round = 1; round <= rounds; ++round) {
        g_documents = 0;
        Round(mapPrefix, items);
        PrintFigures(program, round);
    }
}

void SoakLogons(const std::wstring& program, unsigned long rounds) {
    for (unsigned long round = 1; round <= rounds; ++round) {
        LogOn();
        LogOff();
        PrintFigures(program, round);
    }
}

/// Takes a document. The one that is to be held is kept until Stop has been said.
void TakeDocument() {
    const unsigned long number = ++g_documents;
    while (number == g_held && !g_stopSaid) {
        Sleep(0);
    }
}

/// What became of a read and of the Stop that was said beside it.
struct StoppedRead {
    long status = -1;
    unsigned long documents = 0;  ///< that arrived in all
    bool isStopSaid = false;
    unsigned long there = 0;  ///< documents that had arrived when Stop had returned
};

/// Reads while another thread says Stop once `after` documents are there, of which the last one waits for
/// that if it is held.
StoppedRead StopRead(const Kind& kind, unsigned long after, bool isHeld) {
    g_documents = 0;
    g_held = isHeld ? after : 0;
    g_stopSaid = false;
    std::atomic<bool> ended = false;
    StoppedRead read;
    std::thread stopper([&] {
        while (g_documents < after && !ended) {
            Sleep(0);
        }
        // Behind the end it would only be kept for the next read, which then brings nothing.
        if (!ended) {
            GuardedRpc([] { Stop(); });
            read.there = g_documents;
            g_stopSaid = true;
        }
    });
    read.status = Read(kind, L"");
    ended = true;
    stopper.join();
    read.documents = g_documents;
    read.isStopSaid = g_stopSaid;
    return read;
}

/// Whether a read went as the agent has it, which looks for a Stop in front of each item: what it has begun
/// with when Stop returns still comes, nothing else does, and only a read of all gives 0.
bool IsAsDocumented(const StoppedRead& read, unsigned long items, bool isHeld, bool stopIsKept) {
    if (stopIsKept && read.status == 1 && read.documents == 0) {
        return true;
    }
    // The item behind the one that is held is not begun with before Stop has returned.
    const unsigned long most = read.there + (isHeld ? 0 : 1);
    return read.status == (read.documents == items ? 0 : 1) &&
           (read.isStopSaid ? read.documents <= most : read.documents == items);
}

void RequireAsDocumented(const StoppedRead& read, unsigned long items, bool isHeld, bool stopIsKept) {
    if (!IsAsDocumented(read, items, isHeld, stopIsKept)) {
        const std::string stop =
            read.isStopSaid ? "when Stop had returned " + std::to_string(read.there) : "without Stop";
        throw std::runtime_error("a read of " + std::to_string(items) + " gives " +
                                 std::to_string(read.status) + " with " + std::to_string(read.documents) +
                                 " documents, " + stop + (isHeld ? ", the last of them held" : ""));
    }
}

/// A Stop that came behind the end of a read is kept for the next one, of whatever kind, which then brings
/// nothing.
void StopReads(const Kind& kind, unsigned long rounds, unsigned seed, bool& stopIsKept) {
    std::mt19937 random(seed);
    const auto items = static_cast<unsigned long>(Count(kind));
    unsigned long stopped = 0;
    unsigned long held = 0;
    unsigned long elsewhere = 0;
    for (unsigned long round = 0; round < rounds; ++round) {
        const unsigned long after = random() % (items + 2);
        // Half of the reads are in the middle of a document when Stop is said, and end behind it.
        const bool isHeld = random() % 2 == 0 && after > 0 && after < items && !stopIsKept;
        const StoppedRead read = StopRead(kind, after, isHeld);
        RequireAsDocumented(read, items, isHeld, stopIsKept);
        stopped += read.status == 1 ? 1 : 0;
        held += isHeld ? 1 : 0;
        // The others in which Stop returned so early that the read could not come to its end any more.
        elsewhere += read.isStopSaid && !isHeld && !stopIsKept && read.there + 1 < items ? 1 : 0;
        stopIsKept = read.isStopSaid && (read.status == 0 || (stopIsKept && read.documents == 0));
    }
    std::printf("stop %lu of %lu reads, %lu in a document, %lu elsewhere\n", stopped, rounds, held,
                elsewhere);
}

void StopAllReads(unsigned long rounds, unsigned seed) {
    bool stopIsKept = false;
    for (const Kind& kind : kKinds) {
        LogOn();
        StopReads(kind, rounds, seed, stopIsKept);
        LogOff();
    }
}

void Run(const std::vector<std::wstring>& words) {
    const auto word = [&](std::size_t place) {
        if (place >= words.size()) {
            throw std::invalid_argument(kUsage);
        }
        return words[place];
    };
    const auto number = [&](std::size_t place) { return std::wcstoul(word(place).c_str(), nullptr, 10); };
    const std::wstring mode = word(1);
    if (mode == L"soak") {
        Soak(word(2), word(0), number(3), number(4));
    } else if (mode == L"logon") {
        SoakLogons(word(2), number(3));
    } else if (mode == L"stop") {
        StopAllReads(number(2), number(3));
    } else if (mode == L"overlap") {
        const FolderChoice others{L"<id>" + word(6) + L"</id>", L"<id><event>" + word(7) + L"</event></id>"};
        Overlap(number(2), number(3), number(4), {word(5), others, word(0), static_cast<long>(number(8))});
    } else {
        throw std::invalid_argument(kUsage);
    }
}

}  // namespace

void MAPIServerShutdown() {}

void MAPISendBackOneContact(wchar_t* /*xml*/) {
    TakeDocument();
}

void MAPISendBackOneCalenda(wchar_t* xml) {
    // The end of a write comes as an empty one.
    if (!std::wstring_view(xml).empty()) {
        TakeDocument();
    }
}

int wmain(int count, wchar_t** arguments) {
    try {
        ServeCallbacks();
        BindToAgent();
        Run({arguments + 1, arguments + count});
        return 0;
    } catch (const RpcFailure& failure) {
        (void)std::fprintf(stderr, "stress_client: a remote call failed, status %lu\n", failure.Status());
    } catch (const std::exception& failure) {
        (void)std::fprintf(stderr, "stress_client: %s\n", failure.what());
    }
    return 1;
}
