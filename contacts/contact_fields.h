#pragma once

// The vocabulary of contacts: each field's id, its element in a document that comes in, its member of the
// flat record, its element in a document that goes out, and its property.

#include <cstdint>
#include <span>

#include "contacts/contact_record.h"

constexpr std::int32_t kFirstNameField = 1;
constexpr std::int32_t kLastNameField = 2;
constexpr std::int32_t kMiddleNameField = 3;
constexpr std::int32_t kFullNameField = 5;

struct ContactField {
    std::int32_t id;
    const wide* in;                         ///< element below the root of a document that comes in
    CString& (*member)(tagContactFields&);  ///< null for a field that has none
    const wide* out;                        ///< element of a document that goes out; null for none of its own
    std::uint32_t tag;                      ///< the property's tag; 0 for a named property
    std::uint16_t namedId;                  ///< the id of a named property in PSETID_Address; 0 for none
};

/// All fields, grouped by meaning. PR_GENERATION goes out as the prefix of the name and
/// PR_DISPLAY_NAME_PREFIX as its suffix, but they come in and are written the other way round: the tags here
/// are those of writing, and the row's elements have a table of their own.
extern const std::span<const ContactField> kContactFields;

/// The field of an id, or null.
const ContactField* FindContactField(std::int32_t id);

/// An element of a document that goes out and the property of a table row that gives its text.
struct ContactRowElement {
    std::uint32_t tag;
    const wide* element;
};

/// The text properties of a contact's row: those that are asked for, in that order, and behind them those of
/// the business address, which a row may bring all the same.
extern const std::span<const ContactRowElement> kContactRowElements;

/// The element of a text property, or null.
const wide* FindContactRowElement(std::uint32_t tag);
