#include "tests/soak/overlapping_calls.h"

#include <windows.h>

#include <cstdio>
#include <map>
#include <mutex>
#include <random>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "support/rpc_guard.h"
#include "tests/soak/remote_calls.h"

namespace {

/// What GetContactFolder takes, no more and no less. GetCalendarFolder takes the first of them.
constexpr std::size_t kFolderUnits = 3000;

/// Throws std::runtime_error unless a call gives the status.
void RequireStatus(TextCall procedure, const std::wstring& text, long expected, const char* what) {
    if (const long status = CallWithText(procedure, text); status != expected) {
        throw std::runtime_error(std::string(what) + " gives " + std::to_string(status));
    }
}

/// Throws std::runtime_error unless the agent takes both choices.
void Choose(const FolderChoice& choice) {
    RequireStatus(SetContactFolder, choice.contacts, 0, "a choice");
    RequireStatus(SetCalendarFolder, choice.calendars, 0, "a choice");
}

/// Throws std::runtime_error unless the items are counted that each folder holds: no status tells of a count
/// without a session.
void RequireCount(const Kind& kind, long items) {
    if (const long count = Count(kind); count < items) {
        throw std::runtime_error("a count is " + std::to_string(count));
    }
}

/// The call of a letter, as a client makes it that keeps to no rule. Throws std::runtime_error if it was not
/// done. What has no letter of its own is a write.
void CallAnything(wchar_t call, const Kind& kind, const Calls& all) {
    switch (call) {
        case L'n':
            LogOn();
            break;
        case L'f':
            LogOff();
            break;
        case L'F':
            RequireStatus(GetAppFolder, L"", 0, "a list");
            break;
        case L'P':
            RequireStatus(GetAppProfile, L"", 0, "a list");
            break;
        case L'g': {
            const std::wstring folder(kFolderUnits, L'x');
            RequireStatus(GetContactFolder, folder, 1, "what is not served");
            RequireStatus(GetCalendarFolder, folder, 0, "what is not served");
            break;
        }
        case L's':
            Choose({});
            break;
        case L'i':
            Choose(all.otherFolders);
            break;
        case L'c':
            RequireCount(kind, all.items);
            break;
        case L'r':
            RequireRead(kind, L"");
            break;
        case L'm':
            RequireRead(kind, all.mapPrefix + kind.map);
            break;
        case L'S':
            GuardedRpc([] { Stop(); });
            break;
        default: {
            // Neither a change nor a deletion tells whether it was done: who deletes what is added looks for
            // what is left.
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
    std::map<std::string, unsigned long> outcomes;
};

/// Makes a call. Returns what became of it, as it is printed.
std::string OutcomeOf(wchar_t call, const Kind& kind, const Calls& all, bool& isAgentThere) {
    const std::string letter(1, static_cast<char>(call));
    try {
        CallAnything(call, kind, all);
        return "succeeded " + letter;
    } catch (const RpcFailure& failure) {
        isAgentThere = failure.Status() != RPC_S_SERVER_UNAVAILABLE;
        return "failed " + letter + " " + std::to_string(failure.Status());
    } catch (const std::runtime_error& refusal) {
        // The others go first: what was refused for want of a session would be refused again.
        Sleep(0);
        return "nothing " + letter + " " + refusal.what();
    }
}

/// One client's calls until a time comes.
void CallAtRandom(ULONGLONG end, unsigned seed, const Calls& all, Tally& tally) {
    std::mt19937 random(seed);
    unsigned long calls = 0;
    bool isAgentThere = true;
    while (isAgentThere && GetTickCount64() < end) {
        ++calls;
        const wchar_t call = all.letters[random() % all.letters.size()];
        const std::string outcome = OutcomeOf(call, kKinds[random() % 2], all, isAgentThere);
        const std::lock_guard lock(tally.mutex);
        ++tally.outcomes[outcome];
    }
    const std::lock_guard lock(tally.mutex);
    tally.calls += calls;
}

}  // namespace

void Overlap(unsigned long seconds, unsigned long clients, unsigned seed, const Calls& all) {
    // In the midst of the others the choice is often refused, for want of a session.
    LogOn();
    Choose(all.otherFolders);
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
    std::printf("%lu calls\n", tally.calls);
    for (const auto& [outcome, count] : tally.outcomes) {
        std::printf("%lu %s\n", count, outcome.c_str());
    }
}
