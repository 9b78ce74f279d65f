#include "desktop/written_document.h"

#include "desktop/failure.h"

WrittenDocument::WrittenDocument(const wchar_t* root) {
    if (m_parser.InitDocument() && m_parser.CreateHeader()) {
        m_root = m_parser.CreateRootElement(root);
    }
    if (!m_root) {
        throw Failure(ExitCode::kDocumentRefused, L"XML is not to be had on this machine");
    }
}

void WrittenDocument::Add(const wchar_t* name, const CString& text) {
    if (!text.empty() && !m_parser.CreateChildElement(name, text.c_str(), nullptr, true, 1)) {
        throw Failure(ExitCode::kDocumentRefused, L"there is not enough memory");
    }
}

CString WrittenDocument::Text() {
    m_parser.AppendIndent(0, m_root.Get());
    return m_parser.GetDocumentText();
}
