#pragma once

// Single named properties of an appointment. The value is taken as the kind that is asked for, whatever type
// the store gave it; only a binary value has to be one, since it brings a pointer. Absent properties come
// with a warning and count as failures. Nothing here logs.

#include <cstdint>
#include <memory>

#include "mapi/named_properties.h"
#include "timezone/ole_date_time.h"

/// Reads a time, which is UTC in the store, as local time. Always asks in PSETID_Appointment, whatever set is
/// given. Returns 1, or 0 with the value that stands for no date.
int GetNamedDateProperty(IMessage* message, ULONG propertySet, LONG id, COleDateTime& value);

/// Reads a yes or no, widened to 32 bits. Returns 1, or 0 with 0.
int GetNamedBoolProperty(IMessage* message, ULONG propertySet, LONG id, std::int32_t& value);

/// Reads a number of 32 bits. Returns 1, or 0 with 0.
int GetNamedLongProperty(IMessage* message, ULONG propertySet, LONG id, std::int32_t& value);

/// Reads bytes into a new array, or a null one if there are none or there is no memory for them; the count
/// tells how many the store has. What the store refuses as too large for a value comes through a stream.
/// Always asks in PSETID_Appointment, whatever set is given. Returns 1, or 0 with no bytes.
int GetNamedBinaryProperty(IMessage* message, ULONG propertySet, LONG id, std::uint32_t& count,
                           std::unique_ptr<std::uint8_t[]>& bytes);
