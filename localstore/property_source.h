#pragma once

// Where the properties of an object or table row come from, and what GetProps makes of them.

#include <windows.h>

#include <mapidefs.h>

#include <optional>
#include <vector>

#include "localstore/entry_id.h"
#include "localstore/values.h"

namespace localstore {

/// The properties of one object as its clients see them: named ones under the identifiers of the store.
class PropertySource {
  public:
    PropertySource() = default;
    PropertySource(const PropertySource&) = delete;
    PropertySource& operator=(const PropertySource&) = delete;
    virtual ~PropertySource() = default;

    /// The property of an identifier in the type that it is kept in.
    [[nodiscard]] virtual std::optional<Property> Find(PropertyId id) const = 0;
    /// The tags of all properties.
    [[nodiscard]] virtual std::vector<PropertyTag> Tags() const = 0;
    /// The code page of 8-bit strings.
    [[nodiscard]] virtual UINT CodePage() const { return CP_ACP; }
};

/// Properties that are all known from the start, such as the row of a profile.
class FixedSource : public PropertySource {
  public:
    explicit FixedSource(PropertyBag properties) : m_properties(std::move(properties)) {}
    [[nodiscard]] std::optional<Property> Find(PropertyId id) const override;
    [[nodiscard]] std::vector<PropertyTag> Tags() const override;

  private:
    PropertyBag m_properties;
};

// Properties that the store computes.
Property LongProperty(PropertyTag tag, LONG value);
Property BooleanProperty(PropertyTag tag, bool value);
Property TimeProperty(PropertyTag tag, std::uint64_t fileTime);
Property IdProperty(PropertyTag tag, const EntryId& id);

/// The tags of a client's list. Ends the operation if the list is not valid.
std::vector<PropertyTag> TagsOfClient(const SPropTagArray* tags);

/// Fills one value for each tag, with its memory under `parent`. Returns false if one of them became an
/// error.
bool FillValues(const PropertySource& source, const std::vector<PropertyTag>& tags, bool unicode,
                std::size_t longest, void* parent, SPropValue* values);

/// IMAPIProp::GetProps.
HRESULT GetPropsOf(const PropertySource& source, const SPropTagArray* tags, ULONG flags, ULONG* count,
                   LPSPropValue* values);

/// IMAPIProp::GetPropList.
HRESULT GetPropListOf(const PropertySource& source, ULONG flags, LPSPropTagArray* tags);

}  // namespace localstore
