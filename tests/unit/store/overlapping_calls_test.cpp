// Calls that come in the middle of others: what they replace stays alive for those who use it.

#include "tests/unit/recorded_log.h"
#include "tests/unit/store/calendar_reading_fixture.h"
#include "tests/unit/store/calendar_writing_fixture.h"
#include "tests/unit/store/change_log.h"
#include "tests/unit/store/contact_writing_fixture.h"
#include "tests/unit/store/documents_fixture.h"
#include "tests/unit/text_printer.h"

namespace {

constexpr const wchar_t* kInTheMiddleOfAWrite = L"CMAPIObject::UpdateContactDisplayName - Begin\r\n";

class OverlappingCalls : public ContactWriting {
  protected:
    void SetUp() override {
        ContactWriting::SetUp();
        MakeFolder(L"Work\\Mail\\Other");
        WriteFile(L"Work\\Mail\\Other\\folder.ini", "[Folder]\r\nClass=IPF.Contact\r\n");
        m_other = L"<id>" + FolderId(L"Other") + L"</id>";
    }
    void TearDown() override {
        OnLogLine(L"", nullptr);
        ContactWriting::TearDown();
    }

    /// The number of contacts in a folder.
    static long CountIn(const CString& selection) {
        EXPECT_EQ(g_MAPIObject.SetContactFolder(selection.c_str()), 0);
        return g_MAPIObject.GetContactCount();
    }
    /// Another call while one is in the middle of a write. Returns how often it was made.
    static void InTheMiddle(std::function<void()> call, int& made) {
        OnLogLine(kInTheMiddleOfAWrite, [call = std::move(call), &made] {
            ++made;
            call();
        });
    }

    CString m_other;
};

TEST_F(OverlappingCalls, AnAddGoesToTheFolderThatWasChosenWhenItBegan) {
    int made = 0;
    InTheMiddle([this] { g_MAPIObject.SetContactFolder(m_other.c_str()); }, made);
    Write(8, {{1, L"John"}});
    EXPECT_EQ(made, 1);
    EXPECT_EQ(m_contact.m_lFlag, 0);
    EXPECT_EQ(CountIn(L""), 1);
    EXPECT_EQ(CountIn(m_other), 0);
}

TEST_F(OverlappingCalls, AChangeOutlivesTheSessionThatItBeganIn) {
    Write(8, {{1, L"John"}});
    int made = 0;
    InTheMiddle([] { g_MAPIObject.MAPIRelease(); }, made);
    Write(4, {{1, L"Jim"}});
    EXPECT_EQ(made, 1);
    LogOn();
    // The old contact or the new one, and nothing else.
    EXPECT_EQ(g_MAPIObject.GetContactCount(), 1);
    EXPECT_EQ(Text(PR_GIVEN_NAME_W), m_contact.m_lFlag == 0 ? L"Jim" : L"John");
}

TEST_F(OverlappingCalls, AWriteThatFindsNoSessionDoesNothing) {
    g_MAPIObject.MAPIRelease();
    Write(8, {{1, L"John"}});
    EXPECT_EQ(m_contact.m_lFlag, 8);
    EXPECT_EQ(m_contact.m_strPIMID, L"");
}

TEST_F(OverlappingCalls, ALogonWhoseSessionIsTakenAwayFails) {
    int made = 0;
    OnLogLine(L"CMAPIObject::MAPILogOn - MAPILogonEx(0X00000000)\r\n", [&made] {
        ++made;
        g_MAPIObject.MAPIRelease();
    });
    EXPECT_EQ(g_MAPIObject.MAPILogOn(0, L""), 0);
    EXPECT_EQ(made, 1);
    OnLogLine(L"", nullptr);
    EXPECT_NE(g_MAPIObject.MAPILogOn(0, L""), 0);
}

TEST_F(OverlappingCalls, AReadGoesOnInTheFolderThatItBeganIn) {
    for (const wchar_t* const name : {L"John", L"Jim", L"Joe"}) {
        m_contact.m_strPIMID = L"";
        Write(8, {{1, name}});
    }
    OnSend([this] { g_MAPIObject.SetContactFolder(m_other.c_str()); });
    EXPECT_EQ(g_MAPIObject.ReadContacts(L""), 0);
    EXPECT_EQ(TakeSent().size(), 3U);
}

TEST_F(OverlappingCalls, AChoiceOfAFolderOutlivesTheSessionThatItBeganIn) {
    int made = 0;
    OnLogLine(L"CMAPIObject::GetOutlookFolderFromEntryID - pfnHrQueryAllRows(0X00000000)\r\n", [&made] {
        ++made;
        g_MAPIObject.MAPIRelease();
    });
    // The stores of a session that was logged off cannot be relied upon, so either result will do.
    const int result = g_MAPIObject.SetContactFolder(m_other.c_str());
    EXPECT_EQ(made, 1);
    EXPECT_EQ(result == 0, static_cast<bool>(g_MAPIObject.m_lpContactFolder));
}

/// MAPIAdminProfiles, at whose end a list that began earlier ends too, without a logon.
HRESULT STDAPICALLTYPE AdminProfilesBesideTheEndOfAnotherList(ULONG flags, LPPROFADMIN* administration) {
    const HRESULT result = MAPIAdminProfiles(flags, administration);
    g_MAPIObject.MAPIRelease();
    return result;
}

/// A list of profiles, which goes to a file.
class OverlappingLists : public Documents {};

TEST_F(OverlappingLists, AListOfProfilesKeepsWhatTheEndOfAnotherOneTakesAway) {
    pfnMAPIAdminProfiles = &AdminProfilesBesideTheEndOfAnotherList;
    EXPECT_EQ(g_MAPIObject.GetAppProfile(m_buffer), 0);
    EXPECT_FALSE(g_MAPIObject.m_lpProfAdmin);
    // What the rows of the list hold.
    m_expectedBuffers = 2;
}

/// A read of appointments, in full and of changes, into the middle of which another call comes.
class OverlappingCalendarCalls : public CalendarReading {
  protected:
    void SetUp() override {
        CalendarReading::SetUp();
        AddAppointments(L"Calendar", {L"One", L"Two", L"Three"});
        // Of another store, through which the messages of this one cannot be opened.
        MakeFolder(L"Work\\Second\\Other");
        WriteFile(L"Work\\Second\\Other\\folder.ini", "[Folder]\r\nClass=IPF.Appointment\r\n");
        m_other = L"<id><event>" + FolderWriter(L"Work", L"Other", L"Second").FolderId() + L"</event></id>";
        OnGetChangeLog([](LogItems& items, const GetChangeLogArgs& /*arguments*/) {
            for (tagLogItem& item : items) {
                item.m_lLogFlag = 8;
            }
            return static_cast<int>(items.GetSize());
        });
        LogOn();
    }
    void TearDown() override {
        OnGetChangeLog({});
        CalendarReading::TearDown();
    }

    CString m_other;
};

TEST_F(OverlappingCalendarCalls, AReadGoesOnInTheFolderThatItBeganIn) {
    for (const wchar_t* const map : {L"", L"map"}) {
        ASSERT_EQ(g_MAPIObject.SetCalendarFolder(L""), 0);
        OnSend([this] { EXPECT_EQ(g_MAPIObject.SetCalendarFolder(m_other.c_str()), 0); });
        EXPECT_EQ(g_MAPIObject.ReadCalendars(map), 0);
        const std::vector<CString> documents = TakeSentCalendars();
        EXPECT_EQ(documents.size(), 3U);
        for (const CString& document : documents) {
            EXPECT_TRUE(Contains(document, L"<dtStartTime>"));
        }
        EXPECT_EQ(g_MAPIObject.GetCalendarCount(), 0);
    }
}

TEST_F(OverlappingCalendarCalls, AReadOutlivesTheSessionThatItBeganIn) {
    for (const wchar_t* const map : {L"", L"map"}) {
        LogOn();
        OnSend([] { g_MAPIObject.MAPIRelease(); });
        // The stores of a session that was logged off cannot be relied upon, so either result will do.
        const int status = g_MAPIObject.ReadCalendars(map);
        EXPECT_FALSE(g_MAPIObject.m_lpEventFolder);
        const std::size_t sent = TakeSentCalendars().size();
        EXPECT_GE(sent, 1U);
        EXPECT_LE(sent, 3U);
        const LogLines log = TakeLog();
        EXPECT_EQ(log.back(), (LogLine{1, L"CMAPIObject::ReadCalendars - Finish\r\n"}));
        EXPECT_EQ(
            std::count(log.begin(), log.end(), LogLine{1, L"CMAPIObject::ReadContacts - Succeeded\r\n"}),
            status == 0 ? 1 : 0);
    }
}

/// A write of an appointment, into the middle of which the choice of a folder of another store comes.
class OverlappingCalendarWrites : public CalendarWriting {
  protected:
    void SetUp() override {
        CalendarWriting::SetUp();
        MakeFolder(L"Work\\Second\\Other");
        WriteFile(L"Work\\Second\\Other\\folder.ini", "[Folder]\r\nClass=IPF.Appointment\r\n");
        localstore::recorder::SetRoot(m_root);
        LogOn();
        m_other = L"<id><event>" + FolderWriter(L"Work", L"Other", L"Second").FolderId() + L"</event></id>";
    }
    void TearDown() override {
        OnLogLine(L"", nullptr);
        CalendarWriting::TearDown();
    }

    /// Chooses the own folder, writes, and chooses the other one meanwhile.
    void WriteInTheMiddleOfWhichAnotherFolderIsChosen(std::int32_t flag, const wchar_t* subject) {
        ASSERT_EQ(g_MAPIObject.SetCalendarFolder(L""), 0);
        int made = 0;
        OnLogLine(L"CMAPIObject::UpdateCalendarEventMessage - Begin\r\n", [this, &made] {
            ++made;
            EXPECT_EQ(g_MAPIObject.SetCalendarFolder(m_other.c_str()), 0);
        });
        Write(flag, [subject](CCalendarEx& calendar) { calendar.AddField(3000, subject); });
        OnLogLine(L"", nullptr);
        EXPECT_EQ(made, 1);
        EXPECT_EQ(m_calendar.m_lFlag, 0);
        // The choice holds for what comes next.
        EXPECT_EQ(g_MAPIObject.GetCalendarCount(), 0);
        EXPECT_EQ(g_MAPIObject.SetCalendarFolder(L""), 0);
        EXPECT_EQ(g_MAPIObject.GetCalendarCount(), 1);
        EXPECT_EQ(Text(PR_SUBJECT_W), subject);
    }

    CString m_other;
};

TEST_F(OverlappingCalendarWrites, StayInTheFolderThatWasChosenWhenTheyBegan) {
    WriteInTheMiddleOfWhichAnotherFolderIsChosen(8, L"Dentist");
    WriteInTheMiddleOfWhichAnotherFolderIsChosen(4, L"Doctor");
}

}  // namespace
