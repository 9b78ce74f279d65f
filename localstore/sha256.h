#pragma once

// The SHA-256 digest of FIPS 180-4, from which identifiers are made.

#include <array>
#include <cstdint>

#include "localstore/property.h"

namespace localstore {

std::array<std::uint8_t, 32> Sha256(const Bytes& message);

}  // namespace localstore
