#pragma once

// A document of an item, taken apart into what has to be told to the XML service to have it built again.

#include <string>
#include <string_view>
#include <vector>

namespace bench {

/// The elements before which the agent looks into the document.
constexpr std::wstring_view kExceptionsElement = L"ExceptionRule";
constexpr std::wstring_view kCalendarKindElement = L"lCalType";

struct Attribute {
    std::wstring name;
    std::wstring value;
};

/// One element below the root, with the white space in front of it.
struct ElementPart {
    std::wstring indent;
    std::wstring name;
    std::vector<Attribute> attributes;
    std::wstring text;
};

struct DocumentParts {
    std::wstring root;
    std::vector<ElementPart> elements;
};

/// Takes a document of the agent apart. Raises std::runtime_error for what is none.
DocumentParts TakeApart(const std::wstring& document);

}  // namespace bench
