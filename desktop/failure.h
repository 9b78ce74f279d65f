#pragma once

#include <exception>

#include "support/text.h"

/// What the exit status of the program says. The numbers are part of its interface.
enum class ExitCode : int {
    kOk = 0,
    kUsage = 1,
    kAgentUnreachable = 2,
    kLogonRefused = 3,
    kReadFailed = 4,
    kInterrupted = 5,
    kOutputFailed = 6,
    kBusy = 7,
    kFolderRefused = 8,
    kNotSetUp = 9,
    kDeletionsDoubted = 10,
    kDocumentRefused = 11,
};

/// Ends the program with a message for the user and an exit status.
class Failure : public std::exception {
  public:
    Failure(ExitCode code, CString message) : m_code(code), m_message(std::move(message)) {}
    [[nodiscard]] const char* what() const noexcept override { return "desktop program failure"; }
    [[nodiscard]] ExitCode Code() const noexcept { return m_code; }
    [[nodiscard]] const CString& Message() const noexcept { return m_message; }

  private:
    ExitCode m_code;
    CString m_message;
};
