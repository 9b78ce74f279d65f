#include "mapi/document_output.h"

#include "support/errors.h"
#include "support/log.h"

namespace {

void Require(bool done, const wchar_t* operation, const wchar_t* failure) {
    if (!done) {
        Log(kLogFailure, L"CMAPIObject::%s : %s\r\n", operation, failure);
        AfxThrowUserException();
    }
}

}  // namespace

void BeginOutlookDocument(CXMLParser& document, const wchar_t* root, const wchar_t* operation) {
    Require(document.InitDocument(), operation, L"Failed to Init XMLParser");
    Require(document.CreateHeader(), operation, L"Failed to Create XMLParser's Header");
    const ComPtr<IXMLDOMElement> node = document.CreateRootElement(root);
    Require(node != nullptr, operation, L"Failed to Create XMLParser's root node");
    document.SetAttribute(L"name", L"outlook", node.Get());
}

void EndElement(CXMLParser& document, IXMLDOMNode* parent, int depth) {
    // An element without a name never comes into being; its indentation does.
    document.CreateChildElement(L"", nullptr, parent, true, depth);
}

void SaveOutlookDocument(CXMLParser& document, const CString& path, wchar_t* buffer,
                         const wchar_t* failureLine) {
    if (path.empty()) {
        return;
    }
    *buffer = L'\0';
    if (!document.SaveToFile(path.c_str())) {
        Log(kLogFailure, failureLine);
        AfxThrowUserException();
    }
}
