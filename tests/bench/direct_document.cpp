#include "direct_document.h"

#include "require_result.h"
#include "tests/xml_document.h"

namespace bench {

namespace {

// What the exceptions of a series deviate from, and the kind of calendar, with the root's name as the agent
// asks for it.
constexpr const wchar_t* kDefaults[] = {L"/Calendar/Description", L"/Calendar/Location",
                                        L"/Calendar/bAllDayEvent", L"/Calendar/lReminderMinutes"};
constexpr const wchar_t* kKind[] = {L"/Calnedar/lCalType"};

Bstr MakeBstr(const std::wstring& text) {
    Bstr result(SysAllocStringLen(text.data(), static_cast<UINT>(text.size())));
    RequireResult(result ? S_OK : E_OUTOFMEMORY, "SysAllocStringLen");
    return result;
}

void AppendElement(IXMLDOMDocument* document, IXMLDOMElement* root, const ElementPart& part) {
    if (!part.indent.empty()) {
        ComPtr<IXMLDOMText> indent;
        RequireResult(document->createTextNode(MakeBstr(part.indent).Get(), &indent), "createTextNode");
        RequireResult(root->appendChild(indent.Get(), nullptr), "appendChild of white space");
    }
    ComPtr<IXMLDOMElement> element;
    RequireResult(document->createElement(MakeBstr(part.name).Get(), &element), "createElement");
    RequireResult(element->put_text(MakeBstr(part.text).Get()), "put_text");
    RequireResult(root->appendChild(element.Get(), nullptr), "appendChild of an element");
    for (const Attribute& attribute : part.attributes) {
        const Bstr text = MakeBstr(attribute.value);
        VARIANT value = {};
        V_VT(&value) = VT_BSTR;
        V_BSTR(&value) = text.Get();
        RequireResult(element->setAttribute(MakeBstr(attribute.name).Get(), value), "setAttribute");
    }
}

}  // namespace

ComPtr<IXMLDOMDocument> MakeDocument() {
    ComPtr<IXMLDOMDocument> document;
    RequireResult(MakeXmlDocument(document), "CoCreateInstance");
    document->put_resolveExternals(VARIANT_FALSE);
    document->put_async(VARIANT_FALSE);
    document->put_validateOnParse(VARIANT_FALSE);
    RequireResult(AppendDeclaration(document.Get()), "the declaration");
    return document;
}

Bstr Build(const DocumentParts& parts,
           const std::function<void(IXMLDOMDocument* document, const ElementPart& part)>& beforeElement) {
    const ComPtr<IXMLDOMDocument> document = MakeDocument();
    ComPtr<IXMLDOMElement> root;
    RequireResult(document->createElement(MakeBstr(parts.root).Get(), &root), "createElement");
    RequireResult(document->appendChild(root.Get(), nullptr), "appendChild of the root");
    for (const ElementPart& part : parts.elements) {
        if (beforeElement) {
            beforeElement(document.Get(), part);
        }
        AppendElement(document.Get(), root.Get(), part);
    }
    Bstr text;
    RequireResult(document->get_xml(text.Put()), "get_xml");
    return text;
}

std::span<const wchar_t* const> SelectionsBefore(const ElementPart& part) {
    if (part.name == kExceptionsElement) {
        return kDefaults;
    }
    return part.name == kCalendarKindElement ? std::span<const wchar_t* const>(kKind)
                                             : std::span<const wchar_t* const>();
}

void Select(IXMLDOMDocument* document, const wchar_t* path) {
    ComPtr<IXMLDOMNode> node;
    if (document->selectSingleNode(MakeBstr(path).Get(), &node) == S_OK) {
        Bstr text;
        RequireResult(node->get_text(text.Put()), "get_text");
    }
}

}  // namespace bench
