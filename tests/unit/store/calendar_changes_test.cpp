// Reads of changed appointments: the walk that lists a folder, and what is sent of the marked list.

#include "mapi/hex_text.h"
#include "mapi/store_entries.h"
#include "support/settings.h"
#include "tests/unit/store/calendar_reading_fixture.h"
#include "tests/unit/store/change_log.h"
#include "tests/unit/store/without_document_class.h"
#include "tests/unit/temporary_folder.h"
#include "tests/unit/text_printer.h"

namespace {

namespace recorder = localstore::recorder;

class CalendarChanges : public CalendarReading {
  protected:
    void TearDown() override {
        OnGetChangeLog({});
        CalendarReading::TearDown();
    }

    int ReadChanges() { return g_MAPIObject.ReadCalendars(m_folder.File(L"map").c_str()); }
    /// Reads everything once, so that it is known.
    void Know() {
        ASSERT_EQ(ReadChanges(), 0);
        TakeSentCalendars();
        TakeLog();
        recorder::ClearCalls();
    }
    /// The lines from the first one to the call of the change log.
    LogLines LinesUpToTheChangeLog(int count) const {
        LogLines lines = FirstLines(count);
        Append(
            lines,
            {{1, L"CMAPIObject::ReadCalendarEvent - Map File(" + m_folder.File(L"map") + L")\r\n"},
             {1, L"CMAPIObject::ReadCalendarEventLogFromFolder - Begin\r\n"},
             {1, L"CMAPIObject::ReadCalendarEventLogFromFolder - m_lpEventFolder->OpenEntry(0X00000000)\r\n"},
             {1,
              L"CMAPIObject::ReadCalendarEventLogFromFolder - "
              L"lpContainer->GetContentsTable(0X00000000)\r\n"},
             {1, L"CMAPIObject::ReadCalendarEventLogFromFolder - pfnHrQueryAllRows(0X00000000)\r\n"},
             {1, L"CMAPIObject::ReadCalendarEventLogFromFolder - Finish(Succeeded)\r\n"},
             {3, L"CMAPIObject::ReadCalendarEvent - Call GetChangeLog\r\n"}});
        return lines;
    }
    /// The lines of the agent; the change-log library has a log of its own.
    static LogLines TakeAgentLog() {
        LogLines lines = TakeLog();
        std::erase_if(lines, [](const LogLine& line) { return line.text.starts_with(L"calendar, pim: "); });
        return lines;
    }
    /// Makes the comparison mark the items as told, and append what is told.
    static void MarkAs(const std::vector<std::int32_t>& flags, const std::vector<tagLogItem>& gone = {}) {
        OnGetChangeLog([=](LogItems& items, const GetChangeLogArgs& /*arguments*/) {
            for (std::size_t i = 0; i < flags.size(); ++i) {
                items[i].m_lLogFlag = flags[i];
            }
            for (const tagLogItem& item : gone) {
                items.Add(item);
            }
            return 1;
        });
    }
    static tagLogItem Gone(std::int32_t flag) {
        tagLogItem gone;
        gone.m_lLogFlag = flag;
        gone.m_strId = L"00FF";
        gone.m_dtModified.SetDateTime(2020, 2, 29, 13, 14, 15);
        return gone;
    }
    /// The lines of a read of changes that fails behind the sending.
    static LogLines LastLinesOfFailedChanges() {
        return {{3, L"CMAPIObject::ReadContacts - Failed to read calendars from log\r\n"},
                {1, L"CMAPIObject::before logArrayRemoveall\r\n"},
                {1, L"CMAPIObject::before pfnfreeBuffer\r\n"},
                {1, L"CMAPIObject::ReadCalendarEvent - Finish(Failed)\r\n"},
                {3, L"CMAPIObject::ReadContacts - Failed\r\n"},
                {1, L"CMAPIObject::ReadCalendars - Finish\r\n"}};
    }

    TemporaryFolder m_folder;
};

TEST_F(CalendarChanges, EmptyMapNameSendsEverythingWithoutTheChangeLog) {
    AddAppointments(L"Calendar", {L"One"});
    LogOn();
    OnGetChangeLog([](LogItems&, const GetChangeLogArgs&) {
        ADD_FAILURE() << "the change log was used";
        return 0;
    });
    EXPECT_EQ(g_MAPIObject.ReadCalendars(L""), 0);
    EXPECT_EQ(TakeSentCalendars().size(), 1U);
}

TEST_F(CalendarChanges, ChangeLogIsCalledForAFolderWithoutItems) {
    LogOn();
    int calls = 0;
    OnGetChangeLog([&](LogItems& items, const GetChangeLogArgs& arguments) {
        ++calls;
        EXPECT_TRUE(items.IsEmpty());
        EXPECT_EQ(arguments.m_strKind, L"calendar");
        EXPECT_EQ(arguments.m_strDomain, L"pim");
        EXPECT_EQ(arguments.m_strMapFile, m_folder.File(L"map"));
        return 0;
    });
    EXPECT_EQ(ReadChanges(), 0);
    EXPECT_EQ(calls, 1);
}

TEST_F(CalendarChanges, WithoutAChangeNothingIsSentAndTheLinesComeInOrder) {
    AddAppointments(L"Calendar", {L"One"});
    LogOn();
    Know();
    EXPECT_EQ(ReadChanges(), 0);
    EXPECT_TRUE(TakeSentCalendars().empty());
    LogLines expected = LinesUpToTheChangeLog(1);
    Append(expected, {{3, L"CMAPIObject::ReadCalendarEvent - No Change\r\n"},
                      {1, L"CMAPIObject::before logArrayRemoveall\r\n"}});
    Append(expected, LastLines());
    EXPECT_EQ(TakeAgentLog(), expected);
}

TEST_F(CalendarChanges, WithoutAChangeNoMessageIsOpened) {
    AddAppointments(L"Calendar", {L"One", L"Two", L"Three"});
    LogOn();
    Know();
    ASSERT_EQ(ReadChanges(), 0);
    const std::vector<recorder::Call> calls = recorder::Calls();
    EXPECT_EQ(
        std::count_if(calls.begin(), calls.end(),
                      [](const recorder::Call& call) { return call.method == "IMAPIFolder::OpenEntry"; }),
        2);
    EXPECT_EQ(std::count_if(calls.begin(), calls.end(),
                            [](const recorder::Call& call) { return call.method == "IMessage::GetProps"; }),
              0);
}

TEST_F(CalendarChanges, NewChangedAndDeletedOnesAreSentWithTheirLinesInOrder) {
    AddAppointments(L"Calendar", {L"A", L"B", L"C"});
    LogOn();
    std::vector<CString> ids;
    OnGetChangeLog([&](LogItems& items, const GetChangeLogArgs&) {
        for (const tagLogItem& item : items) {
            ids.push_back(item.m_strId);
        }
        items[0].m_lLogFlag = 4;
        items[1].m_lLogFlag = 8;
        items.Add(Gone(32));
        return 3;
    });
    EXPECT_EQ(ReadChanges(), 0);
    ASSERT_EQ(ids.size(), 3U);
    LogLines expected = LinesUpToTheChangeLog(3);
    Append(expected, {{1, L"CMAPIObject::ReadCalendarEvent - Read Changes\r\n"},
                      {1, L"CMAPIObject::ReadCalendarEventFromLog - Begin\r\n"},
                      {1, L"CMAPIObject::ReadCalendarEventFromLog - Update(" + ids[0] + L")\r\n"},
                      {1, L"CMAPIObject::ReadCalendarEventFromLog - New(" + ids[1] + L")\r\n"},
                      {1, L"CMAPIObject::ReadCalendarEventFromLog - Delete(00FF)\r\n"},
                      {1, L"CMAPIObject::total item 4 delete index - 3\r\n"},
                      {1, L"CMAPIObject::ReadCalendarEventFromLog - Finish(Succeeded)\r\n"},
                      {1, L"CMAPIObject::before logArrayRemoveall\r\n"}});
    Append(expected, LastLines());
    EXPECT_EQ(TakeLog(), expected);
    const std::vector<CString> documents = TakeSentCalendars();
    ASSERT_EQ(documents.size(), 3U);
    EXPECT_TRUE(Contains(documents[0],
                         L"<Calendar>\r\n\t<CsFolder>Calendar</CsFolder>\r\n\t<lFlag>4</lFlag>\r\n"
                         L"\t<CreateTime>"));
    EXPECT_TRUE(Contains(
        documents[0],
        (L"\t<Description>A</Description>\r\n\t<PIMID>" + ids[0] + L"</PIMID>\r\n\t<Body/>").c_str()));
    EXPECT_TRUE(Contains(documents[0], L"</TimeZone>\r\n\t<lCalType>3</lCalType></Calendar>"));
    EXPECT_TRUE(Contains(documents[1], L"<lFlag>8</lFlag>"));
    EXPECT_TRUE(Contains(documents[1], L"<Description>B</Description>"));
    EXPECT_EQ(g_MAPIObject.m_nItemsSent, 0);
    EXPECT_EQ(g_MAPIObject.m_nItemTotal, 4);
}

TEST_F(CalendarChanges, ADeletionNamesFlagIdentifierKindAndTimeAndNoFolder) {
    LogOn();
    MarkAs({}, {Gone(32)});
    EXPECT_EQ(ReadChanges(), 0);
    const CString document = TakeSentCalendars().at(0);
    EXPECT_EQ(document.substr(document.find(L"<Calendar>")),
              L"<Calendar>\r\n\t<lFlag>32</lFlag>\r\n\t<PIMID>00FF</PIMID>\r\n\t<lCalType>3</lCalType>\r\n"
              L"\t<LastModifiedTime>02/29/2020 13:14:15</LastModifiedTime></Calendar>\r\n");
}

TEST_F(CalendarChanges, ADeletionWithoutADateHasTheElementAllTheSame) {
    LogOn();
    std::vector<tagLogItem> gone(3);
    for (tagLogItem& item : gone) {
        item.m_lLogFlag = 32;
    }
    gone[0].m_dtModified.m_status = kDateInvalid;
    gone[1].m_dtModified.m_status = kDateNull;
    MarkAs({}, gone);
    EXPECT_EQ(ReadChanges(), 0);
    const std::vector<CString> documents = TakeSentCalendars();
    ASSERT_EQ(documents.size(), 3U);
    EXPECT_TRUE(Contains(documents[0], L"<LastModifiedTime>Invalid DateTime</LastModifiedTime></Calendar>"));
    EXPECT_TRUE(Contains(documents[1], L"<LastModifiedTime/></Calendar>"));
    EXPECT_TRUE(
        Contains(documents[2], L"<LastModifiedTime>12/30/1899 00:00:00</LastModifiedTime></Calendar>"));
}

TEST_F(CalendarChanges, SentDocumentHasTheFieldsOfAFullRead) {
    AddAppointments(L"Calendar", {L"One"});
    LogOn();
    ASSERT_EQ(g_MAPIObject.ReadCalendars(L""), 0);
    const CString full = TakeSentCalendars().at(0);
    ASSERT_EQ(ReadChanges(), 0);
    CString changed = TakeSentCalendars().at(0);
    const CString flag = L"\r\n\t<lFlag>8</lFlag>";
    const std::size_t place = changed.find(flag);
    ASSERT_NE(place, CString::npos);
    changed.erase(place, flag.size());
    EXPECT_EQ(changed, full);
}

TEST_F(CalendarChanges, WithoutAZoneOfItsOwnAnAppointmentHasTheMachinesInBothReads) {
    AddAppointments(L"Calendar", {L"One"});
    LogOn();
    g_MAPIObject.m_CurrentTimeZone.Bias = 300;
    g_MAPIObject.m_CurrentTimeZone.DaylightBias = -60;
    g_MAPIObject.m_CurrentTimeZone.StandardDate = {0, 11, 0, 1, 2, 0, 0, 0};
    g_MAPIObject.m_CurrentTimeZone.DaylightDate = {0, 3, 0, 2, 2, 0, 0, 0};
    ASSERT_EQ(g_MAPIObject.ReadCalendars(L""), 0);
    ASSERT_EQ(ReadChanges(), 0);
    const std::vector<CString> documents = TakeSentCalendars();
    ASSERT_EQ(documents.size(), 2U);
    for (const CString& document : documents) {
        EXPECT_EQ(TextBetween(document, L"<TimeZone>", L"</TimeZone>"),
                  L"GMT:+300;DST:60;STD:0000110102000000;DLT:0000030202000000");
    }
}

TEST_F(CalendarChanges, ChangedItemGoesOutUnderItsShortTermIdentifierAndADeletionUnderTheListedOne) {
    AddAppointments(L"Calendar", {L"One"});
    WriteFile(L"Work\\Mail\\folder.ini", "[Store]\nLongTermIds=1\n");
    LogOn();
    ASSERT_EQ(g_MAPIObject.ReadCalendars(L""), 0);
    const CString full = TextBetween(TakeSentCalendars().at(0), L"<PIMID>", L"</PIMID>");
    CString listed;
    OnGetChangeLog([&](LogItems& items, const GetChangeLogArgs&) {
        listed = items[0].m_strId;
        tagLogItem gone = items[0];
        gone.m_lLogFlag = 32;
        items[0].m_lLogFlag = 4;
        items.Add(gone);
        return 2;
    });
    ASSERT_EQ(ReadChanges(), 0);
    const std::vector<CString> documents = TakeSentCalendars();
    ASSERT_EQ(documents.size(), 2U);
    EXPECT_EQ(listed, full);
    const ComPtr<IMessage> message = OpenMessageByHexId(g_MAPIObject.m_lpEventFolder.Get(), listed);
    MapiBuffer<SPropValue> own;
    ASSERT_EQ(pfnHrGetOneProp(message.Get(), PR_ENTRYID, own.Put()), S_OK);
    const CString ownId = BinaryToHexString(own->Value.bin.lpb, own->Value.bin.cb);
    EXPECT_NE(ownId, listed);
    EXPECT_EQ(TextBetween(documents[0], L"<PIMID>", L"</PIMID>"), ownId);
    EXPECT_EQ(TextBetween(documents[1], L"<PIMID>", L"</PIMID>"), listed);
    const LogLines log = TakeLog();
    EXPECT_EQ(std::count(log.begin(), log.end(),
                         LogLine{1, L"CMAPIObject::ReadCalendarEventFromLog - Update(" + listed + L")\r\n"}),
              1);
}

TEST_F(CalendarChanges, MessageIsLetGoBeforeItsDocumentIsSent) {
    AddAppointments(L"Calendar", {L"One", L"Two"});
    LogOn();
    using Held = std::vector<std::pair<long, long>>;
    Held changes;
    OnSend([&] { changes.emplace_back(recorder::LiveObjects(), recorder::LiveBuffers()); });
    ASSERT_EQ(ReadChanges(), 0);
    TakeSentCalendars();
    OnGetChangeLog([](LogItems& items, const GetChangeLogArgs&) {
        for (tagLogItem& item : items) {
            item.m_lLogFlag = 32;
        }
        return 2;
    });
    // Nothing is opened for a deletion.
    Held deletions;
    OnSend([&] { deletions.emplace_back(recorder::LiveObjects(), recorder::LiveBuffers()); });
    ASSERT_EQ(ReadChanges(), 0);
    EXPECT_EQ(changes.size(), 2U);
    EXPECT_EQ(changes, deletions);
}

TEST_F(CalendarChanges, ItemThatIsNewAndChangedCountsAsNew) {
    AddAppointments(L"Calendar", {L"One"});
    LogOn();
    MarkAs({12});
    EXPECT_EQ(ReadChanges(), 0);
    EXPECT_TRUE(Contains(TakeSentCalendars().at(0), L"<lFlag>12</lFlag>"));
    const LogLines log = TakeLog();
    EXPECT_EQ(std::count_if(log.begin(), log.end(),
                            [](const LogLine& line) {
                                return line.text.starts_with(L"CMAPIObject::ReadCalendarEventFromLog - New(");
                            }),
              1);
}

TEST_F(CalendarChanges, ItemThatIsDeletedAndNewOrChangedIsSentInFull) {
    AddAppointments(L"Calendar", {L"One", L"Two"});
    LogOn();
    MarkAs({40, 36});
    EXPECT_EQ(ReadChanges(), 0);
    const std::vector<CString> documents = TakeSentCalendars();
    ASSERT_EQ(documents.size(), 2U);
    EXPECT_TRUE(Contains(documents[0], L"<lFlag>40</lFlag>"));
    EXPECT_TRUE(Contains(documents[0], L"<CsFolder>Calendar</CsFolder>"));
    EXPECT_TRUE(Contains(documents[1], L"<lFlag>36</lFlag>"));
}

TEST_F(CalendarChanges, ItemWhoseMessageNoLongerOpensIsDroppedWithoutAWord) {
    LogOn();
    MarkAs({}, {Gone(8)});
    EXPECT_EQ(ReadChanges(), 0);
    EXPECT_TRUE(TakeSentCalendars().empty());
    LogLines expected{{1, L"CMAPIObject::ReadCalendarEventFromLog - New(00FF)\r\n"},
                      {1, L"CMAPIObject::ReadCalendarEventFromLog - Finish(Succeeded)\r\n"},
                      {1, L"CMAPIObject::before logArrayRemoveall\r\n"}};
    Append(expected, LastLines());
    EXPECT_EQ(LastOf(TakeLog(), expected), expected);
}

TEST_F(CalendarChanges, ItemsWithOtherBitsAloneAreSkipped) {
    AddAppointments(L"Calendar", {L"One", L"Two"});
    LogOn();
    MarkAs({1 | 2 | 16 | 64, 0});
    EXPECT_EQ(ReadChanges(), 0);
    EXPECT_TRUE(TakeSentCalendars().empty());
}

TEST_F(CalendarChanges, StopDoesNotEndTheSending) {
    AddAppointments(L"Calendar", {L"One", L"Two", L"Three"});
    LogOn();
    OnSend([] { g_MAPIObject.Stop(); });
    EXPECT_EQ(ReadChanges(), 0);
    EXPECT_EQ(TakeSentCalendars().size(), 3U);
    EXPECT_EQ(g_MAPIObject.m_bStop, 0);
    const LogLines log = TakeLog();
    EXPECT_EQ(LastOf(log, LastLines()), LastLines());
}

TEST_F(CalendarChanges, StopBeforeTheListEndsTheReadAndTheMapStaysAsItIs) {
    AddAppointments(L"Calendar", {L"One"});
    LogOn();
    g_MAPIObject.Stop();
    OnGetChangeLog([](LogItems&, const GetChangeLogArgs&) {
        ADD_FAILURE() << "a list that is not complete was compared";
        return 0;
    });
    EXPECT_EQ(ReadChanges(), 1);
    const LogLines expected{
        {1, L"CMAPIObject::ReadCalendarEventLogFromFolder - Begin\r\n"},
        {3, L"CMAPIObject::ReadCalendarEventLogFromFolder - Interrupted or INVALID Parameter\r\n"},
        {1, L"CMAPIObject::ReadCalendarEventLogFromFolder - Finish(Failed)\r\n"},
        {3, L"CMAPIObject::ReadCalendarEvent - Failed to read from log\r\n"},
        {1, L"CMAPIObject::before pfnfreeBuffer\r\n"},
        {1, L"CMAPIObject::ReadCalendarEvent - Finish(Failed)\r\n"},
        {3, L"CMAPIObject::ReadContacts - Interrupted\r\n"},
        {1, L"CMAPIObject::ReadCalendars - Finish\r\n"}};
    EXPECT_EQ(LastOf(TakeLog(), expected), expected);
}

TEST_F(CalendarChanges, FolderThatDoesNotOpenCannotBeListed) {
    LogOn();
    LogItems items;
    BYTE junk[] = {1, 2, 3};
    EXPECT_EQ(
        g_MAPIObject.ReadCalendarEventLogFromFolder(g_MAPIObject.m_lpEventFolder.Get(), {3, junk}, items), 0);
    const LogLines log = TakeLog();
    ASSERT_EQ(log.size(), 4U);
    EXPECT_EQ(log[2], (LogLine{3,
                               L"CMAPIObject::ReadCalendarEventLogFromFolder - OpenEntry Failed or NULL "
                               L"lpContainer\r\n"}));
    EXPECT_EQ(log[3], (LogLine{1, L"CMAPIObject::ReadCalendarEventLogFromFolder - Finish(Failed)\r\n"}));
}

TEST_F(CalendarChanges, CallbackThatAlwaysFailsDoesNotEndTheSending) {
    AddAppointments(L"Calendar", {L"One", L"Two"});
    LogOn();
    OnSend([] { throw std::runtime_error("nobody listens"); });
    EXPECT_EQ(ReadChanges(), 0);
    const LogLines log = TakeLog();
    EXPECT_EQ(std::count(log.begin(), log.end(), LogLine{3, L"MAPISendBackOneCalenda Excetipion"}), 2);
}

TEST_F(CalendarChanges, MessageWithoutValuesEndsTheSending) {
    AddAppointments(L"Calendar", {L"One", L"Two"});
    LogOn();
    recorder::FailMethod("IMessage::GetProps", {}, E_FAIL);
    EXPECT_EQ(ReadChanges(), 1);
    EXPECT_TRUE(TakeSentCalendars().empty());
    LogLines expected{{3, L"CMAPIObject::ReadCalendarEventFromLog - NULL lpPropValues\r\n"},
                      {1, L"CMAPIObject::ReadCalendarEventFromLog - Finish(Failed)\r\n"}};
    Append(expected, LastLinesOfFailedChanges());
    EXPECT_EQ(LastOf(TakeLog(), expected), expected);
}

TEST_F(CalendarChanges, DocumentThatCannotBeMadeEndsTheSendingWithoutItsLastLine) {
    AddAppointments(L"Calendar", {L"One"});
    LogOn();
    const WithoutDocumentClass broken;
    for (const bool isDeletion : {false, true}) {
        isDeletion ? MarkAs({0}, {Gone(32)}) : MarkAs({8});
        EXPECT_EQ(ReadChanges(), 1);
        LogLines expected{{3, L"Xml to calnedaex - failed\r\n"}};
        Append(expected, LastLinesOfFailedChanges());
        EXPECT_EQ(LastOf(TakeLog(), expected), expected);
    }
    EXPECT_TRUE(TakeSentCalendars().empty());
}

TEST_F(CalendarChanges, ItemOfASubFolderIsSentUnderTheNameOfTheTopFolder) {
    MakeFolder(L"Work\\Mail\\Calendar\\Private");
    AddAppointments(L"Calendar\\Private", {L"Below"});
    LogOn();
    g_bSubFolder = true;
    EXPECT_EQ(ReadChanges(), 0);
    const std::vector<CString> documents = TakeSentCalendars();
    ASSERT_EQ(documents.size(), 1U);
    EXPECT_TRUE(Contains(documents[0], L"<CsFolder>Calendar</CsFolder>"));
    EXPECT_EQ(Subjects(documents), (std::vector<CString>{L"Below"}));
}

TEST_F(CalendarChanges, SubFoldersOfAnotherClassAreNotListed) {
    MakeFolder(L"Work\\Mail\\Calendar\\Notes");
    WriteFile(L"Work\\Mail\\Calendar\\Notes\\folder.ini", "[Folder]\r\nClass=IPF.Note\r\n");
    AddAppointments(L"Calendar\\Notes", {L"Below"});
    LogOn();
    g_bSubFolder = true;
    OnGetChangeLog([](LogItems& items, const GetChangeLogArgs&) {
        EXPECT_TRUE(items.IsEmpty());
        return 0;
    });
    EXPECT_EQ(ReadChanges(), 0);
}

TEST_F(CalendarChanges, ListAndMessagesAreReadWithTheirColumns) {
    AddAppointments(L"Calendar", {L"One"});
    LogOn();
    ASSERT_EQ(ReadChanges(), 0);
    std::vector<std::string> queries;
    std::vector<std::string> reads;
    for (const recorder::Call& call : recorder::Calls()) {
        if (call.method == "HrQueryAllRows") {
            queries.push_back(call.arguments);
        } else if (call.method == "IMessage::GetProps") {
            reads.push_back(call.arguments);
        }
    }
    ExpectFolderAndMessageWereAskedForAsTheyAre();
    EXPECT_EQ(queries.back(),
              "0x0FFF0102,0x66700102,0x30080040 "
              "property(0x001A001F==0x001A001F=\"IPM.Appointment\") unsorted most=0");
    ASSERT_FALSE(reads.empty());
    EXPECT_TRUE(reads[0].starts_with("0x0FFF0102,0x66700102,0x30070040,0x30080040,0x0037001F,0x00260003"));
    EXPECT_TRUE(reads[0].ends_with("flags=0x80000000"));
}

}  // namespace
