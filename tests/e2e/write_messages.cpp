// Writes messages through MAPI for a reader of another kind to read: write_messages MAPI32.DLL WHAT [NAME].
//
//   make       makes one message that has a property of every type, named ones, an attachment and texts of
//   many
//              scripts
//   touch      sets one property of every message in the default contact folder and saves it
//   rewrite    saves the only message of the folder again and again until it is killed: a number that goes
//   up,
//              and a long body made of it. Says so when the first one is saved
//   add NAME   makes 40 messages of one title, with NAME and a number for their nickname
//   keep FILE  holds a file open until it is killed, and lets others only read it
//   lock FILE  the same, and lets nobody read it

#include <mapitags.h>
#include <mapiutil.h>
#include <mapix.h>
#include <windows.h>

#include <cstdio>
#include <cwchar>
#include <iterator>
#include <stdexcept>
#include <string>
#include <vector>

#include "support/owners.h"

namespace {

constexpr ULONG kContactFolder = 0x36D10102;
constexpr ULONG kTouched = 0x67FF0003;
constexpr std::size_t kPictureSize = 70'000;
constexpr int kAdded = 40;
constexpr int kRepeats = 4'000;

void Require(HRESULT result, const char* what) {
    if (result != S_OK) {
        char text[128];
        (void)std::snprintf(text, sizeof(text), "%s gives %08lX", what, static_cast<unsigned long>(result));
        throw std::runtime_error(text);
    }
}

template<class Interface>
ComPtr<Interface> Open(IMsgStore* store, const SBinary& id) {
    ULONG type = 0;
    ComPtr<IUnknown> object;
    Require(store->OpenEntry(id.cb, reinterpret_cast<LPENTRYID>(id.lpb), nullptr,
                             MAPI_BEST_ACCESS | MAPI_MODIFY, &type, object.GetAddressOf()),
            "OpenEntry");
    return Adopt(static_cast<Interface*>(object.Detach()));
}

/// The default store of the default profile.
ComPtr<IMsgStore> OpenDefaultStore() {
    ComPtr<IMAPISession> session;
    Require(pfnMAPILogonEx(0, nullptr, nullptr, MAPI_UNICODE | MAPI_USE_DEFAULT, session.GetAddressOf()),
            "MAPILogonEx");
    ComPtr<IMAPITable> table;
    Require(session->GetMsgStoresTable(0, table.GetAddressOf()), "GetMsgStoresTable");
    SizedSPropTagArray(1, columns) = {1, {PR_ENTRYID}};
    RowSet rows;
    Require(pfnHrQueryAllRows(table.Get(), reinterpret_cast<LPSPropTagArray>(&columns), nullptr, nullptr, 0,
                              rows.Put()),
            "HrQueryAllRows");
    const SBinary& id = rows->aRow[0].lpProps[0].Value.bin;
    ComPtr<IMsgStore> store;
    Require(session->OpenMsgStore(0, id.cb, reinterpret_cast<LPENTRYID>(id.lpb), nullptr, MAPI_BEST_ACCESS,
                                  store.GetAddressOf()),
            "OpenMsgStore");
    return store;
}

ComPtr<IMAPIFolder> OpenContacts(IMsgStore* store) {
    const ComPtr<IMAPIFolder> root = Open<IMAPIFolder>(store, {0, nullptr});
    MapiBuffer<SPropValue> id;
    Require(pfnHrGetOneProp(root.Get(), kContactFolder, id.Put()), "HrGetOneProp");
    return Open<IMAPIFolder>(store, id->Value.bin);
}

ULONG TagOf(IMAPIProp* object, ULONG set, LONG number, const wchar_t* word, ULONG type) {
    GUID guid = {set, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
    MAPINAMEID name{};
    name.lpguid = &guid;
    name.ulKind = word == nullptr ? MNID_ID : MNID_STRING;
    if (word == nullptr) {
        name.Kind.lID = number;
    } else {
        name.Kind.lpwstrName = const_cast<LPWSTR>(word);
    }
    LPMAPINAMEID list = &name;
    MapiBuffer<SPropTagArray> tags;
    Require(object->GetIDsFromNames(1, &list, MAPI_CREATE, tags.Put()), "GetIDsFromNames");
    return CHANGE_PROP_TYPE(tags->aulPropTag[0], type);
}

void SetOne(IMAPIProp* object, SPropValue value) {
    Require(object->SetProps(1, &value, nullptr), "SetProps");
}

void SetText(IMAPIProp* object, ULONG tag, const wchar_t* text) {
    SPropValue value{};
    value.ulPropTag = tag;
    value.Value.lpszW = const_cast<LPWSTR>(text);
    SetOne(object, value);
}

void SetLong(IMAPIProp* object, ULONG tag, LONG number) {
    SPropValue value{};
    value.ulPropTag = tag;
    value.Value.l = number;
    SetOne(object, value);
}

void SetBytes(IMAPIProp* object, ULONG tag, std::vector<BYTE> bytes) {
    SPropValue value{};
    value.ulPropTag = tag;
    value.Value.bin = {static_cast<ULONG>(bytes.size()), bytes.data()};
    SetOne(object, value);
}

/// One value of every other type, under tags that nobody else uses.
void SetEveryType(IMAPIProp* object) {
    GUID guid = {0x01020304, 0x0506, 0x0708, {9, 10, 11, 12, 13, 14, 15, 16}};
    SPropValue value{};
    value.ulPropTag = 0x66000002;
    value.Value.i = -3;
    SetOne(object, value);
    value.ulPropTag = 0x66020004;
    value.Value.flt = 1.5F;
    SetOne(object, value);
    value.ulPropTag = 0x66030005;
    value.Value.dbl = -2.25;
    SetOne(object, value);
    value.ulPropTag = 0x66040014;
    value.Value.li.QuadPart = -5'000'000'000;
    SetOne(object, value);
    value.ulPropTag = 0x6605000B;
    value.Value.b = TRUE;
    SetOne(object, value);
    value.ulPropTag = PR_BIRTHDAY;
    value.Value.ft = {0x12345678, 0x01D00000};
    SetOne(object, value);
    value.ulPropTag = 0x66090048;
    value.Value.lpguid = &guid;
    SetOne(object, value);
    LONG numbers[] = {1, -2, 3};
    value.ulPropTag = 0x66111003;
    value.Value.MVl = {3, numbers};
    SetOne(object, value);
    BYTE bytes[] = {7, 0};
    SBinary binaries[] = {{2, bytes}, {0, nullptr}};
    value.ulPropTag = 0x66121102;
    value.Value.MVbin = {2, binaries};
    SetOne(object, value);
}

void SetKeywords(IMAPIProp* object) {
    LPWSTR words[] = {const_cast<LPWSTR>(L"Friends"), const_cast<LPWSTR>(L"\x53CB\x9054")};
    SPropValue value{};
    value.ulPropTag = TagOf(object, 0x00020329, 0, L"Keywords", PT_MV_UNICODE);
    value.Value.MVszW = {2, words};
    SetOne(object, value);
}

void AddPicture(IMessage* message) {
    ULONG number = 0;
    ComPtr<IAttach> attachment;
    Require(message->CreateAttach(nullptr, 0, &number, attachment.GetAddressOf()), "CreateAttach");
    SetText(attachment.Get(), PR_ATTACH_LONG_FILENAME_W, L"ContactPicture.jpg");
    SetLong(attachment.Get(), PR_ATTACH_METHOD, ATTACH_BY_VALUE);
    SetLong(attachment.Get(), TagOf(attachment.Get(), 0x00062004, 0x8fff, nullptr, PT_LONG), 5);
    ComPtr<IStream> stream;
    Require(attachment->OpenProperty(PR_ATTACH_DATA_BIN, &IID_IStream, 0, MAPI_MODIFY | MAPI_CREATE,
                                     reinterpret_cast<LPUNKNOWN*>(stream.GetAddressOf())),
            "OpenProperty");
    std::vector<BYTE> bytes(kPictureSize);
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        bytes[i] = static_cast<BYTE>(i % 251);
    }
    Require(stream->Write(bytes.data(), static_cast<ULONG>(bytes.size()), nullptr), "Write");
    Require(stream->Commit(STGC_DEFAULT), "Commit");
    stream.Reset();
    Require(attachment->SaveChanges(0), "SaveChanges of the attachment");
}

void Make() {
    const ComPtr<IMAPIFolder> contacts = OpenContacts(OpenDefaultStore().Get());
    ComPtr<IMessage> message;
    Require(contacts->CreateMessage(nullptr, 0, message.GetAddressOf()), "CreateMessage");
    SetText(message.Get(), PR_MESSAGE_CLASS_W, L"IPM.Contact");
    SetText(message.Get(), PR_SUBJECT_W, L"RE: J\x00F6rg \x5C71\x7530 \xD83D\xDE00");
    SetText(message.Get(), PR_SURNAME_W, L"\x5C71\x7530");
    SetText(message.Get(), PR_BODY_W, L"Two\r\nlines");
    SetText(message.Get(), PR_NICKNAME_W, L"");
    SetBytes(message.Get(), 0x66070102, {0, 1, 2, 0});
    SetBytes(message.Get(), 0x66080102, {});
    SetEveryType(message.Get());
    SetText(message.Get(), TagOf(message.Get(), 0x00062004, 0x8083, nullptr, PT_UNICODE), L"a@b.example");
    SetText(message.Get(), TagOf(message.Get(), 0x00062008, 0x8554, nullptr, PT_UNICODE), L"16.0");
    SetText(message.Get(), TagOf(message.Get(), 0x00062004, 0, L"a word of our own", PT_UNICODE), L"value");
    SetKeywords(message.Get());
    AddPicture(message.Get());
    Require(message->SaveChanges(FORCE_SAVE), "SaveChanges");
}

/// The identifiers of the messages in the default contact folder.
RowSet ListContacts(IMsgStore* store) {
    const ComPtr<IMAPIFolder> contacts = OpenContacts(store);
    ComPtr<IMAPITable> table;
    Require(contacts->GetContentsTable(MAPI_UNICODE, table.GetAddressOf()), "GetContentsTable");
    SizedSPropTagArray(1, columns) = {1, {PR_ENTRYID}};
    RowSet rows;
    Require(pfnHrQueryAllRows(table.Get(), reinterpret_cast<LPSPropTagArray>(&columns), nullptr, nullptr, 0,
                              rows.Put()),
            "HrQueryAllRows");
    return rows;
}

void Touch() {
    const ComPtr<IMsgStore> store = OpenDefaultStore();
    const RowSet rows = ListContacts(store.Get());
    for (ULONG i = 0; i < rows->cRows; ++i) {
        const ComPtr<IMessage> message = Open<IMessage>(store.Get(), rows->aRow[i].lpProps[0].Value.bin);
        SetLong(message.Get(), kTouched, 1);
        Require(message->SaveChanges(FORCE_SAVE), "SaveChanges");
    }
    std::printf("%lu\n", static_cast<unsigned long>(rows->cRows));
}

[[noreturn]] void Rewrite() {
    const ComPtr<IMsgStore> store = OpenDefaultStore();
    const RowSet rows = ListContacts(store.Get());
    const ComPtr<IMessage> message = Open<IMessage>(store.Get(), rows->aRow[0].lpProps[0].Value.bin);
    LONG number = 0;
    MapiBuffer<SPropValue> last;
    if (pfnHrGetOneProp(message.Get(), kTouched, last.Put()) == S_OK) {
        number = last->Value.l;
    }
    for (bool isFirst = true;; isFirst = false) {
        ++number;
        wchar_t digits[16];
        (void)std::swprintf(digits, std::size(digits), L"%08ld", static_cast<long>(number));
        std::wstring body;
        for (int i = 0; i < kRepeats; ++i) {
            body += digits;
        }
        SetLong(message.Get(), kTouched, number);
        SetText(message.Get(), PR_BODY_W, body.c_str());
        Require(message->SaveChanges(0), "SaveChanges");
        if (isFirst) {
            std::puts("ready");
            (void)std::fflush(stdout);
        }
    }
}

void Add(const std::wstring& name) {
    const ComPtr<IMAPIFolder> contacts = OpenContacts(OpenDefaultStore().Get());
    for (int number = 1; number <= kAdded; ++number) {
        ComPtr<IMessage> message;
        Require(contacts->CreateMessage(nullptr, 0, message.GetAddressOf()), "CreateMessage");
        SetText(message.Get(), PR_MESSAGE_CLASS_W, L"IPM.Contact");
        SetText(message.Get(), PR_SUBJECT_W, L"Same");
        SetText(message.Get(), PR_NICKNAME_W, (name + L"-" + std::to_wstring(number)).c_str());
        Require(message->SaveChanges(FORCE_SAVE), "SaveChanges");
    }
}

[[noreturn]] void Hold(const wchar_t* path, DWORD sharing) {
    const FileHandle file(CreateFileW(path, GENERIC_READ, sharing, nullptr, OPEN_EXISTING, 0, nullptr));
    if (!file) {
        throw std::runtime_error("the file cannot be opened");
    }
    std::puts("ready");
    (void)std::fflush(stdout);
    for (;;) {
        Sleep(INFINITE);
    }
}

int Run(const wchar_t* library, const std::wstring& what, const wchar_t* name) {
    const Library loaded(LoadLibraryW(library));
    if (!loaded || FillMAPIEntryPoints(loaded.Get()) == 0) {
        throw std::runtime_error("the MAPI library cannot be loaded");
    }
    Require(pfnMAPIInitialize(nullptr), "MAPIInitialize");
    if (what == L"make") {
        Make();
    } else if (what == L"touch") {
        Touch();
    } else if (what == L"rewrite") {
        Rewrite();
    } else if (what == L"add") {
        Add(name);
    } else if (what == L"keep" || what == L"lock") {
        Hold(name, what == L"keep" ? FILE_SHARE_READ : 0);
    } else {
        return 2;
    }
    pfnMAPIUninitialize();
    return 0;
}

}  // namespace

int wmain(int count, wchar_t** arguments) {
    try {
        return count == 3 || count == 4 ? Run(arguments[1], arguments[2], count == 4 ? arguments[3] : L"")
                                        : 2;
    } catch (const std::exception& error) {
        (void)std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
}
