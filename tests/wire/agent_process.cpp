#include "tests/wire/agent_process.h"

#include <fstream>
#include <iterator>
#include <stdexcept>

#include "tests/unit/new_folder.h"
#include "tests/wire/contact_file.h"
#include "tests/wire/pipe_stream.h"

namespace {

constexpr const char* kLogName = "agent.log";

std::filesystem::path AgentPath() {
    wchar_t value[MAX_PATH] = L"";
    if (GetEnvironmentVariableW(L"ZEB_AGENT", value, MAX_PATH) == 0) {
        throw std::runtime_error("ZEB_AGENT does not name the agent");
    }
    // A path of the machine that builds, whose root is drive Z: for the programs.
    return std::filesystem::path(value[0] == L'/' ? L"Z:" + std::wstring(value) : value).make_preferred();
}

std::filesystem::path ContactsBelow(const std::filesystem::path& root) {
    return root / "Work" / "Mail" / "Contacts";
}

std::filesystem::path MakeStore(const std::vector<std::wstring>& surnames, const std::wstring& body) {
    std::filesystem::path root = MakeNewFolder(L"zeb-wire");
    const std::filesystem::path folder = ContactsBelow(root);
    std::filesystem::create_directories(folder);
    int number = 0;
    for (const std::wstring& surname : surnames) {
        WriteContactFile(folder / (std::to_string(1000 + ++number) + ".msg"), surname, body);
    }
    return root;
}

/// Processes in it end with its last handle, so that no agent is left over from a test program that crashed.
Handle MakeJob() {
    Handle job(CreateJobObjectW(nullptr, nullptr));
    JOBOBJECT_EXTENDED_LIMIT_INFORMATION limits{};
    limits.BasicLimitInformation.LimitFlags = JOB_OBJECT_LIMIT_KILL_ON_JOB_CLOSE;
    SetInformationJobObject(job.Get(), JobObjectExtendedLimitInformation, &limits, sizeof(limits));
    return job;
}

}  // namespace

AgentProcess::AgentProcess(const std::vector<std::wstring>& surnames, const std::wstring& body)
    : m_program(AgentPath()), m_folder(MakeStore(surnames, body)), m_job(MakeJob()) {
    SetEnvironmentVariableW(L"LOCALSTORE_ROOT", m_folder.c_str());
    SetEnvironmentVariableW(L"FENNIC64_LOG", (m_folder / kLogName).c_str());
    SetEnvironmentVariableW(L"FENNIC64_LEVEL", L"1");
    std::wstring command = L"\"" + m_program.wstring() + L"\"";
    STARTUPINFOW startup{};
    startup.cb = sizeof(startup);
    PROCESS_INFORMATION process{};
    if (CreateProcessW(nullptr, command.data(), nullptr, nullptr, FALSE, CREATE_SUSPENDED, nullptr, nullptr,
                       &startup, &process) == 0) {
        throw std::runtime_error("the agent does not start, error " + std::to_string(GetLastError()));
    }
    m_process.Reset(process.hProcess);
    const Handle thread(process.hThread);
    AssignProcessToJobObject(m_job.Get(), m_process.Get());
    ResumeThread(thread.Get());
}

AgentProcess::~AgentProcess() {
    if (IsRunning()) {
        TerminateProcess(m_process.Get(), 1);
        WaitForSingleObject(m_process.Get(), kPatienceMilliseconds);
    }
    std::error_code ignored;
    std::filesystem::remove_all(m_folder, ignored);
}

std::filesystem::path AgentProcess::MakeMailFolder(const std::wstring& name) const {
    std::filesystem::path folder = m_folder / "Work" / "Mail" / name;
    std::filesystem::create_directories(folder);
    return folder;
}

bool AgentProcess::IsRunning() const {
    return WaitForSingleObject(m_process.Get(), 0) == WAIT_TIMEOUT;
}

std::optional<DWORD> AgentProcess::WaitForExit() const {
    DWORD status = 0;
    if (WaitForSingleObject(m_process.Get(), kPatienceMilliseconds) != WAIT_OBJECT_0 ||
        GetExitCodeProcess(m_process.Get(), &status) == 0) {
        return std::nullopt;
    }
    return status;
}

std::filesystem::path AgentProcess::Contacts() const {
    return ContactsBelow(m_folder);
}

std::string AgentProcess::Log() const {
    std::ifstream file(m_folder / kLogName, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}
