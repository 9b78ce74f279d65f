#pragma once

// Names of message files: readable ones, made of the text that a user knows an item by.

#include "localstore/property.h"

namespace localstore {

/// True for a name that ends in ".msg", in any case of letters.
bool IsMessageFileName(std::basic_string_view<wide> name);

/// A file name without extension that every Windows file system takes, at most 80 units long, made of a
/// title. An empty or unusable title gives "Message".
Text FileNameOfTitle(std::basic_string_view<wide> title);

}  // namespace localstore
