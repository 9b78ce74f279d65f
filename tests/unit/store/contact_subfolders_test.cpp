// Reads and counts that go into sub-folders.

#include "support/settings.h"
#include "tests/unit/store/contact_reading_fixture.h"
#include "tests/unit/text_printer.h"

namespace {

namespace recorder = localstore::recorder;

TEST_F(ContactReading, SubFoldersAreLeftOutUnlessTheSettingIsOn) {
    MakeFolder(L"Work\\Mail\\Contacts\\Private");
    AddContacts(L"Contacts", {L"Top"});
    AddContacts(L"Contacts\\Private", {L"Below"});
    LogOn();
    EXPECT_EQ(g_MAPIObject.GetContactCount(), 1);
    EXPECT_EQ(g_MAPIObject.ReadContacts(L""), 0);
    EXPECT_EQ(FirstNames(TakeSent()), (std::vector<CString>{L"Top"}));
}

TEST_F(ContactReading, SubFoldersFollowTheirFolderDepthFirstWithTheirPaths) {
    MakeFolder(L"Work\\Mail\\Contacts\\A\\Deep");
    MakeFolder(L"Work\\Mail\\Contacts\\B");
    AddContacts(L"Contacts", {L"Top"});
    AddContacts(L"Contacts\\A", {L"InA"});
    AddContacts(L"Contacts\\A\\Deep", {L"InDeep"});
    AddContacts(L"Contacts\\B", {L"InB"});
    LogOn();
    g_bSubFolder = true;
    EXPECT_EQ(g_MAPIObject.GetContactCount(), 4);
    EXPECT_EQ(g_MAPIObject.ReadContacts(L""), 0);
    const std::vector<CString> documents = TakeSent();
    EXPECT_EQ(FirstNames(documents), (std::vector<CString>{L"Top", L"InA", L"InDeep", L"InB"}));
    ASSERT_EQ(documents.size(), 4U);
    EXPECT_TRUE(Contains(documents[2], L"<CsFolder>Contacts\\A\\Deep</CsFolder>"));
    EXPECT_TRUE(Contains(documents[3], L"<CsFolder>Contacts\\B</CsFolder>"));
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

TEST_F(ContactReading, SubFolderOfAnotherClassIsNotEntered) {
    MakeFolder(L"Work\\Mail\\Contacts\\Quick");
    WriteFile(L"Work\\Mail\\Contacts\\Quick\\folder.ini",
              "[Folder]\r\nClass=IPF.Contact.MOC.QuickContacts\r\n");
    AddContacts(L"Contacts", {L"Top"});
    AddContacts(L"Contacts\\Quick", {L"Below"});
    LogOn();
    g_bSubFolder = true;
    EXPECT_EQ(g_MAPIObject.GetContactCount(), 1);
    EXPECT_EQ(g_MAPIObject.ReadContacts(L""), 0);
    EXPECT_EQ(FirstNames(TakeSent()), (std::vector<CString>{L"Top"}));
}

TEST_F(ContactReading, EmptySubFolderIsEnteredAndLeftAgain) {
    MakeFolder(L"Work\\Mail\\Contacts\\A");
    MakeFolder(L"Work\\Mail\\Contacts\\B");
    AddContacts(L"Contacts", {L"Top"});
    AddContacts(L"Contacts\\B", {L"InB"});
    LogOn();
    g_bSubFolder = true;
    EXPECT_EQ(g_MAPIObject.ReadContacts(L""), 0);
    EXPECT_EQ(FirstNames(TakeSent()), (std::vector<CString>{L"Top", L"InB"}));
}

TEST_F(ContactReading, SubFolderWhoseContentsCannotBeReadEndsTheWalk) {
    MakeFolder(L"Work\\Mail\\Contacts\\A");
    MakeFolder(L"Work\\Mail\\Contacts\\B");
    AddContacts(L"Contacts", {L"Top"});
    AddContacts(L"Contacts\\B", {L"InB"});
    LogOn();
    g_bSubFolder = true;
    recorder::FailMethod("IMAPIFolder::GetContentsTable", "Contacts\\A", E_FAIL);
    EXPECT_EQ(g_MAPIObject.ReadContacts(L""), 1);
    EXPECT_EQ(FirstNames(TakeSent()), (std::vector<CString>{L"Top"}));
    const LogLines log = TakeLog();
    EXPECT_EQ(
        LogLines(log.end() - 5, log.end()),
        (LogLines{{1, L"CMAPIObject::ReadContactFromFolder - lpContainer->GetContentsTable(0X80004005)\r\n"},
                  {1, L"CMAPIObject::ReadContactFromFolder - Finish(Failed)\r\n"},
                  {1, L"CMAPIObject::ReadContactFromFolder - Finish(Failed)\r\n"},
                  {3, L"CMAPIObject::ReadContacts - Failed to read contacts from folder\r\n"},
                  {1, L"CMAPIObject::ReadContacts - Finish\r\n"}}));
}

TEST_F(ContactReading, FolderWithoutContentsStillCountsItsSubFolders) {
    MakeFolder(L"Work\\Mail\\Contacts\\A");
    AddContacts(L"Contacts", {L"Top"});
    AddContacts(L"Contacts\\A", {L"InA"});
    LogOn();
    g_bSubFolder = true;
    recorder::FailMethod("IMAPIFolder::GetContentsTable", "Contacts", E_FAIL);
    EXPECT_EQ(g_MAPIObject.GetContactCount(), 1);
}

TEST_F(ContactReading, StopDuringTheLastContactOfAFolderLeavesItsSubFoldersOutWithSuccess) {
    MakeFolder(L"Work\\Mail\\Contacts\\A");
    AddContacts(L"Contacts", {L"Top"});
    AddContacts(L"Contacts\\A", {L"InA"});
    LogOn();
    g_bSubFolder = true;
    OnSend([] { g_MAPIObject.m_bStop = 1; });
    EXPECT_EQ(g_MAPIObject.ReadContacts(L""), 0);
    EXPECT_EQ(FirstNames(TakeSent()), (std::vector<CString>{L"Top"}));
}

TEST_F(ContactReading, StopDuringTheLastContactOfASubFolderEndsTheWalkAtTheNextOne) {
    MakeFolder(L"Work\\Mail\\Contacts\\A");
    MakeFolder(L"Work\\Mail\\Contacts\\B");
    AddContacts(L"Contacts\\A", {L"InA"});
    AddContacts(L"Contacts\\B", {L"InB"});
    LogOn();
    g_bSubFolder = true;
    OnSend([] { g_MAPIObject.m_bStop = 1; });
    EXPECT_EQ(g_MAPIObject.ReadContacts(L""), 1);
    EXPECT_EQ(FirstNames(TakeSent()), (std::vector<CString>{L"InA"}));
    const LogLines log = TakeLog();
    EXPECT_EQ(log[log.size() - 5],
              (LogLine{3, L"CMAPIObject::ReadContactFromFolder - Interrupted or INVALID Parameter\r\n"}));
}

}  // namespace
