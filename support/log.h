#pragma once

// The agent's lines in the log. Each is formatted here and goes out under the one module name.

#include "support/text.h"

/// The course of things: operations that begin and finish, results of the mail system.
constexpr int kLogTrace = 1;
/// Failures, start-up banners and a few decisions.
constexpr int kLogFailure = 3;

/// Writes one text, which brings its own line end if it has one.
void Log(int level, const wchar_t* text);

/// Writes one text formatted as by wprintf. A text for which there is no memory is lost: the log must not end
/// what it tells of.
template<class... Arguments>
void Log(int level, const wchar_t* format, const Arguments&... arguments) noexcept {
    try {
        Log(level, CString::Format(format, arguments...).c_str());
    } catch (...) {
    }
}

/// The word that ends the last line of an operation.
constexpr const wchar_t* Outcome(bool succeeded) {
    return succeeded ? L"Succeeded" : L"Failed";
}
