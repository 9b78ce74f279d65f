#pragma once

// The log lines that operations have in common.

#include <windows.h>

/// A line "CMAPIObject::<operation> - <text>".
void LogLine(int level, const wchar_t* operation, const wchar_t* text);

/// The result of a call, in a line "CMAPIObject::<operation> - <call>(0X<result>)".
void LogResult(const wchar_t* operation, const wchar_t* call, HRESULT result);

/// The last line of an operation that tells its outcome.
void LogFinish(const wchar_t* operation, bool succeeded);
