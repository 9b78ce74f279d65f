#pragma once

#include <cstdint>

// What is to be done with an item, or was done with it: the one vocabulary of reading and writing.
constexpr std::int32_t kChangeUpdate = 4;
constexpr std::int32_t kChangeAdd = 8;
constexpr std::int32_t kChangeDelete = 32;
