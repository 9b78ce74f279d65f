#pragma once

// The class library's exceptions. They end an operation; expected outcomes are values.

#include <cstdint>
#include <exception>

/// A result code of the platform: negative values are failures.
using ComErrorCode = std::int32_t;

constexpr ComErrorCode kErrorFail = static_cast<ComErrorCode>(0x80004005);
constexpr ComErrorCode kErrorInvalidArgument = static_cast<ComErrorCode>(0x80070057);
constexpr ComErrorCode kErrorOutOfMemory = static_cast<ComErrorCode>(0x8007000E);

/// A failed precondition, on its way to the catch-all of its own function.
class CUserException : public std::exception {
  public:
    [[nodiscard]] const char* what() const noexcept override { return "user exception"; }
};

/// Memory that could not be had.
class CMemoryException : public std::exception {
  public:
    [[nodiscard]] const char* what() const noexcept override { return "out of memory"; }
};

/// An index outside an array.
class CInvalidArgException : public std::exception {
  public:
    [[nodiscard]] const char* what() const noexcept override { return "invalid argument"; }
};

/// A failure with a result code of the platform.
class COleException : public std::exception {
  public:
    explicit COleException(ComErrorCode code) noexcept : m_sc(code) {}
    [[nodiscard]] const char* what() const noexcept override { return "platform error"; }
    /// The code that the exception carries.
    [[nodiscard]] ComErrorCode Code() const noexcept { return m_sc; }

  private:
    ComErrorCode m_sc;
};

/// Ends the running operation through its own catch-all.
[[noreturn]] void AfxThrowUserException();

/// Raises a memory exception for 0x8007000E and an exception with the code for any other value.
[[noreturn]] void RaiseComError(ComErrorCode code);

#ifdef _WIN32
/// Raises the calling thread's last error as a platform code.
[[noreturn]] void RaiseLastError();
#endif
