#include "store_fixture.h"

using namespace localstore_test;
namespace recorder = localstore::recorder;

class Recorder : public StoreTest {
  protected:
    void SetUp() override {
        StoreTest::SetUp();
        m_contacts = OpenContacts();
        m_id = AddContact(m_contacts.Get(), L"John Doe");
        recorder::ClearCalls();
    }
    void TearDown() override {
        m_contacts.Reset();
        StoreTest::TearDown();
    }
    ComPtr<IMAPIFolder> m_contacts;
    std::vector<BYTE> m_id;
    using Lines = std::vector<std::string>;
};

TEST_F(Recorder, WritesCallsWithTheirArguments) {
    ComPtr<IMessage> message;
    ASSERT_EQ(m_contacts->CreateMessage(nullptr, 0, &message), S_OK);
    const ULONG tag = NamedTag(message.Get(), 0x00062004, 0x8083, PT_UNICODE);
    std::vector<BYTE> bytes = {0xAB, 1};
    ASSERT_EQ(Set(message.Get(), {StringValue(tag, L"a@b"), LongValue(PR_IMPORTANCE, -1),
                                  BoolValue(PR_HASATTACH, true), TimeValue(PR_BIRTHDAY, 5),
                                  BinaryValue(PR_ATTACH_DATA_BIN, bytes), NarrowValue(PR_SURNAME_A, "Doe")}),
              S_OK);
    ASSERT_EQ(Delete(message.Get(), {PR_SUBJECT_W, tag}), S_OK);
    ASSERT_EQ(message->SaveChanges(FORCE_SAVE), S_OK);
    EXPECT_EQ(recorder::CallLines(),
              (Lines{
                  "IMAPIFolder::CreateMessage [Contacts] flags=0x00000000",
                  "IMessage::GetIDsFromNames [Contacts\\(new)] {00062004}:8083 flags=0x00000002",
                  ("IMessage::SetProps [Contacts\\(new)] {00062004}:8083/001F=\"a@b\" 0x00170003=-1 "
                   "0x0E1B000B=true 0x3A420040=5 0x37010102=AB01 0x3A11001E=\"Doe\""),
                  "IMessage::DeleteProps [Contacts\\(new)] 0x0037001F,{00062004}:8083/001F",
                  "IMessage::SaveChanges [Contacts\\(new)] flags=0x00000004",
              }));
    EXPECT_EQ(recorder::Calls().back().result, S_OK);
}

TEST_F(Recorder, TakesTableCallsOfHrQueryAllRowsForOne) {
    SPropValue value = StringValue(PR_MESSAGE_CLASS_W, L"IPM.Contact");
    SRestriction restriction{};
    restriction.rt = RES_PROPERTY;
    restriction.res.resProperty = {RELOP_EQ, PR_MESSAGE_CLASS_W, &value};
    ContentsOf(m_contacts.Get(), {PR_ENTRYID}, &restriction);
    EXPECT_EQ(recorder::CallLines(), (Lines{
                                         "IMAPIFolder::GetContentsTable [Contacts] flags=0x80000000",
                                         "HrQueryAllRows [Contacts contents] 0x0FFF0102 "
                                         "property(0x001A001F==0x001A001F=\"IPM.Contact\") unsorted "
                                         "most=0",
                                     }));
    EXPECT_EQ(recorder::CallCount(), 2U);
}

TEST_F(Recorder, RecordsStreamsAttachmentsAndExports) {
    const ComPtr<IMessage> message = OpenMessage(m_contacts.Get(), m_id);
    recorder::ClearCalls();
    {
        ULONG number = 0;
        ComPtr<IAttach> attachment;
        ASSERT_EQ(message->CreateAttach(nullptr, 8, &number, &attachment), S_OK);
        ASSERT_EQ(WriteStream(attachment.Get(), PR_ATTACH_DATA_BIN, {1, 2}), S_OK);
    }
    MapiBuffer<SPropValue> value;
    pfnHrGetOneProp(message.Get(), PR_SURNAME_W, value.Put());
    EXPECT_EQ(
        recorder::CallLines(),
        (Lines{
            "IMessage::CreateAttach [Contacts\\John Doe.msg] flags=0x00000008",
            ("IAttach::OpenProperty [Contacts\\John Doe.msg#0] 0x37010102 iid={0000000C} options=0x00000000 "
             "flags=0x00000013"),
            "IStream::Write [Contacts\\John Doe.msg#0 37010102] size=2 bytes=0102",
            "IStream::Commit [Contacts\\John Doe.msg#0 37010102] flags=0x00000000",
            "HrGetOneProp [Contacts\\John Doe.msg] 0x3A11001F",
        }));
    EXPECT_EQ(recorder::Calls().back().result, MAPI_E_NOT_FOUND);
}

TEST_F(Recorder, RecordsFromLogonToLogoff) {
    {
        const ComPtr<IMAPISession> session = LogOn();
        EXPECT_EQ(session->Logoff(0, 2, 0), S_OK);
    }
    EXPECT_EQ(recorder::CallLines(), (Lines{
                                         "MAPILogonEx profile=\"Work\" flags=0x80000032",
                                         "IMAPISession::Logoff [Work] flags=0x00000002",
                                     }));
}

TEST_F(Recorder, CountsWithoutKeepingOnRequest) {
    recorder::Record(false);
    ContentsOf(m_contacts.Get(), {PR_ENTRYID});
    recorder::Record(true);
    EXPECT_TRUE(recorder::Calls().empty());
    EXPECT_EQ(recorder::CallCount(), 2U);
}

TEST_F(Recorder, FailsTheNthCallOnce) {
    recorder::FailCall(2, false, MAPI_E_DISK_ERROR);
    EXPECT_EQ(OneValue(m_contacts.Get(), PR_OBJECT_TYPE).Result(), S_OK);
    EXPECT_FALSE(recorder::HasFailed());
    ComPtr<IMAPITable> table;
    EXPECT_EQ(m_contacts->GetContentsTable(0, &table), MAPI_E_DISK_ERROR);
    EXPECT_EQ(table, nullptr);
    EXPECT_TRUE(recorder::HasFailed());
    EXPECT_EQ(m_contacts->GetContentsTable(0, &table), S_OK);
    EXPECT_EQ(recorder::Calls()[1].result, MAPI_E_DISK_ERROR);
}

TEST_F(Recorder, DoesACallThatIsToGiveAWarningAndNotOneThatIsToSayItSucceeded) {
    ComPtr<IMAPITable> table;
    recorder::FailCall(1, false, S_OK);
    EXPECT_EQ(m_contacts->GetContentsTable(0, &table), S_OK);
    EXPECT_EQ(table, nullptr);
    recorder::FailCall(1, false, MAPI_W_ERRORS_RETURNED);
    EXPECT_EQ(m_contacts->GetContentsTable(0, &table), MAPI_W_ERRORS_RETURNED);
    EXPECT_NE(table, nullptr);
    EXPECT_TRUE(recorder::HasFailed());
    EXPECT_EQ(recorder::Calls()[1].result, MAPI_W_ERRORS_RETURNED);
    // What fails by itself does not succeed by it.
    recorder::FailCall(1, false, MAPI_W_ERRORS_RETURNED);
    EXPECT_TRUE(FAILED(m_contacts->OpenEntry(0, nullptr, &IID_IMAPITable, 0, nullptr, nullptr)));
}

TEST_F(Recorder, FailsEveryCallFromTheNthOn) {
    recorder::FailCall(1, true);
    ComPtr<IMAPITable> table;
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(m_contacts->GetContentsTable(0, &table), MAPI_E_CALL_FAILED);
    }
    void* buffer = nullptr;
    EXPECT_EQ(pfnMAPIAllocateBuffer(1, &buffer), MAPI_E_CALL_FAILED);
    recorder::ClearFailures();
    EXPECT_EQ(m_contacts->GetContentsTable(0, &table), S_OK);
}

TEST_F(Recorder, FailsAMethodOfOneObject) {
    MakeFolder(L"Work\\Mail\\Contacts\\Family");
    recorder::FailMethod("IMAPIFolder::GetContentsTable", "Contacts\\Family", MAPI_E_NO_ACCESS);
    const ComPtr<IMAPIFolder> family = OpenFolder(OpenStore(LogOn().Get()).Get(), L"Contacts\\Family");
    ComPtr<IMAPITable> table;
    EXPECT_EQ(family->GetContentsTable(0, &table), MAPI_E_NO_ACCESS);
    EXPECT_EQ(m_contacts->GetContentsTable(0, &table), S_OK);
    recorder::FailMethod("IMAPIFolder::GetHierarchyTable", "", MAPI_E_DISK_ERROR);
    EXPECT_EQ(m_contacts->GetHierarchyTable(0, &table), MAPI_E_DISK_ERROR);
}

TEST_F(Recorder, FailsExportedFunctionsToo) {
    recorder::FailMethod("HrQueryAllRows", "Contacts contents", MAPI_E_NOT_ENOUGH_MEMORY);
    ComPtr<IMAPITable> table;
    ASSERT_EQ(m_contacts->GetContentsTable(0, &table), S_OK);
    RowSet rows;
    EXPECT_EQ(pfnHrQueryAllRows(table.Get(), nullptr, nullptr, nullptr, 0, rows.Put()),
              MAPI_E_NOT_ENOUGH_MEMORY);
    EXPECT_FALSE(rows);
    recorder::FailMethod("MAPIInitialize", "", MAPI_E_VERSION);
    EXPECT_EQ(pfnMAPIInitialize(nullptr), MAPI_E_VERSION);
}

TEST_F(Recorder, CountsLiveObjects) {
    const long before = recorder::LiveObjects();
    {
        const ComPtr<IMessage> message = OpenMessage(m_contacts.Get(), m_id);
        ComPtr<IMAPITable> table;
        ASSERT_EQ(message->GetAttachmentTable(0, &table), S_OK);
        EXPECT_EQ(recorder::LiveObjects(), before + 2);
    }
    EXPECT_EQ(recorder::LiveObjects(), before);
}
