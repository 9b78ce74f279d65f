#pragma once

#include "support/text.h"
#include "support/xml_parser.h"

/// A document to be written, in the making.
class WrittenDocument {
  public:
    /// `root` is the name of the root element. Throws a Failure if XML is not to be had.
    explicit WrittenDocument(const wchar_t* root);

    /// Adds an element unless its text is empty: that means the same as none. Throws a Failure without
    /// memory.
    void Add(const wchar_t* name, const CString& text);

    /// The whole document. Nothing can be added behind it.
    [[nodiscard]] CString Text();

  private:
    CXMLParser m_parser;
    ComPtr<IXMLDOMElement> m_root;
};
