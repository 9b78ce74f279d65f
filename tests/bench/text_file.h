#pragma once

// The documents that an agent sent, in a file: each as its number of 16-bit units in 32 bits, little-endian,
// and the units behind it.

#include <string>
#include <vector>

namespace bench {

/// Both raise std::runtime_error if the file cannot be had or is damaged.
void WriteTexts(const std::wstring& path, const std::vector<std::wstring>& texts);
std::vector<std::wstring> ReadTexts(const std::wstring& path);

}  // namespace bench
