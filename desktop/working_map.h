#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "support/text.h"

/// What the agent did to the copy of a map.
struct MapOutcome {
    bool written = false;              ///< there is a copy, and it is not what it was
    std::vector<std::string> changes;  ///< identifiers of the items that came, changed or went in it
    CString setAside;                  ///< where a map that it could not use is now; empty if it could
};

/// A copy of a map file, for the agent to bring up to date. The map itself is replaced only when all that the
/// agent reported has been kept, so a read that is cut short is repeated as a whole. All functions throw a
/// Failure if a file cannot be read or written.
class WorkingMap {
  public:
    /// Copies the map, if there is one yet.
    explicit WorkingMap(const CString& map);
    WorkingMap(const WorkingMap&) = delete;
    WorkingMap& operator=(const WorkingMap&) = delete;
    /// Removes the copy.
    ~WorkingMap();

    /// The full path of the copy.
    [[nodiscard]] CString Path() const { return m_copy.c_str(); }

    /// Looks at the copy after a read. A map that the agent set aside is named after the map again.
    [[nodiscard]] MapOutcome Examine() const;

    /// Puts the copy into the place of the map.
    void Keep() const;

  private:
    void RequireUsable() const;
    [[nodiscard]] CString TakeSetAside() const;

    std::filesystem::path m_map;
    std::filesystem::path m_copy;
    std::string m_before;  ///< the bytes of the map; none if there is no map yet
};
