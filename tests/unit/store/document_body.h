#pragma once

#include "support/xml_parser.h"

/// A document text behind its declaration, with line feeds as they were put in.
inline CString Body(CXMLParser& document) {
    CString text = document.GetDocumentText();
    text.erase(0, text.find(L"?>") + 2);
    text.Trim();
    for (std::size_t at = 0; (at = text.find(L"\r\n", at)) != CString::npos;) {
        text.erase(at, 1);
    }
    return text.Trim();
}
