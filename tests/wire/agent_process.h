#pragma once

// The real agent as a process of its own, with a small store of a few contacts.

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "support/owners.h"

/// The file that an environment variable of the test program names. Throws std::runtime_error without one.
[[nodiscard]] std::filesystem::path FileNamedBy(const wchar_t* variable);

/// Starts the agent, whose path the environment variable ZEB_AGENT gives, and ends it at the latest when this
/// object goes. Its local store and its log lie in a temporary folder, which goes as well.
class AgentProcess {
  public:
    /// A store with one contact a surname, in this order, all with the same body. With a library for
    /// `mailSystem` a copy of the agent runs, beside which that library stands as its mail system.
    explicit AgentProcess(const std::vector<std::wstring>& surnames = {}, const std::wstring& body = {},
                          const std::filesystem::path& mailSystem = {});
    AgentProcess(const AgentProcess&) = delete;
    AgentProcess& operator=(const AgentProcess&) = delete;
    ~AgentProcess();

    /// A folder of the store, made if it is not there. One named Calendar is the default calendar folder of
    /// sessions that begin later.
    [[nodiscard]] std::filesystem::path MakeMailFolder(const std::wstring& name) const;
    [[nodiscard]] bool IsRunning() const;
    /// Waits for the end of the process and gives its exit status; nothing if it goes on living.
    [[nodiscard]] std::optional<DWORD> WaitForExit() const;
    /// The folder of the contacts, whose files are named 1001.msg, 1002.msg ... at the start.
    [[nodiscard]] std::filesystem::path Contacts() const;
    /// What the agent has logged so far, in UTF-8.
    [[nodiscard]] std::string Log() const;

  private:
    std::filesystem::path m_programs;  ///< the copy's folder; empty without one
    std::filesystem::path m_program;
    std::filesystem::path m_folder;
    Handle m_job;
    Handle m_process;
};
