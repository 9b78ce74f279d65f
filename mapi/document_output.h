#pragma once

// How the folder document and the profile document begin and end.

#include "support/xml_parser.h"

/// Makes an empty document with its declaration and its root, named and marked as Outlook's. A step that
/// fails is logged in the operation's name and ends the operation.
void BeginOutlookDocument(CXMLParser& document, const wchar_t* root, const wchar_t* operation);

/// Puts a line break in front of a parent's closing tag, which then stands at the parent's own depth. A null
/// parent means the root.
void EndElement(CXMLParser& document, IXMLDOMNode* parent, int depth);

/// Empties the caller's buffer and saves the document. Without a path the document goes nowhere, and the
/// buffer stays as it is: what a desktop program hands over has no room for a document. A failure to save is
/// logged with the given line and ends the operation.
void SaveOutlookDocument(CXMLParser& document, const CString& path, wchar_t* buffer,
                         const wchar_t* failureLine);

/// The words of an attribute that is true or false.
constexpr const wchar_t* BooleanText(bool value) {
    return value ? L"true" : L"false";
}
