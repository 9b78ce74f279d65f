#pragma once

#include <array>
#include <map>
#include <mutex>
#include <optional>
#include <string_view>

#include "libraries/fennic/log_settings.h"
#include "libraries/fennic/rotating_file.h"
#include "support/text.h"

/// Writes the lines of a process. Callable from any thread.
class LogWriter {
  public:
    explicit LogWriter(LogSettings settings) : m_settings(std::move(settings)) {}

    /// Appends the text to the module's log if its level is written. Null and empty texts write nothing.
    /// Throws only for lack of memory.
    void Write(const wchar_t* module, int level, const wchar_t* text);

  private:
    /// The files of one module, in the order in which they are tried: the named one, the one beside the
    /// process image, the one in the temporary folder. A file that could not be written is tried again with
    /// the next line.
    using Candidates = std::array<std::optional<RotatingFile>, 3>;

    Candidates MakeCandidates(const CString& fileName) const;

    const LogSettings m_settings;
    std::mutex m_mutex;
    std::map<CString, Candidates> m_files;
};
