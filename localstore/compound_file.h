#pragma once

// A look over a structured storage file (MS-CFB) before the platform opens it: the platform follows some
// chains of sectors that lead back to themselves without end.

#include "localstore/property.h"

namespace localstore {

/// Null if every chain of the file ends, no sector belongs to two of them and the trees of names are trees;
/// otherwise what is wrong, as an English clause. Linear in the length of the file.
const char* DamageOfCompoundFile(const Bytes& file);

}  // namespace localstore
