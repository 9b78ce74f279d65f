// Full reads and counts of calendar folders, with their lines as whole sequences.

#include "mapi/hex_text.h"
#include "mapi/store_entries.h"
#include "support/settings.h"
#include "tests/unit/calendar/sample_series.h"
#include "tests/unit/store/calendar_reading_fixture.h"
#include "tests/unit/store/without_document_class.h"
#include "tests/unit/text_printer.h"

namespace {

namespace recorder = localstore::recorder;
using NAMESPACE_MAPI::CMAPIObject;

TEST_F(CalendarReading, FullReadWritesItsLinesInOrder) {
    AddAppointments(L"Calendar", {L"One"});
    {
        // What is in a series and in a zone, though it is too short for one, is told by no line.
        FolderWriter writer(L"Work", L"Calendar");
        NewAppointment(writer, L"Two")
            .Series(2, sample_series::WithExceptions())
            .Binary(lid::kTimeZoneStruct, std::vector<BYTE>(47))
            .Save();
    }
    LogOn();
    EXPECT_EQ(g_MAPIObject.ReadCalendars(L""), 0);
    LogLines expected = FirstLines(2);
    Append(expected,
           {{3, L"CMAPIObject::ReadCalendarEvent - NULL lParam1\r\n"},
            {1, L"CMAPIObject::ReadCalendarEventFromFolder - Finish\r\n"},
            {1, L"CMAPIObject::ReadCalendarEventFromFolder - m_lpEventFolder->OpenEntry(0X00000000)\r\n"},
            {1, L"CMAPIObject::ReadCalendarEventFromFolder - lpContainer->GetContentsTable(0X00000000)\r\n"},
            {1, L"CMAPIObject::ReadCalendarEventFromFolder - pfnHrQueryAllRows(0X00000000)\r\n"},
            {1, L"CMAPIObject::ReadCalendarEventFromFolder - Finish(Succeeded)\r\n"}});
    Append(expected, LastLines());
    EXPECT_EQ(TakeLog(), expected);
    EXPECT_EQ(TakeSentCalendars().size(), 2U);
    EXPECT_TRUE(TakeSent().empty());
    EXPECT_EQ(g_MAPIObject.m_nItemsSent, 2);
    EXPECT_EQ(g_MAPIObject.m_nItemTotal, 2);
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

TEST_F(CalendarReading, DocumentIsTheSameCharacterByCharacter) {
    namespace series = sample_series;
    NAMESPACE_MAPI::tagRecurrencePattern pattern = series::Weekly();
    series::SetDeleted(pattern, {series::kFirstMonday + 14 * series::kDay});
    {
        FolderWriter writer(L"Work", L"Calendar");
        NewAppointment appointment(writer.NewMessage(
            L"IPM.Appointment", PropertyValues().Text(PR_SUBJECT_W, L"Review").Number(PR_PRIORITY, 1)));
        appointment.Body(L"Agenda")
            .Text(lid::kLocation, L"Room 4")
            .Time(lid::kStartWhole, 2011, 3, 7, 9, 0)
            .Time(lid::kEndWhole, 2011, 3, 7, 10, 0)
            .Reminder(15)
            .Series(2, pattern);
        appointment.Save();
    }
    LogOn();
    ASSERT_EQ(g_MAPIObject.ReadCalendars(L""), 0);
    const CString document = TakeSentCalendars().at(0);
    const CString created = TextBetween(document, L"<CreateTime>", L"</CreateTime>");
    const CString modified = TextBetween(document, L"<lastModifiedTime>", L"</lastModifiedTime>");
    const CString id = TextBetween(document, L"<PIMID>", L"</PIMID>");
    EXPECT_EQ(created.size(), 19U);
    EXPECT_EQ(modified.size(), 19U);
    CXMLParser reader;
    ASSERT_TRUE(reader.InitDocument());
    reader.LoadText(document.View());
    EXPECT_EQ(reader.GetNodeText(reader.SelectSingleNode(L"/Calendar/ExceptionRule").Get()),
              L"<exceptions>\r\n<deletion time = \"2011/03/21\"></deletion>\r\n</exceptions>");
    // How a carriage return is written inside a text is the document class's affair.
    CString rest = document;
    const std::size_t rule = rest.find(L"<ExceptionRule>");
    ASSERT_NE(rule, CString::npos);
    rest.erase(rule, rest.find(L"</ExceptionRule>") - rule);
    EXPECT_EQ(rest.substr(rest.find(L"<Calendar>")),
              L"<Calendar>\r\n\t<CsFolder>Calendar</CsFolder>\r\n\t<CreateTime>" + created +
                  L"</CreateTime>\r\n\t<lastModifiedTime>" + modified +
                  L"</lastModifiedTime>\r\n\t<Description>Review</Description>\r\n"
                  L"\t<Priority>1</Priority>\r\n\t<PIMID>" +
                  id +
                  L"</PIMID>\r\n\t<Body>Agenda</Body>\r\n\t<Location>Room 4</Location>\r\n"
                  L"\t<bAlldayEvent>FALSE</bAlldayEvent>\r\n\t<dtStartTime>" +
                  LocalText(2011, 3, 7, 9, 0) + L"</dtStartTime>\r\n\t<dtEndTime>" +
                  LocalText(2011, 3, 7, 10, 0) +
                  L"</dtEndTime>\r\n\t<nRingTone>1</nRingTone>\r\n"
                  L"\t<lReminderMinutes>15</lReminderMinutes>\r\n\t<lRecurType>2</lRecurType>\r\n"
                  L"\t<lRecurInterval>2</lRecurInterval>\r\n\t<lRecurInstance>0</lRecurInstance>\r\n"
                  L"\t<lRecurWeekMask>10</lRecurWeekMask>\r\n\t<lRecurWeekDay>0</lRecurWeekDay>\r\n"
                  L"\t<lRecurDay>0</lRecurDay>\r\n\t<dtRecurEndDate>05/04/2011 00:00:00</dtRecurEndDate>\r\n"
                  L"\t<bRecurHasEndDate>TRUE</bRecurHasEndDate>\r\n\t<lRecurRepeat>10</lRecurRepeat>\r\n"
                  L"\t</ExceptionRule>\r\n\t<TimeZone>" +
                  FormatTimeZoneText(g_MAPIObject.m_CurrentTimeZone) +
                  L"</TimeZone>\r\n\t<lCalType>3</lCalType></Calendar>\r\n");
}

TEST_F(CalendarReading, ASeriesOfAnotherCalendarHasItsOwnKindAndTheClosingOne) {
    {
        NAMESPACE_MAPI::tagRecurrencePattern pattern = sample_series::WithExceptions();
        pattern.CalendarType = 6;
        FolderWriter writer(L"Work", L"Calendar");
        NewAppointment(writer, L"Hijri").Series(3, pattern).Save();
    }
    LogOn();
    ASSERT_EQ(g_MAPIObject.ReadCalendars(L""), 0);
    const CString document = TakeSentCalendars().at(0);
    EXPECT_TRUE(
        Contains(document, (L"<lRecurType>3</lRecurType>\r\n\t<lCalType>-1</lCalType>\r\n\t<TimeZone>" +
                            FormatTimeZoneText(g_MAPIObject.m_CurrentTimeZone) +
                            L"</TimeZone>\r\n\t<lCalType>3</lCalType></Calendar>")
                               .c_str()));
}

TEST_F(CalendarReading, EmptyFolderSaysSoAndSendsNothing) {
    LogOn();
    EXPECT_EQ(g_MAPIObject.ReadCalendars(L""), 0);
    EXPECT_TRUE(TakeSentCalendars().empty());
    LogLines expected = FirstLines(0);
    Append(expected, {{3, L"CMAPIObject::ReadCalendarEvent - NULL lParam1\r\n"},
                      {3, L"CMAPIObject::ReadCalendarEvent - No Calendar to Read\r\n"}});
    Append(expected, LastLines());
    EXPECT_EQ(TakeLog(), expected);
}

TEST_F(CalendarReading, CountOfTheRemoteProcedureStandsBetweenItsOwnLines) {
    AddAppointments(L"Calendar", {L"One", L"Two"});
    LogOn();
    EXPECT_EQ(g_MAPIObject.GetCalendarCount(), 2);
    LogLines expected{{1, L"CMAPIObject::GetCalendarCount - Begin\r\n"}};
    Append(expected, EventCountLines());
    expected.push_back({1, L"CMAPIObject::GetCalendarCount - Finish\r\n"});
    EXPECT_EQ(TakeLog(), expected);
    EXPECT_EQ(CMAPIObject::GetCalendarEventCount(g_MAPIObject.m_lpEventFolder.Get()), 2);
    EXPECT_EQ(TakeLog(), EventCountLines());
}

TEST_F(CalendarReading, CountWithoutACalendarFolderIsZero) {
    EXPECT_EQ(CMAPIObject::GetCalendarEventCount(g_MAPIObject.m_lpEventFolder.Get()), 0);
    EXPECT_EQ(TakeLog(), (LogLines{{1, L"CMAPIObject::GetCalendarEventCount - Begin\r\n"},
                                   {1, L"CMAPIObject::GetCalendarEventCount - Finish\r\n"}}));
}

TEST_F(CalendarReading, CountOfAFolderThatDoesNotOpenIsZero) {
    LogOn();
    BYTE junk[] = {1, 2, 3};
    for (const SBinary& id : {SBinary{0, nullptr}, SBinary{0, junk}, SBinary{3, nullptr}}) {
        EXPECT_EQ(CMAPIObject::GetCalendarEventCountFromFolder(g_MAPIObject.m_lpEventFolder.Get(), id), 0U);
        EXPECT_EQ(
            TakeLog(),
            (LogLines{{1, L"CMAPIObject::GetCalendarEventCountFromFolder - Begin\r\n"},
                      {3, L"CMAPIObject::GetCalendarEventCountFromFolder - NULL or INVALID Parameter\r\n"},
                      {1, L"CMAPIObject::GetCalendarEventCountFromFolder - Finish\r\n"}}));
    }
    EXPECT_EQ(CMAPIObject::GetCalendarEventCountFromFolder(g_MAPIObject.m_lpEventFolder.Get(), {3, junk}),
              0U);
    const LogLines log = TakeLog();
    ASSERT_EQ(log.size(), 4U);
    EXPECT_TRUE(log[1].text.starts_with(
        L"CMAPIObject::GetCalendarEventCountFromFolder - m_lpEventFolder->OpenEntry(0X8004"));
    EXPECT_EQ(log[2], (LogLine{3,
                               L"CMAPIObject::GetCalendarEventCountFromFolder - OpenEntry Failed or NULL "
                               L"lpContainer\r\n"}));
}

TEST_F(CalendarReading, FolderPropertiesThatCannotBeHadMakeTheCountZero) {
    AddAppointments(L"Calendar", {L"One"});
    LogOn();
    recorder::FailMethod("IMAPIFolder::GetProps", {}, E_FAIL);
    EXPECT_EQ(CMAPIObject::GetCalendarEventCount(g_MAPIObject.m_lpEventFolder.Get()), 0);
    EXPECT_EQ(
        TakeLog(),
        (LogLines{{1, L"CMAPIObject::GetCalendarEventCount - Begin\r\n"},
                  {1, L"CMAPIObject::GetCalendarEventCount - m_lpEventFolder->GetProps(0X80004005)\r\n"},
                  {1, L"CMAPIObject::GetCalendarEventCount - Finish\r\n"}}));
}

TEST_F(CalendarReading, OtherMessageClassesAreNeitherCountedNorRead) {
    AddAppointments(L"Calendar", {L"One"});
    for (const wchar_t* messageClass :
         {L"IPM.Appointment.Custom", L"IPM.Schedule.Meeting.Request", L"IPM.Note", L"IPM"}) {
        AddMessage(messageClass);
    }
    LogOn();
    EXPECT_EQ(g_MAPIObject.GetCalendarCount(), 1);
    EXPECT_EQ(g_MAPIObject.ReadCalendars(L""), 0);
    EXPECT_EQ(Subjects(TakeSentCalendars()), (std::vector<CString>{L"One"}));
}

TEST_F(CalendarReading, WithoutACalendarFolderTheReadFails) {
    EXPECT_EQ(g_MAPIObject.ReadCalendars(L""), 1);
    EXPECT_EQ(TakeLog(), (LogLines{{1, L"CMAPIObject::ReadCalendars - Begin\r\n"},
                                   {1, L"CMAPIObject::GetCalendarCount - Begin\r\n"},
                                   {1, L"CMAPIObject::GetCalendarEventCount - Begin\r\n"},
                                   {1, L"CMAPIObject::GetCalendarEventCount - Finish\r\n"},
                                   {1, L"CMAPIObject::GetCalendarCount - Finish\r\n"},
                                   {1, L"CMAPIObject::ReadCalenda - Calendar Count(0)\r\n"},
                                   {1, L"CMAPIObject::ReadCalendarEvent - Begin\r\n"},
                                   {3, L"CMAPIObject::ReadCalendarEvent - NULL m_lpEventFolder\r\n"},
                                   {1, L"CMAPIObject::ReadCalendarEvent - Finish(Failed)\r\n"},
                                   {3, L"CMAPIObject::ReadContacts - Failed\r\n"},
                                   {1, L"CMAPIObject::ReadCalendars - Finish\r\n"}}));
}

TEST_F(CalendarReading, FolderPropertiesThatCannotBeHadFailTheRead) {
    AddAppointments(L"Calendar", {L"One"});
    LogOn();
    recorder::FailMethod("IMAPIFolder::GetProps", {}, E_FAIL);
    EXPECT_EQ(g_MAPIObject.ReadCalendars(L""), 1);
    const LogLines expected{{1, L"CMAPIObject::ReadCalenda - Calendar Count(0)\r\n"},
                            {1, L"CMAPIObject::ReadCalendarEvent - Begin\r\n"},
                            {1, L"CMAPIObject::ReadContacts - m_lpEventFolder->GetProps(0X80004005)\r\n"},
                            {3, L"CMAPIObject::ReadContacts - Failed to GetProps or NULL lpPropValues\r\n"},
                            {1, L"CMAPIObject::ReadCalendarEvent - Finish(Failed)\r\n"},
                            {3, L"CMAPIObject::ReadContacts - Failed\r\n"},
                            {1, L"CMAPIObject::ReadCalendars - Finish\r\n"}};
    EXPECT_EQ(LastOf(TakeLog(), expected), expected);
}

TEST_F(CalendarReading, RowsThatCannotBeHadFailTheRead) {
    AddAppointments(L"Calendar", {L"One"});
    LogOn();
    ASSERT_EQ(g_MAPIObject.ReadCalendars(L""), 0);
    TakeSentCalendars();
    TakeLog();
    // The first query counts; the second one reads.
    recorder::FailCall(NthCallOf("HrQueryAllRows", 2), false, E_FAIL);
    EXPECT_EQ(g_MAPIObject.ReadCalendars(L""), 1);
    EXPECT_TRUE(TakeSentCalendars().empty());
    LogLines expected{{1, L"CMAPIObject::ReadCalendarEventFromFolder - pfnHrQueryAllRows(0X80004005)\r\n"},
                      {1, L"CMAPIObject::ReadCalendarEventFromFolder - Finish(Failed)\r\n"}};
    Append(expected, LastLinesOfAFailedRead());
    EXPECT_EQ(LastOf(TakeLog(), expected), expected);
}

TEST_F(CalendarReading, DocumentThatCannotBeMadeEndsTheReadWithoutTheFoldersLastLine) {
    AddAppointments(L"Calendar", {L"One", L"Two"});
    LogOn();
    const WithoutDocumentClass broken;
    EXPECT_EQ(g_MAPIObject.ReadCalendars(L""), 1);
    EXPECT_TRUE(TakeSentCalendars().empty());
    LogLines expected{{1, L"CMAPIObject::ReadCalendarEventFromFolder - pfnHrQueryAllRows(0X00000000)\r\n"},
                      {3, L"Xml to calnedaex - failed\r\n"}};
    Append(expected, LastLinesOfAFailedRead());
    EXPECT_EQ(LastOf(TakeLog(), expected), expected);
}

TEST_F(CalendarReading, DocumentThatCannotBeMadeInTheMiddleEndsTheRead) {
    AddAppointments(L"Calendar", {L"One", L"Two", L"Three"});
    LogOn();
    std::unique_ptr<WithoutDocumentClass> broken;
    OnSend([&] { broken = std::make_unique<WithoutDocumentClass>(); });
    EXPECT_EQ(g_MAPIObject.ReadCalendars(L""), 1);
    broken.reset();
    EXPECT_EQ(TakeSentCalendars().size(), 1U);
    LogLines expected{{3, L"Xml to calnedaex - failed\r\n"}};
    Append(expected, LastLinesOfAFailedRead());
    EXPECT_EQ(LastOf(TakeLog(), expected), expected);
}

TEST_F(CalendarReading, FolderThatDoesNotOpenFailsTheRead) {
    LogOn();
    EXPECT_EQ(g_MAPIObject.ReadCalendarEventFromFolder(g_MAPIObject.m_lpEventFolder.Get(), {0, nullptr},
                                                       L"Calendar"),
              0);
    EXPECT_EQ(
        TakeLog(),
        (LogLines{{1, L"CMAPIObject::ReadCalendarEventFromFolder - Finish\r\n"},
                  {3, L"CMAPIObject::ReadCalendarEventFromFolder - Interrupted or INVALID Parameter\r\n"},
                  {1, L"CMAPIObject::ReadCalendarEventFromFolder - Finish(Failed)\r\n"}}));
    BYTE junk[] = {1, 2, 3};
    EXPECT_EQ(
        g_MAPIObject.ReadCalendarEventFromFolder(g_MAPIObject.m_lpEventFolder.Get(), {3, junk}, L"Calendar"),
        0);
    EXPECT_EQ(
        TakeLog()[2],
        (LogLine{3, L"CMAPIObject::ReadCalendarEventFromFolder - OpenEntry Failed or NULL lpContainer\r\n"}));
}

TEST_F(CalendarReading, CallbackThatAlwaysFailsDoesNotEndTheWalk) {
    AddAppointments(L"Calendar", {L"One", L"Two", L"Three"});
    LogOn();
    OnSend([] { throw std::runtime_error("nobody listens"); });
    EXPECT_EQ(g_MAPIObject.ReadCalendars(L""), 0);
    EXPECT_EQ(g_MAPIObject.m_nItemsSent, 3);
    const LogLines log = TakeLog();
    EXPECT_EQ(std::count(log.begin(), log.end(), LogLine{3, L"MAPISendBackOneCalenda Excetipion"}), 3);
    EXPECT_EQ(LastOf(log, LastLines()), LastLines());
}

TEST_F(CalendarReading, MessageThatDoesNotOpenGoesOutWithoutItsMessagePart) {
    AddAppointments(L"Calendar", {L"One"});
    LogOn();
    ASSERT_EQ(g_MAPIObject.ReadCalendars(L""), 0);
    const std::size_t open = LastCallOf("IMAPIFolder::OpenEntry");
    ASSERT_NE(open, 0U);
    TakeSentCalendars();
    recorder::FailCall(open, false);
    EXPECT_EQ(g_MAPIObject.ReadCalendars(L""), 0);
    const std::vector<CString> documents = TakeSentCalendars();
    ASSERT_EQ(documents.size(), 1U);
    EXPECT_TRUE(Contains(documents[0], L"</PIMID>\r\n\t<lCalType>3</lCalType></Calendar>"));
}

TEST_F(CalendarReading, MessageIsLetGoBeforeItsDocumentIsSent) {
    AddAppointments(L"Calendar", {L"One"});
    LogOn();
    std::vector<long> objects;
    OnSend([&] { objects.push_back(recorder::LiveObjects()); });
    ASSERT_EQ(g_MAPIObject.ReadCalendars(L""), 0);
    // The last one that is opened is the message. Without it there is nothing to let go.
    recorder::FailCall(LastCallOf("IMAPIFolder::OpenEntry"), false);
    ASSERT_EQ(g_MAPIObject.ReadCalendars(L""), 0);
    EXPECT_EQ(TakeSentCalendars().size(), 2U);
    ASSERT_EQ(objects.size(), 2U);
    EXPECT_EQ(objects[0], objects[1]);
}

TEST_F(CalendarReading, WithoutASubjectTheRowHasNoneAndChangesHaveAnEmptyOne) {
    namespace series = sample_series;
    {
        NAMESPACE_MAPI::tagRecurrencePattern pattern = series::Weekly();
        series::SetDeleted(pattern, {series::kFirstMonday});
        series::SetExceptions(pattern, {series::Moved(series::kFirstMonday, 0)});
        FolderWriter writer(L"Work", L"Calendar");
        NewAppointment(writer.NewMessage(L"IPM.Appointment")).Series(2, pattern).Save();
    }
    LogOn();
    ASSERT_EQ(g_MAPIObject.ReadCalendars(L""), 0);
    const CString document = TakeSentCalendars().at(0);
    EXPECT_FALSE(Contains(document, L"<Description"));
    EXPECT_TRUE(Contains(document, L"&lt;subject&gt;&lt;/subject&gt;"));
}

TEST_F(CalendarReading, IdentifierOfADocumentIsTheMessagesEntryIdentifier) {
    AddAppointments(L"Calendar", {L"One"});
    LogOn();
    ASSERT_EQ(g_MAPIObject.ReadCalendars(L""), 0);
    const CString id = TextBetween(TakeSentCalendars().at(0), L"<PIMID>", L"</PIMID>");
    const ComPtr<IMessage> message = OpenMessageByHexId(g_MAPIObject.m_lpEventFolder.Get(), id);
    ASSERT_TRUE(message);
    MapiBuffer<SPropValue> stored;
    ASSERT_EQ(pfnHrGetOneProp(message.Get(), PR_ENTRYID, stored.Put()), S_OK);
    EXPECT_EQ(id, BinaryToHexString(stored->Value.bin.lpb, stored->Value.bin.cb));
}

TEST_F(CalendarReading, LoadsTheMachinesZonesFirst) {
    LogOn();
    g_MAPIObject.m_arrTimeZones.RemoveAll();
    EXPECT_EQ(g_MAPIObject.ReadCalendars(L""), 0);
    EXPECT_GT(g_MAPIObject.m_arrTimeZones.GetSize(), 100);
}

TEST_F(CalendarReading, FoldersAndMessagesAreOpenedForAllThatTheUserMay) {
    AddAppointments(L"Calendar", {L"One"});
    LogOn();
    ASSERT_EQ(g_MAPIObject.ReadCalendars(L""), 0);
    ExpectFolderAndMessageWereAskedForAsTheyAre();
}

TEST_F(CalendarReading, TablesAreReadWithTheirFlagsColumnsAndRestrictions) {
    AddAppointments(L"Calendar", {L"One"});
    LogOn();
    g_bSubFolder = true;
    ASSERT_EQ(g_MAPIObject.ReadCalendars(L""), 0);
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
    const std::string items = " property(0x001A001F==0x001A001F=\"IPM.Appointment\") unsorted most=0";
    const std::string folders =
        "0x3613001F,0x3001001F,0x0FFF0102,0x360A000B property(0x3613001F==0x3613001F=\"IPF.Appointment\") "
        "unsorted most=0";
    EXPECT_EQ(queries,
              (std::vector<std::string>{
                  "0x0FFF0102" + items, folders,
                  "0x0FFF0102,0x66700102,0x30070040,0x30080040,0x0037001F,0x00260003" + items, folders}));
}

}  // namespace
