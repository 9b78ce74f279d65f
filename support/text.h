#pragma once

// The class library's text: a standard string of 16-bit units in the heap of the process.

#include <string>

#include "support/process_heap.h"
#include "support/wide.h"

using WideString = std::basic_string<wide, std::char_traits<wide>, ProcessHeapAllocator<wide>>;

/// A text of 16-bit units. A null pointer makes an empty text.
class CString : public WideString {
  public:
    CString() = default;
    CString(const wide* text) : WideString(text == nullptr ? WIDE("") : text) {}
    CString(WideView text) : WideString(text) {}
    CString(WideString text) noexcept : WideString(std::move(text)) {}
    CString(const wide* text, std::size_t length) : WideString(text, length) {}

    /// The text as a view, for the functions that take one.
    [[nodiscard]] WideView View() const noexcept { return {data(), size()}; }

    /// Removes white space at both ends and returns this text.
    CString& Trim();

    /// True if both texts are equal when ASCII letters are compared without regard to case.
    [[nodiscard]] bool EqualsNoCase(WideView other) const noexcept;

    /// The decimal text of a number.
    static CString FromNumber(long long number);

#ifdef _WIN32
    /// A text formatted as by wprintf: %s is a text of wide characters.
    static CString Format(const wide* format, ...);
#endif
};

namespace NAMESPACE_COMMON {

/// A text from which tokens can be cut.
class CStringEx : public CString {
  public:
    using CString::CString;
    CStringEx() = default;
    explicit CStringEx(const CString& text) : CString(text) {}
    CStringEx(const CStringEx&) = default;
    CStringEx(CStringEx&&) noexcept = default;
    CStringEx& operator=(const CStringEx&) = default;
    CStringEx& operator=(CStringEx&&) noexcept = default;
    virtual ~CStringEx() = default;

    /// Cuts off and returns the text in front of the separator, and removes the separator too. Without the
    /// separator in it the whole text is cut off. An empty separator returns a copy and cuts nothing.
    CString NextToken(WideView separator);
};

}  // namespace NAMESPACE_COMMON
