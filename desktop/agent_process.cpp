#include "desktop/agent_process.h"

#include <windows.h>

#include "desktop/interrupt.h"
#include "support/owners.h"
#include "support/rpc_endpoints.h"

namespace {

constexpr ULONGLONG kLongestStartMilliseconds = 30000;
constexpr ULONGLONG kLongestEndMilliseconds = 15000;
constexpr DWORD kPollMilliseconds = 50;
constexpr const wchar_t* kAgentProgram = L"ZebAgentForOutlook64.exe";

CString FolderOf(const CString& path) {
    return {path.View().substr(0, path.find_last_of(L"\\/") + 1)};
}

CString DefaultAgentPath() {
    constexpr DWORD kLongestPath = 32768;
    CString path;
    path.resize(kLongestPath);
    path.resize(GetModuleFileNameW(nullptr, path.data(), kLongestPath));
    return FolderOf(path) + kAgentProgram;
}

/// The path in full, for the agent is started in a folder of its own.
CString FullPath(const CString& path) {
    CString full;
    full.resize(GetFullPathNameW(path.c_str(), 0, nullptr, nullptr));
    full.resize(GetFullPathNameW(path.c_str(), static_cast<DWORD>(full.size()), full.data(), nullptr));
    return full;
}

[[noreturn]] void ThrowUnreachable(const CString& message) {
    throw Failure(ExitCode::kAgentUnreachable, message);
}

/// Starts the agent so that nothing of this program stays with it: no console, no handle, no current folder.
Handle StartAgent(const CString& path) {
    CString command = L"\"" + path + L"\"";
    const CString folder = FolderOf(path);
    STARTUPINFOW startup{};
    startup.cb = sizeof(startup);
    PROCESS_INFORMATION process{};
    if (CreateProcessW(path.c_str(), command.data(), nullptr, nullptr, FALSE, DETACHED_PROCESS, nullptr,
                       folder.c_str(), &startup, &process) == 0) {
        ThrowUnreachable(
            CString::Format(L"the agent %s cannot be started (error %lu)", path.c_str(), GetLastError()));
    }
    const Handle thread(process.hThread);
    return Handle(process.hProcess);
}

/// Throws if the agent that this program started has ended.
void RequireAlive(const Handle& agent, const CString& path) {
    DWORD status = 0;
    if (agent && WaitForSingleObject(agent.Get(), 0) == WAIT_OBJECT_0 &&
        GetExitCodeProcess(agent.Get(), &status) != 0) {
        ThrowUnreachable(CString::Format(L"the agent %s ended with exit status %lu", path.c_str(), status));
    }
}

void RequireNoInterrupt() {
    if (Interrupted()) {
        throw Failure(ExitCode::kInterrupted, L"interrupted");
    }
}

}  // namespace

bool AgentIsRunning() {
    // A pipe of which every instance is in use is there as well.
    return WaitNamedPipeW(kCommandPipe, 1) != 0 || GetLastError() == ERROR_SEM_TIMEOUT;
}

CString AgentProgram(const CString& path) {
    return FullPath(path.empty() ? DefaultAgentPath() : path);
}

void EnsureAgent(const AgentConnection& connection, const CString& path) {
    const CString program = AgentProgram(path);
    const ULONGLONG deadline = GetTickCount64() + kLongestStartMilliseconds;
    Handle agent;
    while (!AgentIsRunning() || !connection.Answers()) {
        RequireNoInterrupt();
        RequireAlive(agent, program);
        // An agent that is about to end still has its pipe for a while; then it is started anew.
        if (!agent && !AgentIsRunning()) {
            agent = StartAgent(program);
        }
        if (GetTickCount64() > deadline) {
            ThrowUnreachable(L"the agent does not answer");
        }
        Sleep(kPollMilliseconds);
    }
}

void WaitForAgentEnd() {
    const ULONGLONG deadline = GetTickCount64() + kLongestEndMilliseconds;
    while (AgentIsRunning()) {
        RequireNoInterrupt();
        if (GetTickCount64() > deadline) {
            ThrowUnreachable(L"the agent was told to end but is still there");
        }
        Sleep(kPollMilliseconds);
    }
}
