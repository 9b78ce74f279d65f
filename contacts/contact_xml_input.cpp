#include "contacts/contact_xml_input.h"

#include "contacts/contact_fields.h"
#include "mapi/item_document.h"
#include "support/errors.h"
#include "support/log.h"
#include "support/number_text.h"
#include "support/xml_parser.h"

namespace {

/// A field that a document can bring. One with a text for the log leaves its value there.
struct InputField {
    std::int32_t id = 0;
    const wchar_t* logText = nullptr;
};

/// The fields in the order in which they are looked for and become entries of the record. It decides which of
/// the instant-messaging addresses counts, for they share one member: the last one that is there. A business
/// post office box gives two entries.
constexpr InputField kInputFields[] = {
    {kFullNameField},
    {kFirstNameField},
    {kLastNameField},
    {kMiddleNameField},
    {4001},
    {4011},
    {110},
    {102, L"--------------1"},
    {113, L"---------------2"},
    {119, L"---------------3"},
    {114, L"---------------4"},
    {121, L"---------------5"},
    {120, L"---------------6"},
    {115, L"---------------7"},
    {117, L"---------------8"},
    {118, L"---------------9"},
    {116, L"---------------10"},
    {108, L"---------------11"},
    {100, L"---------------12"},
    {112, L"---------------13"},
    {111, L"---------------homefax"},
    {104, L"---------------14"},
    {106, L"---------------15"},
    {103, L"---------------16"},
    {101, L"---------------17"},
    {1000},
    {1001},
    {1002},
    {1500},
    {1501},
    {2008},
    {2005},
    {2004},
    {2002},
    {2006},
    {2019},
    {2016},
    {2013},
    {2012},
    {2010},
    {2014},
    {2021},
    {2038},
    {2035},
    {2034},
    {2032},
    {2036},
    {2030},
    {4004},
    {4015},
    {4005},
    {2021},
    {3018},
    {3002},
    {4022},
    {4023},
    {4028},
    {4024},
    {4025},
    {4026},
    {4027},
    {4030},
    {4029},
    {4003},
    {4019},
    {4037},
    {4038},
};

/// An element of the document of a contact.
bool ReadContactElement(CXMLParser& document, const wchar_t* name, CString& text) {
    return ReadElement(document, L"Contact", name, text);
}

/// The elements that say which contact is meant and what is to be done with it.
void ReadIdentity(CXMLParser& document, CContactEx& contact) {
    CString text;
    if (ReadContactElement(document, L"lFlag", text)) {
        contact.m_lFlag = ReadNumber(text);
    }
    if (ReadContactElement(document, L"PIMID", text) && !text.empty()) {
        contact.m_strPIMID = text;
    }
    if (ReadContactElement(document, L"CsFolder", text) && !text.empty()) {
        contact.m_strCsFolder = text;
    }
}

void ReadField(CXMLParser& document, const InputField& input, CContactEx& contact) {
    const ContactField* const field = FindContactField(input.id);
    CString text;
    if (field == nullptr || !ReadContactElement(document, field->in, text)) {
        return;
    }
    if (input.logText != nullptr) {
        Log(kLogTrace, L"%s%s", input.logText, text.c_str());
    }
    contact.AddField(input.id, text);
}

/// The photo's path rides on the first entry of the name. A contact without a name gets an entry for it,
/// which is the only one that can have no value.
void ReadPhotoPath(CXMLParser& document, CContactEx& contact) {
    CString path;
    if (!ReadContactElement(document, L"PICPath", path)) {
        return;
    }
    if (CContactInfoEx* const entry = FindPhotoEntry(contact)) {
        entry->m_strPicPath = path;
        return;
    }
    CContactInfoEx entry;
    entry.m_nFieldId = kFullNameField;
    entry.m_strPicPath = path;
    contact.AddFieldCopy(entry);
}

void ReadContact(const CString& xml, CContactEx& contact) {
    CXMLParser document;
    if (!document.InitDocument()) {
        AfxThrowUserException();
    }
    document.LoadText(xml);
    ReadIdentity(document, contact);
    for (const InputField& input : kInputFields) {
        ReadField(document, input, contact);
    }
    ReadPhotoPath(document, contact);
    document.ReleaseDocument();
}

}  // namespace

int ParseContactXml(const CString& xml, CContactEx& contact) {
    try {
        ReadContact(xml, contact);
    } catch (...) {
        // What has been found so far stands, and the write goes on with it.
    }
    return 1;
}
