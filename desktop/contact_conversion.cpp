#include "desktop/contact_conversion.h"

#include "desktop/contact_pairs.h"
#include "desktop/failure.h"
#include "desktop/write_judgement.h"
#include "support/number_text.h"

namespace {

[[noreturn]] void ThrowRefused(const wchar_t* message) {
    throw Failure(ExitCode::kDocumentRefused, message);
}

/// A contact's document in the making.
class WrittenContact {
  public:
    WrittenContact() {
        if (m_parser.InitDocument() && m_parser.CreateHeader()) {
            m_root = m_parser.CreateRootElement(L"Contact");
        }
        if (!m_root) {
            ThrowRefused(L"XML is not to be had on this machine");
        }
    }

    /// Adds an element unless its text is empty: that means the same as none.
    void Add(const wchar_t* name, const CString& text) {
        if (!text.empty() && !m_parser.CreateChildElement(name, text.c_str(), nullptr, true, 1)) {
            ThrowRefused(L"there is not enough memory");
        }
    }

    CString Text() {
        m_parser.AppendIndent(0, m_root.Get());
        return m_parser.GetDocumentText();
    }

  private:
    CXMLParser m_parser;
    ComPtr<IXMLDOMElement> m_root;
};

void AddKind(WrittenContact& written, WriteKind kind) {
    written.Add(L"lFlag", CString::FromNumber(static_cast<std::int32_t>(kind)));
}

bool IsDeletion(ItemDocument& read) {
    return !read.Has(L"CsFolder") && WriteKindOf(ReadNumber(read.Field(L"lFlag"))) == WriteKind::kDelete;
}

CString ConvertDeletion(ItemDocument& read, bool asNew) {
    if (asNew) {
        ThrowRefused(L"it is a deletion, of which there is nothing to make a contact of");
    }
    WrittenContact written;
    AddKind(written, WriteKind::kDelete);
    written.Add(L"PIMID", read.Field(L"PIMID"));
    return written.Text();
}

}  // namespace

CString ConvertContact(ItemDocument& read, bool asNew) {
    if (!read.IsValid()) {
        ThrowRefused(L"it is no contact's document");
    }
    if (IsDeletion(read)) {
        return ConvertDeletion(read, asNew);
    }
    // The last element of every document that is whole, and none of a document that is written.
    if (!read.Has(L"SP-CATEGORIES")) {
        ThrowRefused(L"it is no document of a read, or one that ends too early");
    }
    WrittenContact written;
    AddKind(written, asNew ? WriteKind::kAdd : WriteKind::kChange);
    if (!asNew) {
        written.Add(L"PIMID", read.Field(L"PIMID"));
    }
    written.Add(L"CsFolder", read.Field(L"CsFolder"));
    for (const ContactPair& pair : kContactPairs) {
        written.Add(pair.write, read.Field(pair.read));
    }
    written.Add(InstantMessagingElement(ReadNumber(read.Field(L"SP-IMADRESS/@IMType"))),
                read.Field(L"SP-IMADRESS"));
    written.Add(L"PICPath", read.Field(L"PICPath"));
    return written.Text();
}
