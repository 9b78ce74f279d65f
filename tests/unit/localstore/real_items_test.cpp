#include "store_fixture.h"

#include "localstore/file_system.h"
#include "localstore/msg_content.h"
#include "localstore/msg_storage.h"

using namespace localstore_test;

namespace {

using localstore::FileEntry;
using localstore::MessageContent;
using localstore::StorageTree;

/// The variable holds a path of the machine that the tests are started on, which Wine has on its drive Z.
std::wstring ItemsFolder() {
    wchar_t path[MAX_PATH] = {};
    if (GetEnvironmentVariableW(L"ZEB_REAL_ITEMS", path, MAX_PATH) == 0) {
        return {};
    }
    const std::wstring given = path[0] == L'/' ? std::wstring(L"Z:") + path : std::wstring(path);
    wchar_t full[MAX_PATH] = {};
    GetFullPathNameW(given.c_str(), MAX_PATH, full, nullptr);
    return full;
}

std::optional<StorageTree> ReadTree(const std::wstring& path) {
    const char* reason = "";
    return localstore::ReadStorage(localstore::ReadWholeFile(path).bytes, reason);
}

}  // namespace

/// Messages that a mail program saved, in the folder that ZEB_REAL_ITEMS names. Left out where there are
/// none.
class RealItems : public StoreTest {
  protected:
    void SetUp() override {
        StoreTest::SetUp();
        const std::wstring folder = ItemsFolder();
        if (folder.empty()) {
            GTEST_SKIP() << "ZEB_REAL_ITEMS is not set";
        }
        for (const FileEntry& entry : localstore::ListFolder(folder)) {
            if (entry.name.ends_with(L".msg")) {
                const std::wstring target = PathOf(std::wstring(kContactsPath) + L"\\" + entry.name);
                ASSERT_TRUE(
                    CopyFileW(localstore::JoinPath(folder, entry.name).c_str(), target.c_str(), TRUE));
                SetFileAttributesW(target.c_str(), FILE_ATTRIBUTE_NORMAL);
                m_names.push_back(entry.name);
            }
        }
        ASSERT_FALSE(m_names.empty());
    }
    [[nodiscard]] std::wstring File(const std::wstring& name) const {
        return PathOf(std::wstring(kContactsPath) + L"\\" + name);
    }
    std::vector<std::wstring> m_names;
};

TEST_F(RealItems, AreAllInTheTable) {
    EXPECT_EQ(ContentsOf(OpenContacts().Get(), {PR_ENTRYID})->cRows, m_names.size());
    EXPECT_TRUE(localstore::recorder::Diagnostics().empty());
}

TEST_F(RealItems, ComeBackTheSameFromReadingAndWriting) {
    for (const std::wstring& name : m_names) {
        const std::optional<StorageTree> before = ReadTree(File(name));
        ASSERT_TRUE(before);
        const char* reason = "";
        const std::optional<MessageContent> message = localstore::ReadMessage(*before, reason);
        ASSERT_TRUE(message) << reason;
        const StorageTree after = localstore::WriteMessage(*message);
        const StorageTree fromDisk = *localstore::ReadStorage(localstore::WriteStorage(after), reason);
        EXPECT_EQ(after, fromDisk);
        // Only the property streams may differ, whose entries are put in order.
        ASSERT_EQ(after.streams.size(), before->streams.size());
        for (const auto& [stream, bytes] : before->streams) {
            if (stream != localstore::kPropertyStreamName) {
                EXPECT_EQ(*after.streams.at(stream), *bytes);
            }
        }
        ASSERT_EQ(after.storages.size(), before->storages.size());
        EXPECT_EQ(after.storages.at(localstore::kNamesStorageName),
                  before->storages.at(localstore::kNamesStorageName));
    }
}

TEST_F(RealItems, LookUpStreamsAreMadeAsTheMailProgramMadeThem) {
    for (const std::wstring& name : m_names) {
        std::optional<StorageTree> tree = ReadTree(File(name));
        ASSERT_TRUE(tree);
        const StorageTree original = tree->storages.at(localstore::kNamesStorageName);
        localstore::NameMap read;
        ASSERT_TRUE(read.Take(*tree));
        localstore::NameMap written;
        std::size_t entries = original.streams.at(localstore::ValueStreamName(0x00030102))->size() / 8;
        for (std::size_t i = 0; i < entries; ++i) {
            const auto id = static_cast<localstore::PropertyId>(0x8000 + i);
            ASSERT_NE(read.NameOf(id), nullptr);
            ASSERT_EQ(written.Add(*read.NameOf(id), 0), id);
        }
        StorageTree top;
        written.AddTo(top);
        const StorageTree& made = top.storages.at(localstore::kNamesStorageName);
        EXPECT_EQ(made.streams.size(), original.streams.size());
        for (const auto& [stream, bytes] : original.streams) {
            if (stream.starts_with(L"__substg1.0_10")) {
                ASSERT_TRUE(made.streams.contains(stream));
                EXPECT_EQ(made.streams.at(stream)->size(), bytes->size());
            }
        }
    }
}

TEST_F(RealItems, SurviveAChangeOfOneProperty) {
    const ComPtr<IMAPIFolder> contacts = OpenContacts();
    const RowSet rows = ContentsOf(contacts.Get(), {PR_ENTRYID});
    for (ULONG i = 0; i < rows->cRows; ++i) {
        const std::optional<StorageTree> before = ReadTree(File(m_names[i]));
        const SBinary& id = rows->aRow[i].lpProps[0].Value.bin;
        const ComPtr<IMessage> message = OpenMessage(contacts.Get(), {id.lpb, id.lpb + id.cb});
        ASSERT_EQ(Set(message.Get(), {LongValue(0x67FF0003, 1)}), S_OK);
        ASSERT_EQ(message->SaveChanges(FORCE_SAVE), S_OK);
        std::optional<StorageTree> after = ReadTree(File(m_names[i]));
        ASSERT_TRUE(after);
        for (const auto& [stream, bytes] : before->streams) {
            if (stream != localstore::kPropertyStreamName) {
                ASSERT_TRUE(after->streams.contains(stream));
                EXPECT_EQ(*after->streams.at(stream), *bytes);
            }
        }
        for (const auto& [storage, content] : before->storages) {
            // Attachments hold embedded messages, of which not a byte may change.
            EXPECT_EQ(after->storages.at(storage).storages, content.storages);
        }
    }
}

TEST_F(RealItems, AContactReadsAsItsFieldsSay) {
    const ComPtr<IMAPIFolder> contacts = OpenContacts();
    SPropValue value = StringValue(PR_MESSAGE_CLASS_W, L"IPM.Contact");
    SRestriction restriction{};
    restriction.rt = RES_PROPERTY;
    restriction.res.resProperty = {RELOP_EQ, PR_MESSAGE_CLASS_W, &value};
    const RowSet rows = ContentsOf(contacts.Get(), {PR_ENTRYID, PR_LAST_MODIFICATION_TIME}, &restriction);
    ASSERT_EQ(rows->cRows, 1U);
    const FILETIME& time = rows->aRow[0].lpProps[1].Value.ft;
    EXPECT_EQ(static_cast<unsigned long long>(time.dwHighDateTime) << 32U | time.dwLowDateTime,
              133028350894300000U);
    const SBinary& id = rows->aRow[0].lpProps[0].Value.bin;
    const ComPtr<IMessage> message = OpenMessage(contacts.Get(), {id.lpb, id.lpb + id.cb});
    EXPECT_EQ(ReadStream(message.Get(), PR_BODY_W), (std::vector<BYTE>{'\r', 0, '\n', 0}));
    EXPECT_EQ(TextOf(message.Get(), NamedTag(message.Get(), 0x00062004, 0x8082, PT_UNICODE)), L"SMTP");
    EXPECT_FALSE(TextOf(message.Get(), NamedTag(message.Get(), 0x00062004, 0x8083, PT_UNICODE)).empty());
}
