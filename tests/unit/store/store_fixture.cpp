#include "tests/unit/store/store_fixture.h"

#include <mapitags.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <utility>

#include "localstore/exports.h"
#include "localstore/recorder.h"
#include "mapi/hex_text.h"
#include "mapi/named_properties.h"
#include "mapi/property_tags.h"
#include "mapi/send_back.h"
#include "support/settings.h"
#include "tests/unit/new_folder.h"

namespace recorder = localstore::recorder;

namespace {

std::vector<CString> g_sent;
std::vector<CString> g_sentCalendars;
std::function<void()> g_onSend;

void Require(HRESULT result, const char* what) {
    if (result != S_OK) {
        ADD_FAILURE() << what << " gave 0x" << std::hex << static_cast<unsigned long>(result);
        throw std::runtime_error(what);
    }
}

/// The library's functions, as the agent looks them up.
void FillTable() {
    pfnMAPIInitialize = &MAPIInitialize;
    pfnMAPIUninitialize = &MAPIUninitialize;
    pfnMAPILogonEx = &MAPILogonEx;
    pfnMAPIAllocateBuffer = &MAPIAllocateBuffer;
    pfnMAPIAllocateMore = &MAPIAllocateMore;
    pfnMAPIFreeBuffer = &MAPIFreeBuffer;
    pfnMAPIAdminProfiles = &MAPIAdminProfiles;
    pfnHrGetOneProp = &HrGetOneProp;
    pfnFreeProws = &FreeProws;
    pfnHrQueryAllRows = &HrQueryAllRows;
}

RowSet AllRows(IMAPITable* table, const SPropTagArray* columns) {
    RowSet rows;
    Require(pfnHrQueryAllRows(table, const_cast<LPSPropTagArray>(columns), nullptr, nullptr, 0, rows.Put()),
            "rows");
    return rows;
}

/// The sub-folder of a folder by name.
ComPtr<IMAPIFolder> SubFolder(IMAPIFolder* folder, const std::wstring& name) {
    SizedSPropTagArray(2, columns) = {2, {PR_DISPLAY_NAME_W, PR_ENTRYID}};
    ComPtr<IMAPITable> table;
    Require(folder->GetHierarchyTable(MAPI_UNICODE, table.GetAddressOf()), "hierarchy");
    const RowSet rows = AllRows(table.Get(), reinterpret_cast<const SPropTagArray*>(&columns));
    for (ULONG i = 0; i < rows->cRows; ++i) {
        const SPropValue* values = rows->aRow[i].lpProps;
        if (name == values[0].Value.lpszW) {
            ULONG type = 0;
            ComPtr<IMAPIFolder> sub;
            Require(folder->OpenEntry(values[1].Value.bin.cb,
                                      reinterpret_cast<LPENTRYID>(values[1].Value.bin.lpb), nullptr,
                                      MAPI_BEST_ACCESS | MAPI_MODIFY, &type,
                                      reinterpret_cast<LPUNKNOWN*>(sub.GetAddressOf())),
                    "sub-folder");
            return sub;
        }
    }
    throw std::runtime_error("no such folder");
}

/// The store of a name, or the default one for an empty name.
ComPtr<IMsgStore> StoreOf(IMAPISession* session, const std::wstring& name) {
    SizedSPropTagArray(3, columns) = {3, {PR_DEFAULT_STORE, PR_ENTRYID, PR_DISPLAY_NAME_W}};
    ComPtr<IMAPITable> stores;
    Require(session->GetMsgStoresTable(0, stores.GetAddressOf()), "stores");
    const RowSet rows = AllRows(stores.Get(), reinterpret_cast<const SPropTagArray*>(&columns));
    for (ULONG i = 0; i < rows->cRows; ++i) {
        const SPropValue* values = rows->aRow[i].lpProps;
        if (name.empty() ? values[0].Value.b != 0 : name == values[2].Value.lpszW) {
            ComPtr<IMsgStore> store;
            Require(session->OpenMsgStore(0, values[1].Value.bin.cb,
                                          reinterpret_cast<LPENTRYID>(values[1].Value.bin.lpb), nullptr,
                                          MAPI_BEST_ACCESS, store.GetAddressOf()),
                    "store");
            return store;
        }
    }
    throw std::runtime_error("no such store");
}

}  // namespace

void SendBackOneContact(const CString& xml) {
    if (g_onSend) {
        g_onSend();
    }
    g_sent.push_back(xml);
}

void SendBackOneCalendar(const CString& xml) {
    if (g_onSend) {
        g_onSend();
    }
    g_sentCalendars.push_back(xml);
}

std::vector<CString> TakeSentCalendars() {
    return std::exchange(g_sentCalendars, {});
}

std::vector<CString> TakeSent() {
    return std::exchange(g_sent, {});
}

void OnSend(std::function<void()> action) {
    g_onSend = std::move(action);
}

PropertyValues& PropertyValues::Text(ULONG tag, const wchar_t* text) {
    SPropValue value{};
    value.ulPropTag = tag;
    value.Value.lpszW = const_cast<LPWSTR>(text);
    m_values.push_back(value);
    return *this;
}

PropertyValues& PropertyValues::Number(ULONG tag, LONG number) {
    SPropValue value{};
    value.ulPropTag = tag;
    value.Value.l = number;
    m_values.push_back(value);
    return *this;
}

PropertyValues& PropertyValues::Boolean(ULONG tag, bool isTrue) {
    SPropValue value{};
    value.ulPropTag = tag;
    value.Value.b = isTrue ? TRUE : FALSE;
    m_values.push_back(value);
    return *this;
}

PropertyValues& PropertyValues::Binary(ULONG tag, const std::vector<BYTE>& bytes) {
    SPropValue value{};
    value.ulPropTag = tag;
    value.Value.bin = {static_cast<ULONG>(bytes.size()), const_cast<BYTE*>(bytes.data())};
    m_values.push_back(value);
    return *this;
}

PropertyValues& PropertyValues::Time(ULONG tag, WORD year, WORD month, WORD day, WORD hour, WORD minute) {
    const SYSTEMTIME time{year, month, 0, day, hour, minute, 0, 0};
    SPropValue value{};
    value.ulPropTag = tag;
    SystemTimeToFileTime(&time, &value.Value.ft);
    m_values.push_back(value);
    return *this;
}

PropertyValues& PropertyValues::Texts(ULONG tag, std::vector<const wchar_t*> texts) {
    m_texts.push_back(std::move(texts));
    SPropValue value{};
    value.ulPropTag = tag;
    value.Value.MVszW.cValues = static_cast<ULONG>(m_texts.back().size());
    value.Value.MVszW.lppszW = const_cast<LPWSTR*>(m_texts.back().data());
    m_values.push_back(value);
    return *this;
}

void PropertyValues::SetOn(IMAPIProp* object) const {
    if (!m_values.empty()) {
        Require(object->SetProps(static_cast<ULONG>(m_values.size()),
                                 const_cast<LPSPropValue>(m_values.data()), nullptr),
                "SetProps");
    }
}

FolderWriter::FolderWriter(const std::wstring& profile, const std::wstring& folderPath,
                           const std::wstring& storeName) {
    MAPIINIT_0 init{MAPI_INIT_VERSION, 0};
    Require(pfnMAPIInitialize(&init), "MAPIInitialize");
    Require(pfnMAPILogonEx(0, reinterpret_cast<LPTSTR>(const_cast<wchar_t*>(profile.c_str())), nullptr,
                           MAPI_UNICODE | MAPI_EXTENDED | MAPI_EXPLICIT_PROFILE | MAPI_NEW_SESSION,
                           m_session.GetAddressOf()),
            "MAPILogonEx");
    const ComPtr<IMsgStore> store = StoreOf(m_session.Get(), storeName);
    MapiBuffer<SPropValue> top;
    Require(pfnHrGetOneProp(store.Get(), PR_IPM_SUBTREE_ENTRYID, top.Put()), "top of the tree");
    ULONG type = 0;
    Require(store->OpenEntry(top->Value.bin.cb, reinterpret_cast<LPENTRYID>(top->Value.bin.lpb), nullptr,
                             MAPI_BEST_ACCESS, &type, reinterpret_cast<LPUNKNOWN*>(m_folder.GetAddressOf())),
            "tree");
    for (const auto& part : std::filesystem::path(folderPath)) {
        m_folder = SubFolder(m_folder.Get(), part.wstring());
    }
}

FolderWriter::~FolderWriter() {
    m_folder.Reset();
    if (m_session) {
        m_session->Logoff(0, 0, 0);
        m_session.Reset();
    }
    pfnMAPIUninitialize();
}

CString FolderWriter::FolderId() const {
    MapiBuffer<SPropValue> id;
    Require(pfnHrGetOneProp(m_folder.Get(), PR_ENTRYID, id.Put()), "PR_ENTRYID");
    return BinaryToHexString(id->Value.bin.lpb, id->Value.bin.cb);
}

std::vector<CString> FolderWriter::MessageIds() const {
    SizedSPropTagArray(1, columns) = {1, {PR_ENTRYID}};
    ComPtr<IMAPITable> messages;
    Require(m_folder->GetContentsTable(0, messages.GetAddressOf()), "messages");
    const RowSet rows = AllRows(messages.Get(), reinterpret_cast<const SPropTagArray*>(&columns));
    std::vector<CString> ids;
    for (ULONG i = 0; i < rows->cRows; ++i) {
        const SBinary& id = rows->aRow[i].lpProps[0].Value.bin;
        ids.push_back(BinaryToHexString(id.lpb, id.cb));
    }
    return ids;
}

ComPtr<IMessage> FolderWriter::NewMessage(const wchar_t* messageClass, const PropertyValues& values) {
    ComPtr<IMessage> message;
    Require(m_folder->CreateMessage(nullptr, 0, message.GetAddressOf()), "CreateMessage");
    PropertyValues().Text(PR_MESSAGE_CLASS_W, messageClass).SetOn(message.Get());
    values.SetOn(message.Get());
    return message;
}

ULONG FolderWriter::AddressTag(IMessage* message, LONG id, ULONG type) {
    return CHANGE_PROP_TYPE(GetNamedPropertyTag(message, PSETID_Address, id), type);
}

ULONG FolderWriter::AppointmentTag(IMessage* message, LONG id, ULONG type) {
    // The numbers of the two sets do not overlap (MS-OXPROPS 2).
    const ULONG set = id < 0x8500 ? PSETID_Appointment : PSETID_Common;
    return CHANGE_PROP_TYPE(GetNamedPropertyTag(message, set, id), type);
}

ULONG FolderWriter::KeywordsTag(IMessage* message) {
    return CHANGE_PROP_TYPE(GetNamedPropertyTag(message, PS_PUBLIC_STRINGS_Data1, L"Keywords"),
                            PT_MV_UNICODE);
}

void FolderWriter::AddAttachment(IMessage* message, const std::string& data, bool isPhoto) {
    ULONG number = 0;
    ComPtr<IAttach> attachment;
    Require(message->CreateAttach(nullptr, 0, &number, attachment.GetAddressOf()), "CreateAttach");
    PropertyValues()
        .Number(PR_ATTACH_METHOD, ATTACH_BY_VALUE)
        .Text(PR_ATTACH_LONG_FILENAME_W, L"ContactPicture.jpg")
        .Boolean(PR_ATTACHMENT_CONTACTPHOTO, isPhoto)
        .SetOn(attachment.Get());
    ComPtr<IStream> stream;
    Require(attachment->OpenProperty(PR_ATTACH_DATA_BIN, &IID_IStream, 0, MAPI_CREATE | MAPI_MODIFY,
                                     reinterpret_cast<LPUNKNOWN*>(stream.GetAddressOf())),
            "attachment data");
    ULONG written = 0;
    Require(stream->Write(data.data(), static_cast<ULONG>(data.size()), &written), "Write");
    Require(stream->Commit(0), "Commit");
    stream.Reset();
    Require(attachment->SaveChanges(0), "SaveChanges of the attachment");
}

void FolderWriter::Save(IMessage* message) {
    Require(message->SaveChanges(FORCE_SAVE), "SaveChanges");
}

void FolderWriter::AddContact(const PropertyValues& values) {
    Save(NewMessage(L"IPM.Contact", values).Get());
}

void StoreTest::SetUp() {
    m_root = MakeNewFolder(L"zeb-store").wstring();
    MakeFolder(L"Work\\Mail\\Contacts");
    MakeFolder(L"Work\\Mail\\Calendar");
    MakeFolder(L"Work\\Mail\\Inbox");
    FillTable();
    recorder::SetRoot(m_root);
    recorder::ClearFailures();
    recorder::ClearCalls();
    m_objectsBefore = recorder::LiveObjects();
    m_buffersBefore = recorder::LiveBuffers();
    g_bSubFolder = false;
    OnSend({});
    TakeSent();
    TakeSentCalendars();
    TakeLog();
}

void StoreTest::TearDown() {
    recorder::ClearFailures();
    g_MAPIObject.MAPILogOff();
    g_MAPIObject.m_bStop = 0;
    EXPECT_EQ(recorder::LiveObjects(), m_objectsBefore);
    EXPECT_EQ(recorder::LiveBuffers(), m_buffersBefore + m_expectedBuffers);
    recorder::SetRoot({});
    std::error_code ignored;
    std::filesystem::remove_all(m_root, ignored);
}

void StoreTest::MakeFolder(const std::wstring& path) const {
    std::filesystem::create_directories(std::filesystem::path(m_root) / path);
}

void StoreTest::WriteFile(const std::wstring& path, const std::string& text) const {
    std::ofstream file(std::filesystem::path(m_root) / path, std::ios::binary);
    file << text;
}

void StoreTest::LogOn(const wchar_t* profile) {
    ASSERT_EQ(g_MAPIObject.MAPILogOn(0, profile), 1);
    TakeLog();
    recorder::ClearCalls();
}
