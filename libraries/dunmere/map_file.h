#pragma once

// The file of a map on the disk.

#include <windows.h>

#include "libraries/dunmere/change_map.h"

class MapFile {
  public:
    explicit MapFile(CString path) : m_path(std::move(path)) {}

    /// Reads the map. A file that is missing is an empty map. One that is damaged, or of a later version, is
    /// renamed out of the way and then counts as missing. One that cannot be read or renamed counts as
    /// missing too, but is not replaced: what it holds may be good. The log tells of all but the first.
    [[nodiscard]] ChangeMap Read();

    /// True if Read found a map that can be kept as it is.
    [[nodiscard]] bool IsGood() const noexcept { return m_good; }

    /// Writes a map by writing another file beside it and renaming, so that the name always stands for the
    /// old or the new map. A failure leaves the old one and is told in the log: the next comparison then
    /// finds the same changes again.
    void Replace(const std::string& text) noexcept;

  private:
    [[nodiscard]] bool ReadBytes(std::string& bytes);
    void SetAside(const wchar_t* reason);
    void Write(const std::string& text) const;

    CString m_path;
    bool m_good = false;
    bool m_replaceable = false;
};
