#pragma once

// Restrictions of tables: RES_AND, RES_OR, RES_NOT, RES_PROPERTY, RES_CONTENT and RES_EXIST.

#include <windows.h>

#include <mapidefs.h>

#include <compare>
#include <memory>

#include "localstore/property_source.h"

namespace localstore {

/// A restriction of its own, without ties to the client's structures.
class Condition {
  public:
    Condition() = default;
    Condition(const Condition&) = delete;
    Condition& operator=(const Condition&) = delete;
    virtual ~Condition() = default;
    [[nodiscard]] virtual bool Holds(const PropertySource& row) const = 0;
};

/// Takes a client's restriction. One of another kind or operator ends the operation with MAPI_E_TOO_COMPLEX,
/// one with a null pointer with MAPI_E_INVALID_PARAMETER.
std::unique_ptr<const Condition> ConditionOf(const SRestriction* restriction);

/// Compares two values of one kind: numbers by value, texts and binaries unit by unit. Unordered if the kinds
/// differ or have no order. `codePage` is that of 8-bit texts on the left.
std::partial_ordering CompareValues(const Property& left, const Property& right, UINT codePage);

}  // namespace localstore
