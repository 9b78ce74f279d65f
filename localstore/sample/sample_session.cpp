#include "localstore/sample/sample_session.h"

#include <mapitags.h>

#include "localstore/sample/sample_error.h"

namespace sample {

namespace {

constexpr ULONG kContactFolderTag = 0x36D10102;   // PR_IPM_CONTACT_ENTRYID
constexpr ULONG kCalendarFolderTag = 0x36D00102;  // PR_IPM_APPOINTMENT_ENTRYID

/// The one row in which a property has a value.
RowSet QueryRow(IMAPITable* table, const SPropTagArray* columns, SPropValue& value, const wchar_t* doing) {
    SRestriction restriction{};
    restriction.rt = RES_PROPERTY;
    restriction.res.resProperty.relop = RELOP_EQ;
    restriction.res.resProperty.ulPropTag = value.ulPropTag;
    restriction.res.resProperty.lpProp = &value;
    RowSet rows;
    Require(
        pfnHrQueryAllRows(table, const_cast<LPSPropTagArray>(columns), &restriction, nullptr, 0, rows.Put()),
        doing);
    if (!rows || rows->cRows != 1) {
        throw SampleError{doing, MAPI_E_NOT_FOUND};
    }
    return rows;
}

const SPropTagArray* EntryIdColumn() {
    static constexpr SizedSPropTagArray(1, kColumns) = {1, {PR_ENTRYID}};
    return reinterpret_cast<const SPropTagArray*>(&kColumns);
}

template<class Container>
ComPtr<IMAPIFolder> OpenFolder(Container* container, const SBinary& id, const wchar_t* doing) {
    ULONG type = 0;
    ComPtr<IMAPIFolder> folder;
    Require(container->OpenEntry(id.cb, reinterpret_cast<LPENTRYID>(id.lpb), nullptr, MAPI_BEST_ACCESS, &type,
                                 reinterpret_cast<LPUNKNOWN*>(folder.GetAddressOf())),
            doing);
    return folder;
}

}  // namespace

void LoadMapi() {
    const HMODULE library = LoadLibraryW(L"MAPI32.dll");
    RequireTrue(library != nullptr, L"load MAPI32.dll");
    if (FillMAPIEntryPoints(library) == 0) {
        throw SampleError{L"find the functions of MAPI32.dll", E_NOINTERFACE};
    }
}

SampleSession::SampleSession(const wchar_t* profile) {
    MAPIINIT_0 init{MAPI_INIT_VERSION, 0};
    Require(pfnMAPIInitialize(&init), L"begin with MAPI");
    std::wstring name = profile;
    Require(pfnMAPILogonEx(0, reinterpret_cast<LPTSTR>(name.data()), nullptr,
                           MAPI_UNICODE | MAPI_EXTENDED | MAPI_EXPLICIT_PROFILE | MAPI_NEW_SESSION,
                           m_session.GetAddressOf()),
            L"log on");
    OpenDefaultStore();
}

SampleSession::~SampleSession() {
    m_store.Reset();
    if (m_session) {
        m_session->Logoff(0, 0, 0);
    }
    m_session.Reset();
    pfnMAPIUninitialize();
}

void SampleSession::OpenDefaultStore() {
    ComPtr<IMAPITable> stores;
    Require(m_session->GetMsgStoresTable(0, stores.GetAddressOf()), L"list the stores");
    SPropValue isDefault{};
    isDefault.ulPropTag = PR_DEFAULT_STORE;
    isDefault.Value.b = TRUE;
    const RowSet row = QueryRow(stores.Get(), EntryIdColumn(), isDefault, L"find the default store");
    const SBinary& id = row->aRow[0].lpProps[0].Value.bin;
    Require(m_session->OpenMsgStore(0, id.cb, reinterpret_cast<LPENTRYID>(id.lpb), nullptr, MAPI_BEST_ACCESS,
                                    m_store.GetAddressOf()),
            L"open the default store");
}

ComPtr<IMAPIFolder> SampleSession::OpenContacts() {
    return OpenDefaultFolder(kContactFolderTag, L"open the contact folder");
}

ComPtr<IMAPIFolder> SampleSession::OpenCalendar() {
    return OpenDefaultFolder(kCalendarFolderTag, L"open the calendar folder");
}

ComPtr<IMAPIFolder> SampleSession::OpenDefaultFolder(ULONG tag, const wchar_t* doing) {
    ULONG cb = 0;
    MapiBuffer<ENTRYID> inboxId;
    Require(m_store->GetReceiveFolder(nullptr, 0, &cb, inboxId.Put(), nullptr), L"find the inbox");
    const SBinary inboxEntry{cb, reinterpret_cast<LPBYTE>(inboxId.Get())};
    const ComPtr<IMAPIFolder> inbox = OpenFolder(m_store.Get(), inboxEntry, L"open the inbox");
    MapiBuffer<SPropValue> folder;
    Require(pfnHrGetOneProp(inbox.Get(), tag, folder.Put()), doing);
    return OpenFolder(m_store.Get(), folder->Value.bin, doing);
}

ComPtr<IMAPIFolder> OpenSubFolder(IMAPIFolder* parent, const std::wstring& name) {
    ComPtr<IMAPITable> folders;
    Require(parent->GetHierarchyTable(MAPI_UNICODE, folders.GetAddressOf()), L"list the folders");
    std::wstring text = name;
    SPropValue isNamed{};
    isNamed.ulPropTag = PR_DISPLAY_NAME_W;
    isNamed.Value.lpszW = text.data();
    const RowSet row = QueryRow(folders.Get(), EntryIdColumn(), isNamed, L"find a folder");
    return OpenFolder(parent, row->aRow[0].lpProps[0].Value.bin, L"open a folder");
}

}  // namespace sample
