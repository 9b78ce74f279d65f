// A desktop program that reads and does nothing with what it gets, so that a read takes as long as the agent
// takes. It serves the callback interface and answers lines of its input:
//
//   logon PROFILE             "0" or another status
//   logoff                    "done"
//   contacts [MAP]            reads all contacts or, with a map file, the changed ones: seconds, documents,
//                             units of text
//   calendars [MAP]           the same for appointments
//   folders                   has the folder document written: seconds
//   keep FILE                 the documents of the next read go into the file besides: "kept"
//   shutdown                  ends the agent: "done"

#include <windows.h>

#include <rpc.h>

#include <stdexcept>
#include <vector>

#include "callback.h"
#include "command.h"
#include "command_loop.h"
#include "support/owners.h"
#include "support/rpc_endpoints.h"
#include "support/rpc_guard.h"
#include "tests/desktop_side.h"
#include "text_file.h"

namespace {

constexpr DWORD kPatienceMilliseconds = 60000;

/// What came since the last read began. The agent calls back on the runtime's threads, one call at a time.
struct Reception {
    std::size_t documents = 0;
    std::size_t units = 0;
    std::wstring keepIn;
    std::vector<std::wstring> kept;
};
Reception g_reception;

void Receive(const wchar_t* xml) {
    ++g_reception.documents;
    if (!g_reception.keepIn.empty()) {
        g_reception.kept.emplace_back(xml);
        g_reception.units += g_reception.kept.back().size();
    }
}

void WaitForAgent() {
    for (DWORD waited = 0; WaitNamedPipeW(kCommandPipe, kPatienceMilliseconds) == 0; waited += 20) {
        if (waited >= kPatienceMilliseconds) {
            throw std::runtime_error("there is no agent");
        }
        Sleep(20);
    }
}

std::string LogOn(std::wstring profile) {
    long status = -1;
    wchar_t* const text = profile.data();
    GuardedRpc([text, &status] { MAPILogOn(text, &status); });
    return std::to_string(status);
}

void RequireDone(long status, const std::string& what) {
    if (status != 0) {
        throw std::runtime_error(what + " gives " + std::to_string(status));
    }
}

std::string Read(void (*procedure)(wchar_t*, wchar_t*, long*), std::wstring map) {
    g_reception.documents = 0;
    g_reception.units = 0;
    long status = -1;
    wchar_t nothing[] = L"";
    wchar_t* const texts[] = {nothing, map.data()};
    const double seconds = bench::SecondsOf(
        [&] { GuardedRpc([procedure, &texts, &status] { procedure(texts[0], texts[1], &status); }); });
    RequireDone(status, "a read");
    if (!g_reception.keepIn.empty()) {
        bench::WriteTexts(g_reception.keepIn, g_reception.kept);
        g_reception.keepIn.clear();
        g_reception.kept = {};
    }
    return std::to_string(seconds) + ' ' + std::to_string(g_reception.documents) + ' ' +
           std::to_string(g_reception.units);
}

std::string ListFolders() {
    long status = -1;
    wchar_t nothing[] = L"";
    wchar_t* const text = nothing;
    const double seconds =
        bench::SecondsOf([&] { GuardedRpc([text, &status] { GetAppFolder(text, &status); }); });
    RequireDone(status, "the folder document");
    return std::to_string(seconds);
}

std::string Answer(const std::string& line) {
    const std::size_t space = line.find(' ');
    const std::string word = line.substr(0, space);
    // Profiles and paths that measurements use are in ASCII.
    const std::wstring value =
        space == std::string::npos
            ? std::wstring()
            : std::wstring(line.begin() + static_cast<std::ptrdiff_t>(space) + 1, line.end());
    if (word == "logon") {
        return LogOn(value);
    }
    if (word == "contacts" || word == "calendars") {
        return Read(word == "contacts" ? ReadContacts : ReadCalendars, value);
    }
    if (word == "folders") {
        return ListFolders();
    }
    if (word == "keep") {
        g_reception.keepIn = value;
        return "kept";
    }
    if (word == "logoff") {
        GuardedRpc([] { MAPILogOff(); });
    } else if (word == "shutdown") {
        GuardedRpc([] { Shutdown(); });
    } else {
        throw std::invalid_argument("not a command: " + line);
    }
    return "done";
}

}  // namespace

void MAPIServerShutdown() {}

void MAPISendBackOneContact(wchar_t* xml) {
    Receive(xml);
}

void MAPISendBackOneCalenda(wchar_t* xml) {
    Receive(xml);
}

int wmain() {
    return bench::Guarded("bench_client", [] {
        ServeCallbacks();
        WaitForAgent();
        BindToAgent();
        bench::AnswerLines(&Answer);
    });
}
