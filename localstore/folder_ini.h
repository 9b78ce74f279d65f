#pragma once

// The optional folder.ini of a profile, store or mail folder.

#include <map>
#include <optional>

#include "localstore/property.h"

namespace localstore {

/// Sections with keys and values, as in "[Folder]" and "Name=Private". Names of sections and keys are
/// compared without regard to the case of ASCII letters, blanks around names and values are cut, and lines
/// that begin with ";" or "#" are comments. Of two equal keys the first counts.
class FolderIni {
  public:
    FolderIni() = default;
    explicit FolderIni(std::basic_string_view<wide> text);

    /// The value of a key; nothing if it is not there, which is not the same as an empty value.
    [[nodiscard]] std::optional<Text> Find(std::basic_string_view<wide> section,
                                           std::basic_string_view<wide> key) const;
    /// The same for a yes or no: 1, true and yes are yes, everything else is no.
    [[nodiscard]] std::optional<bool> FindFlag(std::basic_string_view<wide> section,
                                               std::basic_string_view<wide> key) const;

  private:
    std::map<std::pair<Text, Text>, Text> m_values;
};

}  // namespace localstore
