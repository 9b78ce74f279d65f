// What a write leaves in the store, and what it hands back.

#include <filesystem>

#include "tests/unit/store/contact_writing_fixture.h"
#include "tests/unit/text_printer.h"
#include "tests/unit/timezone/date_helpers.h"

namespace {

namespace recorder = localstore::recorder;

TEST_F(ContactWriting, NullRecordFailsWithItsLine) {
    EXPECT_EQ(g_MAPIObject.WriteContacts(nullptr), 1);
    EXPECT_EQ(TakeLog(), (LogLines{{1, L"CMAPIObject::WriteContacts - Begin\r\n"},
                                   {3, L"CMAPIObject::WriteContacts - NULL Parameter\r\n"},
                                   {1, L"CMAPIObject::WriteContacts - Finish\r\n"}}));
}

TEST_F(ContactWriting, OperationsOnANullRecordOrMessageFailWithTheirLines) {
    EXPECT_EQ(g_MAPIObject.AddContact(nullptr), 0);
    EXPECT_EQ(g_MAPIObject.UpdateContact(nullptr), 0);
    EXPECT_EQ(g_MAPIObject.DeleteContact(nullptr), 0);
    EXPECT_EQ(TakeLog(), (LogLines{{1, L"CMAPIObject::AddContact - Begin\r\n"},
                                   {1, L"CMAPIObject::AddContact - Finish(Failed)\r\n"},
                                   {1, L"CMAPIObject::UpdateContact - Begin\r\n"},
                                   {1, L"CMAPIObject::UpdateContact - Finish(Failed)\r\n"},
                                   {1, L"CMAPIObject::DeleteContact - Begin\r\n"},
                                   {1, L"CMAPIObject::DeleteContact - Finish(Failed)\r\n"}}));
    EXPECT_TRUE(recorder::CallLines().empty());

    Write(8, {{1, L"John"}});
    const ComPtr<IMessage> message = Message();
    TakeLog();
    recorder::ClearCalls();
    EXPECT_EQ(g_MAPIObject.UpdateContactMessage(nullptr, &m_contact), 0);
    EXPECT_EQ(g_MAPIObject.UpdateContactMessage(message.Get(), nullptr), 0);
    const LogLines one{{1, L"CMAPIObject::UpdateContactMessage - Begin\r\n"},
                       {1, L"CMAPIObject::UpdateContactMessage - Finish(Failed)\r\n"}};
    EXPECT_EQ(TakeLog(), (LogLines{one[0], one[1], one[0], one[1]}));
    EXPECT_TRUE(recorder::CallLines().empty());
}

TEST_F(ContactWriting, FlagWithoutABitOfItsOwnDoesNothing) {
    for (const std::int32_t flag : {0, 1, 2, 16, 64, 0x7FFFFFD3}) {
        m_contact.m_strPIMID = L"as sent";
        m_contact.m_lFlag = flag;
        const COleDateTime time = m_contact.m_dtLastModified;
        EXPECT_EQ(g_MAPIObject.WriteContacts(&m_contact), 0);
        EXPECT_EQ(m_contact.m_strPIMID, L"as sent");
        EXPECT_EQ(m_contact.m_dtLastModified.m_dt, time.m_dt);
        EXPECT_EQ(m_contact.m_lFlag, flag);
        EXPECT_EQ(TakeLog(), Lines({}));
    }
    EXPECT_TRUE(recorder::CallLines().empty());
}

TEST_F(ContactWriting, AddUpdateAndDeleteWriteTheirLinesAndClearTheirBit) {
    Write(8, {{1, L"John"}});
    EXPECT_EQ(m_contact.m_lFlag, 0);
    EXPECT_EQ(TakeLog(),
              Lines({L"AddContact - Begin", L"UpdateContactMessage - Begin",
                     L"UpdateContactDisplayName - Begin", L"UpdateContactDisplayName - Finish(Succeeded)",
                     L"UpdateContactMessage - Finish(Succeeded)", L"AddContact - Finish(Succeeded)"}));
    Write(4, {{1, L"Jim"}});
    EXPECT_EQ(m_contact.m_lFlag, 0);
    EXPECT_EQ(Text(PR_GIVEN_NAME_W), L"Jim");
    EXPECT_EQ(TakeLog(),
              Lines({L"UpdateContact - Begin", L"UpdateContactMessage - Begin",
                     L"UpdateContactDisplayName - Begin", L"UpdateContactDisplayName - Finish(Succeeded)",
                     L"UpdateContactMessage - Finish(Succeeded)", L"UpdateContact - Finish(Succeeded)"}));
    Write(32, {});
    EXPECT_EQ(m_contact.m_lFlag, 0);
    EXPECT_EQ(TakeLog(), Lines({L"DeleteContact - Begin", L"DeleteContact - Finish(Succeeded)"}));
    EXPECT_FALSE(Message());
}

TEST_F(ContactWriting, TheFirstBitDecidesAloneAndTheOthersStay) {
    Write(12, {{1, L"John"}});
    EXPECT_EQ(m_contact.m_lFlag, 4);
    EXPECT_EQ(Text(PR_GIVEN_NAME_W), L"John");
    EXPECT_EQ(g_MAPIObject.GetContactCount(), 1);
    Write(36, {{1, L"Jim"}});
    EXPECT_EQ(m_contact.m_lFlag, 32);
    EXPECT_EQ(Text(PR_GIVEN_NAME_W), L"Jim");
    Write(40, {{1, L"Jack"}});
    EXPECT_EQ(m_contact.m_lFlag, 32);
    EXPECT_EQ(g_MAPIObject.GetContactCount(), 2);
}

TEST_F(ContactWriting, WithoutAFolderEveryOperationFailsAndTheStatusIsSuccess) {
    g_MAPIObject.m_lpContactFolder.Reset();
    for (const auto& [flag, name] :
         {std::pair{8, L"AddContact"}, std::pair{4, L"UpdateContact"}, std::pair{32, L"DeleteContact"}}) {
        Write(flag, {{1, L"John"}});
        EXPECT_EQ(m_contact.m_lFlag, flag);
        const CString begin = CString::Format(L"%s - Begin", name);
        const CString finish = CString::Format(L"%s - Finish(Failed)", name);
        EXPECT_EQ(TakeLog(), Lines({begin.c_str(), finish.c_str()}));
    }
    EXPECT_TRUE(recorder::CallLines().empty());
}

TEST_F(ContactWriting, UpdateOfWhatIsNotThereLeavesTheOutputs) {
    for (const wchar_t* const id : {L"", L"A", L"00", L"not an identifier", L"00000000599C29D3"}) {
        m_contact.m_strPIMID = id;
        const COleDateTime before = COleDateTime::GetCurrentTime();
        Write(4, {{1, L"John"}});
        EXPECT_EQ(m_contact.m_strPIMID, id);
        EXPECT_EQ(m_contact.m_lFlag, 4);
        // The time of the record's reset, which is the present.
        EXPECT_EQ(m_contact.m_dtLastModified.m_status, 0);
        EXPECT_GE(m_contact.m_dtLastModified.m_dt, before.m_dt);
        EXPECT_LE(m_contact.m_dtLastModified.m_dt, COleDateTime::GetCurrentTime().m_dt);
        EXPECT_EQ(TakeLog(), Lines({L"UpdateContact - Begin", L"UpdateContact - Finish(Failed)"}));
        Write(32, {});
        EXPECT_EQ(TakeLog(), Lines({L"DeleteContact - Begin", L"DeleteContact - Finish(Failed)"}));
    }
}

TEST_F(ContactWriting, IdentifierOfAFolderIsNoContact) {
    m_contact.m_strPIMID = FolderId(L"Contacts");
    Write(4, {{1, L"John"}});
    EXPECT_EQ(m_contact.m_lFlag, 4);
    Write(32, {});
    EXPECT_EQ(m_contact.m_lFlag, 32);
    EXPECT_TRUE(std::filesystem::exists(m_root + L"\\Work\\Mail\\Contacts"));
}

TEST_F(ContactWriting, AddWithoutFieldsMakesAContactWithoutAName) {
    Write(8, {});
    EXPECT_EQ(m_contact.m_lFlag, 0);
    EXPECT_EQ(Text(PR_MESSAGE_CLASS_W), L"IPM.Contact");
    for (const ULONG tag :
         {PR_DISPLAY_NAME_W, PR_SUBJECT_W, PR_NORMALIZED_SUBJECT_W, PR_INITIALS_W, PR_GIVEN_NAME_W}) {
        EXPECT_TRUE(Text(tag) == L"(none)" || Text(tag).empty()) << std::hex << tag;
    }
    EXPECT_EQ(NamedText(0x8005), L"(none)");
    EXPECT_EQ(HasPicture(), 0);
}

TEST_F(ContactWriting, NameAndInitialsAreMadeOfTheParts) {
    Write(8, {{1, L"John"}, {3, L"Van Der"}, {2, L"Doe"}});
    for (const ULONG tag : {PR_DISPLAY_NAME_W, PR_SUBJECT_W, PR_NORMALIZED_SUBJECT_W}) {
        EXPECT_EQ(Text(tag), L"John Van Der Doe") << std::hex << tag;
    }
    EXPECT_EQ(NamedText(0x8005), L"John Van Der Doe");
    EXPECT_EQ(Text(PR_INITIALS_W), L"J.V.D.D.");
}

TEST_F(ContactWriting, WithoutPartsTheNameGoesEvenIfAFullNameWasSent) {
    Write(8, {{1, L"John"}});
    Write(4, {{5, L"John Doe"}});
    for (const ULONG tag :
         {PR_DISPLAY_NAME_W, PR_SUBJECT_W, PR_NORMALIZED_SUBJECT_W, PR_INITIALS_W, PR_GIVEN_NAME_W}) {
        EXPECT_EQ(Text(tag), L"(none)") << std::hex << tag;
    }
    EXPECT_EQ(NamedText(0x8005), L"(none)");
}

TEST_F(ContactWriting, WhatTheRecordLeavesOutGoesAndOtherPropertiesStay) {
    Write(8, {{1, L"John"},
              {104, L"555"},
              {1000, L"a@example.com"},
              {2010, L"Street"},
              {4022, L"joe"},
              {3018, L"x"}});
    {
        const ComPtr<IMessage> message = Message();
        PropertyValues()
            .Text(PR_PRIMARY_TELEPHONE_NUMBER_W, L"123")
            .Text(PR_HOBBIES_W, L"chess")
            .SetOn(message.Get());
        FolderWriter::Save(message.Get());
    }
    Write(4, {{2, L"Doe"}, {118, L"456"}});
    EXPECT_EQ(Text(PR_GIVEN_NAME_W), L"(none)");
    EXPECT_EQ(Text(PR_MOBILE_TELEPHONE_NUMBER_W), L"(none)");
    for (const LONG id : {0x8045, 0x8062, 0x8080, 0x8082, 0x8083, 0x8084}) {
        EXPECT_EQ(NamedText(id), L"(none)") << std::hex << id;
    }
    EXPECT_EQ(Text(PR_SURNAME_W), L"Doe");
    EXPECT_EQ(Text(PR_PRIMARY_TELEPHONE_NUMBER_W), L"123");
    EXPECT_EQ(Text(PR_HOBBIES_W), L"chess");
    const ComPtr<IMessage> message = Message();
    EXPECT_FALSE(GetProperty(message.Get(), FolderWriter::KeywordsTag(message.Get())));
}

TEST_F(ContactWriting, PrefixAndSuffixAreWrittenUnderTheirOwnProperties) {
    Write(8, {{4001, L"Dr."}, {4011, L"Jr."}});
    EXPECT_EQ(Text(PR_DISPLAY_NAME_PREFIX_W), L"Dr.");
    EXPECT_EQ(Text(PR_GENERATION_W), L"Jr.");
}

TEST_F(ContactWriting, CategoriesAreCutAtTheirSeparators) {
    const std::pair<const wchar_t*, std::vector<CString>> cases[] = {{L"a;b", {L"a", L"b"}},
                                                                     {L"a", {L"a"}},
                                                                     {L"a;b;", {L"a", L"b"}},
                                                                     {L"a;;b", {L"a", L"", L"b"}},
                                                                     {L";", {L""}}};
    for (const auto& [text, expected] : cases) {
        Write(8, {{3018, text}});
        EXPECT_EQ(Categories(), expected) << testing::PrintToString(CString(text));
    }
}

TEST_F(ContactWriting, IdentifierAndTimeOfTheChangeComeBack) {
    Write(8, {{1, L"John"}});
    ASSERT_TRUE(Message());
    EXPECT_EQ(m_contact.m_dtLastModified.m_dt, TimeOfChange().m_dt);
    EXPECT_EQ(m_contact.m_dtLastModified.m_status, 0);
}

TEST_F(ContactWriting, TimeThatCannotBeReadIsNoDate) {
    recorder::FailMethod("IMessage::GetProps", {}, E_FAIL);
    Write(8, {{1, L"John"}});
    EXPECT_TRUE(m_contact.m_dtLastModified.IsNoDate());
    EXPECT_EQ(m_contact.m_strPIMID, L"");
    EXPECT_EQ(m_contact.m_lFlag, 0);
}

TEST_F(ContactWriting, IdentifierThatCannotBeReadIsNotTheOneThatWasSent) {
    Write(8, {{1, L"John"}});
    recorder::FailMethod("IMessage::GetProps", {}, E_FAIL);
    Write(8, {{1, L"Jim"}});
    EXPECT_EQ(m_contact.m_strPIMID, L"");
    EXPECT_EQ(m_contact.m_lFlag, 0);
}

TEST_F(ContactWriting, FailedSaveLeavesTheOldMessageAndTheStatusIsSuccess) {
    Write(8, {{1, L"John"}, {104, L"555"}});
    const CString id = m_contact.m_strPIMID;
    TakeLog();
    recorder::FailMethod("IMessage::SaveChanges", {}, MAPI_E_NO_ACCESS);
    Fill(4, {{1, L"Jim"}});
    m_contact.m_dtLastModified = Date(2001, 2, 3);
    EXPECT_EQ(g_MAPIObject.WriteContacts(&m_contact), 0);
    EXPECT_EQ(m_contact.m_lFlag, 4);
    EXPECT_EQ(m_contact.m_strPIMID, id);
    recorder::ClearFailures();
    EXPECT_EQ(TakeLog(),
              Lines({L"UpdateContact - Begin", L"UpdateContactMessage - Begin",
                     L"UpdateContactDisplayName - Begin", L"UpdateContactDisplayName - Finish(Succeeded)",
                     L"UpdateContactMessage - Finish(Failed)", L"UpdateContact - Finish(Failed)"}));
    EXPECT_EQ(Text(PR_GIVEN_NAME_W), L"John");
    EXPECT_EQ(Text(PR_MOBILE_TELEPHONE_NUMBER_W), L"555");
    // The time is that of the old message.
    EXPECT_EQ(m_contact.m_dtLastModified.m_dt, TimeOfChange().m_dt);
}

TEST_F(ContactWriting, AddThatCannotBeSavedLeavesNothingBehind) {
    recorder::FailMethod("IMessage::SaveChanges", {}, MAPI_E_NO_ACCESS);
    Write(8, {{1, L"John"}});
    EXPECT_EQ(m_contact.m_lFlag, 8);
    recorder::ClearFailures();
    EXPECT_EQ(g_MAPIObject.GetContactCount(), 0);
    // What was not saved has a name already, and no time of a change.
    EXPECT_NE(m_contact.m_strPIMID, L"");
    EXPECT_TRUE(m_contact.m_dtLastModified.IsNoDate());
}

TEST_F(ContactWriting, WarningOfSaveChangesCountsAsAFailure) {
    recorder::FailMethod("IMessage::SaveChanges", {}, MAPI_W_ERRORS_RETURNED);
    Write(8, {{1, L"John"}});
    EXPECT_EQ(m_contact.m_lFlag, 8);
}

TEST_F(ContactWriting, FailureOfASinglePropertyGoesUnnoticed) {
    for (const char* const method :
         {"IMessage::SetProps", "IMessage::DeleteProps", "IMessage::GetIDsFromNames",
          "IMessage::GetAttachmentTable", "IMessage::CreateAttach"}) {
        recorder::FailMethod(method, {}, E_FAIL);
        Write(8, {{1, L"John"}, {3018, L"a"}, {1000, L"a@example.com"}});
        EXPECT_EQ(m_contact.m_lFlag, 0) << method;
        recorder::ClearFailures();
    }
}

TEST_F(ContactWriting, StopDoesNotInterruptAWriteAndStaysInForce) {
    g_MAPIObject.Stop();
    Write(8, {{1, L"John"}});
    EXPECT_EQ(m_contact.m_lFlag, 0);
    Write(4, {{1, L"Jim"}});
    EXPECT_EQ(m_contact.m_lFlag, 0);
    EXPECT_EQ(Text(PR_GIVEN_NAME_W), L"Jim");
    Write(32, {});
    EXPECT_EQ(m_contact.m_lFlag, 0);
    EXPECT_EQ(g_MAPIObject.m_bStop, 1);
}

TEST_F(ContactWriting, AddGoesToTheChosenFolderWhateverTheRecordSays) {
    MakeFolder(L"Work\\Mail\\Contacts\\Private");
    recorder::SetRoot(m_root);
    LogOn();
    const CString selection = L"<id>" + FolderId(L"Contacts\\Private") + L"</id>";
    ASSERT_EQ(g_MAPIObject.SetContactFolder(selection.c_str()), 0);
    Fill(8, {{1, L"John"}});
    m_contact.m_strCsFolder = L"Contacts";
    EXPECT_EQ(g_MAPIObject.WriteContacts(&m_contact), 0);
    EXPECT_EQ(m_contact.m_lFlag, 0);
    EXPECT_EQ(Files(L"Contacts\\Private"), 1U);
    EXPECT_EQ(Files(L"Contacts"), 0U);
}

TEST_F(ContactWriting, MessageInASubFolderIsUpdatedAndDeletedThere) {
    MakeFolder(L"Work\\Mail\\Contacts\\Private");
    recorder::SetRoot(m_root);
    CString id;
    {
        FolderWriter writer(L"Work", L"Contacts\\Private");
        const ComPtr<IMessage> message =
            writer.NewMessage(L"IPM.Contact", PropertyValues().Text(PR_GIVEN_NAME_W, L"John"));
        FolderWriter::Save(message.Get());
        const MapiBuffer<SPropValue> value = GetProperty(message.Get(), PR_ENTRYID);
        ASSERT_TRUE(value);
        for (ULONG i = 0; i < value->Value.bin.cb; ++i) {
            id += CString::Format(L"%02X", value->Value.bin.lpb[i]);
        }
    }
    LogOn();
    m_contact.m_strPIMID = id;
    Write(4, {{1, L"Jim"}});
    EXPECT_EQ(m_contact.m_lFlag, 0);
    EXPECT_EQ(Text(PR_GIVEN_NAME_W), L"Jim");
    Write(32, {});
    EXPECT_EQ(m_contact.m_lFlag, 0);
    EXPECT_TRUE(std::filesystem::is_empty(m_root + L"\\Work\\Mail\\Contacts\\Private"));
}

}  // namespace
