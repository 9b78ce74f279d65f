#include "own_document.h"

#include <stdexcept>

namespace bench {

namespace {

void Require(bool done, const char* what) {
    if (!done) {
        throw std::runtime_error(std::string(what) + " fails");
    }
}

/// The depth that gives an element the white space in front of it: a line feed and as many tabs.
int DepthOf(const ElementPart& part) {
    return static_cast<int>(part.indent.size()) - 1;
}

}  // namespace

CString SameText(const ElementPart& part) {
    return {part.text.data(), part.text.size()};
}

CString BuildByClass(CXMLParser& document, const DocumentParts& parts, const TextSource& textOf) {
    Require(document.InitDocument() && document.CreateHeader(), "the making of a document");
    Require(document.CreateRootElement(parts.root.c_str()) != nullptr, "CreateRootElement");
    for (const ElementPart& part : parts.elements) {
        const CString text = textOf(part);
        const ComPtr<IXMLDOMElement> element =
            document.CreateChildElement(part.name.c_str(), text.c_str(), nullptr, true, DepthOf(part));
        Require(element != nullptr, "CreateChildElement");
        for (const Attribute& attribute : part.attributes) {
            Require(document.SetAttribute(attribute.name.c_str(), attribute.value.c_str(), element.Get()),
                    "SetAttribute");
        }
    }
    return document.GetDocumentText();
}

}  // namespace bench
