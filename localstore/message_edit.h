#pragma once

// What a store does to a message on behalf of its writers: properties that follow others, times, and strings
// in Unicode.

#include <cstdint>

#include "localstore/msg_content.h"

namespace localstore {

/// Puts a property into a message, under an identifier of its file. A new body makes the other forms of the
/// body invalid, and a subject brings its prefix and its normalized form.
void PutProperty(MessageContent& message, Property property);

/// Removes a property with what follows from it. False if there was none.
bool TakeProperty(MessageContent& message, PropertyId id);

/// Prepares a message for its file: the time of change, the time of creation if it has none, what every
/// message needs, and 8-bit strings made into Unicode where that loses nothing. Times are FILETIMEs in UTC.
void PrepareForSaving(MessageContent& message, std::uint64_t created, std::uint64_t changed);

/// What a user knows the message by: subject, else display name.
Text TitleOf(const MessageContent& message);

}  // namespace localstore
