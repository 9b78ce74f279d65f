// A desktop program for tests that wears the agent out: many rounds of everything, everything at once, and
// Stop at any moment of a read. It prints what it saw; who runs it decides whether that is well.

#include <windows.h>

#include <rpc.h>

#include <atomic>
#include <cstdio>
#include <cwchar>
#include <map>
#include <mutex>
#include <random>
#include <stdexcept>
#include <string>
#include <string_view>
#include <thread>
#include <type_traits>
#include <utility>
#include <vector>

#include "callback.h"
#include "command.h"
#include "support/rpc_guard.h"
#include "tests/desktop_side.h"
#include "tests/soak/process_figures.h"

namespace {

constexpr std::size_t kIdUnits = 400;
constexpr std::size_t kTimeUnits = 40;

constexpr const char* kUsage =
    "stress_client MAP-PREFIX soak PROGRAM ROUNDS ITEMS   whole days, each writes ITEMS of each kind three "
    "times\n"
    "stress_client MAP-PREFIX logon PROGRAM ROUNDS        logons and logoffs alone\n"
    "stress_client MAP-PREFIX stop ROUNDS SEED            Stop at any moment of a read of each kind\n"
    "stress_client MAP-PREFIX overlap SECONDS CLIENTS SEED LETTERS CONTACTS CALENDARS   calls at once\n"
    "CONTACTS and CALENDARS are the identifiers of the folders that the letter i chooses.\n"
    "PROGRAM is the one that serves the calls, whose figures are told behind each round\n";

std::atomic<unsigned long> g_documents = 0;
/// The document, by its number in a read, whose callback does not return before Stop has been said; 0 for
/// none.
std::atomic<unsigned long> g_held = 0;
std::atomic<bool> g_stopSaid = false;
/// How often folders were chosen by their identifiers.
std::atomic<unsigned long> g_chosen = 0;
std::wstring g_mapPrefix;

void PrintFigures(const std::wstring& program, unsigned long round) {
    const ProcessFigures figures = QueryFigures(program);
    std::printf("round %lu handles %lu bytes %llu blocks %llu heap %llu documents %lu\n", round,
                figures.handles, figures.bytes, figures.heapBlocks, figures.heapBytes, g_documents.load());
    (void)std::fflush(stdout);
}

// The remote procedures. Each returns its status; a call that fails throws.

using TextCall = void (*)(wchar_t* text, long* status);

long CallWithText(TextCall procedure, std::wstring text) {
    long status = -1;
    wchar_t* const units = text.data();
    GuardedRpc([procedure, units, &status] { procedure(units, &status); });
    return status;
}

using ReadCall = void (*)(wchar_t* ignored, wchar_t* map, long* status);

long Read(ReadCall procedure, std::wstring map) {
    long status = -1;
    wchar_t nothing[] = L"";
    wchar_t* const texts[] = {nothing, map.data()};
    GuardedRpc([procedure, &texts, &status] { procedure(texts[0], texts[1], &status); });
    return status;
}

using CountCall = void (*)(long* count, long* status);

long Count(CountCall procedure) {
    long count = -1;
    long status = -1;
    GuardedRpc([procedure, &count, &status] { procedure(&count, &status); });
    return count;
}

using WriteCall = void (*)(wchar_t* xml, wchar_t* id, wchar_t* time, long* status);

/// Writes a document; returns the identifier that came back.
std::wstring Write(WriteCall procedure, std::wstring document) {
    wchar_t id[kIdUnits] = L"";
    wchar_t time[kTimeUnits] = L"";
    long status = -1;
    wchar_t* const texts[] = {document.data(), id, time};
    GuardedRpc([procedure, &texts, &status] { procedure(texts[0], texts[1], texts[2], &status); });
    if (status != 0) {
        throw std::runtime_error("a write gives " + std::to_string(status));
    }
    return id;
}

void LogOn() {
    if (const long status = CallWithText(MAPILogOn, L""); status != 0) {
        throw std::runtime_error("the logon gives " + std::to_string(status));
    }
}

void LogOff() {
    GuardedRpc([] { MAPILogOff(); });
}

/// A kind of item, and what is written of it.
struct Kind {
    const wchar_t* root;
    const wchar_t* texts;
    CountCall count;
    ReadCall read;
    WriteCall write;
    const wchar_t* map;
};

constexpr Kind kKinds[] = {
    {L"Contact", L"<FirstName>Ada</FirstName><LastName>Lovelace</LastName><Email1>ada@example.org</Email1>",
     GetContactCount, ReadContacts, WriteContacts, L"contacts.map"},
    {L"Calendar",
     L"<lCalType>3</lCalType><Description>Review</Description><dtStartTime>05/10/2010 10:00:00</dtStartTime>"
     L"<dtEndTime>05/10/2010 "
     L"11:00:00</dtEndTime><lRecurType>2</lRecurType><lRecurWeekMask>2</lRecurWeekMask>",
     GetCalendarCount, ReadCalendars, WriteCalendars, L"calendars.map"},
};

std::wstring DocumentOf(const Kind& kind, int flag, const std::wstring& id) {
    const std::wstring root = kind.root;
    return L"<" + root + L"><lFlag>" + std::to_wstring(flag) + L"</lFlag><PIMID>" + id + L"</PIMID>" +
           kind.texts + L"</" + root + L">";
}

/// Adds an item. Returns its identifier, without which a caller could not go on with it.
std::wstring Add(const Kind& kind) {
    std::wstring id = Write(kind.write, DocumentOf(kind, 8, L""));
    if (id.empty()) {
        throw std::runtime_error("an added item has no identifier");
    }
    return id;
}

void Change(const Kind& kind, const std::wstring& id) {
    Write(kind.write, DocumentOf(kind, 4, id));
}

void Delete(const Kind& kind, const std::wstring& id) {
    Write(kind.write, DocumentOf(kind, 32, id));
}

void RequireRead(const Kind& kind, const std::wstring& map) {
    if (const long status = Read(kind.read, map); status != 0) {
        throw std::runtime_error("a read gives " + std::to_string(status));
    }
}

/// Reads everything and what changed, writes in between, and ends with the folder as it was.
void WorkOn(const Kind& kind, unsigned long items) {
    RequireRead(kind, L"");
    RequireRead(kind, g_mapPrefix + kind.map);
    std::vector<std::wstring> ids;
    for (unsigned long i = 0; i < items; ++i) {
        ids.push_back(Add(kind));
        Change(kind, ids.back());
    }
    RequireRead(kind, g_mapPrefix + kind.map);
    for (const std::wstring& id : ids) {
        Delete(kind, id);
    }
    RequireRead(kind, g_mapPrefix + kind.map);
}

void Round(unsigned long items) {
    LogOn();
    CallWithText(GetAppFolder, L"");
    for (const Kind& kind : kKinds) {
        WorkOn(kind, items);
    }
    LogOff();
}

void Soak(const std::wstring& program, unsigned long rounds, unsigned long items) {
    for (unsigned long round = 1; round <= rounds; ++round) {
        g_documents = 0;
        Round(items);
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
    read.status = Read(kind.read, L"");
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
    const auto items = static_cast<unsigned long>(Count(kind.count));
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

/// What GetContactFolder takes, no more and no less. GetCalendarFolder takes the first of them.
constexpr std::size_t kFolderUnits = 3000;

/// A choice of both folders, as the two calls take it.
struct FolderChoice {
    std::wstring contacts;
    std::wstring calendars;
};

/// Whether the agent took both choices.
bool Choose(const FolderChoice& choice) {
    const long contacts = CallWithText(SetContactFolder, choice.contacts);
    return CallWithText(SetCalendarFolder, choice.calendars) == 0 && contacts == 0;
}

/// The call of a letter, as a client makes it that keeps to no rule. What it gives does not matter. What has
/// no letter of its own is a write.
void CallAnything(wchar_t call, const Kind& kind, const FolderChoice& otherFolders) {
    switch (call) {
        case L'n':
            CallWithText(MAPILogOn, L"");
            break;
        case L'f':
            LogOff();
            break;
        case L'F':
            CallWithText(GetAppFolder, L"");
            break;
        case L'P':
            CallWithText(GetAppProfile, L"");
            break;
        case L'g': {
            std::wstring folder(kFolderUnits, L'x');
            CallWithText(GetContactFolder, folder);
            CallWithText(GetCalendarFolder, folder);
            break;
        }
        case L's':
            Choose({});
            break;
        case L'i':
            g_chosen += Choose(otherFolders) ? 1 : 0;
            break;
        case L'c':
            Count(kind.count);
            break;
        case L'r':
            Read(kind.read, L"");
            break;
        case L'm':
            Read(kind.read, g_mapPrefix + kind.map);
            break;
        case L'S':
            GuardedRpc([] { Stop(); });
            break;
        default: {
            const std::wstring id = Add(kind);
            Change(kind, id);
            Delete(kind, id);
            break;
        }
    }
}

/// What became of the calls of all clients.
struct Tally {
    std::mutex mutex;
    unsigned long calls = 0;
    std::map<wchar_t, unsigned long> succeeded;  ///< by letter
    /// By the status of the remote call, and by letter.
    std::map<std::pair<unsigned long, wchar_t>, unsigned long> failed;

    template<class Key>
    void Add(std::map<Key, unsigned long>& counts, const std::type_identity_t<Key>& key) {
        const std::lock_guard lock(mutex);
        ++counts[key];
    }
};

/// The calls that the clients make, each the more often the more often its letter stands there.
struct Calls {
    std::wstring letters;
    FolderChoice otherFolders;
};

/// One client's calls until a time comes.
void CallAtRandom(ULONGLONG end, unsigned seed, const Calls& all, Tally& tally) {
    std::mt19937 random(seed);
    unsigned long calls = 0;
    bool isAgentThere = true;
    while (isAgentThere && GetTickCount64() < end) {
        ++calls;
        const wchar_t call = all.letters[random() % all.letters.size()];
        try {
            CallAnything(call, kKinds[random() % 2], all.otherFolders);
            tally.Add(tally.succeeded, call);
        } catch (const RpcFailure& failure) {
            tally.Add(tally.failed, {static_cast<unsigned long>(failure.Status()), call});
            isAgentThere = failure.Status() != RPC_S_SERVER_UNAVAILABLE;
        } catch (const std::exception&) {
            // A write or a logon that another call took the session from.
            Sleep(0);
        }
    }
    const std::lock_guard lock(tally.mutex);
    tally.calls += calls;
}

/// Adds an item of each kind to the other folders and then lets the clients loose.
void Overlap(unsigned long seconds, unsigned long clients, unsigned seed, const Calls& all) {
    // In the midst of the others the choice is often refused, for want of a session.
    LogOn();
    if (!Choose(all.otherFolders)) {
        throw std::runtime_error("the other folders are refused");
    }
    for (const Kind& kind : kKinds) {
        Add(kind);
    }
    Tally tally;
    const ULONGLONG end = GetTickCount64() + seconds * 1000ULL;
    std::vector<std::thread> threads;
    threads.reserve(clients);
    for (unsigned long client = 0; client < clients; ++client) {
        threads.emplace_back([&, client] { CallAtRandom(end, seed + client, all, tally); });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    std::printf("calls %lu\nchosen %lu\n", tally.calls, g_chosen.load());
    for (const auto& [call, count] : tally.succeeded) {
        std::printf("succeeded %lc %lu\n", static_cast<wint_t>(call), count);
    }
    for (const auto& [failure, count] : tally.failed) {
        std::printf("failed %lu%lc %lu\n", failure.first, static_cast<wint_t>(failure.second), count);
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
    g_mapPrefix = word(0);
    const std::wstring mode = word(1);
    if (mode == L"soak") {
        Soak(word(2), number(3), number(4));
    } else if (mode == L"logon") {
        SoakLogons(word(2), number(3));
    } else if (mode == L"stop") {
        StopAllReads(number(2), number(3));
    } else if (mode == L"overlap") {
        const FolderChoice others{L"<id>" + word(6) + L"</id>", L"<id><event>" + word(7) + L"</event></id>"};
        Overlap(number(2), number(3), number(4), {word(5), others});
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
