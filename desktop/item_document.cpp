#include "desktop/item_document.h"

ItemDocument::ItemDocument(const wchar_t* root, WideView text) : m_root(CString(L"/") + root), m_text(text) {
    if (m_parser.InitDocument()) {
        m_parser.LoadText(text);
        m_valid = m_parser.SelectSingleNode(m_root.c_str()) != nullptr;
    }
}

bool ItemDocument::Has(const wchar_t* name) {
    return m_valid && m_parser.SelectSingleNode((m_root + L"/" + name).c_str()) != nullptr;
}

CString ItemDocument::Field(const wchar_t* name) {
    const CString path = m_root + L"/" + name;
    return m_valid ? m_parser.GetNodeText(m_parser.SelectSingleNode(path.c_str()).Get()) : CString();
}

CString ItemDocument::FirstField(std::initializer_list<const wchar_t*> names) {
    for (const wchar_t* name : names) {
        CString text = Field(name);
        if (!text.empty()) {
            return text;
        }
    }
    return {};
}
