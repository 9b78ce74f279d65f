#pragma once

// The elements of a contact in a document that was read, and what they are called in one that is written.

#include <cstdint>
#include <span>

#include "support/text.h"

struct ContactPair {
    const wide* read;
    const wide* write;
};

/// The elements whose text is handed on, in the order in which they are written. The two ends of the name are
/// crossed, so that each value comes back to the property that it was read from. The instant messaging
/// address is not among them: its service decides what it is called.
extern const std::span<const ContactPair> kContactPairs;

/// The element that a written document has for an instant messaging address of the service that the attribute
/// IMType of a read one gives. A service that is not known is part of the address itself.
const wide* InstantMessagingElement(std::int32_t service);
