// The building of a read's documents and nothing else, with COM initialised and the XML service's library
// loaded all the while. bench_documents FILE; each line of the input is one more time for every document of
// the file:
//
//   documents    has the XML service build the document again, by direct calls
//   selections   the same with the selections that the agent makes in it, whose time alone is told
//   dates        converts the dates of the item as the agent does, and builds nothing
//
// At the start every document is compared with the agent's, unit by unit.

#include <windows.h>

#include <stdexcept>

#include "command_loop.h"
#include "document_parts.h"
#include "item_dates.h"
#include "support/owners.h"
#include "tests/xml_document.h"
#include "text_file.h"

namespace {

using bench::DocumentParts;
using bench::ElementPart;

// The elements before which the agent looks into the document.
constexpr const wchar_t* kExceptions = L"ExceptionRule";
constexpr const wchar_t* kCalendarKind = L"lCalType";

void Require(HRESULT result, const char* what) {
    if (result != S_OK) {
        throw std::runtime_error(std::string(what) + " gives " + std::to_string(result));
    }
}

Bstr MakeBstr(const std::wstring& text) {
    Bstr result(SysAllocStringLen(text.data(), static_cast<UINT>(text.size())));
    Require(result ? S_OK : E_OUTOFMEMORY, "SysAllocStringLen");
    return result;
}

ComPtr<IXMLDOMDocument> MakeDocument() {
    ComPtr<IXMLDOMDocument> document;
    Require(MakeXmlDocument(document), "CoCreateInstance");
    document->put_resolveExternals(VARIANT_FALSE);
    document->put_async(VARIANT_FALSE);
    document->put_validateOnParse(VARIANT_FALSE);
    Require(AppendDeclaration(document.Get()), "the declaration");
    return document;
}

void AppendElement(IXMLDOMDocument* document, IXMLDOMElement* root, const ElementPart& part) {
    if (!part.indent.empty()) {
        ComPtr<IXMLDOMText> indent;
        Require(document->createTextNode(MakeBstr(part.indent).Get(), &indent), "createTextNode");
        Require(root->appendChild(indent.Get(), nullptr), "appendChild of white space");
    }
    ComPtr<IXMLDOMElement> element;
    Require(document->createElement(MakeBstr(part.name).Get(), &element), "createElement");
    Require(element->put_text(MakeBstr(part.text).Get()), "put_text");
    Require(root->appendChild(element.Get(), nullptr), "appendChild of an element");
    for (const bench::Attribute& attribute : part.attributes) {
        const Bstr text = MakeBstr(attribute.value);
        VARIANT value = {};
        V_VT(&value) = VT_BSTR;
        V_BSTR(&value) = text.Get();
        Require(element->setAttribute(MakeBstr(attribute.name).Get(), value), "setAttribute");
    }
}

/// Looks an element up by its path and takes its text, if it is there.
void Select(IXMLDOMDocument* document, const wchar_t* path) {
    ComPtr<IXMLDOMNode> node;
    if (document->selectSingleNode(MakeBstr(path).Get(), &node) == S_OK) {
        Bstr text;
        Require(node->get_text(text.Put()), "get_text");
    }
}

/// The selections that the agent makes in an appointment before it appends an element: what the exceptions of
/// a series deviate from, and at the end whether there is a kind of calendar already.
void SelectBefore(IXMLDOMDocument* document, const ElementPart& part) {
    if (part.name == kExceptions) {
        for (const wchar_t* const path : {L"/Calendar/Description", L"/Calendar/Location",
                                          L"/Calendar/bAllDayEvent", L"/Calendar/lReminderMinutes"}) {
            Select(document, path);
        }
    } else if (part.name == kCalendarKind) {
        Select(document, L"/Calnedar/lCalType");
    }
}

/// Builds a document and calls something before each element is appended.
Bstr Build(
    const DocumentParts& parts,
    const std::function<void(IXMLDOMDocument* document, const ElementPart& part)>& beforeElement = {}) {
    const ComPtr<IXMLDOMDocument> document = MakeDocument();
    ComPtr<IXMLDOMElement> root;
    Require(document->createElement(MakeBstr(parts.root).Get(), &root), "createElement");
    Require(document->appendChild(root.Get(), nullptr), "appendChild of the root");
    for (const ElementPart& part : parts.elements) {
        if (beforeElement) {
            beforeElement(document.Get(), part);
        }
        AppendElement(document.Get(), root.Get(), part);
    }
    Bstr text;
    Require(document->get_xml(text.Put()), "get_xml");
    return text;
}

void RequireSame(const std::wstring& document, const Bstr& built) {
    const std::wstring text(built.Get(), SysStringLen(built.Get()));
    if (text != document) {
        throw std::runtime_error("a document that was built again is another one");
    }
}

/// The items of the file: what their documents are built of, and their dates.
struct Items {
    std::vector<DocumentParts> documents;
    std::vector<bench::ItemDate> dates;
};

double SecondsOfDocuments(const Items& items) {
    return bench::SecondsOf([&] {
        for (const DocumentParts& parts : items.documents) {
            Build(parts);
        }
    });
}

double SecondsOfSelections(const Items& items) {
    double seconds = 0;
    for (const DocumentParts& parts : items.documents) {
        Build(parts, [&seconds](IXMLDOMDocument* document, const ElementPart& part) {
            if (part.name == kExceptions || part.name == kCalendarKind) {
                seconds += bench::SecondsOf([&] { SelectBefore(document, part); });
            }
        });
    }
    return seconds;
}

double SecondsOfDates(const Items& items) {
    return bench::SecondsOf([&] {
        for (const bench::ItemDate& date : items.dates) {
            bench::TextOf(date);
        }
    });
}

std::string Answer(const Items& items, const std::string& line) {
    if (line == "documents") {
        return std::to_string(SecondsOfDocuments(items));
    }
    if (line == "selections") {
        return std::to_string(SecondsOfSelections(items));
    }
    if (line == "dates") {
        return std::to_string(SecondsOfDates(items));
    }
    throw std::invalid_argument("not a command: " + line);
}

void Run(const std::wstring& path) {
    Items items;
    for (const std::wstring& text : bench::ReadTexts(path)) {
        items.documents.push_back(bench::TakeApart(text));
        for (const bench::ItemDate& date : bench::DatesOf(items.documents.back())) {
            items.dates.push_back(date);
        }
        RequireSame(text, Build(items.documents.back()));
    }
    // Held over all runs: without a document the library could go from memory between two of them.
    const ComPtr<IXMLDOMDocument> hold = MakeDocument();
    bench::AnswerLines([&](const std::string& line) { return Answer(items, line); });
}

}  // namespace

int wmain(int count, wchar_t** arguments) {
    return bench::Guarded("bench_documents", [&] {
        if (count != 2) {
            throw std::invalid_argument("bench_documents FILE");
        }
        Require(CoInitialize(nullptr), "CoInitialize");
        Run(arguments[1]);
    });
}
