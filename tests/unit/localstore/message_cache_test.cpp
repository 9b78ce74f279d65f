#include "localstore/message_cache.h"

#include <algorithm>

#include "localstore/failure.h"
#include "store_fixture.h"

using localstore::MessageCache;
using namespace localstore_test;
using localstore::recorder::FilesRead;

class MessageCaching : public StoreTest {
  protected:
    void SetUp() override {
        StoreTest::SetUp();
        m_contacts = OpenContacts();
        for (const wchar_t* subject : {L"a", L"b", L"c"}) {
            m_ids.push_back(AddContact(m_contacts.Get(), subject));
        }
        localstore::recorder::SetRoot(Root());
    }
    void TearDown() override {
        m_contacts.Reset();
        StoreTest::TearDown();
    }
    std::size_t ReadsOfATable() const {
        const std::size_t before = FilesRead();
        EXPECT_EQ(ContentsOf(m_contacts.Get(), {PR_SUBJECT_W})->cRows, 3U);
        return FilesRead() - before;
    }
    [[nodiscard]] std::wstring File(const std::wstring& name) const {
        return PathOf(std::wstring(kContactsPath) + L"\\" + name);
    }

    ComPtr<IMAPIFolder> m_contacts;
    std::vector<std::vector<BYTE>> m_ids;
};

TEST_F(MessageCaching, AFileIsReadOnceForTablesAndObjects) {
    EXPECT_EQ(ReadsOfATable(), 3U);
    EXPECT_EQ(ReadsOfATable(), 0U);
    const std::size_t before = FilesRead();
    for (const std::vector<BYTE>& id : m_ids) {
        EXPECT_NE(OpenMessage(m_contacts.Get(), id), nullptr);
    }
    EXPECT_EQ(FilesRead(), before);
}

TEST_F(MessageCaching, AFileThatChangedIsReadAgain) {
    ReadsOfATable();
    const std::vector<BYTE> other = FileBytes(File(L"b.msg"));
    WriteFileBytes(File(L"a.msg"), other);
    EXPECT_EQ(ReadsOfATable(), 1U);
    EXPECT_EQ(FirstTexts(ContentsOf(m_contacts.Get(), {PR_SUBJECT_W})),
              (std::vector<std::wstring>{L"b", L"b", L"c"}));
    EXPECT_EQ(TextOf(OpenMessage(m_contacts.Get(), m_ids[0]).Get(), PR_SUBJECT_W), L"b");
}

TEST_F(MessageCaching, AFileThatWasReplacedByAnotherIsReadAgain) {
    ReadsOfATable();
    // Same size, same time, another file: only its identity tells.
    const std::wstring first = File(L"a.msg");
    const std::wstring second = File(L"b.msg");
    FILETIME time{};
    {
        const FileHandle file(
            CreateFileW(first.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr));
        ASSERT_TRUE(GetFileTime(file.Get(), nullptr, nullptr, &time));
    }
    ASSERT_TRUE(CopyFileW(second.c_str(), File(L"copy").c_str(), FALSE));
    {
        const FileHandle file(
            CreateFileW(File(L"copy").c_str(), FILE_WRITE_ATTRIBUTES, 0, nullptr, OPEN_EXISTING, 0, nullptr));
        ASSERT_TRUE(SetFileTime(file.Get(), nullptr, nullptr, &time));
    }
    ASSERT_TRUE(MoveFileExW(File(L"copy").c_str(), first.c_str(), MOVEFILE_REPLACE_EXISTING));
    EXPECT_EQ(TextOf(OpenMessage(m_contacts.Get(), m_ids[0]).Get(), PR_SUBJECT_W), L"b");
}

TEST_F(MessageCaching, OnesOwnChangesShow) {
    ReadsOfATable();
    const ComPtr<IMessage> message = OpenMessage(m_contacts.Get(), m_ids[1]);
    ASSERT_EQ(Set(message.Get(), {StringValue(PR_SUBJECT_W, L"x")}), S_OK);
    EXPECT_EQ(FirstTexts(ContentsOf(m_contacts.Get(), {PR_SUBJECT_W})),
              (std::vector<std::wstring>{L"a", L"b", L"c"}));
    EXPECT_EQ(TextOf(OpenMessage(m_contacts.Get(), m_ids[1]).Get(), PR_SUBJECT_W), L"b");
    ASSERT_EQ(message->SaveChanges(0), S_OK);
    EXPECT_EQ(FirstTexts(ContentsOf(m_contacts.Get(), {PR_SUBJECT_W})),
              (std::vector<std::wstring>{L"a", L"x", L"c"}));
    EXPECT_EQ(ReadsOfATable(), 0U);
}

TEST_F(MessageCaching, AnOpenMessageKeepsWhatItRead) {
    const ComPtr<IMessage> message = OpenMessage(m_contacts.Get(), m_ids[0]);
    WriteFileBytes(File(L"a.msg"), FileBytes(File(L"b.msg")));
    EXPECT_EQ(TextOf(message.Get(), PR_SUBJECT_W), L"a");
}

TEST_F(MessageCaching, ADamagedFileTakesNoRoomFromTheOthers) {
    localstore::MessageCache cache({}, FileBytes(File(L"a.msg")).size() + FileBytes(File(L"b.msg")).size());
    cache.Load(File(L"a.msg"));
    cache.Load(File(L"b.msg"));
    WriteFileBytes(File(L"c.msg"), std::vector<BYTE>(1'000'000));
    EXPECT_THROW(cache.Load(File(L"c.msg")), localstore::StoreError);
    const std::size_t before = cache.FilesRead();
    cache.Load(File(L"a.msg"));
    cache.Load(File(L"b.msg"));
    EXPECT_EQ(cache.FilesRead(), before);
}

TEST_F(MessageCaching, AWalkThroughMoreThanThereIsRoomForFindsWhatHasRoom) {
    std::uint64_t all = 0;
    for (const wchar_t* name : {L"a.msg", L"b.msg", L"c.msg"}) {
        all += FileBytes(File(name)).size();
    }
    const auto readsOfTwoWalks = [this](std::uint64_t room) {
        MessageCache cache({}, room);
        std::vector<std::size_t> reads;
        for (int walk = 0; walk < 2; ++walk) {
            const std::size_t before = cache.FilesRead();
            for (const wchar_t* name : {L"a.msg", L"b.msg", L"c.msg"}) {
                EXPECT_NE(cache.Load(File(name)).content, nullptr);
            }
            reads.push_back(cache.FilesRead() - before);
        }
        return reads;
    };
    EXPECT_EQ(readsOfTwoWalks(all), (std::vector<std::size_t>{3, 0}));
    // The third took the place of the second, and then the second that of the first.
    EXPECT_EQ(readsOfTwoWalks(all - 1), (std::vector<std::size_t>{3, 1}));
    // The one that is read has room in any case.
    EXPECT_EQ(readsOfTwoWalks(1), (std::vector<std::size_t>{3, 3}));
}

TEST_F(MessageCaching, WhatIsForgottenInTheMiddleOfAWalkIsReadAgain) {
    MessageCache cache;
    const auto reads = [&](const wchar_t* name) {
        const std::size_t before = cache.FilesRead();
        EXPECT_EQ(cache.Load(File(name)).file.name, name);
        return cache.FilesRead() - before;
    };
    for (const wchar_t* name : {L"a.msg", L"b.msg", L"c.msg"}) {
        EXPECT_EQ(reads(name), 1U);
    }
    EXPECT_EQ(reads(L"a.msg"), 0U);
    cache.Forget(File(L"b.msg"));
    EXPECT_EQ(reads(L"b.msg"), 1U);
    EXPECT_EQ(reads(L"c.msg"), 0U);
    EXPECT_EQ(reads(L"a.msg"), 0U);
    EXPECT_EQ(reads(L"c.msg"), 0U);
    cache.Clear();
    EXPECT_EQ(reads(L"a.msg"), 1U);
}

TEST_F(MessageCaching, AQuarterOfTheMachinesMemoryIsKept) {
    MEMORYSTATUSEX memory{};
    memory.dwLength = sizeof(memory);
    ASSERT_TRUE(GlobalMemoryStatusEx(&memory));
    EXPECT_EQ(MessageCache::KeptBytes(), std::max<std::uint64_t>(268'435'456, memory.ullTotalPhys / 4));
}
