// The store's part of the floor is what a read asks the store for: the same calls on the same objects, in the
// same order, with the same arguments and results.

#include <mapitags.h>

#include "localstore/recorder.h"
#include "store_calls.h"
#include "tests/unit/store/appointment_fixture.h"

namespace recorder = localstore::recorder;

namespace {

class StoreLoop : public StoreTest {
  protected:
    /// What the calls since the last logon were, each with its result.
    static std::vector<std::string> TakeCalls() {
        std::vector<std::string> lines;
        for (const recorder::Call& call : recorder::Calls()) {
            lines.push_back(call.Text() + " = " + std::to_string(call.result));
        }
        recorder::ClearCalls();
        return lines;
    }
    using Walk = ULONG (*)(const bench::StoreLoop& loop, IMAPIFolder* folder);
    /// The loop's calls on the folder that the agent has chosen.
    static std::vector<std::string> CallsOfLoop(const bench::StoreLoop& loop, IMAPIFolder* folder,
                                                Walk walk = &bench::ReadWholeFolder) {
        recorder::ClearCalls();
        walk(loop, folder);
        return TakeCalls();
    }
    static void ExpectSameCalls(const bench::StoreLoop& loop, IMAPIFolder* folder, std::size_t items) {
        const std::vector<std::string> ofAgent = TakeCalls();
        EXPECT_GT(ofAgent.size(), 20 * items);
        EXPECT_EQ(ofAgent, CallsOfLoop(loop, folder));
    }
    static void ReadContacts(std::size_t items) {
        LogOn();
        ASSERT_EQ(g_MAPIObject.ReadContacts(L""), 0);
        EXPECT_EQ(TakeSent().size(), items);
        ExpectSameCalls(bench::kContactLoop, g_MAPIObject.m_lpContactFolder.Get(), items);
    }
    static void ReadCalendars(std::size_t items) {
        LogOn();
        ASSERT_EQ(g_MAPIObject.ReadCalendars(L""), 0);
        EXPECT_EQ(TakeSentCalendars().size(), items);
        ExpectSameCalls(bench::kCalendarLoop, g_MAPIObject.m_lpEventFolder.Get(), items);
    }
};

/// The number below that of an e-mail address, which names the address's type.
constexpr LONG kEmail1Type = 0x8082;
constexpr LONG kEmail2Type = 0x8092;

std::vector<BYTE> Zone() {
    return std::vector<BYTE>(48);
}

TEST_F(StoreLoop, ReadsNoContactWhereThereIsNone) {
    LogOn();
    ASSERT_EQ(g_MAPIObject.ReadContacts(L""), 0);
    // Without items the agent does not look a second time.
    EXPECT_LT(TakeCalls().size(), 10U);
    EXPECT_EQ(bench::ReadWholeFolder(bench::kContactLoop, g_MAPIObject.m_lpContactFolder.Get()), 0U);
}

TEST_F(StoreLoop, MakesTheCallsOfAReadOfContacts) {
    recorder::SetRoot(m_root);
    {
        FolderWriter writer(L"Work", L"Contacts");
        writer.AddContact(PropertyValues().Text(PR_GIVEN_NAME_W, L"Ada"));
        const ComPtr<IMessage> message = writer.NewMessage(L"IPM.Contact");
        const std::wstring notes(3000, L'n');
        PropertyValues()
            .Text(PR_SURNAME_W, L"Lovelace")
            .Text(PR_BODY_W, notes.c_str())
            .Text(FolderWriter::AddressTag(message.Get(), kEmail1Type), L"SMTP")
            .Text(FolderWriter::AddressTag(message.Get(), kEmail2Type), L"EX")
            .Texts(FolderWriter::KeywordsTag(message.Get()), {L"Friends", L"Work"})
            .SetOn(message.Get());
        FolderWriter::Save(message.Get());
    }
    ReadContacts(2);
}

TEST_F(StoreLoop, MakesTheCallsOfAReadOfChangesThatFindsNone) {
    recorder::SetRoot(m_root);
    FolderWriter(L"Work", L"Contacts").AddContact(PropertyValues().Text(PR_GIVEN_NAME_W, L"Ada"));
    FolderWriter calendar(L"Work", L"Calendar");
    NewAppointment(calendar, L"Review").Save();
    LogOn();
    const std::wstring contactMap = m_root + L"\\contacts.map";
    const std::wstring calendarMap = m_root + L"\\calendar.map";
    const auto expectSameCalls = [](const bench::StoreLoop& loop, IMAPIFolder* folder) {
        const std::vector<std::string> ofAgent = TakeCalls();
        EXPECT_FALSE(ofAgent.empty());
        EXPECT_EQ(ofAgent, CallsOfLoop(loop, folder, &bench::ListWholeFolder));
    };
    ASSERT_EQ(g_MAPIObject.ReadContacts(contactMap.c_str()), 0);
    EXPECT_EQ(TakeSent().size(), 1U);
    TakeCalls();
    ASSERT_EQ(g_MAPIObject.ReadContacts(contactMap.c_str()), 0);
    EXPECT_EQ(TakeSent().size(), 0U);
    expectSameCalls(bench::kContactLoop, g_MAPIObject.m_lpContactFolder.Get());
    ASSERT_EQ(g_MAPIObject.ReadCalendars(calendarMap.c_str()), 0);
    EXPECT_EQ(TakeSentCalendars().size(), 1U);
    TakeCalls();
    ASSERT_EQ(g_MAPIObject.ReadCalendars(calendarMap.c_str()), 0);
    EXPECT_EQ(TakeSentCalendars().size(), 0U);
    expectSameCalls(bench::kCalendarLoop, g_MAPIObject.m_lpEventFolder.Get());
}

TEST_F(StoreLoop, MakesTheCallsOfAReadOfAppointments) {
    recorder::SetRoot(m_root);
    {
        FolderWriter writer(L"Work", L"Calendar");
        NewAppointment(writer, L"Without anything").Save();
        NewAppointment(writer, L"With all")
            .Text(lid::kLocation, L"Room")
            .Body(L"Notes")
            .Boolean(lid::kSubType, false)
            .Time(lid::kStartWhole, 2011, 3, 7, 9, 0)
            .Time(lid::kEndWhole, 2011, 3, 7, 10, 0)
            .Reminder(15)
            .Binary(lid::kTimeZoneStruct, Zone())
            .Save();
        NewAppointment(writer, L"With a sound of its own")
            .Reminder(5)
            .Boolean(lid::kReminderOverride, true)
            .Boolean(lid::kReminderPlaySound, false)
            .Save();
    }
    ReadCalendars(3);
}

TEST_F(StoreLoop, MakesTheCallsOfAReadOfSeries) {
    recorder::SetRoot(m_root);
    {
        FolderWriter writer(L"Work", L"Calendar");
        NewAppointment(writer, L"Of no kind").Boolean(lid::kRecurring, true).Save();
        NewAppointment(writer, L"Short").Series(2, std::vector<BYTE>(100)).Save();
        NewAppointment(writer, L"Too large for a row").Series(2, std::vector<BYTE>(200'000)).Save();
    }
    ReadCalendars(3);
}

}  // namespace
