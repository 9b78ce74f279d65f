#pragma once

#include <cstdint>
#include <memory>

#include "calendar/recurrence_pattern.h"

/// The most dates or exceptions that an array is made for. A count beyond it is treated as one for which
/// there is no memory: a blob of a few bytes must not take gigabytes.
constexpr std::uint32_t kMostInstances = 1'048'576;

/// The most of them that the blob may end before; these are zero.
constexpr std::uint32_t kMostMissing = 4096;

/// Reads PidLidAppointmentRecur (MS-OXOCAL 2.2.1.44.5) into a new record. Nothing is checked for
/// plausibility: what a short or damaged blob does not hold stays zero, and the rest is read as it stands.
/// Returns the bytes that the blob says to take up, modulo 2^32; 0 for a null pointer and if nothing could be
/// read.
std::uint32_t ParseRecurrenceBlob(const std::uint8_t* bytes, std::uint32_t size,
                                  NAMESPACE_MAPI::tagRecurrencePattern& pattern);

/// Lays a series out as PidLidAppointmentRecur: its head, its pattern and its end. Deleted and changed
/// instances are left out, and both of the later versions are the ones that this layout has. Returns 1 with
/// the bytes and their count, which is 76, 80 or 84; 0 with both as they were for a null output and if there
/// is no memory.
int WriteRecurrenceBlob(const NAMESPACE_MAPI::tagRecurrencePattern& pattern,
                        std::unique_ptr<std::uint8_t[]>* bytes, std::uint32_t& size);
