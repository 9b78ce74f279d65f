#pragma once

// How an operation of the store ends early: with the result code that its caller is to see.

#include <windows.h>

#include <wtypes.h>

#include <mapicode.h>

#include <exception>

namespace localstore {

class StoreError : public std::exception {
  public:
    explicit StoreError(HRESULT code) noexcept : m_code(code) {}
    [[nodiscard]] const char* what() const noexcept override { return "store error"; }
    [[nodiscard]] HRESULT Code() const noexcept { return m_code; }

  private:
    HRESULT m_code;
};

/// Ends the operation with a result code unless the condition holds.
inline void Require(bool condition, HRESULT code) {
    if (!condition) {
        throw StoreError(code);
    }
}

/// Ends the operation if a result of the platform is a failure.
inline void RequireSuccess(HRESULT result) {
    Require(SUCCEEDED(result), result);
}

/// The MAPI result code of an error of the file system.
HRESULT CodeOfFileError(DWORD error);

/// Ends the operation with the calling thread's last error, as CodeOfFileError gives it.
[[noreturn]] void ThrowFileError();

}  // namespace localstore
