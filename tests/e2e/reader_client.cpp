// A desktop program for tests: it does what it is told on the command line, in that order, and can misbehave.
// The documents that it receives go to files as they came, so that whoever looks at them sees every unit of
// the text.

#include <windows.h>

#include <algorithm>
#include <cwchar>
#include <iomanip>
#include <iostream>
#include <iterator>
#include <sstream>
#include <stdexcept>
#include <string>

#include <rpc.h>

#include "callback.h"
#include "command.h"
#include "support/owners.h"
#include "support/rpc_guard.h"

namespace {

constexpr const wchar_t* kCommandPipe = L"\\\\.\\pipe\\MapiServer64";
constexpr DWORD kPatienceMilliseconds = 60000;
constexpr DWORD kPollMilliseconds = 20;
constexpr unsigned kMaxCalls = 1234;
/// The exit status of a client that was asked to crash.
constexpr UINT kCrashed = 99;

constexpr const char* kUsage =
    "reader_client [OPTION...] COMMAND...\n"
    "options:\n"
    "  --no-endpoint      do not serve the callback interface\n"
    "  --out FOLDER       write each document to a file there, in UTF-16\n"
    "  --stop-after N     call Stop while the Nth document is being received\n"
    "  --fail-at N        raise an exception while the Nth document is being received\n"
    "  --crash-after N    end without a word while the Nth document is being received\n"
    "commands:\n"
    "  logon[=PROFILE] count read count-calendars read-calendars stop logoff shutdown profiles folders\n"
    "  contact-folder=SELECTION calendar-folder=SELECTION\n"
    "  write=FILE         write the contact of the document in FILE, which is in UTF-16, and print the "
    "three\n"
    "                     outputs\n"
    "  write-calendar=FILE  the same with an appointment\n"
    "  await-end          wait until the agent is gone, and tell whether it said so before\n";

/// What the callbacks do and have done. They come on the runtime's threads, one at a time.
struct Reception {
    std::wstring folder;
    unsigned long stopAfter = 0;
    unsigned long failAt = 0;
    unsigned long crashAfter = 0;
    unsigned long documents = 0;
    /// Set when the agent says that it goes away.
    Handle shutdown;
};
Reception g_reception;

void Require(RPC_STATUS status, const char* what) {
    if (status != RPC_S_OK) {
        throw std::runtime_error(std::string(what) + " gives " + std::to_string(status));
    }
}

RPC_WSTR RpcText(wchar_t* text) {
    return reinterpret_cast<RPC_WSTR>(text);
}

void WriteDocument(const wchar_t* xml) {
    // Of one length, so that the names are in the order of the documents.
    constexpr unsigned long kBase = 1000000;
    const std::wstring path =
        g_reception.folder + L"\\" + std::to_wstring(kBase + g_reception.documents) + L".utf16";
    const FileHandle file(
        CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
    const auto size = static_cast<DWORD>(wcslen(xml) * sizeof(wchar_t));
    DWORD written = 0;
    if (!file || WriteFile(file.Get(), xml, size, &written, nullptr) == 0 || written != size) {
        std::cerr << "reader_client: a document cannot be written\n";
        TerminateProcess(GetCurrentProcess(), 1);
    }
}

void ReceiveDocument(const wchar_t* xml) {
    ++g_reception.documents;
    if (!g_reception.folder.empty()) {
        WriteDocument(xml);
    }
    if (g_reception.documents == g_reception.crashAfter) {
        TerminateProcess(GetCurrentProcess(), kCrashed);
    }
    if (g_reception.documents == g_reception.stopAfter) {
        GuardedRpc([] { Stop(); });
    }
    if (g_reception.documents == g_reception.failAt) {
        RpcRaiseException(RPC_S_CALL_FAILED);
    }
}

void ServeCallbacks() {
    wchar_t protocol[] = L"ncacn_np";
    wchar_t endpoint[] = L"\\pipe\\OutlookServer32";
    Require(RpcServerUseProtseqEpW(RpcText(protocol), kMaxCalls, RpcText(endpoint), nullptr),
            "RpcServerUseProtseqEp");
    Require(RpcServerRegisterIf(ZebAgentCallback_v1_0_s_ifspec, nullptr, nullptr), "RpcServerRegisterIf");
    Require(RpcServerListen(1, kMaxCalls, TRUE), "RpcServerListen");
}

void BindToAgent() {
    wchar_t protocol[] = L"ncacn_np";
    wchar_t endpoint[] = L"\\pipe\\MapiServer64";
    RPC_WSTR text = nullptr;
    Require(RpcStringBindingComposeW(nullptr, RpcText(protocol), nullptr, RpcText(endpoint), nullptr, &text),
            "RpcStringBindingCompose");
    const RPC_STATUS status = RpcBindingFromStringBindingW(text, &g_hAgentBinding);
    RpcStringFreeW(&text);
    Require(status, "RpcBindingFromStringBinding");
}

/// The agent may have been started a moment ago.
void WaitForAgent() {
    for (DWORD waited = 0; WaitNamedPipeW(kCommandPipe, kPatienceMilliseconds) == 0;
         waited += kPollMilliseconds) {
        if (waited >= kPatienceMilliseconds) {
            throw std::runtime_error("there is no agent");
        }
        Sleep(kPollMilliseconds);
    }
}

void DoLogOn(std::wstring profile) {
    long status = -1;
    wchar_t* const text = profile.data();
    GuardedRpc([text, &status] { MAPILogOn(text, &status); });
    std::cout << "logon " << status << '\n';
}

void DoCount(void (*procedure)(long* count, long* status)) {
    long count = -1;
    long status = -1;
    GuardedRpc([procedure, &count, &status] { procedure(&count, &status); });
    std::cout << "count " << count << ' ' << status << '\n';
}

void DoRead(void (*procedure)(wchar_t* ignored, wchar_t* mapFile, long* status)) {
    const unsigned long before = g_reception.documents;
    long status = -1;
    wchar_t nothing[] = L"";
    wchar_t* const text = nothing;
    GuardedRpc([procedure, text, &status] { procedure(text, text, &status); });
    std::cout << "read " << status << ' ' << g_reception.documents - before << '\n';
}

/// A procedure that takes a text and gives a status.
using TextProcedure = void (*)(wchar_t* text, long* status);

void DoWithText(const wchar_t* word, TextProcedure procedure, std::wstring value) {
    long status = -1;
    wchar_t* const text = value.data();
    GuardedRpc([text, &status, procedure] { procedure(text, &status); });
    std::printf("%ls %ld\n", word, status);
}

/// The word of a command and what is behind its "=".
struct CommandParts {
    std::wstring word;
    std::wstring value;
};

CommandParts PartsOf(const std::wstring& command) {
    const std::size_t equals = command.find(L'=');
    return {command.substr(0, equals),
            equals == std::wstring::npos ? std::wstring() : command.substr(equals + 1)};
}

/// A command and the remote procedure behind it.
template<class Procedure>
struct NamedProcedure {
    const wchar_t* word;
    Procedure procedure;
};

/// The procedure of a command; null if there is none.
template<class Procedure, std::size_t kCount>
Procedure FindProcedure(const NamedProcedure<Procedure> (&commands)[kCount], const std::wstring& word) {
    const auto* found = std::find_if(std::begin(commands), std::end(commands),
                                     [&](const auto& command) { return command.word == word; });
    return found == std::end(commands) ? nullptr : found->procedure;
}

/// True if the command was one of those with a text.
bool DoTextCommand(const std::wstring& command) {
    constexpr NamedProcedure<TextProcedure> kCommands[] = {
        {L"profiles", GetAppProfile},
        {L"folders", GetAppFolder},
        {L"contact-folder", SetContactFolder},
        {L"calendar-folder", SetCalendarFolder},
    };
    const CommandParts parts = PartsOf(command);
    const TextProcedure procedure = FindProcedure(kCommands, parts.word);
    if (procedure != nullptr) {
        DoWithText(parts.word.c_str(), procedure, parts.value);
    }
    return procedure != nullptr;
}

std::wstring ReadDocument(const std::wstring& path) {
    const FileHandle file(CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                                      FILE_ATTRIBUTE_NORMAL, nullptr));
    const DWORD size = file ? GetFileSize(file.Get(), nullptr) : INVALID_FILE_SIZE;
    if (size == INVALID_FILE_SIZE || size % sizeof(wchar_t) != 0) {
        throw std::runtime_error("a document cannot be read");
    }
    std::wstring text(size / sizeof(wchar_t), L'\0');
    DWORD count = 0;
    if (ReadFile(file.Get(), text.data(), size, &count, nullptr) == 0 || count != size) {
        throw std::runtime_error("a document cannot be read");
    }
    return text;
}

/// A text in ASCII: every other unit as a backslash, "u" and four digits.
std::string Printable(const wchar_t* text) {
    std::ostringstream printed;
    for (; *text != L'\0'; ++text) {
        if (*text >= L' ' && *text < 0x7F && *text != L'\\') {
            printed << static_cast<char>(*text);
        } else {
            printed << "\\u" << std::hex << std::setw(4) << std::setfill('0') << static_cast<unsigned>(*text);
        }
    }
    return printed.str();
}

/// A procedure that writes an item.
using WriteProcedure = void (*)(wchar_t* document, wchar_t* id, wchar_t* time, long* status);

void DoWrite(WriteProcedure procedure, const std::wstring& path) {
    std::wstring document = ReadDocument(path);
    wchar_t id[400] = L"";
    wchar_t time[40] = L"";
    long status = -1;
    wchar_t* const texts[] = {document.data(), id, time};
    GuardedRpc([procedure, &texts, &status] { procedure(texts[0], texts[1], texts[2], &status); });
    std::cout << "write " << status << " [" << Printable(id) << "] [" << Printable(time) << "]\n";
}

void AwaitEnd() {
    for (DWORD waited = 0; WaitNamedPipeW(kCommandPipe, 1) != 0 || GetLastError() == ERROR_SEM_TIMEOUT;
         waited += kPollMilliseconds) {
        if (waited >= kPatienceMilliseconds) {
            throw std::runtime_error("the agent does not go");
        }
        Sleep(kPollMilliseconds);
    }
    const bool announced = WaitForSingleObject(g_reception.shutdown.Get(), 0) == WAIT_OBJECT_0;
    std::cout << "end " << (announced ? "announced" : "not announced") << '\n';
}

/// True if the command was one that writes.
bool DoWriteCommand(const std::wstring& command) {
    constexpr NamedProcedure<WriteProcedure> kCommands[] = {
        {L"write", WriteContacts},
        {L"write-calendar", WriteCalendars},
    };
    const CommandParts parts = PartsOf(command);
    const WriteProcedure procedure = FindProcedure(kCommands, parts.word);
    if (procedure != nullptr) {
        DoWrite(procedure, parts.value);
    }
    return procedure != nullptr;
}

/// True if the command was one that counts or reads.
bool DoReadCommand(const std::wstring& command) {
    if (command == L"count") {
        DoCount(GetContactCount);
    } else if (command == L"count-calendars") {
        DoCount(GetCalendarCount);
    } else if (command == L"read") {
        DoRead(ReadContacts);
    } else if (command == L"read-calendars") {
        DoRead(ReadCalendars);
    } else {
        return false;
    }
    return true;
}

void Do(const std::wstring& command) {
    if (command.rfind(L"logon=", 0) == 0) {
        DoLogOn(command.substr(std::wcslen(L"logon=")));
    } else if (command == L"logon") {
        DoLogOn(L"");
    } else if (command == L"stop") {
        GuardedRpc([] { Stop(); });
    } else if (command == L"logoff") {
        GuardedRpc([] { MAPILogOff(); });
    } else if (command == L"shutdown") {
        GuardedRpc([] { Shutdown(); });
    } else if (command == L"await-end") {
        AwaitEnd();
    } else if (!DoReadCommand(command) && !DoWriteCommand(command) && !DoTextCommand(command)) {
        throw std::invalid_argument(kUsage);
    }
    std::cout.flush();
}

/// Takes the options off the front of the arguments and returns the first command.
wchar_t** ReadOptions(wchar_t** argument) {
    bool endpoint = true;
    for (; *argument != nullptr && std::wcsncmp(*argument, L"--", 2) == 0; ++argument) {
        const std::wstring option = *argument;
        if (option == L"--no-endpoint") {
            endpoint = false;
            continue;
        }
        const wchar_t* const value = *++argument;
        if (value == nullptr) {
            throw std::invalid_argument(kUsage);
        }
        if (option == L"--out") {
            g_reception.folder = value;
        } else if (option == L"--stop-after") {
            g_reception.stopAfter = std::wcstoul(value, nullptr, 10);
        } else if (option == L"--fail-at") {
            g_reception.failAt = std::wcstoul(value, nullptr, 10);
        } else if (option == L"--crash-after") {
            g_reception.crashAfter = std::wcstoul(value, nullptr, 10);
        } else {
            throw std::invalid_argument(kUsage);
        }
    }
    if (endpoint) {
        ServeCallbacks();
    }
    return argument;
}

}  // namespace

void MAPIServerShutdown() {
    SetEvent(g_reception.shutdown.Get());
}

void MAPISendBackOneContact(wchar_t* xml) {
    ReceiveDocument(xml);
}

void MAPISendBackOneCalenda(wchar_t* xml) {
    ReceiveDocument(xml);
}

int wmain(int /*count*/, wchar_t** arguments) {
    try {
        g_reception.shutdown.Reset(CreateEventW(nullptr, TRUE, FALSE, nullptr));
        wchar_t** command = ReadOptions(arguments + 1);
        BindToAgent();
        WaitForAgent();
        for (; *command != nullptr; ++command) {
            Do(*command);
        }
        return 0;
    } catch (const RpcFailure& failure) {
        std::cerr << "reader_client: a remote call failed, status " << failure.Status() << '\n';
    } catch (const std::exception& failure) {
        std::cerr << "reader_client: " << failure.what() << '\n';
    }
    return 1;
}
