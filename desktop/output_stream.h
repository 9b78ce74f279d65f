#pragma once

#include <windows.h>

#include <cstddef>

#include "support/text.h"

/// Standard output or standard error of this program.
class OutputStream {
  public:
    /// `which` is STD_OUTPUT_HANDLE or STD_ERROR_HANDLE.
    explicit OutputStream(DWORD which);

    [[nodiscard]] bool IsConsole() const { return m_isConsole; }
    /// The columns of the console that can be written without a line break; 0 if this is no console.
    [[nodiscard]] std::size_t Columns() const;

    /// Writes a text: to a console as it is, to anything else in UTF-8. Returns false if it could not be
    /// written.
    bool Write(WideView text) const;

  private:
    bool WriteConsoleText(WideView text) const;
    bool WriteBytes(WideView text) const;

    HANDLE m_handle;
    bool m_isConsole;
};

/// Writes a text to standard output. Throws a Failure if it could not be written.
void PrintOutput(WideView text);
