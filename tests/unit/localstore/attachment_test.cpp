#include "store_fixture.h"

using namespace localstore_test;

namespace {

constexpr ULONG kContactPhoto = 0x7FFF000B;

}  // namespace

class Attachments : public StoreTest {
  protected:
    void SetUp() override {
        StoreTest::SetUp();
        m_contacts = OpenContacts();
        m_id = AddContact(m_contacts.Get(), L"John Doe");
        m_message = OpenMessage(m_contacts.Get(), m_id);
        ASSERT_NE(m_message, nullptr);
    }
    void TearDown() override {
        m_message.Reset();
        m_contacts.Reset();
        StoreTest::TearDown();
    }

    static ULONG AddPhoto(IMessage* message, const std::vector<BYTE>& bytes, bool isPhoto = true) {
        ULONG number = 77;
        ComPtr<IAttach> attachment;
        EXPECT_EQ(message->CreateAttach(nullptr, MAPI_DEFERRED_ERRORS, &number, &attachment), S_OK);
        EXPECT_EQ(Set(attachment.Get(),
                      {StringValue(PR_ATTACH_LONG_FILENAME_W, L"ContactPicture.jpg"),
                       LongValue(PR_ATTACH_METHOD, ATTACH_BY_VALUE), BoolValue(kContactPhoto, isPhoto)}),
                  S_OK);
        EXPECT_EQ(WriteStream(attachment.Get(), PR_ATTACH_DATA_BIN, bytes), S_OK);
        EXPECT_EQ(attachment->SaveChanges(FORCE_SAVE), S_OK);
        return number;
    }

    /// Numbers and data of the photos, as a reader of contacts asks for them.
    static RowSet Photos(IMessage* message) {
        ComPtr<IMAPITable> table;
        EXPECT_EQ(message->GetAttachmentTable(0, &table), S_OK);
        SPropValue yes = BoolValue(kContactPhoto, true);
        SRestriction restriction{};
        restriction.rt = RES_PROPERTY;
        restriction.res.resProperty = {RELOP_EQ, kContactPhoto, &yes};
        return RowsOf(table.Get(), {PR_ATTACH_NUM, PR_ATTACH_DATA_BIN, PR_ATTACH_SIZE}, &restriction);
    }

    /// The message as another client finds it on the disk.
    [[nodiscard]] ComPtr<IMessage> FromDisk() const {
        localstore::recorder::SetRoot(Root());
        return OpenMessage(m_contacts.Get(), m_id);
    }

    ComPtr<IMAPIFolder> m_contacts;
    ComPtr<IMessage> m_message;
    std::vector<BYTE> m_id;
};

TEST_F(Attachments, ASmallPhotoStandsInItsRow) {
    const std::vector<BYTE> bytes(4'096, 0xD8);
    AddPhoto(m_message.Get(), bytes);
    ASSERT_EQ(m_message->SaveChanges(0), S_OK);
    const RowSet rows = Photos(FromDisk().Get());
    ASSERT_EQ(rows->cRows, 1U);
    const SPropValue* values = rows->aRow[0].lpProps;
    EXPECT_EQ(std::vector<BYTE>(values[1].Value.bin.lpb, values[1].Value.bin.lpb + values[1].Value.bin.cb),
              bytes);
    EXPECT_EQ(values[2].Value.l, 4'096);
}

TEST_F(Attachments, ALargePhotoComesThroughAStream) {
    std::vector<BYTE> bytes(100'000);
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        bytes[i] = static_cast<BYTE>(i * 7);
    }
    AddPhoto(m_message.Get(), bytes);
    ASSERT_EQ(m_message->SaveChanges(0), S_OK);
    const ComPtr<IMessage> message = FromDisk();
    const RowSet rows = Photos(message.Get());
    ASSERT_EQ(rows->cRows, 1U);
    const SPropValue* values = rows->aRow[0].lpProps;
    EXPECT_EQ(values[1].ulPropTag, CHANGE_PROP_TYPE(PR_ATTACH_DATA_BIN, PT_ERROR));
    EXPECT_EQ(values[1].Value.err, MAPI_E_NOT_ENOUGH_MEMORY);
    ComPtr<IAttach> attachment;
    ASSERT_EQ(
        message->OpenAttach(static_cast<ULONG>(values[0].Value.l), nullptr, MAPI_BEST_ACCESS, &attachment),
        S_OK);
    EXPECT_EQ(ReadStream(attachment.Get(), PR_ATTACH_DATA_BIN), bytes);
}

TEST_F(Attachments, AreNotPartOfTheMessageUntilSaved) {
    ULONG number = 0;
    ComPtr<IAttach> attachment;
    ASSERT_EQ(m_message->CreateAttach(nullptr, 0, &number, &attachment), S_OK);
    ASSERT_EQ(Set(attachment.Get(), {BoolValue(kContactPhoto, true)}), S_OK);
    EXPECT_EQ(Photos(m_message.Get())->cRows, 0U);
    ASSERT_EQ(attachment->SaveChanges(0), S_OK);
    EXPECT_EQ(Photos(m_message.Get())->cRows, 1U);
    EXPECT_EQ(Photos(FromDisk().Get())->cRows, 0U);
}

TEST_F(Attachments, GetNumbersThatAreNotUsedTwice) {
    const ULONG first = AddPhoto(m_message.Get(), {1});
    const ULONG second = AddPhoto(m_message.Get(), {2});
    EXPECT_NE(first, second);
    ASSERT_EQ(m_message->DeleteAttach(second, 0, nullptr, 0), S_OK);
    ASSERT_EQ(m_message->SaveChanges(0), S_OK);
    const ULONG third = AddPhoto(m_message.Get(), {3});
    EXPECT_NE(third, first);
    EXPECT_NE(third, second);
    EXPECT_EQ(AddPhoto(FromDisk().Get(), {4}), third);
}

TEST_F(Attachments, DeleteAttachRemovesOne) {
    const ULONG first = AddPhoto(m_message.Get(), {1});
    AddPhoto(m_message.Get(), {2});
    ASSERT_EQ(m_message->SaveChanges(0), S_OK);
    ASSERT_EQ(m_message->DeleteAttach(first, 0, nullptr, 0), S_OK);
    EXPECT_EQ(m_message->DeleteAttach(first, 0, nullptr, 0), MAPI_E_NOT_FOUND);
    EXPECT_EQ(Photos(m_message.Get())->cRows, 1U);
    EXPECT_EQ(Photos(FromDisk().Get())->cRows, 2U);
    ASSERT_EQ(m_message->SaveChanges(0), S_OK);
    EXPECT_EQ(Photos(FromDisk().Get())->cRows, 1U);
    ComPtr<IAttach> attachment;
    EXPECT_EQ(m_message->OpenAttach(first, nullptr, 0, &attachment), MAPI_E_NOT_FOUND);
}

TEST_F(Attachments, ShowInTheMessagesProperties) {
    EXPECT_EQ(OneValue(m_message.Get(), PR_HASATTACH).Value().Value.b, FALSE);
    AddPhoto(m_message.Get(), {1});
    EXPECT_EQ(OneValue(m_message.Get(), PR_HASATTACH).Value().Value.b, TRUE);
    ASSERT_EQ(Set(m_message.Get(), {BoolValue(PR_HASATTACH, false)}), S_OK);
    EXPECT_EQ(OneValue(m_message.Get(), PR_HASATTACH).Value().Value.b, FALSE);
    ASSERT_EQ(Delete(m_message.Get(), {PR_HASATTACH}), S_OK);
    EXPECT_EQ(OneValue(m_message.Get(), PR_HASATTACH).Value().Value.b, TRUE);
}

TEST_F(Attachments, CanBeChangedLater) {
    const ULONG number = AddPhoto(m_message.Get(), {1, 2, 3});
    ASSERT_EQ(m_message->SaveChanges(0), S_OK);
    ComPtr<IAttach> attachment;
    ASSERT_EQ(m_message->OpenAttach(number, nullptr, MAPI_MODIFY, &attachment), S_OK);
    ASSERT_EQ(Set(attachment.Get(), {BoolValue(kContactPhoto, false)}), S_OK);
    const ULONG named = NamedTag(attachment.Get(), 0x00062004, 0x8007, PT_LONG);
    ASSERT_EQ(Set(attachment.Get(), {LongValue(named, 9)}), S_OK);
    ASSERT_EQ(Delete(attachment.Get(), {PR_ATTACH_LONG_FILENAME_W}), S_OK);
    ASSERT_EQ(attachment->SaveChanges(0), S_OK);
    ASSERT_EQ(m_message->SaveChanges(0), S_OK);
    const ComPtr<IMessage> message = FromDisk();
    EXPECT_EQ(Photos(message.Get())->cRows, 0U);
    ComPtr<IAttach> again;
    ASSERT_EQ(message->OpenAttach(number, nullptr, 0, &again), S_OK);
    EXPECT_EQ(OneValue(again.Get(), named).Value().Value.l, 9);
    EXPECT_EQ(OneValue(again.Get(), PR_ATTACH_LONG_FILENAME_W).Error(), MAPI_E_NOT_FOUND);
    EXPECT_EQ(OneValue(again.Get(), PR_ATTACH_DATA_BIN).Bytes(), (std::vector<BYTE>{1, 2, 3}));
}

TEST_F(Attachments, OpenedForReadingAreNotWritten) {
    const ULONG number = AddPhoto(m_message.Get(), {1});
    ASSERT_EQ(m_message->SaveChanges(0), S_OK);
    ComPtr<IAttach> attachment;
    ASSERT_EQ(m_message->OpenAttach(number, nullptr, 0, &attachment), S_OK);
    EXPECT_EQ(Set(attachment.Get(), {LongValue(PR_ATTACH_METHOD, 5)}), MAPI_E_NO_ACCESS);
    EXPECT_EQ(WriteStream(attachment.Get(), PR_ATTACH_DATA_BIN, {2}), MAPI_E_NO_ACCESS);
    const ComPtr<IMessage> reading = OpenMessage(m_contacts.Get(), m_id, 0);
    EXPECT_EQ(reading->OpenAttach(number, nullptr, MAPI_MODIFY, &attachment), MAPI_E_NO_ACCESS);
    EXPECT_EQ(reading->DeleteAttach(number, 0, nullptr, 0), MAPI_E_NO_ACCESS);
    ULONG created = 0;
    EXPECT_EQ(reading->CreateAttach(nullptr, 0, &created, &attachment), MAPI_E_NO_ACCESS);
}

TEST_F(Attachments, KeepTheirMessageAlive) {
    ULONG number = 0;
    ComPtr<IAttach> attachment;
    ASSERT_EQ(m_message->CreateAttach(nullptr, 0, &number, &attachment), S_OK);
    m_message.Reset();
    EXPECT_EQ(Set(attachment.Get(), {LongValue(PR_ATTACH_METHOD, 1)}), S_OK);
    EXPECT_EQ(attachment->SaveChanges(0), S_OK);
}

TEST_F(Attachments, RefuseOtherInterfaces) {
    ULONG number = 0;
    ComPtr<IAttach> attachment;
    EXPECT_EQ(m_message->CreateAttach(&IID_IStream, 0, &number, &attachment), MAPI_E_INTERFACE_NOT_SUPPORTED);
    EXPECT_EQ(attachment, nullptr);
}
