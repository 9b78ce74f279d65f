#pragma once

// The building of an item's document by direct calls of the XML service, which is the documents' part of a
// read's floor.

#include <windows.h>

#include <msxml2.h>

#include <functional>
#include <span>

#include "document_parts.h"
#include "support/owners.h"

namespace bench {

/// Makes an empty document with its declaration. COM has to be initialised. This and what follows raises
/// std::runtime_error where the service fails.
ComPtr<IXMLDOMDocument> MakeDocument();

/// Builds a document again and calls something before each element is appended.
Bstr Build(const DocumentParts& parts,
           const std::function<void(IXMLDOMDocument* document, const ElementPart& part)>& beforeElement = {});

/// The paths that the agent looks up in an appointment before it appends an element: what the exceptions of a
/// series deviate from, and at the end whether there is a kind of calendar already. None for other elements.
std::span<const wchar_t* const> SelectionsBefore(const ElementPart& part);

/// Looks an element up by its path and takes its text, if it is there.
void Select(IXMLDOMDocument* document, const wchar_t* path);

}  // namespace bench
