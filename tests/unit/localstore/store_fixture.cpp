#include "store_fixture.h"

#include <mapiguid.h>

#include <algorithm>

#include "localstore/exports.h"
#include "tests/unit/new_folder.h"

namespace localstore_test {

namespace {

constexpr ULONG kPublicStrings = 0x00020329;

void FillTable() {
    pfnMAPIInitialize = MAPIInitialize;
    pfnMAPIUninitialize = MAPIUninitialize;
    pfnMAPILogonEx = MAPILogonEx;
    pfnMAPIAllocateBuffer = MAPIAllocateBuffer;
    pfnMAPIAllocateMore = MAPIAllocateMore;
    pfnMAPIFreeBuffer = MAPIFreeBuffer;
    pfnMAPIAdminProfiles = MAPIAdminProfiles;
    pfnHrGetOneProp = HrGetOneProp;
    pfnFreeProws = FreeProws;
    pfnHrQueryAllRows = HrQueryAllRows;
}

GUID SetOf(ULONG first) {
    return {first, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
}

std::vector<ULONG> TagList(std::initializer_list<ULONG> tags) {
    // The layout of SPropTagArray: the count in front of the tags.
    std::vector<ULONG> list = {static_cast<ULONG>(tags.size())};
    list.insert(list.end(), tags.begin(), tags.end());
    return list;
}

void RemoveTree(const std::wstring& folder) {
    WIN32_FIND_DATAW found{};
    const FindHandle search(FindFirstFileW((folder + L"\\*").c_str(), &found));
    if (!search) {
        return;
    }
    do {
        const std::wstring name = found.cFileName;
        if (name == L"." || name == L"..") {
            continue;
        }
        const std::wstring path = folder + L"\\" + name;
        if ((found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0) {
            RemoveTree(path);
        } else {
            SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_NORMAL);
            DeleteFileW(path.c_str());
        }
    } while (FindNextFileW(search.Get(), &found) != FALSE);
    RemoveDirectoryW(folder.c_str());
}

}  // namespace

void StoreTest::SetUp() {
    FillTable();
    m_root = MakeNewFolder(L"localstore").wstring();
    for (const wchar_t* folder : {L"Work", L"Work\\Mail", L"Work\\Mail\\Contacts", L"Work\\Mail\\Inbox"}) {
        MakeFolder(folder);
    }
    localstore::recorder::SetRoot(m_root);
    localstore::recorder::ClearFailures();
    localstore::recorder::ClearDiagnostics();
    ASSERT_EQ(MAPIInitialize(nullptr), S_OK);
    localstore::recorder::ClearCalls();
}

void StoreTest::TearDown() {
    localstore::recorder::ClearFailures();
    MAPIUninitialize();
    EXPECT_EQ(localstore::recorder::LiveObjects(), 0);
    EXPECT_EQ(localstore::recorder::LiveBuffers(), 0);
    localstore::recorder::SetRoot({});
    RemoveTree(m_root);
}

void StoreTest::MakeFolder(const std::wstring& relative) const {
    ASSERT_TRUE(CreateDirectoryW(PathOf(relative).c_str(), nullptr));
}

void StoreTest::WriteFileText(const std::wstring& relative, const std::string& text) const {
    WriteFileBytes(PathOf(relative), {text.begin(), text.end()});
}

ComPtr<IMAPISession> StoreTest::LogOn(const wchar_t* profile) {
    ComPtr<IMAPISession> session;
    const ULONG flags = MAPI_UNICODE | MAPI_EXTENDED | MAPI_EXPLICIT_PROFILE | MAPI_NEW_SESSION;
    EXPECT_EQ(MAPILogonEx(0, const_cast<LPWSTR>(profile), nullptr, flags, &session), S_OK);
    return session;
}

ComPtr<IMsgStore> StoreTest::OpenStore(IMAPISession* session, const wchar_t* name) {
    ComPtr<IMsgStore> store;
    ComPtr<IMAPITable> table;
    EXPECT_EQ(session->GetMsgStoresTable(0, &table), S_OK);
    const RowSet rows = RowsOf(table.Get(), {PR_DISPLAY_NAME_W, PR_ENTRYID});
    for (ULONG i = 0; i < rows->cRows; ++i) {
        const SPropValue* values = rows->aRow[i].lpProps;
        if (std::wstring(values[0].Value.lpszW) == name) {
            const SBinary& id = values[1].Value.bin;
            EXPECT_EQ(session->OpenMsgStore(0, id.cb, reinterpret_cast<LPENTRYID>(id.lpb), nullptr,
                                            MAPI_BEST_ACCESS, &store),
                      S_OK);
        }
    }
    return store;
}

ComPtr<IMAPIFolder> StoreTest::OpenFolder(IMsgStore* store, const std::wstring& path) {
    std::vector<BYTE> id = OneValue(store, PR_IPM_SUBTREE_ENTRYID).Bytes();
    ComPtr<IMAPIFolder> folder;
    std::wstring rest = path;
    for (;;) {
        ULONG type = 0;
        ComPtr<IUnknown> opened;
        EXPECT_EQ(store->OpenEntry(static_cast<ULONG>(id.size()), reinterpret_cast<LPENTRYID>(id.data()),
                                   nullptr, MAPI_BEST_ACCESS, &type, &opened),
                  S_OK);
        EXPECT_EQ(type, MAPI_FOLDER);
        EXPECT_EQ(opened->QueryInterface(IID_IMAPIFolder,
                                         reinterpret_cast<void**>(folder.ReleaseAndGetAddressOf())),
                  S_OK);
        if (rest.empty()) {
            return folder;
        }
        const std::size_t cut = rest.find(L'\\');
        const std::wstring name = rest.substr(0, cut);
        rest = cut == std::wstring::npos ? std::wstring() : rest.substr(cut + 1);
        const RowSet rows = FoldersOf(folder.Get(), {PR_DISPLAY_NAME_W, PR_ENTRYID});
        bool found = false;
        for (ULONG i = 0; i < rows->cRows && !found; ++i) {
            const SPropValue* values = rows->aRow[i].lpProps;
            if (values[0].Value.lpszW == name) {
                id.assign(values[1].Value.bin.lpb, values[1].Value.bin.lpb + values[1].Value.bin.cb);
                found = true;
            }
        }
        if (!found) {
            return nullptr;
        }
    }
}

ComPtr<IMAPIFolder> StoreTest::OpenContacts() {
    const ComPtr<IMAPISession> session = LogOn();
    const ComPtr<IMsgStore> store = OpenStore(session.Get());
    return OpenFolder(store.Get(), L"Contacts");
}

ComPtr<IMessage> StoreTest::OpenMessage(IMAPIFolder* folder, const std::vector<BYTE>& id, ULONG flags) {
    std::vector<BYTE> copy = id;
    ULONG type = 0;
    ComPtr<IUnknown> opened;
    ComPtr<IMessage> message;
    if (SUCCEEDED(folder->OpenEntry(static_cast<ULONG>(copy.size()), reinterpret_cast<LPENTRYID>(copy.data()),
                                    nullptr, flags, &type, &opened))) {
        EXPECT_EQ(type, MAPI_MESSAGE);
        EXPECT_EQ(opened->QueryInterface(IID_IMessage, reinterpret_cast<void**>(message.GetAddressOf())),
                  S_OK);
    }
    return message;
}

SPropValue StringValue(ULONG tag, const wchar_t* text) {
    SPropValue value{};
    value.ulPropTag = tag;
    value.Value.lpszW = const_cast<LPWSTR>(text);
    return value;
}

SPropValue NarrowValue(ULONG tag, const char* text) {
    SPropValue value{};
    value.ulPropTag = tag;
    value.Value.lpszA = const_cast<LPSTR>(text);
    return value;
}

SPropValue LongValue(ULONG tag, LONG number) {
    SPropValue value{};
    value.ulPropTag = tag;
    value.Value.l = number;
    return value;
}

SPropValue BoolValue(ULONG tag, bool on) {
    SPropValue value{};
    value.ulPropTag = tag;
    value.Value.b = on ? TRUE : FALSE;
    return value;
}

SPropValue TimeValue(ULONG tag, unsigned long long time) {
    SPropValue value{};
    value.ulPropTag = tag;
    value.Value.ft.dwLowDateTime = static_cast<DWORD>(time);
    value.Value.ft.dwHighDateTime = static_cast<DWORD>(time >> 32U);
    return value;
}

SPropValue BinaryValue(ULONG tag, std::vector<BYTE>& bytes) {
    SPropValue value{};
    value.ulPropTag = tag;
    value.Value.bin.cb = static_cast<ULONG>(bytes.size());
    value.Value.bin.lpb = bytes.data();
    return value;
}

HRESULT Set(IMAPIProp* object, std::initializer_list<SPropValue> values) {
    std::vector<SPropValue> list = values;
    return object->SetProps(static_cast<ULONG>(list.size()), list.data(), nullptr);
}

HRESULT Delete(IMAPIProp* object, std::initializer_list<ULONG> tags) {
    std::vector<ULONG> list = TagList(tags);
    return object->DeleteProps(reinterpret_cast<LPSPropTagArray>(list.data()), nullptr);
}

OneValue::OneValue(IMAPIProp* object, ULONG tag, ULONG flags) : m_result(S_OK) {
    std::vector<ULONG> list = TagList({tag});
    ULONG count = 0;
    m_result =
        object->GetProps(reinterpret_cast<LPSPropTagArray>(list.data()), flags, &count, m_values.Put());
    EXPECT_EQ(count, 1U);
}

SCODE OneValue::Error() const {
    return PROP_TYPE(Value().ulPropTag) == PT_ERROR ? Value().Value.err : S_OK;
}

std::wstring OneValue::Text() const {
    return PROP_TYPE(Value().ulPropTag) == PT_UNICODE ? Value().Value.lpszW : L"(no text)";
}

std::vector<BYTE> OneValue::Bytes() const {
    if (PROP_TYPE(Value().ulPropTag) != PT_BINARY) {
        return {};
    }
    return {Value().Value.bin.lpb, Value().Value.bin.lpb + Value().Value.bin.cb};
}

unsigned long long OneValue::Time() const {
    const FILETIME& time = Value().Value.ft;
    return static_cast<unsigned long long>(time.dwHighDateTime) << 32U | time.dwLowDateTime;
}

std::wstring TextOf(IMAPIProp* object, ULONG tag) {
    return OneValue(object, tag).Text();
}

std::vector<BYTE> IdOf(IMAPIProp* object) {
    return OneValue(object, PR_ENTRYID).Bytes();
}

ULONG NamedTag(IMAPIProp* object, ULONG firstOfSet, LONG number, ULONG type, ULONG flags) {
    GUID set = SetOf(firstOfSet);
    MAPINAMEID name{};
    name.lpguid = &set;
    name.ulKind = MNID_ID;
    name.Kind.lID = number;
    LPMAPINAMEID list = &name;
    MapiBuffer<SPropTagArray> tags;
    EXPECT_TRUE(SUCCEEDED(object->GetIDsFromNames(1, &list, flags, tags.Put())));
    const ULONG tag = tags->aulPropTag[0];
    return PROP_TYPE(tag) == PT_ERROR ? tag : CHANGE_PROP_TYPE(tag, type);
}

ULONG PublicTag(IMAPIProp* object, const wchar_t* name, ULONG type, ULONG flags) {
    GUID set = SetOf(kPublicStrings);
    MAPINAMEID one{};
    one.lpguid = &set;
    one.ulKind = MNID_STRING;
    one.Kind.lpwstrName = const_cast<LPWSTR>(name);
    LPMAPINAMEID list = &one;
    MapiBuffer<SPropTagArray> tags;
    EXPECT_TRUE(SUCCEEDED(object->GetIDsFromNames(1, &list, flags, tags.Put())));
    const ULONG tag = tags->aulPropTag[0];
    return PROP_TYPE(tag) == PT_ERROR ? tag : CHANGE_PROP_TYPE(tag, type);
}

RowSet RowsOf(IMAPITable* table, std::initializer_list<ULONG> columns, SRestriction* restriction) {
    std::vector<ULONG> list = TagList(columns);
    RowSet rows;
    EXPECT_EQ(HrQueryAllRows(table, reinterpret_cast<LPSPropTagArray>(list.data()), restriction, nullptr, 0,
                             rows.Put()),
              S_OK);
    return rows;
}

RowSet ContentsOf(IMAPIFolder* folder, std::initializer_list<ULONG> columns, SRestriction* restriction) {
    ComPtr<IMAPITable> table;
    EXPECT_EQ(folder->GetContentsTable(MAPI_UNICODE, &table), S_OK);
    return RowsOf(table.Get(), columns, restriction);
}

RowSet FoldersOf(IMAPIFolder* folder, std::initializer_list<ULONG> columns, SRestriction* restriction) {
    ComPtr<IMAPITable> table;
    EXPECT_EQ(folder->GetHierarchyTable(MAPI_UNICODE, &table), S_OK);
    return RowsOf(table.Get(), columns, restriction);
}

std::vector<std::wstring> FirstTexts(const RowSet& rows) {
    std::vector<std::wstring> texts;
    for (ULONG i = 0; i < rows->cRows; ++i) {
        texts.emplace_back(rows->aRow[i].lpProps[0].Value.lpszW);
    }
    return texts;
}

std::vector<BYTE> AddContact(IMAPIFolder* folder, const wchar_t* subject) {
    ComPtr<IMessage> message;
    EXPECT_EQ(folder->CreateMessage(nullptr, 0, &message), S_OK);
    EXPECT_EQ(Set(message.Get(),
                  {StringValue(PR_MESSAGE_CLASS_W, L"IPM.Contact"), StringValue(PR_SUBJECT_W, subject)}),
              S_OK);
    EXPECT_EQ(message->SaveChanges(FORCE_SAVE), S_OK);
    return IdOf(message.Get());
}

std::vector<BYTE> ReadStream(IMAPIProp* object, ULONG tag) {
    std::vector<BYTE> bytes;
    ComPtr<IStream> stream;
    EXPECT_EQ(
        object->OpenProperty(tag, &IID_IStream, 0, 0, reinterpret_cast<LPUNKNOWN*>(stream.GetAddressOf())),
        S_OK);
    if (!stream) {
        return bytes;
    }
    BYTE piece[1024];
    ULONG read = 0;
    do {
        EXPECT_EQ(stream->Read(piece, sizeof(piece), &read), S_OK);
        bytes.insert(bytes.end(), piece, piece + read);
    } while (read != 0);
    return bytes;
}

HRESULT WriteStream(IMAPIProp* object, ULONG tag, const std::vector<BYTE>& bytes) {
    ComPtr<IStream> stream;
    const HRESULT opened =
        object->OpenProperty(tag, &IID_IStream, 0, MAPI_MODIFY | MAPI_CREATE | MAPI_BEST_ACCESS,
                             reinterpret_cast<LPUNKNOWN*>(stream.GetAddressOf()));
    if (opened != S_OK) {
        return opened;
    }
    ULONG written = 0;
    for (std::size_t offset = 0; offset < bytes.size(); offset += written) {
        const auto size = static_cast<ULONG>(std::min<std::size_t>(1024, bytes.size() - offset));
        EXPECT_EQ(stream->Write(bytes.data() + offset, size, &written), S_OK);
        EXPECT_EQ(written, size);
    }
    return stream->Commit(0);
}

std::vector<BYTE> FileBytes(const std::wstring& path) {
    const FileHandle file(
        CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr));
    std::vector<BYTE> bytes(GetFileSize(file.Get(), nullptr));
    DWORD read = 0;
    EXPECT_TRUE(ReadFile(file.Get(), bytes.data(), static_cast<DWORD>(bytes.size()), &read, nullptr));
    return bytes;
}

void WriteFileBytes(const std::wstring& path, const std::vector<BYTE>& bytes) {
    const FileHandle file(CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr));
    DWORD written = 0;
    EXPECT_TRUE(WriteFile(file.Get(), bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr));
}

std::vector<std::wstring> FileNames(const std::wstring& folder) {
    std::vector<std::wstring> names;
    WIN32_FIND_DATAW found{};
    const FindHandle search(FindFirstFileW((folder + L"\\*").c_str(), &found));
    do {
        if ((found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0) {
            names.emplace_back(found.cFileName);
        }
    } while (search && FindNextFileW(search.Get(), &found) != FALSE);
    std::sort(names.begin(), names.end());
    return names;
}

}  // namespace localstore_test
