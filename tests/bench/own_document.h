#pragma once

// The building of an item's document by the agent's own class, which makes each text one of the XML service
// and takes the document out of it.

#include <functional>

#include "document_parts.h"
#include "support/xml_parser.h"

namespace bench {

/// Gives the text of an element that is about to be appended.
using TextSource = std::function<CString(const ElementPart& part)>;

/// The text that an element has.
CString SameText(const ElementPart& part);

/// Builds a document again and gives its text. The document is still there then.
CString BuildByClass(CXMLParser& document, const DocumentParts& parts, const TextSource& textOf = &SameText);

}  // namespace bench
