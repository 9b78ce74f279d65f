#pragma once

// Documents of the XML service, for tests and measurements that make their own, as the agent does.

#include <windows.h>

// Behind the base types, which it uses.
#include <msxml2.h>

#include "support/owners.h"

/// The class of documents that every Windows has. The published headers name a newer one by the same
/// identifier.
inline constexpr CLSID kDocumentClass = {
    0x2933BF90, 0x7B36, 0x11D2, {0xB2, 0x0E, 0x00, 0xC0, 0x4F, 0x98, 0x3E, 0x60}};
inline constexpr IID kDocumentInterface = {
    0x2933BF81, 0x7B36, 0x11D2, {0xB2, 0x0E, 0x00, 0xC0, 0x4F, 0x98, 0x3E, 0x60}};

/// Makes a document with nothing in it, on a thread that has COM. Returns the service's result.
inline HRESULT MakeXmlDocument(ComPtr<IXMLDOMDocument>& document) {
    return CoCreateInstance(kDocumentClass, nullptr, CLSCTX_INPROC_SERVER, kDocumentInterface,
                            reinterpret_cast<void**>(document.GetAddressOf()));
}

/// Appends the declaration that the agent's documents begin with. Returns the service's result.
inline HRESULT AppendDeclaration(IXMLDOMDocument* document) {
    const Bstr target(SysAllocString(L"xml"));
    const Bstr data(SysAllocString(L"version='1.0' encoding='utf-8'"));
    ComPtr<IXMLDOMProcessingInstruction> declaration;
    const HRESULT result = document->createProcessingInstruction(target.Get(), data.Get(), &declaration);
    return result == S_OK ? document->appendChild(declaration.Get(), nullptr) : result;
}
