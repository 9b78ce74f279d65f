// Full reads and counts of contact folders, with their lines as whole sequences.

#include "mapi/hex_text.h"
#include "mapi/store_entries.h"
#include "support/settings.h"
#include "tests/unit/store/contact_reading_fixture.h"
#include "tests/unit/store/without_document_class.h"
#include "tests/unit/text_printer.h"

namespace {

namespace recorder = localstore::recorder;
using NAMESPACE_MAPI::CMAPIObject;

TEST_F(ContactReading, FullReadWritesItsLinesInOrder) {
    AddContacts(L"Contacts", {L"John", L"Jane"});
    LogOn();
    EXPECT_EQ(g_MAPIObject.ReadContacts(L""), 0);
    LogLines expected{{1, L"CMAPIObject::ReadContacts - Begin\r\n"}};
    Append(expected, CountLines());
    Append(expected,
           {{1, L"CMAPIObject::ReadContacts - Contact Count(2)\r\n"},
            {1, L"CMAPIObject::ReadContacts - m_lpContactFolder->GetProps(0X00000000)\r\n"},
            {3, L"CMAPIObject::ReadContacts - Read All Items(NULL lParam1)\r\n"},
            {1, L"CMAPIObject::ReadContactFromFolder - Begin\r\n"},
            {1, L"CMAPIObject::ReadContactFromFolder - m_lpContactFolder->OpenEntry(0X00000000)\r\n"},
            {1, L"CMAPIObject::ReadContactFromFolder - lpContainer->GetContentsTable(0X00000000)\r\n"},
            {1, L"CMAPIObject::ReadContactFromFolder - pfnHrQueryAllRows(0X00000000)\r\n"},
            {1, L"CMAPIObject::ReadContactFromFolder - Finish(Succeeded)\r\n"},
            {1, L"CMAPIObject::ReadContacts - Finish\r\n"}});
    EXPECT_EQ(TakeLog(), expected);
    EXPECT_EQ(TakeSent().size(), 2U);
    EXPECT_EQ(g_MAPIObject.m_nItemsSent, 2);
    EXPECT_EQ(g_MAPIObject.m_nItemTotal, 2);
}

TEST_F(ContactReading, SubFolderReadWritesItsLinesInOrder) {
    MakeFolder(L"Work\\Mail\\Contacts\\A");
    AddContacts(L"Contacts", {L"Top"});
    LogOn();
    g_bSubFolder = true;
    EXPECT_EQ(g_MAPIObject.ReadContacts(L""), 0);
    const std::wstring count = L"CMAPIObject::GetContactCountFromFolder - ";
    const std::wstring read = L"CMAPIObject::ReadContactFromFolder - ";
    const auto line = [](const std::wstring& operation, const wchar_t* text) {
        return LogLine{1, CString((operation + text).c_str())};
    };
    LogLines expected{{1, L"CMAPIObject::ReadContacts - Begin\r\n"},
                      {1, L"CMAPIObject::GetContactCount - Begin\r\n"},
                      {1, L"CMAPIObject::GetContactCount - GetProps(0X00000000)\r\n"}};
    const LogLines table{line(count, L"m_lpContactFolder->OpenEntry(0X00000000)\r\n"),
                         line(count, L"lpContainer->GetContentsTable(0X00000000)\r\n"),
                         line(count, L"pfnHrQueryAllRows(0X00000000)\r\n"),
                         line(count, L"Get Count from SubFolder\r\n"),
                         line(count, L"lpContainer->GetHierarchyTable(0X00000000)\r\n"),
                         line(count, L"pfnHrQueryAllRows(0X00000000)\r\n")};
    expected.push_back(line(count, L"Begin\r\n"));
    Append(expected, table);
    expected.push_back(line(count, L"Begin\r\n"));
    Append(expected, table);
    expected.push_back(line(count, L"Finish\r\n"));
    expected.push_back(line(count, L"Finish\r\n"));
    Append(expected, {{1, L"CMAPIObject::GetContactCount - Finish\r\n"},
                      {1, L"CMAPIObject::ReadContacts - Contact Count(1)\r\n"},
                      {1, L"CMAPIObject::ReadContacts - m_lpContactFolder->GetProps(0X00000000)\r\n"},
                      {3, L"CMAPIObject::ReadContacts - Read All Items(NULL lParam1)\r\n"}});
    const LogLines folder{line(read, L"m_lpContactFolder->OpenEntry(0X00000000)\r\n"),
                          line(read, L"lpContainer->GetContentsTable(0X00000000)\r\n"),
                          line(read, L"pfnHrQueryAllRows(0X00000000)\r\n"),
                          line(read, L"lpContainer->GetHierarchyTable(0X00000000)\r\n"),
                          line(read, L"pfnHrQueryAllRows(0X00000000)\r\n")};
    expected.push_back(line(read, L"Begin\r\n"));
    Append(expected, folder);
    expected.push_back(line(read, L"Begin\r\n"));
    Append(expected, folder);
    expected.push_back(line(read, L"Finish(Succeeded)\r\n"));
    expected.push_back(line(read, L"Finish(Succeeded)\r\n"));
    expected.push_back({1, L"CMAPIObject::ReadContacts - Finish\r\n"});
    EXPECT_EQ(TakeLog(), expected);
}

TEST_F(ContactReading, DocumentIsCompleteAndInOrder) {
    AddContacts(L"Contacts", {L"John"});
    LogOn();
    ASSERT_EQ(g_MAPIObject.ReadContacts(L""), 0);
    const CString document = TakeSent().at(0);
    EXPECT_TRUE(document.starts_with(L"<?xml version="));
    std::size_t position = 0;
    for (const wchar_t* element : {L"<Contact>",
                                   L"\n\t<CsFolder>Contacts</CsFolder>",
                                   L"\n\t<CreateTime>",
                                   L"\n\t<lastModifiedTime>",
                                   L"\n\t<FirstName>John</FirstName>",
                                   L"\n\t<PIMID>",
                                   L"\n\t<FULLNAME/>",
                                   L"\n\t<SP-BUSINESSCOUNTRY/>",
                                   L"\n\t<SP-BUSINESSCITY/>",
                                   L"\n\t<SP-BUSINESSSTATE/>",
                                   L"\n\t<SP-BUSINESSSTREET1/>",
                                   L"\n\t<SP-BUSINESSZIP/>",
                                   L"\n\t<SP-BUSINESSPOBOX/>",
                                   L"\n\t<SP-YOMIFIRSTNAME/>",
                                   L"\n\t<SP-YOMILASTNAME/>",
                                   L"\n\t<SP-BODY/>",
                                   L"\n\t<SP-EMAIL1/>",
                                   L"\n\t<SP-EMAIL2/>",
                                   L"\n\t<SP-EMAIL3/>",
                                   L"\n\t<SP-IMADRESS IMType=\"4022\"/>",
                                   L"\n\t<SP-CATEGORIES/></Contact>"}) {
        const std::size_t found = document.find(element, position);
        ASSERT_NE(found, CString::npos) << ::testing::PrintToString(CString(element));
        position = found;
    }
    EXPECT_FALSE(Contains(document, L"lFlag"));
    EXPECT_FALSE(Contains(document, L"PICPath"));
}

TEST_F(ContactReading, EmptyFolderSucceedsWithoutACallback) {
    LogOn();
    EXPECT_EQ(g_MAPIObject.ReadContacts(L""), 0);
    EXPECT_TRUE(TakeSent().empty());
    LogLines expected{{1, L"CMAPIObject::ReadContacts - Begin\r\n"}};
    Append(expected, CountLines());
    Append(expected, {{1, L"CMAPIObject::ReadContacts - Contact Count(0)\r\n"},
                      {1, L"CMAPIObject::ReadContacts - m_lpContactFolder->GetProps(0X00000000)\r\n"},
                      {3, L"CMAPIObject::ReadContacts - Read All Items(NULL lParam1)\r\n"},
                      {1, L"CMAPIObject::ReadContacts - Finish\r\n"}});
    EXPECT_EQ(TakeLog(), expected);
}

TEST_F(ContactReading, StopAfterTheFirstOfThreeEndsTheRead) {
    AddContacts(L"Contacts", {L"One", L"Two", L"Three"});
    LogOn();
    OnSend([] { g_MAPIObject.m_bStop = 1; });
    EXPECT_EQ(g_MAPIObject.ReadContacts(L""), 1);
    EXPECT_EQ(TakeSent().size(), 1U);
    EXPECT_EQ(g_MAPIObject.m_bStop, 0);
    const LogLines log = TakeLog();
    EXPECT_EQ(LogLines(log.end() - 3, log.end()),
              (LogLines{{1, L"CMAPIObject::ReadContactFromFolder - Finish(Failed)\r\n"},
                        {3, L"CMAPIObject::ReadContacts - Failed to read contacts from folder\r\n"},
                        {1, L"CMAPIObject::ReadContacts - Finish\r\n"}}));
    OnSend({});
    EXPECT_EQ(g_MAPIObject.ReadContacts(L""), 0);
    EXPECT_EQ(TakeSent().size(), 3U);
}

TEST_F(ContactReading, StopWithNoReadRunningEndsTheNextReadThatHasItems) {
    AddContacts(L"Contacts", {L"One"});
    LogOn();
    g_MAPIObject.Stop();
    EXPECT_EQ(g_MAPIObject.ReadContacts(L""), 1);
    EXPECT_TRUE(TakeSent().empty());
    const LogLines log = TakeLog();
    EXPECT_EQ(LogLines(log.end() - 5, log.end()),
              (LogLines{{1, L"CMAPIObject::ReadContactFromFolder - Begin\r\n"},
                        {3, L"CMAPIObject::ReadContactFromFolder - Interrupted or INVALID Parameter\r\n"},
                        {1, L"CMAPIObject::ReadContactFromFolder - Finish(Failed)\r\n"},
                        {3, L"CMAPIObject::ReadContacts - Failed to read contacts from folder\r\n"},
                        {1, L"CMAPIObject::ReadContacts - Finish\r\n"}}));
    EXPECT_EQ(g_MAPIObject.ReadContacts(L""), 0);
    EXPECT_EQ(TakeSent().size(), 1U);
}

TEST_F(ContactReading, StopDoesNotEndACount) {
    AddContacts(L"Contacts", {L"One", L"Two"});
    LogOn();
    g_MAPIObject.m_bStop = 1;
    EXPECT_EQ(g_MAPIObject.GetContactCount(), 2);
    EXPECT_EQ(TakeLog(), CountLines());
}

TEST_F(ContactReading, OtherMessageClassesAreNeitherCountedNorRead) {
    AddContacts(L"Contacts", {L"One"});
    for (const wchar_t* messageClass : {L"IPM.Contact.Custom", L"IPM.DistList", L"IPM.Note", L"IPM"}) {
        AddMessage(messageClass);
    }
    LogOn();
    EXPECT_EQ(g_MAPIObject.GetContactCount(), 1);
    EXPECT_EQ(g_MAPIObject.ReadContacts(L""), 0);
    EXPECT_EQ(FirstNames(TakeSent()), (std::vector<CString>{L"One"}));
}

TEST_F(ContactReading, RowsThatCannotBeHadFailTheRead) {
    AddContacts(L"Contacts", {L"Top"});
    LogOn();
    ASSERT_EQ(g_MAPIObject.ReadContacts(L""), 0);
    TakeSent();
    TakeLog();
    // The first query counts; the second one reads.
    recorder::FailCall(NthCallOf("HrQueryAllRows", 2), false, E_FAIL);
    EXPECT_EQ(g_MAPIObject.ReadContacts(L""), 1);
    EXPECT_TRUE(TakeSent().empty());
    const LogLines log = TakeLog();
    EXPECT_EQ(LogLines(log.end() - 4, log.end()),
              (LogLines{{1, L"CMAPIObject::ReadContactFromFolder - pfnHrQueryAllRows(0X80004005)\r\n"},
                        {1, L"CMAPIObject::ReadContactFromFolder - Finish(Failed)\r\n"},
                        {3, L"CMAPIObject::ReadContacts - Failed to read contacts from folder\r\n"},
                        {1, L"CMAPIObject::ReadContacts - Finish\r\n"}}));
}

TEST_F(ContactReading, DocumentThatCannotBeMadeEndsTheReadWithoutTheFoldersLastLine) {
    AddContacts(L"Contacts", {L"One", L"Two"});
    LogOn();
    const WithoutDocumentClass broken;
    EXPECT_EQ(g_MAPIObject.ReadContacts(L""), 1);
    EXPECT_TRUE(TakeSent().empty());
    const LogLines log = TakeLog();
    EXPECT_EQ(LogLines(log.end() - 4, log.end()),
              (LogLines{{1, L"CMAPIObject::ReadContactFromFolder - pfnHrQueryAllRows(0X00000000)\r\n"},
                        {3, L"Xml to calnedaex - failed\r\n"},
                        {3, L"CMAPIObject::ReadContacts - Failed to read contacts from folder\r\n"},
                        {1, L"CMAPIObject::ReadContacts - Finish\r\n"}}));
}

TEST_F(ContactReading, IdentifierOfADocumentIsTheMessagesEntryIdentifier) {
    AddContacts(L"Contacts", {L"One"});
    LogOn();
    ASSERT_EQ(g_MAPIObject.ReadContacts(L""), 0);
    const CString document = TakeSent().at(0);
    const std::size_t start = document.find(L"<PIMID>") + 7;
    const CString id = document.substr(start, document.find(L"</PIMID>") - start);
    const ComPtr<IMessage> message = OpenMessageByHexId(g_MAPIObject.m_lpContactFolder.Get(), id);
    ASSERT_TRUE(message);
    MapiBuffer<SPropValue> stored;
    ASSERT_EQ(pfnHrGetOneProp(message.Get(), PR_ENTRYID, stored.Put()), S_OK);
    EXPECT_EQ(id, BinaryToHexString(stored->Value.bin.lpb, stored->Value.bin.cb));
}

TEST_F(ContactReading, FolderThatDoesNotOpenFailsTheRead) {
    AddContacts(L"Contacts", {L"Top"});
    LogOn();
    SBinary id{0, nullptr};
    EXPECT_EQ(g_MAPIObject.ReadContactFromFolder(g_MAPIObject.m_lpContactFolder.Get(), id, L"Contacts"), 0);
    EXPECT_EQ(TakeLog(),
              (LogLines{{1, L"CMAPIObject::ReadContactFromFolder - Begin\r\n"},
                        {3, L"CMAPIObject::ReadContactFromFolder - Interrupted or INVALID Parameter\r\n"},
                        {1, L"CMAPIObject::ReadContactFromFolder - Finish(Failed)\r\n"}}));
    BYTE junk[] = {1, 2, 3};
    id = {3, junk};
    EXPECT_EQ(g_MAPIObject.ReadContactFromFolder(g_MAPIObject.m_lpContactFolder.Get(), id, L"Contacts"), 0);
    EXPECT_EQ(TakeLog()[2],
              (LogLine{3, L"CMAPIObject::ReadContactFromFolder - OpenEntry Failed or NULL lpContainer\r\n"}));
}

TEST_F(ContactReading, CountOfAFolderThatDoesNotOpenIsZero) {
    LogOn();
    EXPECT_EQ(CMAPIObject::GetContactCountFromFolder(g_MAPIObject.m_lpContactFolder.Get(), {0, nullptr}), 0U);
    EXPECT_EQ(TakeLog(), (LogLines{{1, L"CMAPIObject::GetContactCountFromFolder - Begin\r\n"},
                                   {3, L"CMAPIObject::GetContactCountFromFolder - INVALID Parameter\r\n"},
                                   {1, L"CMAPIObject::GetContactCountFromFolder - Finish\r\n"}}));
    BYTE junk[] = {1, 2, 3};
    EXPECT_EQ(CMAPIObject::GetContactCountFromFolder(g_MAPIObject.m_lpContactFolder.Get(), {3, junk}), 0U);
    const LogLines log = TakeLog();
    ASSERT_EQ(log.size(), 3U);
    EXPECT_TRUE(log[1].text.starts_with(
        L"CMAPIObject::GetContactCountFromFolder - m_lpContactFolder->OpenEntry(0X8004"));
}

TEST_F(ContactReading, FailedGetPropsFailsTheRead) {
    AddContacts(L"Contacts", {L"Top"});
    LogOn();
    recorder::FailMethod("IMAPIFolder::GetProps", {}, E_FAIL);
    EXPECT_EQ(g_MAPIObject.ReadContacts(L""), 1);
    EXPECT_EQ(TakeLog(),
              (LogLines{{1, L"CMAPIObject::ReadContacts - Begin\r\n"},
                        {1, L"CMAPIObject::GetContactCount - Begin\r\n"},
                        {1, L"CMAPIObject::GetContactCount - GetProps(0X80004005)\r\n"},
                        {1, L"CMAPIObject::GetContactCount - Finish\r\n"},
                        {1, L"CMAPIObject::ReadContacts - Contact Count(0)\r\n"},
                        {1, L"CMAPIObject::ReadContacts - m_lpContactFolder->GetProps(0X80004005)\r\n"},
                        {3, L"CMAPIObject::ReadContacts - Failed to GetProps or NULL lpPropValues\r\n"},
                        {1, L"CMAPIObject::ReadContacts - Finish\r\n"}}));
}

TEST_F(ContactReading, CallbackThatAlwaysFailsDoesNotEndTheWalk) {
    AddContacts(L"Contacts", {L"One", L"Two", L"Three"});
    LogOn();
    OnSend([] { throw std::runtime_error("nobody listens"); });
    EXPECT_EQ(g_MAPIObject.ReadContacts(L""), 0);
    EXPECT_EQ(g_MAPIObject.m_nItemsSent, 3);
    const LogLines log = TakeLog();
    EXPECT_EQ(std::count(log.begin(), log.end(), LogLine{3, L"MAPISendBackOneContact Excetipion"}), 3);
    EXPECT_EQ(log.back(), (LogLine{1, L"CMAPIObject::ReadContacts - Finish\r\n"}));
}

TEST_F(ContactReading, MessageThatDoesNotOpenGoesOutWithoutItsMessagePart) {
    AddContacts(L"Contacts", {L"One"});
    LogOn();
    ASSERT_EQ(g_MAPIObject.ReadContacts(L""), 0);
    const std::size_t open = LastCallOf("IMAPIFolder::OpenEntry");
    ASSERT_NE(open, 0U);
    TakeSent();
    recorder::FailCall(open, false);
    EXPECT_EQ(g_MAPIObject.ReadContacts(L""), 0);
    const std::vector<CString> documents = TakeSent();
    ASSERT_EQ(documents.size(), 1U);
    EXPECT_TRUE(Contains(documents[0], L"</PIMID></Contact>"));
    EXPECT_FALSE(Contains(documents[0], L"SP-"));
}

TEST_F(ContactReading, FoldersAndMessagesAreOpenedForAllThatTheUserMay) {
    AddContacts(L"Contacts", {L"One"});
    LogOn();
    ASSERT_EQ(g_MAPIObject.ReadContacts(L""), 0);
    ExpectFolderAndMessageWereAskedForAsTheyAre();
}

TEST_F(ContactReading, TablesAreReadWithTheirFlagsColumnsAndRestrictions) {
    AddContacts(L"Contacts", {L"One"});
    LogOn();
    g_bSubFolder = true;
    ASSERT_EQ(g_MAPIObject.ReadContacts(L""), 0);
    std::vector<std::string> contents;
    std::vector<std::string> hierarchies;
    std::vector<std::string> queries;
    for (const recorder::Call& call : recorder::Calls()) {
        if (call.method == "IMAPIFolder::GetContentsTable") {
            contents.push_back(call.arguments);
        } else if (call.method == "IMAPIFolder::GetHierarchyTable") {
            hierarchies.push_back(call.arguments);
        } else if (call.method == "HrQueryAllRows") {
            queries.push_back(call.arguments);
        }
    }
    EXPECT_EQ(contents, (std::vector<std::string>{"flags=0x80000008", "flags=0x80000008"}));
    EXPECT_EQ(hierarchies, (std::vector<std::string>{"flags=0x80000000", "flags=0x80000000"}));
    // Count: contents and hierarchy; read: contents, the photos of the contact, hierarchy.
    const std::string contacts = " property(0x001A001F==0x001A001F=\"IPM.Contact\") unsorted most=0";
    const std::string folders =
        "0x3613001F,0x3001001F,0x0FFF0102,0x360A000B property(0x3613001F==0x3613001F=\"IPF.Contact\") "
        "unsorted most=0";
    const std::string fields =
        "0x0FFF0102,0x66700102,0x30070040,0x30080040,0x3A11001F,0x3A44001F,0x3A06001F,0x3A09001F,"
        "0x3A25001F,0x3A08001F,0x3A24001F,0x3A1C001F,0x3A21001F,0x3A2F001F,0x3A1B001F,0x3A1F001F,"
        "0x3A23001F,0x3A57001F,0x3A1A001F,0x3A2E001F,0x3A2D001F,0x3A2C001F,0x3A4B001F,0x3A1E001F,"
        "0x3A1D001F,0x3A02001F,0x3A50001F,0x3A51001F,0x3A16001F,0x3A17001F,0x3A4F001F,0x3A5A001F,"
        "0x3A5C001F,0x3A59001F,0x3A5D001F,0x3A5B001F,0x3A5E001F,0x3A60001F,0x3A62001F,0x3A5F001F,"
        "0x3A63001F,0x3A61001F,0x3A64001F,0x3A05001F,0x3A45001F,0x3A410040,0x3A420040";
    const std::string photos =
        "0x0E210003,0x37010102,0x0E200003 property(0x7FFF000B==0x7FFF000B=true) unsorted most=0";
    EXPECT_EQ(queries, (std::vector<std::string>{"0x0FFF0102" + contacts, folders, fields + contacts, photos,
                                                 folders}));
}

}  // namespace
