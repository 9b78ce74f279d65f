#pragma once

// What ends the making of the sample.

#include <windows.h>

#include <string>

namespace sample {

/// A failure with what was being done and the platform's result code.
struct SampleError {
    std::wstring doing;
    HRESULT result;
};

/// Ends the program's work unless a call succeeded outright: warnings count as failures, as the sample asks
/// for nothing that a store may leave out.
inline void Require(HRESULT result, const wchar_t* doing) {
    if (result != S_OK) {
        throw SampleError{doing, result};
    }
}

/// The same for functions that report through GetLastError.
inline void RequireTrue(bool succeeded, const wchar_t* doing) {
    if (!succeeded) {
        throw SampleError{doing, HRESULT_FROM_WIN32(GetLastError())};
    }
}

}  // namespace sample
