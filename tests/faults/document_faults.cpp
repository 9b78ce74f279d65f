#include "tests/faults/document_faults.h"

#include <windows.h>

#include <cstddef>
#include <cstring>
#include <utility>

#include "support/owners.h"
#include "tests/faults/platform_faults.h"
#include "tests/xml_document.h"

namespace {

constexpr IID kElementInterface = {
    0x2933BF86, 0x7B36, 0x11D2, {0xB2, 0x0E, 0x00, 0xC0, 0x4F, 0x98, 0x3E, 0x60}};

/// The objects whose methods are replaced. Those of one kind share their table of methods.
struct Document {};
struct Element {};

/// Puts a function in a slot of a table of methods and returns what stood there; null if the table cannot be
/// written to.
void* Replace(void** slot, void* function) {
    DWORD protection = 0;
    return VirtualProtect(slot, sizeof(*slot), PAGE_READWRITE, &protection) == FALSE
               ? nullptr
               : std::exchange(*slot, function);
}

/// The table of methods of an object.
void** MethodsOf(IUnknown* object) {
    return *reinterpret_cast<void***>(object);
}

/// A method that counts its calls and passes them on. It stands in the table of methods of all objects of a
/// kind.
template<class Kind, auto Method>
class CountedMethod;

template<class Kind, class Interface, class... Arguments,
         HRESULT (STDMETHODCALLTYPE Interface::*Method)(Arguments...)>
class CountedMethod<Kind, Method> {
  public:
    static bool Install(IUnknown* object) {
        s_original =
            reinterpret_cast<Original>(Replace(MethodsOf(object) + Index(), reinterpret_cast<void*>(&Call)));
        return s_original != nullptr;
    }
    /// How many calls the service has done.
    static long Done() { return s_done; }

  private:
    using Original = HRESULT(STDMETHODCALLTYPE*)(Interface*, Arguments...);

    static HRESULT STDMETHODCALLTYPE Call(Interface* object, Arguments... arguments) {
        if (g_comFaults.Fails()) {
            return static_cast<HRESULT>(g_comFaults.Code());
        }
        const HRESULT result = s_original(object, arguments...);
        s_done += result == S_OK ? 1 : 0;
        return result;
    }
    /// The method's place in the table: the compiler keeps a pointer to a virtual method as its distance in
    /// bytes and one.
    static std::size_t Index() {
        const auto method = Method;
        std::size_t distance = 0;
        std::memcpy(&distance, &method, sizeof(distance));
        return (distance - 1) / sizeof(void*);
    }
    static inline Original s_original = nullptr;
    static inline long s_done = 0;
};

/// The one interface that the agent asks an element for. What the service asks its own objects for is not
/// counted.
class CountedQuery {
  public:
    static bool Install(IUnknown* object) {
        s_original = reinterpret_cast<Original>(Replace(MethodsOf(object), reinterpret_cast<void*>(&Call)));
        return s_original != nullptr;
    }

  private:
    using Original = HRESULT(STDMETHODCALLTYPE*)(IUnknown*, REFIID, void**);

    static HRESULT STDMETHODCALLTYPE Call(IUnknown* object, REFIID iid, void** result) {
        if (iid != kElementInterface || !g_comFaults.Fails()) {
            return s_original(object, iid, result);
        }
        *result = nullptr;
        return static_cast<HRESULT>(g_comFaults.Code());
    }
    static inline Original s_original = nullptr;
};

template<auto Method>
using OfDocument = CountedMethod<Document, Method>;
template<auto Method>
using OfElement = CountedMethod<Element, Method>;

using Installer = bool (*)(IUnknown* object);

constexpr Installer kDocumentMethods[] = {
    OfDocument<&IXMLDOMDocument::put_resolveExternals>::Install,
    OfDocument<&IXMLDOMDocument::put_async>::Install,
    OfDocument<&IXMLDOMDocument::put_validateOnParse>::Install,
    OfDocument<&IXMLDOMDocument::loadXML>::Install,
    OfDocument<&IXMLDOMDocument::get_documentElement>::Install,
    OfDocument<&IXMLDOMDocument::createProcessingInstruction>::Install,
    OfDocument<&IXMLDOMDocument::createElement>::Install,
    OfDocument<&IXMLDOMDocument::createTextNode>::Install,
    OfDocument<&IXMLDOMDocument::appendChild>::Install,
    OfDocument<&IXMLDOMDocument::selectSingleNode>::Install,
    OfDocument<&IXMLDOMDocument::get_xml>::Install,
    OfDocument<&IXMLDOMDocument::save>::Install,
};
constexpr Installer kElementMethods[] = {
    CountedQuery::Install,
    OfElement<&IXMLDOMElement::appendChild>::Install,
    OfElement<&IXMLDOMElement::setAttribute>::Install,
    OfElement<&IXMLDOMElement::put_text>::Install,
    OfElement<&IXMLDOMElement::get_text>::Install,
};

template<std::size_t Count>
bool InstallAll(const Installer (&methods)[Count], IUnknown* object) {
    bool all = true;
    for (const Installer install : methods) {
        all = install(object) && all;
    }
    return all;
}

}  // namespace

int InstallDocumentFaults() {
    ComPtr<IXMLDOMDocument> document;
    ComPtr<IXMLDOMElement> element;
    const Bstr name(SysAllocString(L"Contact"));
    if (MakeXmlDocument(document) != S_OK || FAILED(document->createElement(name.Get(), &element))) {
        return 0;
    }
    const bool all =
        InstallAll(kDocumentMethods, document.Get()) && InstallAll(kElementMethods, element.Get());
    return all ? static_cast<int>(std::size(kDocumentMethods) + std::size(kElementMethods)) : 0;
}

long HeadersMade() {
    return OfDocument<&IXMLDOMDocument::createProcessingInstruction>::Done();
}

void MakeHeader() {
    ComPtr<IXMLDOMDocument> document;
    if (MakeXmlDocument(document) == S_OK) {
        AppendDeclaration(document.Get());
    }
}
