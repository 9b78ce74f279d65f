#pragma once

#include <cstdint>
#include <string_view>

#include "support/owners.h"
#include "support/text.h"

/// A file that several processes append to, and that is moved aside when it is full: NAME to NAME.1, NAME.1
/// to NAME.2, of which the old one is lost. An instance belongs to one thread at a time.
class RotatingFile {
  public:
    /// A full file has at least `sizeLimit` bytes.
    RotatingFile(CString path, std::uint64_t sizeLimit);

    /// Appends the bytes in one piece. Returns false if the file cannot be opened or written.
    bool Append(std::string_view bytes);

  private:
    enum class State { kGone, kFits, kFull };

    bool Open();
    [[nodiscard]] State Look() const;
    bool PrepareToWrite();
    void Rotate();

    CString m_path;
    std::uint64_t m_sizeLimit;
    /// Keeps the processes that write to this path from each other. Null if it cannot be had; appending works
    /// without it, only not quite as safely.
    Handle m_mutex;
    FileHandle m_file;
};
