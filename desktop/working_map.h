#pragma once

#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

#include "support/text.h"

/// What the agent did to the copy of a map.
struct MapOutcome {
    bool damaged = false;              ///< the agent could not use the map and told all items as new
    bool written = false;              ///< there is a copy, and it is not what it was
    std::size_t known = 0;             ///< items that were in the map before the read
    std::vector<std::string> changes;  ///< identifiers of the items that came, changed or went in it
};

/// A copy of a map file, for the agent to bring up to date. The map itself is replaced only when all that the
/// agent reported has been kept, so a read that is cut short is repeated as a whole. All functions throw a
/// Failure if a file cannot be read or written.
class WorkingMap {
  public:
    /// Copies the map, if there is one yet. Of its sections only the one named, such as "[contact pim]", is
    /// looked at.
    WorkingMap(const CString& map, std::string section);
    WorkingMap(const WorkingMap&) = delete;
    WorkingMap& operator=(const WorkingMap&) = delete;
    /// Removes the copy.
    ~WorkingMap();

    /// The full path of the copy.
    [[nodiscard]] CString Path() const { return m_copy.c_str(); }

    /// Looks at the copy after a read.
    [[nodiscard]] MapOutcome Examine() const;

    /// Puts the copy into the place of the map, but leaves out what it says of the items that are missing:
    /// the next read brings them again. Returns where a map that the agent could not use is now; empty if it
    /// could.
    CString Keep(const std::vector<std::string>& missing) const;

  private:
    void RequireUsable() const;
    [[nodiscard]] bool Exists() const;
    [[nodiscard]] bool IsDamaged() const;
    /// What the agent compared with: the bytes of the map, none if there is no map or it is damaged.
    [[nodiscard]] std::string Before() const { return IsDamaged() ? std::string() : m_bytes; }
    void TakeBack(const std::vector<std::string>& missing) const;
    [[nodiscard]] CString SetAside() const;
    void RemoveCopies() const;

    std::filesystem::path m_map;
    std::filesystem::path m_copy;
    std::filesystem::path m_damagedCopy;  ///< the name that the agent gives to a copy that it cannot use
    std::string m_section;
    std::string m_bytes;  ///< of the map; none if there is no map yet
};
