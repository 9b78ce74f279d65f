// The message part of an appointment's document, made of messages of the store.

#include "calendar/calendar_xml_output.h"
#include "tests/unit/calendar/sample_series.h"
#include "tests/unit/store/appointment_fixture.h"
#include "tests/unit/store/document_body.h"
#include "tests/unit/text_printer.h"

namespace {

namespace recorder = localstore::recorder;
using namespace sample_series;

constexpr const wchar_t* kFallBackText = L"GMT:+300;DST:60;STD:0000110102000000;DLT:0000030202000000";
constexpr const wchar_t* kZeroZoneText = L"GMT:+0;DST:0;STD:0000000000000000;DLT:0000000000000000";

/// Five hours behind UTC, with the daylight saving that its text says.
NAMESPACE_COMMON::tagZebTimeZone FallBack() {
    NAMESPACE_COMMON::tagZebTimeZone zone;
    zone.Bias = 300;
    zone.DaylightBias = -60;
    zone.StandardDate = {0, 11, 0, 1, 2, 0, 0, 0};
    zone.DaylightDate = {0, 3, 0, 2, 2, 0, 0, 0};
    return zone;
}

class AppointmentDetails : public StoreTest {
  protected:
    void SetUp() override {
        StoreTest::SetUp();
        m_writer = std::make_unique<FolderWriter>(L"Work", L"Calendar");
    }
    void TearDown() override {
        m_writer.reset();
        StoreTest::TearDown();
    }
    [[nodiscard]] NewAppointment New() const { return {*m_writer, L"Review"}; }

    static CString Write(IMessage* message) {
        CXMLParser document;
        EXPECT_TRUE(document.InitDocument());
        document.CreateHeader();
        document.CreateRootElement(L"Calendar");
        WriteCalendarDetails(document, message, FallBack());
        return Body(document);
    }
    /// The text between two places of a message part.
    static CString Between(IMessage* message, const wchar_t* from, const wchar_t* to) {
        const CString body = Write(message);
        const std::size_t start = body.find(from);
        const std::size_t end = body.find(to);
        return start == CString::npos || end == CString::npos ? CString(L"(none)")
                                                              : CString(body.substr(start, end - start));
    }
    /// The elements from the first one of the reminder to the last one of the recurrence.
    static CString FromReminderToRecurrence(IMessage* message) {
        const CString body = Write(message);
        const std::size_t start = body.find(L"</dtEndTime>") + 12;
        return body.substr(start, body.find(L"\n\t<TimeZone>") - start);
    }
    static CString TimeZoneOf(IMessage* message) {
        return Between(message, L"<TimeZone>", L"</TimeZone>").substr(10);
    }

    std::unique_ptr<FolderWriter> m_writer;
};

TEST_F(AppointmentDetails, OfAnEmptyMessageAreTheDefaults) {
    EXPECT_EQ(Write(New().Get()), CalendarOf({{L"Body", L""},
                                              {L"Location", L""},
                                              {L"bAlldayEvent", L"FALSE"},
                                              {L"dtStartTime", L"12/30/1899 00:00:00"},
                                              {L"dtEndTime", L"12/30/1899 00:00:00"},
                                              {L"lReminderMinutes", L"-1"},
                                              {L"nRingTone", L"0"},
                                              {L"RecurType", L"0"},
                                              {L"TimeZone", kFallBackText}}));
}

TEST_F(AppointmentDetails, OfASingleAppointmentAreItsValues) {
    NewAppointment appointment = New();
    appointment.Body(L"Agenda")
        .Text(lid::kLocation, L"Room 4")
        .Boolean(lid::kSubType, true)
        .Time(lid::kStartWhole, 2011, 1, 7, 9, 0)
        .Time(lid::kEndWhole, 2011, 7, 7, 10, 0)
        .Reminder(15);
    EXPECT_EQ(Write(appointment.Get()), CalendarOf({{L"Body", L"Agenda"},
                                                    {L"Location", L"Room 4"},
                                                    {L"bAlldayEvent", L"TRUE"},
                                                    {L"dtStartTime", LocalText(2011, 1, 7, 9, 0)},
                                                    {L"dtEndTime", LocalText(2011, 7, 7, 10, 0)},
                                                    {L"nRingTone", L"1"},
                                                    {L"lReminderMinutes", L"15"},
                                                    {L"RecurType", L"0"},
                                                    {L"TimeZone", kFallBackText}}));
}

TEST_F(AppointmentDetails, OfANullMessageAreNothing) {
    EXPECT_EQ(Write(nullptr), CalendarOf({}));
}

TEST_F(AppointmentDetails, ABodyOfNothingButALineBreakIsEmpty) {
    for (const wchar_t* text : {L"\r\n", L"\n"}) {
        EXPECT_EQ(Between(New().Body(text).Get(), L"<Body", L"\n\t<Location"), L"<Body/>");
    }
}

TEST_F(AppointmentDetails, WithoutAReminderTheMinutesComeFirst) {
    EXPECT_EQ(FromReminderToRecurrence(
                  New().Boolean(lid::kReminderSet, false).Number(lid::kReminderDelta, 15).Get()),
              TextOf({{L"lReminderMinutes", L"-1"}, {L"nRingTone", L"0"}, {L"RecurType", L"0"}}));
}

TEST_F(AppointmentDetails, AReminderPlaysItsSoundUnlessItOverridesThat) {
    const auto reminder = [&](NewAppointment& appointment) {
        return FromReminderToRecurrence(appointment.Reminder(0).Get());
    };
    const auto with = [](const wchar_t* ringTone) {
        return TextOf({{L"nRingTone", ringTone}, {L"lReminderMinutes", L"0"}, {L"RecurType", L"0"}});
    };
    NewAppointment plain = New();
    EXPECT_EQ(reminder(plain), with(L"1"));
    NewAppointment notOverridden = New();
    notOverridden.Boolean(lid::kReminderOverride, false).Boolean(lid::kReminderPlaySound, false);
    EXPECT_EQ(reminder(notOverridden), with(L"1"));
    NewAppointment silent = New();
    silent.Boolean(lid::kReminderOverride, true).Boolean(lid::kReminderPlaySound, false);
    EXPECT_EQ(reminder(silent), with(L"0"));
    NewAppointment silentByDefault = New();
    silentByDefault.Boolean(lid::kReminderOverride, true);
    EXPECT_EQ(reminder(silentByDefault), with(L"0"));
    NewAppointment loud = New();
    loud.Boolean(lid::kReminderOverride, true).Boolean(lid::kReminderPlaySound, true);
    EXPECT_EQ(reminder(loud), with(L"1"));
}

TEST_F(AppointmentDetails, OfAWeeklySeriesWithAReminderAreInTheirOrder) {
    EXPECT_EQ(FromReminderToRecurrence(New().Reminder(15).Series(2, Weekly()).Get()),
              TextOf({{L"nRingTone", L"1"},
                      {L"lReminderMinutes", L"15"},
                      {L"lRecurType", L"2"},
                      {L"lRecurInterval", L"2"},
                      {L"lRecurInstance", L"0"},
                      {L"lRecurWeekMask", L"10"},
                      {L"lRecurWeekDay", L"0"},
                      {L"lRecurDay", L"0"},
                      {L"dtRecurEndDate", L"05/04/2011 00:00:00"},
                      {L"bRecurHasEndDate", L"TRUE"},
                      {L"lRecurRepeat", L"10"}}));
}

TEST_F(AppointmentDetails, OfTheStoresKindZeroHaveNoOtherRecurrenceElement) {
    EXPECT_EQ(FromReminderToRecurrence(New().Series(0, Weekly()).Get()),
              TextOf({{L"lReminderMinutes", L"-1"}, {L"nRingTone", L"0"}, {L"lRecurType", L"0"}}));
    NewAppointment withoutType = New();
    withoutType.Boolean(lid::kRecurring, true).Binary(lid::kRecur, RecurrenceBytes(Weekly()).Bytes());
    EXPECT_EQ(FromReminderToRecurrence(withoutType.Get()),
              TextOf({{L"lReminderMinutes", L"-1"}, {L"nRingTone", L"0"}, {L"lRecurType", L"0"}}));
}

TEST_F(AppointmentDetails, NeverHaveBothRecurTypes) {
    for (const bool recurring : {false, true}) {
        NewAppointment appointment = New();
        appointment.Series(2, Weekly()).Boolean(lid::kRecurring, recurring);
        const CString body = Write(appointment.Get());
        EXPECT_EQ(body.find(L"<RecurType>") == CString::npos, recurring);
        EXPECT_EQ(body.find(L"<lRecurType>") == CString::npos, !recurring);
    }
}

TEST_F(AppointmentDetails, OfASeriesWithoutItsPropertyHaveTheKindAlone) {
    const CString expected =
        TextOf({{L"lReminderMinutes", L"-1"}, {L"nRingTone", L"0"}, {L"lRecurType", L"3"}});
    NewAppointment absent = New();
    absent.Boolean(lid::kRecurring, true).Number(lid::kRecurrenceType, 3);
    EXPECT_EQ(FromReminderToRecurrence(absent.Get()), expected);
    EXPECT_EQ(FromReminderToRecurrence(New().Series(3, std::vector<BYTE>{}).Get()), expected);
    EXPECT_EQ(FromReminderToRecurrence(New().Series(3, std::vector<BYTE>{4}).Get()), expected);
}

TEST_F(AppointmentDetails, OfACutSeriesAreWhatIsThere) {
    // Two bytes are a field, so all elements come, of a record that is zero but for them.
    EXPECT_EQ(FromReminderToRecurrence(New().Series(3, std::vector<BYTE>{4, 0x30}).Get()),
              TextOf({{L"lReminderMinutes", L"-1"},
                      {L"nRingTone", L"0"},
                      {L"lRecurType", L"3"},
                      {L"lRecurInterval", L"0"},
                      {L"lRecurInstance", L"0"},
                      {L"lRecurWeekMask", L"0"},
                      {L"lRecurWeekDay", L"0"},
                      {L"lRecurDay", L"0"},
                      {L"dtRecurEndDate", L"01/01/1601 00:00:00"},
                      {L"bRecurHasEndDate", L"TRUE"},
                      {L"lRecurRepeat", L"0"}}));
}

/// The text of the element ExceptionRule of a message, as a reader of the document gets it.
CString ExceptionRuleOf(IMessage* message) {
    CXMLParser document;
    EXPECT_TRUE(document.InitDocument());
    document.CreateRootElement(L"Calendar");
    AppendElement(document, L"Description", L"Review");
    WriteCalendarDetails(document, message, FallBack());
    return document.GetNodeText(document.SelectSingleNode(L"/Calendar/ExceptionRule").Get());
}

TEST_F(AppointmentDetails, AChangeTakesTextsAndReminderFromTheDocumentOfItsSeries) {
    tagRecurrencePattern pattern = Weekly();
    SetDeleted(pattern, {kFirstMonday});
    SetExceptions(pattern, {Moved(kFirstMonday, 0)});
    NewAppointment appointment = New();
    appointment.Text(lid::kLocation, L"Room 4").Boolean(lid::kSubType, true).Reminder(15).Series(2, pattern);
    const CString rule = ExceptionRuleOf(appointment.Get());
    EXPECT_NE(rule.find(L"<subject>UgBlAHYAaQBlAHcA</subject>"), CString::npos);
    EXPECT_NE(rule.find(L"<location>UgBvAG8AbQAgADQA</location>"), CString::npos);
    EXPECT_NE(rule.find(L"<reminderset>1</reminderset>"), CString::npos);
    EXPECT_NE(rule.find(L"<reminderdelta>15</reminderdelta>"), CString::npos);
    // A series of whole days gives none to its changes.
    EXPECT_NE(rule.find(L"<allday>0</allday>"), CString::npos);
}

TEST_F(AppointmentDetails, ASeriesOfAnotherCalendarIsNamedAsSuchInFrontOfItsZone) {
    tagRecurrencePattern pattern = WithExceptions();
    pattern.CalendarType = 6;
    EXPECT_EQ(Between(New().Series(2, pattern).Get(), L"\n\t<lRecurType", L"</Calendar>"),
              TextOf({{L"lRecurType", L"2"}, {L"lCalType", L"-1"}, {L"TimeZone", kFallBackText}}));
}

TEST_F(AppointmentDetails, AZoneOfItsOwnIsTaken) {
    std::vector<BYTE> blob(48);
    blob[0] = 0xC4;  // lBias: minus 60
    blob[1] = blob[2] = blob[3] = 0xFF;
    EXPECT_EQ(TimeZoneOf(New().Binary(lid::kTimeZoneStruct, blob).Get()),
              L"GMT:-60;DST:0;STD:0000000000000000;DLT:0000000000000000");
}

TEST_F(AppointmentDetails, AZoneWithoutBytesIsAllZeroAndNotTheFallBack) {
    EXPECT_EQ(TimeZoneOf(New().Binary(lid::kTimeZoneStruct, {}).Get()), kZeroZoneText);
    EXPECT_EQ(TimeZoneOf(New().Binary(lid::kTimeZoneStruct, std::vector<BYTE>(47, 0xFF)).Get()),
              kZeroZoneText);
    EXPECT_EQ(TimeZoneOf(New().Get()), kFallBackText);
}

TEST_F(AppointmentDetails, PropertiesAreAskedForByNameAndMadeAndNothingIsWritten) {
    NewAppointment appointment = New();
    appointment.Reminder(15)
        .Boolean(lid::kReminderOverride, true)
        .Series(2, WithExceptions())
        .Binary(lid::kTimeZoneStruct, std::vector<BYTE>(48));
    recorder::ClearCalls();
    Write(appointment.Get());
    std::vector<std::string> names;
    for (const recorder::Call& call : recorder::Calls()) {
        if (call.method == "IMessage::GetIDsFromNames") {
            names.push_back(call.arguments);
        } else if (call.method == "IMessage::GetProps") {
            EXPECT_TRUE(call.arguments.ends_with(" flags=0x80000000")) << call.arguments;
        }
        for (const char* write : {"SetProps", "DeleteProps", "SaveChanges", "CopyTo", "CopyProps"}) {
            EXPECT_EQ(call.method.find(write), std::string::npos) << call.method;
        }
    }
    const auto ofAppointments = [](const char* id) {
        return std::string("{00062002}:") + id + " flags=0x00000002";
    };
    const auto common = [](const char* id) { return std::string("{00062008}:") + id + " flags=0x00000002"; };
    EXPECT_EQ(names, (std::vector<std::string>{ofAppointments("8208"), ofAppointments("8215"),
                                               ofAppointments("820D"), ofAppointments("820E"), common("8503"),
                                               common("851C"), common("851E"), common("8501"),
                                               ofAppointments("8223"), ofAppointments("8231"),
                                               ofAppointments("8216"), ofAppointments("8233")}));
}

TEST_F(AppointmentDetails, EveryPropertyThatFailsLeavesItsDefault) {
    const NewAppointment appointment = New();
    recorder::FailMethod("IMessage::GetProps", {}, E_FAIL);
    recorder::FailMethod("IMessage::OpenProperty", {}, E_FAIL);
    EXPECT_EQ(Write(appointment.Get()), CalendarOf({{L"Body", L""},
                                                    {L"Location", L""},
                                                    {L"bAlldayEvent", L"FALSE"},
                                                    {L"dtStartTime", L"12/30/1899 00:00:00"},
                                                    {L"dtEndTime", L"12/30/1899 00:00:00"},
                                                    {L"lReminderMinutes", L"-1"},
                                                    {L"nRingTone", L"0"},
                                                    {L"RecurType", L"0"},
                                                    {L"TimeZone", kFallBackText}}));
}

}  // namespace
