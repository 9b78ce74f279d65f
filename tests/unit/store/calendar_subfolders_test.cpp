// Reads and counts of appointments that go into sub-folders.

#include "support/settings.h"
#include "tests/unit/store/calendar_reading_fixture.h"
#include "tests/unit/text_printer.h"

namespace {

namespace recorder = localstore::recorder;

TEST_F(CalendarReading, SubFoldersAreLeftOutUnlessTheSettingIsOn) {
    MakeFolder(L"Work\\Mail\\Calendar\\Private");
    AddAppointments(L"Calendar", {L"Top"});
    AddAppointments(L"Calendar\\Private", {L"Below"});
    LogOn();
    EXPECT_EQ(g_MAPIObject.GetCalendarCount(), 1);
    EXPECT_EQ(g_MAPIObject.ReadCalendars(L""), 0);
    EXPECT_EQ(Subjects(TakeSentCalendars()), (std::vector<CString>{L"Top"}));
}

TEST_F(CalendarReading, SubFoldersFollowTheirFolderDepthFirstWithTheirPaths) {
    MakeFolder(L"Work\\Mail\\Calendar\\A\\Deep");
    MakeFolder(L"Work\\Mail\\Calendar\\B");
    AddAppointments(L"Calendar", {L"Top"});
    AddAppointments(L"Calendar\\A", {L"InA"});
    AddAppointments(L"Calendar\\A\\Deep", {L"InDeep"});
    AddAppointments(L"Calendar\\B", {L"InB"});
    LogOn();
    g_bSubFolder = true;
    EXPECT_EQ(g_MAPIObject.GetCalendarCount(), 4);
    EXPECT_EQ(g_MAPIObject.ReadCalendars(L""), 0);
    const std::vector<CString> documents = TakeSentCalendars();
    EXPECT_EQ(Subjects(documents), (std::vector<CString>{L"Top", L"InA", L"InDeep", L"InB"}));
    ASSERT_EQ(documents.size(), 4U);
    EXPECT_TRUE(Contains(documents[0], L"<CsFolder>Calendar</CsFolder>"));
    EXPECT_TRUE(Contains(documents[2], L"<CsFolder>Calendar\\A\\Deep</CsFolder>"));
    EXPECT_TRUE(Contains(documents[3], L"<CsFolder>Calendar\\B</CsFolder>"));
}

TEST_F(CalendarReading, SubFolderReadWritesItsLinesInOrder) {
    MakeFolder(L"Work\\Mail\\Calendar\\A");
    AddAppointments(L"Calendar", {L"Top"});
    LogOn();
    g_bSubFolder = true;
    EXPECT_EQ(g_MAPIObject.ReadCalendars(L""), 0);
    const auto line = [](const wchar_t* operation, const wchar_t* text) {
        return LogLine{1, CString::Format(L"CMAPIObject::%s - %s\r\n", operation, text)};
    };
    const auto folder = [&](const wchar_t* operation) {
        return LogLines{line(operation, L"m_lpEventFolder->OpenEntry(0X00000000)"),
                        line(operation, L"lpContainer->GetContentsTable(0X00000000)"),
                        line(operation, L"pfnHrQueryAllRows(0X00000000)"),
                        line(operation, L"lpContainer->GetHierarchyTable(0X00000000)"),
                        line(operation, L"pfnHrQueryAllRows(0X00000000)")};
    };
    constexpr const wchar_t* kCount = L"GetCalendarEventCountFromFolder";
    constexpr const wchar_t* kRead = L"ReadCalendarEventFromFolder";
    LogLines expected{line(L"ReadCalendars", L"Begin"), line(L"GetCalendarCount", L"Begin"),
                      line(L"GetCalendarEventCount", L"Begin"),
                      line(L"GetCalendarEventCount", L"m_lpEventFolder->GetProps(0X00000000)"),
                      line(kCount, L"Begin")};
    Append(expected, folder(kCount));
    expected.push_back(line(kCount, L"Begin"));
    Append(expected, folder(kCount));
    Append(expected, {line(kCount, L"Finish"),
                      line(kCount, L"Finish"),
                      line(L"GetCalendarEventCount", L"Finish"),
                      line(L"GetCalendarCount", L"Finish"),
                      line(L"ReadCalenda", L"Calendar Count(1)"),
                      line(L"ReadCalendarEvent", L"Begin"),
                      line(L"ReadContacts", L"m_lpEventFolder->GetProps(0X00000000)"),
                      {3, L"CMAPIObject::ReadCalendarEvent - NULL lParam1\r\n"},
                      line(kRead, L"Finish")});
    Append(expected, folder(kRead));
    expected.push_back(line(kRead, L"Finish"));
    Append(expected, folder(kRead));
    Append(expected, {line(kRead, L"Finish(Succeeded)"), line(kRead, L"Finish(Succeeded)")});
    Append(expected, LastLines());
    EXPECT_EQ(TakeLog(), expected);
}

TEST_F(CalendarReading, SubFolderOfAnotherClassIsNotEnteredNorAreItsChildren) {
    MakeFolder(L"Work\\Mail\\Calendar\\Notes\\Inner");
    WriteFile(L"Work\\Mail\\Calendar\\Notes\\folder.ini", "[Folder]\r\nClass=IPF.Note\r\n");
    WriteFile(L"Work\\Mail\\Calendar\\Notes\\Inner\\folder.ini", "[Folder]\r\nClass=IPF.Appointment\r\n");
    AddAppointments(L"Calendar", {L"Top"});
    AddAppointments(L"Calendar\\Notes", {L"Below"});
    AddAppointments(L"Calendar\\Notes\\Inner", {L"Inside"});
    LogOn();
    g_bSubFolder = true;
    EXPECT_EQ(g_MAPIObject.GetCalendarCount(), 1);
    EXPECT_EQ(g_MAPIObject.ReadCalendars(L""), 0);
    EXPECT_EQ(Subjects(TakeSentCalendars()), (std::vector<CString>{L"Top"}));
}

TEST_F(CalendarReading, SubFolderWhoseContentsCannotBeReadEndsTheWalk) {
    MakeFolder(L"Work\\Mail\\Calendar\\A");
    MakeFolder(L"Work\\Mail\\Calendar\\B");
    AddAppointments(L"Calendar", {L"Top"});
    AddAppointments(L"Calendar\\B", {L"InB"});
    LogOn();
    g_bSubFolder = true;
    recorder::FailMethod("IMAPIFolder::GetContentsTable", "Calendar\\A", E_FAIL);
    EXPECT_EQ(g_MAPIObject.ReadCalendars(L""), 1);
    EXPECT_EQ(Subjects(TakeSentCalendars()), (std::vector<CString>{L"Top"}));
    LogLines expected{
        {1, L"CMAPIObject::ReadCalendarEventFromFolder - lpContainer->GetContentsTable(0X80004005)\r\n"},
        {1, L"CMAPIObject::ReadCalendarEventFromFolder - Finish(Failed)\r\n"},
        {1, L"CMAPIObject::ReadCalendarEventFromFolder - Finish(Failed)\r\n"}};
    Append(expected, LastLinesOfAFailedRead());
    EXPECT_EQ(LastOf(TakeLog(), expected), expected);
}

TEST_F(CalendarReading, HierarchyThatCannotBeHadDoesNotFailTheRead) {
    AddAppointments(L"Calendar", {L"Top"});
    LogOn();
    g_bSubFolder = true;
    recorder::FailMethod("IMAPIFolder::GetHierarchyTable", {}, E_FAIL);
    EXPECT_EQ(g_MAPIObject.ReadCalendars(L""), 0);
    EXPECT_EQ(TakeSentCalendars().size(), 1U);
}

TEST_F(CalendarReading, TopFolderWithoutItemsStillReadsItsSubFolders) {
    MakeFolder(L"Work\\Mail\\Calendar\\A");
    AddAppointments(L"Calendar\\A", {L"InA"});
    LogOn();
    g_bSubFolder = true;
    EXPECT_EQ(g_MAPIObject.ReadCalendars(L""), 0);
    EXPECT_EQ(Subjects(TakeSentCalendars()), (std::vector<CString>{L"InA"}));
}

}  // namespace
