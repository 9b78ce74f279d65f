#pragma once

#include <initializer_list>

#include "support/text.h"
#include "support/xml_parser.h"

/// One document from the agent, taken apart.
class ItemDocument {
  public:
    /// `root` is the name of the root element, such as "Contact".
    ItemDocument(const wchar_t* root, WideView text);

    /// True if the text was well-formed and has the root element. Every field of any other document is empty.
    [[nodiscard]] bool IsValid() const { return m_valid; }
    [[nodiscard]] WideView Text() const { return m_text; }

    /// True if there is an element of this name below the root.
    bool Has(const wchar_t* name);
    /// The text of the first element of this name below the root; empty if there is none.
    CString Field(const wchar_t* name);
    /// The first of these elements that is not empty.
    CString FirstField(std::initializer_list<const wchar_t*> names);

  private:
    CString m_root;
    WideView m_text;
    CXMLParser m_parser;
    bool m_valid = false;
};
