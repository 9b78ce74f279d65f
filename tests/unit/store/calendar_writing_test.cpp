// The course of a write of an appointment: which operation runs, what it hands back, its lines, and the
// callback at its end.

#include <filesystem>

#include "support/rpc_guard.h"
#include "tests/unit/store/calendar_writing_fixture.h"
#include "tests/unit/text_printer.h"

namespace {

namespace recorder = localstore::recorder;

/// The lines of an operation whose message was gained and perhaps saved.
std::vector<const wchar_t*> AddLines(bool saved) {
    if (saved) {
        return {L"AddCalendar - Begin",
                L"AddCalendarEvent - Begin",
                L"UpdateCalendarEventMessage - Begin",
                L"UpdateCalendarEventMessage - Finish(Succeeded)",
                L"AddCalendarEvent - Finish(Succeeded)",
                L"AddCalendar - Finish(Succeeded)"};
    }
    return {L"AddCalendar - Begin",
            L"AddCalendarEvent - Begin",
            L"UpdateCalendarEventMessage - Begin",
            L"UpdateCalendarEventMessage - Finish(Failed)",
            L"AddCalendarEvent - Finish(Failed)",
            L"AddCalendar - Finish(Failed)"};
}
std::vector<const wchar_t*> UpdateLines(bool saved) {
    if (saved) {
        return {L"UpdateCalendar - Begin",
                L"UpdateCalendarEvent - Begin",
                L"UpdateCalendarEventMessage - Begin",
                L"UpdateCalendarEventMessage - Finish(Succeeded)",
                L"UpdateCalendarEvent - Finish(Succeeded)",
                L"UpdateCalendar - Finish(Succeeded)"};
    }
    return {L"UpdateCalendar - Begin",
            L"UpdateCalendarEvent - Begin",
            L"UpdateCalendarEventMessage - Begin",
            L"UpdateCalendarEventMessage - Finish(Failed)",
            L"UpdateCalendarEvent - Finish(Failed)",
            L"UpdateCalendar - Finish(Failed)"};
}
/// Those of one that gains no message.
const std::vector<const wchar_t*> kAddWithoutAMessage{L"AddCalendar - Begin", L"AddCalendarEvent - Begin",
                                                      L"AddCalendarEvent - Finish(Failed)",
                                                      L"AddCalendar - Finish(Failed)"};
const std::vector<const wchar_t*> kUpdateWithoutAMessage{
    L"UpdateCalendar - Begin", L"UpdateCalendarEvent - Begin", L"UpdateCalendarEvent - Finish(Failed)",
    L"UpdateCalendar - Finish(Failed)"};
const std::vector<const wchar_t*> kFailedDelete{L"DeleteCalendar - Begin",
                                                L"DeleteCalendar - Finish(Failed)"};

/// What was sent since the last look: one empty text a write.
void ExpectTheEndOfOneWrite() {
    EXPECT_EQ(TakeSentCalendars(), std::vector<CString>{L""});
    EXPECT_TRUE(TakeSent().empty());
}

void NameIt(CCalendarEx& calendar, const wchar_t* subject) {
    calendar.AddField(3000, subject);
}

TEST_F(CalendarWriting, NullRecordFailsWithItsLineWithoutACallbackAndAFinish) {
    EXPECT_EQ(g_MAPIObject.WriteCalendars(nullptr), 1);
    EXPECT_EQ(TakeLog(), (LogLines{{1, L"CMAPIObject::WriteCalendars - Begin\r\n"},
                                   {3, L"CMAPIObject::WriteCalendars - NULL Parameter\r\n"}}));
    EXPECT_TRUE(TakeSentCalendars().empty());
}

TEST_F(CalendarWriting, OperationsOnANullRecordOrMessageFailWithTheirLines) {
    EXPECT_EQ(g_MAPIObject.AddCalendar(nullptr), 0);
    EXPECT_EQ(g_MAPIObject.UpdateCalendar(nullptr), 0);
    EXPECT_EQ(g_MAPIObject.DeleteCalendar(nullptr), 0);
    EXPECT_EQ(g_MAPIObject.AddCalendarEvent(nullptr), 0);
    EXPECT_EQ(g_MAPIObject.UpdateCalendarEvent(nullptr), 0);
    LogLines expected;
    for (const wchar_t* const name : {L"AddCalendar", L"UpdateCalendar", L"DeleteCalendar",
                                      L"AddCalendarEvent", L"UpdateCalendarEvent"}) {
        expected.push_back({1, CString::Format(L"CMAPIObject::%s - Begin\r\n", name)});
        expected.push_back({1, CString::Format(L"CMAPIObject::%s - Finish(Failed)\r\n", name)});
    }
    EXPECT_EQ(TakeLog(), expected);
    EXPECT_TRUE(recorder::CallLines().empty());

    Write(8);
    const ComPtr<IMessage> message = Message();
    TakeLog();
    recorder::ClearCalls();
    EXPECT_EQ(g_MAPIObject.UpdateCalendarEventMessage(nullptr, &m_calendar), 0);
    EXPECT_EQ(g_MAPIObject.UpdateCalendarEventMessage(message.Get(), nullptr), 0);
    const LogLines one{{1, L"CMAPIObject::UpdateCalendarEventMessage - Begin\r\n"},
                       {1, L"CMAPIObject::UpdateCalendarEventMessage - Finish(Failed)\r\n"}};
    EXPECT_EQ(TakeLog(), (LogLines{one[0], one[1], one[0], one[1]}));
    EXPECT_TRUE(recorder::CallLines().empty());
}

TEST_F(CalendarWriting, FlagWithoutABitOfItsOwnDoesNothingButSendTheCallback) {
    for (const std::int32_t flag : {0, 1, 2, 16, 64, 0x7FFFFFD3}) {
        m_calendar.m_strPIMID = L"as sent";
        Write(flag);
        EXPECT_EQ(m_calendar.m_strPIMID, L"as sent");
        EXPECT_TRUE(m_calendar.m_dtLastModified.IsNoDate());
        EXPECT_EQ(m_calendar.m_lFlag, flag);
        EXPECT_EQ(TakeLog(), Lines({}));
        ExpectTheEndOfOneWrite();
    }
    EXPECT_TRUE(recorder::CallLines().empty());
}

TEST_F(CalendarWriting, AddUpdateAndDeleteWriteTheirLinesClearTheirBitAndSendTheCallback) {
    Write(8, [](CCalendarEx& calendar) { NameIt(calendar, L"Dentist"); });
    EXPECT_EQ(m_calendar.m_lFlag, 0);
    EXPECT_EQ(Text(PR_SUBJECT_W), L"Dentist");
    EXPECT_EQ(Text(PR_MESSAGE_CLASS_W), L"IPM.Appointment");
    EXPECT_EQ(TakeLog(), Lines(AddLines(true)));
    ExpectTheEndOfOneWrite();

    const CString id = m_calendar.m_strPIMID;
    Write(4, [](CCalendarEx& calendar) { NameIt(calendar, L"Doctor"); });
    EXPECT_EQ(m_calendar.m_lFlag, 0);
    EXPECT_EQ(m_calendar.m_strPIMID, id);
    EXPECT_EQ(Text(PR_SUBJECT_W), L"Doctor");
    EXPECT_EQ(TakeLog(), Lines(UpdateLines(true)));
    ExpectTheEndOfOneWrite();

    Write(32);
    EXPECT_EQ(m_calendar.m_lFlag, 0);
    EXPECT_EQ(m_calendar.m_strPIMID, id);
    EXPECT_TRUE(m_calendar.m_dtLastModified.IsNoDate());
    EXPECT_EQ(TakeLog(), Lines({L"DeleteCalendar - Begin", L"DeleteCalendar - Finish(Succeeded)"}));
    ExpectTheEndOfOneWrite();
    EXPECT_FALSE(Message());
}

TEST_F(CalendarWriting, TheFirstBitDecidesAloneAndTheOthersStay) {
    Write(12, [](CCalendarEx& calendar) { NameIt(calendar, L"Dentist"); });
    EXPECT_EQ(m_calendar.m_lFlag, 4);
    EXPECT_EQ(Text(PR_SUBJECT_W), L"Dentist");
    EXPECT_EQ(Files(), 1U);
    Write(36, [](CCalendarEx& calendar) { NameIt(calendar, L"Doctor"); });
    EXPECT_EQ(m_calendar.m_lFlag, 32);
    EXPECT_EQ(Text(PR_SUBJECT_W), L"Doctor");
    Write(40, [](CCalendarEx& calendar) { NameIt(calendar, L"Surgeon"); });
    EXPECT_EQ(m_calendar.m_lFlag, 32);
    EXPECT_EQ(Files(), 2U);
}

TEST_F(CalendarWriting, OtherKindsAreNeitherAddedNorUpdatedButDeleted) {
    for (const std::int32_t kind : {-1, 0, 1, 2, 4, 3 + 0x10000}) {
        m_calendar.m_strPIMID.clear();
        Write(8, [kind](CCalendarEx& calendar) { calendar.m_lCalType = kind; });
        EXPECT_EQ(m_calendar.m_lFlag, 8);
        EXPECT_EQ(m_calendar.m_strPIMID, L"");
        EXPECT_EQ(Files(), 0U);
        EXPECT_EQ(TakeLog(), Lines({L"AddCalendar - Begin", L"AddCalendar - Finish(Failed)"}));
        ExpectTheEndOfOneWrite();

        Write(8, [](CCalendarEx& calendar) { NameIt(calendar, L"Dentist"); });
        TakeLog();
        Write(4, [kind](CCalendarEx& calendar) { calendar.m_lCalType = kind; });
        EXPECT_EQ(m_calendar.m_lFlag, 4);
        EXPECT_EQ(Text(PR_SUBJECT_W), L"Dentist");
        EXPECT_EQ(TakeLog(), Lines({L"UpdateCalendar - Begin", L"UpdateCalendar - Finish(Failed)"}));

        Write(32, [kind](CCalendarEx& calendar) { calendar.m_lCalType = kind; });
        EXPECT_EQ(m_calendar.m_lFlag, 0);
        EXPECT_EQ(Files(), 0U);
        TakeLog();
        TakeSentCalendars();
    }
}

TEST_F(CalendarWriting, WithoutAFolderEveryOperationFailsAndTheStatusIsSuccess) {
    g_MAPIObject.m_lpEventFolder.Reset();
    const std::pair<std::int32_t, std::vector<const wchar_t*>> cases[] = {
        {8, kAddWithoutAMessage}, {4, kUpdateWithoutAMessage}, {32, kFailedDelete}};
    for (const auto& [flag, lines] : cases) {
        m_calendar.m_strPIMID = L"00AB";
        Write(flag);
        EXPECT_EQ(m_calendar.m_lFlag, flag);
        EXPECT_EQ(m_calendar.m_strPIMID, L"00AB");
        EXPECT_EQ(TakeLog(), Lines(lines));
        ExpectTheEndOfOneWrite();
    }
    EXPECT_TRUE(recorder::CallLines().empty());
}

TEST_F(CalendarWriting, UpdateAndDeleteOfWhatIsNotThereLeaveTheOutputs) {
    for (const wchar_t* const id : {L"", L"A", L"00", L"not an identifier", L"00000000599C29D3"}) {
        m_calendar.m_strPIMID = id;
        Write(4);
        EXPECT_EQ(m_calendar.m_strPIMID, id);
        EXPECT_EQ(m_calendar.m_lFlag, 4);
        EXPECT_TRUE(m_calendar.m_dtLastModified.IsNoDate());
        EXPECT_EQ(TakeLog(), Lines(kUpdateWithoutAMessage));
        Write(32);
        EXPECT_EQ(m_calendar.m_strPIMID, id);
        EXPECT_EQ(m_calendar.m_lFlag, 32);
        EXPECT_EQ(TakeLog(), Lines(kFailedDelete));
    }
}

TEST_F(CalendarWriting, IdentifierOfAFolderIsNoAppointment) {
    m_calendar.m_strPIMID = FolderId(L"Calendar");
    Write(4);
    EXPECT_EQ(m_calendar.m_lFlag, 4);
    Write(32);
    EXPECT_EQ(m_calendar.m_lFlag, 32);
    EXPECT_TRUE(std::filesystem::exists(m_root + L"\\Work\\Mail\\Calendar"));
}

TEST_F(CalendarWriting, MessageThatCannotBeMadeFailsTheAdd) {
    // A warning and a success without a message count as failures too.
    for (const HRESULT result : {MAPI_E_NO_ACCESS, MAPI_W_ERRORS_RETURNED}) {
        m_calendar.m_strPIMID = L"as sent";
        recorder::FailMethod("IMAPIFolder::CreateMessage", {}, result);
        Write(8);
        recorder::ClearFailures();
        EXPECT_EQ(m_calendar.m_lFlag, 8);
        EXPECT_EQ(m_calendar.m_strPIMID, L"as sent");
        EXPECT_TRUE(m_calendar.m_dtLastModified.IsNoDate());
        EXPECT_EQ(TakeLog(), Lines(kAddWithoutAMessage));
        ExpectTheEndOfOneWrite();
    }
    EXPECT_EQ(Files(), 0U);
}

TEST_F(CalendarWriting, MessageThatCannotBeOpenedFailsTheUpdateAndTheDelete) {
    Write(8, [](CCalendarEx& calendar) { NameIt(calendar, L"Dentist"); });
    TakeLog();
    for (const HRESULT result : {MAPI_E_NO_ACCESS, MAPI_W_ERRORS_RETURNED}) {
        recorder::FailMethod("IMAPIFolder::OpenEntry", {}, result);
        Write(4);
        EXPECT_EQ(m_calendar.m_lFlag, 4);
        EXPECT_EQ(TakeLog(), Lines(kUpdateWithoutAMessage));
        Write(32);
        EXPECT_EQ(m_calendar.m_lFlag, 32);
        EXPECT_EQ(TakeLog(), Lines(kFailedDelete));
        recorder::ClearFailures();
    }
    recorder::FailMethod("IMAPIFolder::DeleteMessages", {}, MAPI_W_PARTIAL_COMPLETION);
    Write(32);
    recorder::ClearFailures();
    EXPECT_EQ(m_calendar.m_lFlag, 32);
    EXPECT_EQ(TakeLog(), Lines(kFailedDelete));
    EXPECT_EQ(Text(PR_SUBJECT_W), L"Dentist");
}

TEST_F(CalendarWriting, IdentifierAndTimeOfTheChangeComeBack) {
    Write(8);
    ASSERT_TRUE(Message());
    EXPECT_EQ(::Text(m_calendar.m_dtLastModified), TimeOfChange());
    Write(4);
    EXPECT_EQ(::Text(m_calendar.m_dtLastModified), TimeOfChange());
}

TEST_F(CalendarWriting, WhatCannotBeReadBackIsEmptyAndNoDate) {
    recorder::FailMethod("IMessage::GetProps", {}, E_FAIL);
    m_calendar.m_strPIMID = L"as sent";
    Write(8, [](CCalendarEx& calendar) { calendar.m_dtLastModified = Date(2001, 2, 3); });
    EXPECT_EQ(m_calendar.m_strPIMID, L"");
    EXPECT_TRUE(m_calendar.m_dtLastModified.IsNoDate());
    EXPECT_EQ(m_calendar.m_lFlag, 0);
    EXPECT_EQ(Files(), 1U);
}

TEST_F(CalendarWriting, FailedSaveLeavesTheOldMessageAndTheStatusIsSuccess) {
    Write(8, [](CCalendarEx& calendar) { NameIt(calendar, L"Dentist"); });
    const CString id = m_calendar.m_strPIMID;
    TakeLog();
    for (const HRESULT result : {MAPI_E_NO_ACCESS, MAPI_W_ERRORS_RETURNED}) {
        recorder::FailMethod("IMessage::SaveChanges", {}, result);
        Write(4, [](CCalendarEx& calendar) {
            NameIt(calendar, L"Doctor");
            calendar.m_dtStartTime = Date(2026, 3, 10, 8);
            calendar.m_dtLastModified = Date(2001, 2, 3);
        });
        recorder::ClearFailures();
        EXPECT_EQ(m_calendar.m_lFlag, 4);
        EXPECT_EQ(m_calendar.m_strPIMID, id);
        EXPECT_EQ(TakeLog(), Lines(UpdateLines(false)));
        EXPECT_EQ(Text(PR_SUBJECT_W), L"Dentist");
        EXPECT_EQ(LocalOf(0x820D), L"2026-03-10 09:30:00");
        // The time is that of the old message.
        EXPECT_EQ(::Text(m_calendar.m_dtLastModified), TimeOfChange());
    }
}

TEST_F(CalendarWriting, AddThatCannotBeSavedLeavesNothingButAnIdentifier) {
    recorder::FailMethod("IMessage::SaveChanges", {}, MAPI_E_NO_ACCESS);
    Write(8);
    recorder::ClearFailures();
    EXPECT_EQ(m_calendar.m_lFlag, 8);
    EXPECT_EQ(Files(), 0U);
    EXPECT_NE(m_calendar.m_strPIMID, L"");
    EXPECT_TRUE(m_calendar.m_dtLastModified.IsNoDate());
    EXPECT_EQ(TakeLog(), Lines(AddLines(false)));
    ExpectTheEndOfOneWrite();
}

TEST_F(CalendarWriting, CallbackComesBehindTheSaveAndInFrontOfTheLastLine) {
    std::size_t files = 0;
    LogLines before;
    OnSend([&] {
        files = Files();
        before = TakeLog();
    });
    Write(8);
    OnSend({});
    EXPECT_EQ(files, 1U);
    LogLines expected = Lines(AddLines(true));
    expected.pop_back();
    EXPECT_EQ(before, expected);
    EXPECT_EQ(TakeLog(), (LogLines{{1, L"CMAPIObject::WriteCalendars - Finish\r\n"}}));
    ExpectTheEndOfOneWrite();
}

TEST_F(CalendarWriting, FailedCallbackLeavesTheOperationWithTheAppointmentWritten) {
    OnSend([] { throw RpcFailure(1722); });
    Fill(8);
    unsigned long status = 0;
    try {
        g_MAPIObject.WriteCalendars(&m_calendar);
    } catch (const RpcFailure& failure) {
        status = failure.Status();
    }
    OnSend({});
    EXPECT_EQ(status, 1722U);
    EXPECT_EQ(m_calendar.m_lFlag, 0);
    EXPECT_TRUE(Message());
    LogLines expected = Lines(AddLines(true));
    expected.pop_back();
    EXPECT_EQ(TakeLog(), expected);
}

TEST_F(CalendarWriting, StopDoesNotInterruptAWriteAndStaysInForce) {
    g_MAPIObject.Stop();
    for (const std::int32_t flag : {8, 4, 32}) {
        Write(flag);
        EXPECT_EQ(m_calendar.m_lFlag, 0);
    }
    EXPECT_EQ(Files(), 0U);
    EXPECT_EQ(g_MAPIObject.m_bStop, 1);
}

TEST_F(CalendarWriting, AddGoesToTheChosenFolderAndUpdateAndDeleteToWhereTheMessageIs) {
    MakeFolder(L"Work\\Mail\\Calendar\\Private");
    recorder::SetRoot(m_root);
    LogOn();
    const CString selection = L"<id><event>" + FolderId(L"Calendar\\Private") + L"</event></id>";
    ASSERT_EQ(g_MAPIObject.SetCalendarFolder(selection.c_str()), 0);
    Write(8, [](CCalendarEx& calendar) { calendar.m_strCsFolder = L"Calendar"; });
    EXPECT_EQ(m_calendar.m_lFlag, 0);
    EXPECT_EQ(Files(L"Calendar\\Private"), 1U);
    EXPECT_EQ(Files(), 0U);

    ASSERT_EQ(g_MAPIObject.SetCalendarFolder(L""), 0);
    Write(4, [](CCalendarEx& calendar) { NameIt(calendar, L"Dentist"); });
    EXPECT_EQ(m_calendar.m_lFlag, 0);
    EXPECT_EQ(Text(PR_SUBJECT_W), L"Dentist");
    EXPECT_EQ(Files(L"Calendar\\Private"), 1U);
    Write(32);
    EXPECT_EQ(m_calendar.m_lFlag, 0);
    EXPECT_EQ(Files(L"Calendar\\Private"), 0U);
}

TEST_F(CalendarWriting, ZonesOfTheMachineAreReadByTheFirstWriteAlone) {
    g_MAPIObject.m_arrTimeZones.RemoveAll();
    Write(0);
    const std::size_t zones = g_MAPIObject.m_arrTimeZones.GetSize();
    EXPECT_GT(zones, 0U);
    g_MAPIObject.m_arrTimeZones[0].Display = L"as it was read";
    Write(0);
    EXPECT_EQ(g_MAPIObject.m_arrTimeZones.GetSize(), zones);
    EXPECT_EQ(g_MAPIObject.m_arrTimeZones[0].Display, L"as it was read");
}

}  // namespace
