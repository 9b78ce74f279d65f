#pragma once

// The arguments of a call as text, for the recorder.

#include <windows.h>

#include <mapidefs.h>

#include <string>

#include "localstore/property.h"

namespace localstore {

class NamedProperties;

/// Builds the text of one call's arguments. Numbers are hexadecimal with the prefix 0x, texts stand in
/// quotation marks, bytes are upper-case hexadecimal. A named property appears by its name, so that a text
/// does not depend on the order in which a store gave out identifiers.
class CallText {
  public:
    /// `names` are those of the store that the call belongs to; null where there are none.
    explicit CallText(NamedProperties* names) : m_names(names) {}

    CallText& Flags(const char* name, ULONG flags);
    CallText& Number(const char* name, long long number);
    CallText& String(const char* name, const wchar_t* text);
    CallText& Identifier(const char* name, const BYTE* bytes, std::size_t size);
    CallText& Tag(PropertyTag tag);
    CallText& Tags(const SPropTagArray* tags);
    CallText& Values(ULONG count, const SPropValue* values);
    CallText& Condition(const SRestriction* restriction);
    CallText& Sort(const SSortOrderSet* order);
    CallText& PropertyNames(ULONG count, const MAPINAMEID* const* names);
    CallText& Interface(const IID* iid);

    [[nodiscard]] std::string Take() { return std::move(m_text); }

  private:
    void Begin();
    [[nodiscard]] std::string TagText(PropertyTag tag) const;
    [[nodiscard]] std::string ValueText(const SPropValue* pointer) const;
    [[nodiscard]] std::string ConditionText(const SRestriction& restriction) const;

    NamedProperties* m_names;
    std::string m_text;
};

/// UTF-8 of a text.
std::string Utf8Of(std::wstring_view text);

}  // namespace localstore
