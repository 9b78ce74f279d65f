// What an operation holds: another call that comes at any point of it and replaces the folder or the session
// neither moves it to another folder nor takes away what it uses, and nothing is kept behind its end.

#include <span>

#include "calendar/calendar_record.h"
#include "contacts/contact_record.h"
#include "tests/unit/store/calendar_reading_fixture.h"
#include "tests/unit/store/change_log.h"
#include "tests/unit/store/documents_fixture.h"
#include "tests/unit/text_printer.h"
#include "tests/unit/timezone/date_helpers.h"

using NAMESPACE_MAPI::CMAPIObject;

namespace {

/// A point of an operation: the line that is written there.
struct Point {
    const wchar_t* line;
    const wchar_t* map;  ///< empty for a read of everything
};

constexpr Point kPointsOfContactReads[] = {
    {L"CMAPIObject::GetContactCount - Begin\r\n", L""},
    {L"CMAPIObject::GetContactCountFromFolder - Begin\r\n", L""},
    {L"CMAPIObject::ReadContacts - Contact Count(3)\r\n", L""},
    {L"CMAPIObject::ReadContacts - Read All Items(NULL lParam1)\r\n", L""},
    {L"CMAPIObject::ReadContactFromFolder - Begin\r\n", L""},
    {L"CMAPIObject::ReadContactFromFolder - pfnHrQueryAllRows(0X00000000)\r\n", L""},
    {L"CMAPIObject::ReadContacts - Read Changed Items(map)\r\n", L"map"},
    {L"CMAPIObject::ReadContactLogFromFolder - Begin\r\n", L"map"},
    {L"CMAPIObject::ReadContacts - Call GetChangeLog\r\n", L"map"},
    {L"CMAPIObject::ReadContactFromLog - Begin\r\n", L"map"},
};
constexpr Point kPointsOfCalendarReads[] = {
    {L"CMAPIObject::GetCalendarCount - Begin\r\n", L""},
    {L"CMAPIObject::GetCalendarEventCountFromFolder - Begin\r\n", L""},
    {L"CMAPIObject::ReadCalenda - Calendar Count(3)\r\n", L""},
    {L"CMAPIObject::ReadCalendarEvent - Begin\r\n", L""},
    {L"CMAPIObject::ReadCalendarEvent - NULL lParam1\r\n", L""},
    {L"CMAPIObject::ReadCalendarEventFromFolder - pfnHrQueryAllRows(0X00000000)\r\n", L""},
    {L"CMAPIObject::ReadCalendarEvent - Map File(map)\r\n", L"map"},
    {L"CMAPIObject::ReadCalendarEventLogFromFolder - Begin\r\n", L"map"},
    {L"CMAPIObject::ReadCalendarEvent - Call GetChangeLog\r\n", L"map"},
    {L"CMAPIObject::ReadCalendarEvent - Read Changes\r\n", L"map"},
};

/// A point of a write: the line that is written there, or none for the one where a deletion has found the
/// folder of the message and frees what told it, between the calls on the two of them.
struct WritePoint {
    std::int32_t flag;
    const wchar_t* line;
};

constexpr WritePoint kPointsOfContactWrites[] = {
    {8, L"CMAPIObject::UpdateContactMessage - Begin\r\n"},
    {8, L"CMAPIObject::UpdateContactDisplayName - Begin\r\n"},
    {8, L"CMAPIObject::UpdateContactMessage - Finish(Succeeded)\r\n"},
    {4, L"CMAPIObject::UpdateContactMessage - Begin\r\n"},
    {4, L"CMAPIObject::UpdateContactDisplayName - Begin\r\n"},
    {4, L"CMAPIObject::UpdateContactMessage - Finish(Succeeded)\r\n"},
    {32, nullptr},
};
constexpr WritePoint kPointsOfCalendarWrites[] = {
    {8, L"CMAPIObject::UpdateCalendarEventMessage - Begin\r\n"},
    {8, L"CMAPIObject::UpdateCalendarEventMessage - Finish(Succeeded)\r\n"},
    {4, L"CMAPIObject::UpdateCalendarEventMessage - Begin\r\n"},
    {4, L"CMAPIObject::UpdateCalendarEventMessage - Finish(Succeeded)\r\n"},
    {32, nullptr},
};

/// What the next freeing of a buffer runs.
std::function<void()> g_onFree;

ULONG STDAPICALLTYPE FreeWithAction(LPVOID buffer) {
    pfnMAPIFreeBuffer = &MAPIFreeBuffer;
    const MapiBuffer<SPropValue> freedAtTheEnd(static_cast<SPropValue*>(buffer));
    std::exchange(g_onFree, {})();
    return S_OK;
}

/// Runs something when a write comes to a point the next time.
void OnPoint(const WritePoint& point, std::function<void()> action) {
    if (point.line != nullptr) {
        OnLogLine(point.line, std::move(action));
    } else {
        g_onFree = std::move(action);
        pfnMAPIFreeBuffer = &FreeWithAction;
    }
}

/// The references to an object besides the one of the test.
template<class Interface>
unsigned long References(const ComPtr<Interface>& object) {
    ComPtr<Interface> another = object;
    return another.Reset() - 1;
}

/// Three contacts and three appointments, and in another store, through which messages of this one cannot be
/// opened, a folder for each kind. All items count as new in a read of changes.
class HeldObjectsTest : public CalendarReading {
  protected:
    void SetUp() override {
        CalendarReading::SetUp();
        for (const wchar_t* const name : {L"One", L"Two", L"Three"}) {
            FolderWriter(L"Work", L"Contacts").AddContact(PropertyValues().Text(PR_GIVEN_NAME_W, name));
        }
        AddAppointments(L"Calendar", {L"One", L"Two", L"Three"});
        MakeFolder(L"Work\\Second\\People");
        WriteFile(L"Work\\Second\\People\\folder.ini", "[Folder]\r\nClass=IPF.Contact\r\n");
        MakeFolder(L"Work\\Second\\Dates");
        WriteFile(L"Work\\Second\\Dates\\folder.ini", "[Folder]\r\nClass=IPF.Appointment\r\n");
        m_people = L"<id>" + FolderWriter(L"Work", L"People", L"Second").FolderId() + L"</id>";
        m_dates = L"<id><event>" + FolderWriter(L"Work", L"Dates", L"Second").FolderId() + L"</event></id>";
        OnGetChangeLog([](LogItems& items, const GetChangeLogArgs& /*arguments*/) {
            for (tagLogItem& item : items) {
                item.m_lLogFlag = 8;
            }
            return static_cast<int>(items.GetSize());
        });
        LogOn();
    }
    void TearDown() override {
        OnLogLine(L"", nullptr);
        OnGetChangeLog({});
        CalendarReading::TearDown();
    }

    /// Ends the session at a point of a write, which adds an item or changes or deletes one that was added
    /// in the same session.
    template<class Item, class Write>
    void ExpectAWriteToHold(Item& item, ComPtr<IMAPIFolder> CMAPIObject::*chosen, const WritePoint& point,
                            const Write& write) {
        LogOn();
        item.m_lFlag = 8;
        ASSERT_EQ(write(), 0);
        ASSERT_EQ(item.m_lFlag, 0);
        const ComPtr<IMAPISession> session = g_MAPIObject.m_lpMAPISession;
        const ComPtr<IMsgStore> store = g_MAPIObject.m_lpMsgStore;
        const ComPtr<IMAPIFolder> folder = g_MAPIObject.*chosen;
        bool released = false;
        OnPoint(point, [&] {
            g_MAPIObject.MAPIRelease();
            EXPECT_GE(References(session), 1U);
            EXPECT_GE(References(store), 1U);
            EXPECT_EQ(References(folder), 1U);
            released = true;
        });
        item.m_lFlag = point.flag;
        EXPECT_EQ(write(), 0);
        EXPECT_TRUE(released);
        EXPECT_EQ(References(folder), 0U);
        EXPECT_EQ(References(store), 0U);
        EXPECT_EQ(References(session), 0U);
    }

    CString m_people;
    CString m_dates;
};

TEST_F(HeldObjectsTest, AReadOfContactsStaysInItsFolderAndLetsItGoAtItsEnd) {
    for (const Point& point : kPointsOfContactReads) {
        SCOPED_TRACE(testing::PrintToString(CString(point.line)));
        ASSERT_EQ(g_MAPIObject.SetContactFolder(L""), 0);
        const ComPtr<IMAPIFolder> old = g_MAPIObject.m_lpContactFolder;
        ASSERT_EQ(References(old), 1U);
        unsigned long meanwhile = 0;
        OnLogLine(point.line, [&] {
            EXPECT_EQ(g_MAPIObject.SetContactFolder(m_people.c_str()), 0);
            meanwhile = References(old);
        });
        EXPECT_EQ(g_MAPIObject.ReadContacts(point.map), 0);
        // The read's one reference, taken once for all of its steps.
        EXPECT_EQ(meanwhile, 1U);
        EXPECT_EQ(References(old), 0U);
        const std::vector<CString> documents = TakeSent();
        EXPECT_EQ(documents.size(), 3U);
        for (const CString& document : documents) {
            EXPECT_TRUE(Contains(document, L"<CsFolder>Contacts</CsFolder>"));
            EXPECT_TRUE(Contains(document, L"<FirstName>"));
        }
        EXPECT_EQ(g_MAPIObject.GetContactCount(), 0);
    }
}

TEST_F(HeldObjectsTest, AReadOfAppointmentsStaysInItsFolderAndLetsItGoAtItsEnd) {
    for (const Point& point : kPointsOfCalendarReads) {
        SCOPED_TRACE(testing::PrintToString(CString(point.line)));
        ASSERT_EQ(g_MAPIObject.SetCalendarFolder(L""), 0);
        const ComPtr<IMAPIFolder> old = g_MAPIObject.m_lpEventFolder;
        ASSERT_EQ(References(old), 1U);
        unsigned long meanwhile = 0;
        OnLogLine(point.line, [&] {
            EXPECT_EQ(g_MAPIObject.SetCalendarFolder(m_dates.c_str()), 0);
            meanwhile = References(old);
        });
        EXPECT_EQ(g_MAPIObject.ReadCalendars(point.map), 0);
        EXPECT_EQ(meanwhile, 1U);
        EXPECT_EQ(References(old), 0U);
        const std::vector<CString> documents = TakeSentCalendars();
        EXPECT_EQ(documents.size(), 3U);
        for (const CString& document : documents) {
            EXPECT_TRUE(Contains(document, L"<CsFolder>Calendar</CsFolder>"));
            // What only the open message tells.
            EXPECT_TRUE(Contains(document, L"<dtStartTime>"));
        }
        EXPECT_EQ(g_MAPIObject.GetCalendarCount(), 0);
    }
}

TEST_F(HeldObjectsTest, AFolderThatIsChosenWhileAContactIsSentDoesNotKeepTheOldOne) {
    for (const wchar_t* const map : {L"", L"map"}) {
        ASSERT_EQ(g_MAPIObject.SetContactFolder(L""), 0);
        const ComPtr<IMAPIFolder> old = g_MAPIObject.m_lpContactFolder;
        OnSend([&] {
            EXPECT_EQ(g_MAPIObject.SetContactFolder(m_people.c_str()), 0);
            EXPECT_GE(References(old), 1U);
        });
        EXPECT_EQ(g_MAPIObject.ReadContacts(map), 0);
        OnSend({});
        EXPECT_EQ(TakeSent().size(), 3U);
        EXPECT_EQ(References(old), 0U);
    }
}

TEST_F(HeldObjectsTest, SessionAndStoreLiveUntilTheEndOfTheReadThatBeganInThem) {
    for (const bool isCalendar : {false, true}) {
        const auto points = isCalendar ? std::span<const Point>(kPointsOfCalendarReads)
                                       : std::span<const Point>(kPointsOfContactReads);
        for (const Point& point : points) {
            SCOPED_TRACE(testing::PrintToString(CString(point.line)));
            LogOn();
            const ComPtr<IMAPISession> session = g_MAPIObject.m_lpMAPISession;
            const ComPtr<IMsgStore> store = g_MAPIObject.m_lpMsgStore;
            bool released = false;
            OnLogLine(point.line, [&] {
                g_MAPIObject.MAPIRelease();
                EXPECT_GE(References(session), 1U);
                EXPECT_GE(References(store), 1U);
                released = true;
            });
            // What is still to be had of a session that was logged off is the mail system's affair.
            (void)(isCalendar ? g_MAPIObject.ReadCalendars(point.map) : g_MAPIObject.ReadContacts(point.map));
            EXPECT_TRUE(released);
            EXPECT_EQ(References(session), 0U);
            EXPECT_EQ(References(store), 0U);
        }
    }
}

TEST_F(HeldObjectsTest, AWriteOfAContactHoldsFolderStoreAndSessionUntilItsEnd) {
    CContactEx contact;
    for (const WritePoint& point : kPointsOfContactWrites) {
        SCOPED_TRACE(testing::Message()
                     << "flag " << point.flag << " at " << testing::PrintToString(CString(point.line)));
        ExpectAWriteToHold(contact, &CMAPIObject::m_lpContactFolder, point,
                           [&] { return g_MAPIObject.WriteContacts(&contact); });
    }
}

TEST_F(HeldObjectsTest, AWriteOfAnAppointmentHoldsFolderStoreAndSessionUntilItsEnd) {
    CCalendarEx calendar;
    calendar.m_lCalType = 3;
    calendar.m_dtStartTime = Date(2026, 3, 10, 9, 30);
    calendar.m_dtEndTime = Date(2026, 3, 10, 10, 15);
    for (const WritePoint& point : kPointsOfCalendarWrites) {
        SCOPED_TRACE(testing::Message()
                     << "flag " << point.flag << " at " << testing::PrintToString(CString(point.line)));
        ExpectAWriteToHold(calendar, &CMAPIObject::m_lpEventFolder, point,
                           [&] { return g_MAPIObject.WriteCalendars(&calendar); });
    }
}

/// The list of the folders of two stores.
class HeldByTheListOfFolders : public Documents {
  protected:
    void SetUp() override {
        Documents::SetUp();
        MakeFolder(L"Work\\Second");
        MakeFolder(L"Zoo\\Animals");
        LogOn();
    }
    void TearDown() override {
        OnLogLine(L"", nullptr);
        Documents::TearDown();
    }
};

TEST_F(HeldByTheListOfFolders, AllStoresAreOpenedThroughTheSessionThatItBeganIn) {
    const ComPtr<IMAPISession> session = g_MAPIObject.m_lpMAPISession;
    unsigned long meanwhile = 0;
    OnLogLine(L"CMAPIObject::GetAppFolderFromStore - Begin\r\n", [&] {
        EXPECT_EQ(g_MAPIObject.MAPILogOn(0, L"Zoo"), 1);
        meanwhile = References(session);
    });
    // Whether a session that was logged off still opens its stores is the mail system's affair, and one that
    // does not open is left without folders.
    EXPECT_EQ(g_MAPIObject.GetAppFolder(m_buffer), 0);
    EXPECT_EQ(meanwhile, 1U);
    EXPECT_EQ(References(session), 0U);
    const std::vector<localstore::recorder::Call> calls = localstore::recorder::Calls();
    const auto opens = [&](const char* profile) {
        return std::ranges::count_if(calls, [&](const localstore::recorder::Call& call) {
            return call.method == "IMAPISession::OpenMsgStore" && call.object == profile;
        });
    };
    EXPECT_EQ(opens("Work"), 2);
    // By the logon.
    EXPECT_EQ(opens("Zoo"), 1);
}

}  // namespace
