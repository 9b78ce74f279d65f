#pragma once

/// The logging library's one function. Appends the text, as it is, to the log of the module. Level 1 is the
/// course of things and level 3 a failure. Callable from any thread; it never fails visibly.
extern "C" void OutputString(const wchar_t* module, int level, const wchar_t* text);
