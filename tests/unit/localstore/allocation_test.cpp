// Every allocation of the store fails in turn. What runs while memory is scarce allocates nothing itself.

#include <cstring>
#include <cwchar>
#include <map>

#include "localstore/buffers.h"
#include "scarce_memory.h"
#include "store_fixture.h"

using namespace localstore_test;

namespace {

constexpr ULONG kContactFolder = 0x36D10102;
constexpr std::size_t kMessages = 3;
constexpr ULONG kPictureSize = 6000;

const BYTE g_picture[kPictureSize] = {1, 2, 3};  ///< the data of attachments

/// The files of a folder: names and bytes.
using Files = std::map<std::wstring, std::vector<BYTE>>;

HRESULT SetText(IMAPIProp* object, ULONG tag, const wchar_t* text) {
    SPropValue value = StringValue(tag, text);
    return object->SetProps(1, &value, nullptr);
}

/// One step of an operation, which ends it unless it succeeds.
#define RETURN_UNLESS_OK(call)                       \
    if (const HRESULT code = (call); code != S_OK) { \
        return code;                                 \
    }

HRESULT OpenObject(IMsgStore* store, const SBinary& id, IUnknown** object) {
    ULONG type = 0;
    return store->OpenEntry(id.cb, reinterpret_cast<LPENTRYID>(id.lpb), nullptr,
                            MAPI_BEST_ACCESS | MAPI_MODIFY, &type, object);
}

/// From the profile to the folder of contacts.
HRESULT OpenContactFolder(ComPtr<IMsgStore>& store, ComPtr<IMAPIFolder>& folder) {
    ComPtr<IMAPISession> session;
    RETURN_UNLESS_OK(MAPILogonEx(0, const_cast<LPWSTR>(L"Work"), nullptr, MAPI_UNICODE, &session));
    ComPtr<IMAPITable> table;
    RETURN_UNLESS_OK(session->GetMsgStoresTable(0, &table));
    SizedSPropTagArray(1, columns) = {1, {PR_ENTRYID}};
    RowSet rows;
    RETURN_UNLESS_OK(HrQueryAllRows(table.Get(), reinterpret_cast<LPSPropTagArray>(&columns), nullptr,
                                    nullptr, 0, rows.Put()));
    const SBinary& id = rows->aRow[0].lpProps[0].Value.bin;
    RETURN_UNLESS_OK(session->OpenMsgStore(0, id.cb, reinterpret_cast<LPENTRYID>(id.lpb), nullptr,
                                           MAPI_BEST_ACCESS, &store));
    ComPtr<IUnknown> root;
    RETURN_UNLESS_OK(OpenObject(store.Get(), {0, nullptr}, &root));
    MapiBuffer<SPropValue> contacts;
    RETURN_UNLESS_OK(HrGetOneProp(static_cast<IMAPIFolder*>(root.Get()), kContactFolder, contacts.Put()));
    ComPtr<IUnknown> object;
    RETURN_UNLESS_OK(OpenObject(store.Get(), contacts->Value.bin, &object));
    folder = Adopt(static_cast<IMAPIFolder*>(object.Detach()));
    return S_OK;
}

HRESULT AddPicture(IMessage* message) {
    ULONG number = 0;
    ComPtr<IAttach> attachment;
    RETURN_UNLESS_OK(message->CreateAttach(nullptr, 0, &number, &attachment));
    RETURN_UNLESS_OK(SetText(attachment.Get(), PR_ATTACH_LONG_FILENAME_W, L"picture"));
    ComPtr<IStream> stream;
    RETURN_UNLESS_OK(attachment->OpenProperty(PR_ATTACH_DATA_BIN, &IID_IStream, 0, MAPI_MODIFY | MAPI_CREATE,
                                              reinterpret_cast<LPUNKNOWN*>(stream.GetAddressOf())));
    RETURN_UNLESS_OK(stream->Write(g_picture, kPictureSize, nullptr));
    RETURN_UNLESS_OK(stream->Commit(0));
    return attachment->SaveChanges(0);
}

/// A named property that the store has not met before, if `number` is a new one.
HRESULT SetNumbered(IMAPIProp* object, LONG number) {
    GUID set = {0x00062004, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
    MAPINAMEID name{};
    name.lpguid = &set;
    name.ulKind = MNID_ID;
    name.Kind.lID = number;
    LPMAPINAMEID list = &name;
    MapiBuffer<SPropTagArray> tags;
    RETURN_UNLESS_OK(object->GetIDsFromNames(1, &list, MAPI_CREATE, tags.Put()));
    return SetText(object, CHANGE_PROP_TYPE(tags->aulPropTag[0], PT_UNICODE), L"named");
}

HRESULT Fill(IMessage* message) {
    RETURN_UNLESS_OK(SetText(message, PR_MESSAGE_CLASS_W, L"IPM.Contact"));
    RETURN_UNLESS_OK(SetText(message, PR_SUBJECT_W, L"RE: new"));
    RETURN_UNLESS_OK(SetText(message, PR_BODY_W, L"body"));
    RETURN_UNLESS_OK(SetNumbered(message, 0x8083));
    return AddPicture(message);
}

}  // namespace

class Allocations : public StoreTest {
  protected:
    void SetUp() override {
        StoreTest::SetUp();
        localstore::recorder::Record(false);
        const ComPtr<IMAPIFolder> contacts = OpenContacts();
        for (const wchar_t* subject : {L"a", L"b", L"c"}) {
            ComPtr<IMessage> message;
            ASSERT_EQ(contacts->CreateMessage(nullptr, 0, &message), S_OK);
            ASSERT_EQ(Set(message.Get(), {StringValue(PR_SUBJECT_W, subject)}), S_OK);
            ASSERT_EQ(AddPicture(message.Get()), S_OK);
            ASSERT_EQ(message->SaveChanges(0), S_OK);
            m_ids.push_back(IdOf(message.Get()));
        }
        m_before = FilesNow();
    }
    void TearDown() override {
        localstore::recorder::Record(true);
        StoreTest::TearDown();
    }

    [[nodiscard]] std::wstring ContactsPath() const { return PathOf(L"Work\\" + m_store + L"\\Contacts"); }
    [[nodiscard]] Files FilesNow() const {
        Files files;
        for (const std::wstring& name : FileNames(ContactsPath())) {
            files[name] = FileBytes(ContactsPath() + L"\\" + name);
        }
        return files;
    }
    /// A store of another name with the files of the beginning: nothing of it is known yet.
    void StartAfresh() {
        if (FilesNow() != m_before) {
            for (const auto& [name, bytes] : FilesNow()) {
                DeleteFileW((ContactsPath() + L"\\" + name).c_str());
            }
            for (const auto& [name, bytes] : m_before) {
                WriteFileBytes(ContactsPath() + L"\\" + name, bytes);
            }
        }
        const std::wstring old = PathOf(L"Work\\" + m_store);
        m_store = L"Mail" + std::to_wstring(++m_round);
        ASSERT_TRUE(MoveFileExW(old.c_str(), PathOf(L"Work\\" + m_store).c_str(), 0));
        localstore::recorder::SetRoot(Root());
    }

    /// Runs `prepare` with memory and then `operation` with the first, the second, the third ... allocation
    /// failing, until none is left to fail. `check` looks at the outcome, with memory again.
    template<class Prepare, class Operation, class Check>
    void FailEach(const Prepare& prepare, const Operation& operation, const Check& check) {
        for (const bool forever : {false, true}) {
            for (std::size_t n = 1;; ++n) {
                SCOPED_TRACE(testing::Message()
                             << "allocation " << n << (forever ? " and all behind it" : ""));
                StartAfresh();
                prepare();
                HRESULT result = S_OK;
                bool hasFailed = false;
                {
                    const ScarceMemory scarce(n, forever);
                    result = operation();
                    hasFailed = scarce.HasFailed();
                }
                check(result);
                EXPECT_EQ(localstore::recorder::LiveObjects(), 0);
                EXPECT_EQ(localstore::recorder::LiveBuffers(), 0);
                if (HasFailure()) {
                    return;
                }
                if (!hasFailed) {
                    EXPECT_EQ(result, S_OK);
                    EXPECT_GT(n, 5U) << "nothing was allocated";
                    break;
                }
            }
        }
    }

    void OpenTheFolder() {
        ASSERT_EQ(OpenContactFolder(m_openStore, m_contacts), S_OK);
        // The identifiers are made of the store's name too.
        m_ids.clear();
        const RowSet rows = ContentsOf(m_contacts.Get(), {PR_ENTRYID});
        for (ULONG i = 0; i < rows->cRows; ++i) {
            const SBinary& id = rows->aRow[i].lpProps[0].Value.bin;
            m_ids.emplace_back(id.lpb, id.lpb + id.cb);
        }
        ASSERT_EQ(m_ids.size(), kMessages);
    }
    void OpenTheMessage() {
        OpenTheFolder();
        m_message = StoreTest::OpenMessage(m_contacts.Get(), m_ids[0]);
        ASSERT_NE(m_message, nullptr);
    }
    void Close() {
        m_message.Reset();
        m_contacts.Reset();
        m_openStore.Reset();
    }
    [[nodiscard]] SBinary Id(std::size_t index) {
        return {static_cast<ULONG>(m_ids[index].size()), m_ids[index].data()};
    }
    /// A message of the store as it is on the disk now, read by nobody before.
    ComPtr<IMessage> Fresh(const std::vector<BYTE>& id) {
        localstore::recorder::SetRoot(Root());
        return StoreTest::OpenMessage(m_contacts.Get(), id);
    }
    /// Exactly one message was added, and it is whole.
    void ExpectOneMore() {
        const Files now = FilesNow();
        EXPECT_EQ(now.size(), m_before.size() + 1);
        for (const auto& [name, bytes] : m_before) {
            EXPECT_EQ(now.at(name), bytes);
        }
        localstore::recorder::SetRoot(Root());
        const RowSet rows = ContentsOf(m_contacts.Get(), {PR_SUBJECT_W, PR_ENTRYID});
        ASSERT_EQ(rows->cRows, kMessages + 1);
        for (ULONG i = 0; i < rows->cRows; ++i) {
            const SPropValue* values = rows->aRow[i].lpProps;
            if (std::wcscmp(values[0].Value.lpszW, L"RE: new") == 0) {
                ExpectNew({values[1].Value.bin.lpb, values[1].Value.bin.lpb + values[1].Value.bin.cb});
                return;
            }
        }
        ADD_FAILURE() << "no new message in the table";
    }
    void ExpectNew(const std::vector<BYTE>& id) {
        const ComPtr<IMessage> message = StoreTest::OpenMessage(m_contacts.Get(), id);
        ASSERT_NE(message, nullptr);
        EXPECT_EQ(TextOf(message.Get(), PR_NORMALIZED_SUBJECT_W), L"new");
        EXPECT_EQ(TextOf(message.Get(), PR_BODY_W), L"body");
        EXPECT_EQ(TextOf(message.Get(), NamedTag(message.Get(), 0x00062004, 0x8083, PT_UNICODE, 0)),
                  L"named");
        ComPtr<IAttach> attachment;
        ASSERT_EQ(message->OpenAttach(0, nullptr, 0, &attachment), S_OK);
        EXPECT_EQ(ReadStream(attachment.Get(), PR_ATTACH_DATA_BIN),
                  std::vector<BYTE>(g_picture, g_picture + kPictureSize));
    }
    /// Nothing is there but what was there before: no other name, no other byte.
    void ExpectUnchanged() const { EXPECT_TRUE(FilesNow() == m_before); }

    std::wstring m_store = L"Mail";
    int m_round = 0;
    Files m_before;
    std::vector<std::vector<BYTE>> m_ids;
    ComPtr<IMsgStore> m_openStore;
    ComPtr<IMAPIFolder> m_contacts;
    ComPtr<IMessage> m_message;
};

TEST_F(Allocations, FailingWhileAFolderIsReadHideNoMessage) {
    ULONG count = 0;
    bool textsAreThere = false;
    const auto read = [&]() -> HRESULT {
        ComPtr<IMsgStore> store;
        ComPtr<IMAPIFolder> folder;
        RETURN_UNLESS_OK(OpenContactFolder(store, folder));
        ComPtr<IMAPITable> table;
        RETURN_UNLESS_OK(folder->GetContentsTable(MAPI_UNICODE, &table));
        SizedSPropTagArray(2, columns) = {2, {PR_SUBJECT_W, PR_ENTRYID}};
        SizedSSortOrderSet(1, order) = {1, 0, 0, {{PR_SUBJECT_W, TABLE_SORT_DESCEND}}};
        RowSet rows;
        RETURN_UNLESS_OK(HrQueryAllRows(table.Get(), reinterpret_cast<LPSPropTagArray>(&columns), nullptr,
                                        reinterpret_cast<LPSSortOrderSet>(&order), 0, rows.Put()));
        count = rows->cRows;
        const auto subject = [&](ULONG i) { return rows->aRow[i].lpProps[0].Value.lpszW; };
        textsAreThere = count == kMessages && std::wcscmp(subject(0), L"c") == 0 &&
                        std::wcscmp(subject(1), L"b") == 0 && std::wcscmp(subject(2), L"a") == 0;
        return S_OK;
    };
    FailEach([] {}, read,
             [&](HRESULT result) {
                 if (result == S_OK) {
                     EXPECT_EQ(count, kMessages);
                     EXPECT_TRUE(textsAreThere);
                 } else {
                     EXPECT_EQ(result, MAPI_E_NOT_ENOUGH_MEMORY);
                     // The shortage is over, and nothing of it is remembered.
                     EXPECT_EQ(read(), S_OK);
                     EXPECT_EQ(count, kMessages);
                 }
                 ExpectUnchanged();
             });
}

TEST_F(Allocations, FailingWhileAMessageIsReadShowItWholeOrNotAtAll) {
    ULONG count = 0;
    ULONG all = 0;
    const auto read = [&]() -> HRESULT {
        ComPtr<IUnknown> object;
        RETURN_UNLESS_OK(OpenObject(m_openStore.Get(), Id(0), &object));
        auto* message = static_cast<IMessage*>(object.Get());
        MapiBuffer<SPropValue> values;
        RETURN_UNLESS_OK(message->GetProps(nullptr, MAPI_UNICODE, &count, values.Put()));
        ComPtr<IMAPITable> attachments;
        RETURN_UNLESS_OK(message->GetAttachmentTable(MAPI_UNICODE, &attachments));
        ComPtr<IAttach> attachment;
        RETURN_UNLESS_OK(message->OpenAttach(0, nullptr, 0, &attachment));
        ComPtr<IStream> stream;
        RETURN_UNLESS_OK(attachment->OpenProperty(PR_ATTACH_DATA_BIN, &IID_IStream, 0, 0,
                                                  reinterpret_cast<LPUNKNOWN*>(stream.GetAddressOf())));
        BYTE bytes[kPictureSize];
        ULONG size = 0;
        RETURN_UNLESS_OK(stream->Read(bytes, kPictureSize, &size));
        return size == kPictureSize && std::memcmp(bytes, g_picture, size) == 0 ? S_OK : E_UNEXPECTED;
    };
    const auto prepare = [&] {
        OpenTheFolder();
        EXPECT_EQ(read(), S_OK);
        all = count;
        localstore::recorder::SetRoot(Root());
    };
    FailEach(prepare, read, [&](HRESULT result) {
        EXPECT_TRUE(result == S_OK ? count == all : result == MAPI_E_NOT_ENOUGH_MEMORY) << std::hex << result;
        EXPECT_EQ(read(), S_OK);
        EXPECT_EQ(count, all);
        Close();
        ExpectUnchanged();
    });
}

TEST_F(Allocations, FailingWhileAMessageIsMadeLeaveNoneOrAWholeOne) {
    const auto make = [&]() -> HRESULT {
        ComPtr<IMessage> message;
        RETURN_UNLESS_OK(m_contacts->CreateMessage(nullptr, 0, &message));
        RETURN_UNLESS_OK(Fill(message.Get()));
        return message->SaveChanges(FORCE_SAVE);
    };
    FailEach([&] { OpenTheFolder(); }, make,
             [&](HRESULT result) {
                 if (result == S_OK) {
                     ExpectOneMore();
                 } else {
                     EXPECT_EQ(result, MAPI_E_NOT_ENOUGH_MEMORY);
                     ExpectUnchanged();
                 }
                 Close();
             });
}

TEST_F(Allocations, FailingWhileANewMessageIsSavedLetItBeSavedAgain) {
    const auto prepare = [&] {
        OpenTheFolder();
        ASSERT_EQ(m_contacts->CreateMessage(nullptr, 0, &m_message), S_OK);
        ASSERT_EQ(Fill(m_message.Get()), S_OK);
    };
    FailEach(
        prepare, [&] { return m_message->SaveChanges(FORCE_SAVE); },
        [&](HRESULT result) {
            if (result != S_OK) {
                EXPECT_EQ(result, MAPI_E_NOT_ENOUGH_MEMORY);
                ExpectUnchanged();
            }
            // Once more, as one who was told of a failure does: the message is there once all the same.
            EXPECT_EQ(m_message->SaveChanges(0), S_OK);
            ExpectOneMore();
            Close();
        });
}

TEST_F(Allocations, FailingWhileAMessageIsChangedLeaveTheOldOneOrTheNewOne) {
    const auto change = [&]() -> HRESULT {
        ComPtr<IUnknown> object;
        RETURN_UNLESS_OK(OpenObject(m_openStore.Get(), Id(0), &object));
        auto* message = static_cast<IMessage*>(object.Get());
        RETURN_UNLESS_OK(Fill(message));
        RETURN_UNLESS_OK(message->DeleteAttach(0, 0, nullptr, 0));
        return message->SaveChanges(0);
    };
    FailEach([&] { OpenTheFolder(); }, change,
             [&](HRESULT result) {
                 if (result == S_OK) {
                     EXPECT_EQ(FilesNow().size(), m_before.size());
                     const ComPtr<IMessage> message = Fresh(m_ids[0]);
                     ASSERT_NE(message, nullptr);
                     EXPECT_EQ(TextOf(message.Get(), PR_SUBJECT_W), L"RE: new");
                 } else {
                     EXPECT_EQ(result, MAPI_E_NOT_ENOUGH_MEMORY);
                     ExpectUnchanged();
                 }
                 Close();
             });
}

TEST_F(Allocations, FailingWhileAChangeIsSavedLetItBeSavedAgain) {
    const auto prepare = [&] {
        OpenTheMessage();
        ASSERT_EQ(SetText(m_message.Get(), PR_SUBJECT_W, L"changed"), S_OK);
    };
    FailEach(
        prepare, [&] { return m_message->SaveChanges(0); },
        [&](HRESULT result) {
            if (result != S_OK) {
                EXPECT_EQ(result, MAPI_E_NOT_ENOUGH_MEMORY);
                ExpectUnchanged();
            }
            // Without FORCE_SAVE: the message knows that nobody else has written the file.
            EXPECT_EQ(m_message->SaveChanges(0), S_OK);
            EXPECT_EQ(SetText(m_message.Get(), PR_SURNAME_W, L"Doe"), S_OK);
            EXPECT_EQ(m_message->SaveChanges(0), S_OK);
            EXPECT_EQ(TextOf(Fresh(m_ids[0]).Get(), PR_SUBJECT_W), L"changed");
            EXPECT_EQ(FilesNow().size(), m_before.size());
            Close();
        });
}

TEST_F(Allocations, FailingWhileASubjectIsSetChangeItWithWhatFollowsOrNotAtAll) {
    FailEach([&] { OpenTheMessage(); }, [&] { return SetText(m_message.Get(), PR_SUBJECT_W, L"RE: new"); },
             [&](HRESULT result) {
                 const bool isNew = result == S_OK;
                 EXPECT_TRUE(isNew || result == MAPI_E_NOT_ENOUGH_MEMORY) << std::hex << result;
                 EXPECT_EQ(TextOf(m_message.Get(), PR_SUBJECT_W), isNew ? L"RE: new" : L"a");
                 EXPECT_EQ(TextOf(m_message.Get(), PR_SUBJECT_PREFIX_W), isNew ? L"RE: " : L"");
                 EXPECT_EQ(TextOf(m_message.Get(), PR_NORMALIZED_SUBJECT_W), isNew ? L"new" : L"a");
                 Close();
             });
}

TEST_F(Allocations, FailingWhileANameIsAddedLoseNoName) {
    FailEach([&] { OpenTheMessage(); }, [&] { return SetNumbered(m_message.Get(), 0x8FF0); },
             [&](HRESULT result) {
                 EXPECT_TRUE(result == S_OK || result == MAPI_E_NOT_ENOUGH_MEMORY) << std::hex << result;
                 EXPECT_EQ(SetNumbered(m_message.Get(), 0x8FF1), S_OK);
                 EXPECT_EQ(SetNumbered(m_message.Get(), 0x8FF0), S_OK);
                 EXPECT_EQ(m_message->SaveChanges(0), S_OK);
                 const ComPtr<IMessage> fresh = Fresh(m_ids[0]);
                 for (const LONG number : {0x8FF0, 0x8FF1}) {
                     const ULONG tag = NamedTag(fresh.Get(), 0x00062004, number, PT_UNICODE, 0);
                     EXPECT_EQ(TextOf(fresh.Get(), tag), L"named") << std::hex << number;
                 }
                 Close();
             });
}

TEST_F(Allocations, FailingWhileMessagesAreDeletedAreNoFailureOfTheOnesThatAreGone) {
    const auto remove = [&] {
        SBinary ids[] = {Id(0), Id(1)};
        ENTRYLIST list = {2, ids};
        return m_contacts->DeleteMessages(&list, 0, nullptr, 0);
    };
    FailEach([&] { OpenTheFolder(); }, remove,
             [&](HRESULT result) {
                 const std::size_t gone = m_before.size() - FilesNow().size();
                 const HRESULT expected = gone == 2   ? S_OK
                                          : gone == 1 ? MAPI_W_PARTIAL_COMPLETION
                                                      : MAPI_E_NOT_ENOUGH_MEMORY;
                 EXPECT_EQ(result, expected) << gone;
                 Close();
             });
}

TEST_F(Allocations, FailingWhileAStreamIsWrittenKeepTheOldValueOrTheNewOne) {
    const auto write = [&]() -> HRESULT {
        ComPtr<IStream> stream;
        RETURN_UNLESS_OK(m_message->OpenProperty(PR_BODY_W, &IID_IStream, 0, MAPI_MODIFY,
                                                 reinterpret_cast<LPUNKNOWN*>(stream.GetAddressOf())));
        RETURN_UNLESS_OK(stream->Write(L"new", 3 * sizeof(wchar_t), nullptr));
        RETURN_UNLESS_OK(stream->Commit(0));
        return m_message->SaveChanges(0);
    };
    const auto prepare = [&] {
        OpenTheMessage();
        ASSERT_EQ(SetText(m_message.Get(), PR_BODY_W, L"old"), S_OK);
        ASSERT_EQ(m_message->SaveChanges(0), S_OK);
    };
    FailEach(prepare, write, [&](HRESULT result) {
        EXPECT_TRUE(result == S_OK || result == MAPI_E_NOT_ENOUGH_MEMORY) << std::hex << result;
        EXPECT_EQ(TextOf(Fresh(m_ids[0]).Get(), PR_BODY_W), result == S_OK ? L"new" : L"old");
        EXPECT_EQ(FilesNow().size(), m_before.size());
        Close();
    });
}
