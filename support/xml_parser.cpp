#include "support/xml_parser.h"

#include <cstddef>
#include <limits>
#include <utility>

#include "support/errors.h"
#include "support/xml_text.h"

namespace {

// The document class of MSXML that every Windows has. The published headers name a newer one by the same
// identifier.
constexpr CLSID kDocumentClass = {
    0x2933BF90, 0x7B36, 0x11D2, {0xB2, 0x0E, 0x00, 0xC0, 0x4F, 0x98, 0x3E, 0x60}};
constexpr IID kDocumentInterface = {
    0x2933BF81, 0x7B36, 0x11D2, {0xB2, 0x0E, 0x00, 0xC0, 0x4F, 0x98, 0x3E, 0x60}};
constexpr IID kElementInterface = {
    0x2933BF86, 0x7B36, 0x11D2, {0xB2, 0x0E, 0x00, 0xC0, 0x4F, 0x98, 0x3E, 0x60}};

// Of the calling thread: its living holds, and the uninitialisations that wait for the outermost to end.
thread_local int t_holds = 0;
thread_local int t_owed = 0;

/// A text for one COM call.
Bstr MakeBstr(WideView text) {
    if (text.size() > std::numeric_limits<UINT>::max() / sizeof(wchar_t)) {
        RaiseComError(kErrorOutOfMemory);
    }
    Bstr result(SysAllocStringLen(text.data(), static_cast<UINT>(text.size())));
    if (!result) {
        RaiseComError(kErrorOutOfMemory);
    }
    return result;
}

/// A text that goes into the document, without what a document cannot carry.
Bstr MakeContentBstr(WideView text) {
    CString room;
    return MakeBstr(PermittedXmlText(text, room));
}

/// A string variant that borrows its text.
VARIANT MakeVariant(const Bstr& text) {
    VARIANT value = {};
    V_VT(&value) = VT_BSTR;
    V_BSTR(&value) = text.Get();
    return value;
}

CString TakeText(const Bstr& text) {
    return text ? CString(text.Get(), SysStringLen(text.Get())) : CString();
}

/// Keeps the library of a COM object loaded until the process ends. Without that, the CoUninitialize of every
/// document unloads MSXML, and loading it again costs more than the document.
bool PinLibraryOf(IUnknown* object) {
    const void* virtualTable = *reinterpret_cast<void**>(object);
    HMODULE library = nullptr;
    return GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_PIN,
                              static_cast<LPCWSTR>(virtualTable), &library) != FALSE;
}

}  // namespace

ComApartmentHold::ComApartmentHold() noexcept {
    ++t_holds;
}

ComApartmentHold::~ComApartmentHold() {
    if (--t_holds > 0) {
        return;
    }
    for (; t_owed > 0; --t_owed) {
        CoUninitialize();
    }
}

void ComApartmentHold::Uninitialize() noexcept {
    if (t_holds > 0) {
        ++t_owed;
    } else {
        CoUninitialize();
    }
}

ComInitialization::ComInitialization() noexcept {
    CoInitialize(nullptr);
}

ComInitialization::~ComInitialization() {
    ComApartmentHold::Uninitialize();
}

CXMLParser::~CXMLParser() {
    CXMLParser::ReleaseDocument();
}

bool CXMLParser::InitDocument() {
    CoInitialize(nullptr);
    const HRESULT created =
        CoCreateInstance(kDocumentClass, nullptr, CLSCTX_INPROC_SERVER, kDocumentInterface,
                         reinterpret_cast<void**>(m_pXMLDoc.ReleaseAndGetAddressOf()));
    if (FAILED(created) || !m_pXMLDoc) {
        return false;
    }
    [[maybe_unused]] static const bool pinned = PinLibraryOf(m_pXMLDoc.Get());

    m_pXMLDoc->put_resolveExternals(VARIANT_FALSE);
    if (FAILED(m_pXMLDoc->put_async(VARIANT_FALSE))) {
        return true;
    }
    const HRESULT set = m_pXMLDoc->put_validateOnParse(VARIANT_FALSE);
    return FAILED(set) || set == S_OK;
}

void CXMLParser::LoadText(WideView text) {
    // Entities that a document declares itself can grow without bound, and not every MSXML can be told to
    // refuse them.
    if (!m_pXMLDoc || HasDocumentType(text)) {
        return;
    }
    VARIANT_BOOL loaded = VARIANT_FALSE;
    if (m_pXMLDoc->loadXML(MakeBstr(text).Get(), &loaded) == S_OK && loaded == VARIANT_TRUE) {
        m_pXMLDoc->get_documentElement(m_pRootNode.ReleaseAndGetAddressOf());
    }
}

bool CXMLParser::CreateHeader() {
    try {
        AppendHeader();
        return true;
    } catch (const std::exception&) {
        return false;
    }
}

void CXMLParser::AppendHeader() {
    if (!m_pXMLDoc) {
        RaiseComError(kErrorFail);
    }
    ComPtr<IXMLDOMProcessingInstruction> declaration;
    m_pXMLDoc->createProcessingInstruction(MakeBstr(L"xml").Get(),
                                           MakeBstr(L"version='1.0' encoding='utf-8'").Get(), &declaration);
    if (!declaration || m_pXMLDoc->appendChild(declaration.Get(), nullptr) != S_OK) {
        RaiseComError(kErrorFail);
    }
}

ComPtr<IXMLDOMElement> CXMLParser::CreateElement(const wchar_t* name) {
    ComPtr<IXMLDOMElement> element;
    if (m_pXMLDoc && FAILED(m_pXMLDoc->createElement(MakeBstr(name).Get(), &element))) {
        element.Reset();
    }
    return element;
}

ComPtr<IXMLDOMElement> CXMLParser::CreateRootElement(const wchar_t* name) {
    m_pRootNode.Reset();
    if (name == nullptr) {
        return nullptr;
    }
    ComPtr<IXMLDOMElement> root = CreateElement(name);
    if (root && m_pXMLDoc->appendChild(root.Get(), nullptr) == S_OK) {
        m_pRootNode = std::move(root);
    }
    return m_pRootNode;
}

void CXMLParser::AppendIndent(int depth, IXMLDOMNode* parent) {
    if (depth < 0 || parent == nullptr || !m_pXMLDoc) {
        return;
    }
    CString indent(L"\n");
    indent.append(static_cast<std::size_t>(depth), L'\t');
    ComPtr<IXMLDOMText> node;
    m_pXMLDoc->createTextNode(MakeBstr(indent).Get(), &node);
    if (node) {
        parent->appendChild(node.Get(), nullptr);
    }
}

ComPtr<IXMLDOMElement> CXMLParser::CreateChildElement(const wchar_t* name, const wchar_t* text,
                                                      IXMLDOMNode* parent, bool append, int depth) {
    if (name == nullptr) {
        return nullptr;
    }
    if (parent == nullptr) {
        parent = m_pRootNode.Get();
    }
    AppendIndent(depth, parent);
    ComPtr<IXMLDOMElement> element = CreateElement(name);
    if (!element) {
        return nullptr;
    }
    if (text != nullptr) {
        element->put_text(MakeContentBstr(text).Get());
    }
    if (append && (parent == nullptr || parent->appendChild(element.Get(), nullptr) != S_OK)) {
        return nullptr;
    }
    return element;
}

// Like GetNodeText an operation of the document to its callers, though it works on the node alone.
// NOLINTNEXTLINE(readability-convert-member-functions-to-static)
bool CXMLParser::SetAttribute(const wchar_t* name, const wchar_t* value, IXMLDOMNode* node) {
    if (value == nullptr || node == nullptr) {
        return false;
    }
    ComPtr<IXMLDOMElement> element;
    if (FAILED(node->QueryInterface(kElementInterface, reinterpret_cast<void**>(element.GetAddressOf()))) ||
        !element) {
        return false;
    }
    const Bstr text = MakeContentBstr(value);
    return element->setAttribute(MakeBstr(CString(name)).Get(), MakeVariant(text)) == S_OK;
}

ComPtr<IXMLDOMNode> CXMLParser::SelectSingleNode(const wchar_t* path) {
    // An empty path is no path, and not every MSXML survives it.
    if (!m_pXMLDoc || path == nullptr || *path == L'\0') {
        return nullptr;
    }
    ComPtr<IXMLDOMNode> node;
    if (FAILED(m_pXMLDoc->selectSingleNode(MakeBstr(path).Get(), &node))) {
        node.Reset();
    }
    return node;
}

// An operation of the document to its callers, though it works on the node alone.
// NOLINTNEXTLINE(readability-convert-member-functions-to-static)
CString CXMLParser::GetNodeText(IXMLDOMNode* node) {
    Bstr text;
    if (node == nullptr || FAILED(node->get_text(text.Put()))) {
        return {};
    }
    return TakeText(text);
}

// Likewise.
// NOLINTNEXTLINE(readability-convert-member-functions-to-static)
bool CXMLParser::SetNodeText(const wchar_t* text, IXMLDOMNode* node) {
    return node != nullptr && node->put_text(MakeContentBstr(text).Get()) == S_OK;
}

CString CXMLParser::GetDocumentText() {
    Bstr text;
    if (!m_pXMLDoc || FAILED(m_pXMLDoc->get_xml(text.Put()))) {
        return {};
    }
    return TakeText(text);
}

bool CXMLParser::SaveToFile(const wchar_t* path) {
    if (!m_pXMLDoc) {
        return false;
    }
    const Bstr target = MakeBstr(CString(path));
    return m_pXMLDoc->save(MakeVariant(target)) == S_OK;
}

void CXMLParser::ReleaseDocument() {
    m_pXMLDoc.Reset();
    m_pRootNode.Reset();
    ComApartmentHold::Uninitialize();
}
