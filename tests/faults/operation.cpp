#include "tests/faults/operation.h"

#include <algorithm>
#include <iterator>
#include <ostream>

#include "mapi/folder_types.h"
#include "support/settings.h"
#include "tests/faults/list_checks.h"
#include "tests/faults/preparations.h"
#include "tests/faults/read_checks.h"

namespace {

constexpr int kSucceeded = 0;
void LogOn(StoreState& state) {
    if (g_MAPIObject.m_bLoggedOn == 0) {
        EXPECT_EQ(g_MAPIObject.MAPILogOn(0, L"Work"), 1);
        ++state.logonsMade;
    }
    state.RememberFolders();
}

void LogOff(StoreState& /*state*/) {
    g_MAPIObject.MAPILogOff();
}

/// The administration of profiles is kept from the first list of a session on.
void PrepareProfiles(StoreState& state) {
    LogOn(state);
    g_MAPIObject.m_lpProfAdmin.Reset();
    WriteOldList(g_strProfileXml);
}

void PrepareFolders(StoreState& state) {
    LogOn(state);
    WriteOldList(g_strOutlookXml);
}

void ExpectStoreUntouched(StoreState& state, const Outcome& outcome) {
    EXPECT_TRUE(outcome.result == 0 || outcome.result == 1);
    EXPECT_TRUE(state.IsAsInTheBeginning());
}

/// A logon that nothing disturbed has the folders, the list of the default ones, and the machine's zone.
void ExpectWholeSession() {
    EXPECT_TRUE(g_MAPIObject.m_lpContactFolder && g_MAPIObject.m_lpEventFolder);
    EXPECT_EQ(g_MAPIObject.GetContactCount(), StoreState::kItems);
    EXPECT_EQ(g_MAPIObject.GetCalendarCount(), StoreState::kItems);
    const auto& ids = g_MAPIObject.m_arrDefaultFolderIds;
    EXPECT_EQ(ids[kContactFolderType], FolderWriter(L"Work", L"Contacts").FolderId());
    EXPECT_EQ(ids[kCalendarFolderType], FolderWriter(L"Work", L"Calendar").FolderId());
    TIME_ZONE_INFORMATION zone{};
    GetTimeZoneInformation(&zone);
    EXPECT_EQ(g_MAPIObject.m_CurrentTimeZone.Std, CString(zone.StandardName));
    EXPECT_EQ(g_MAPIObject.m_CurrentTimeZone.Bias, zone.Bias);
}

void ExpectSession(StoreState& state, const Outcome& outcome) {
    ExpectStoreUntouched(state, outcome);
    EXPECT_EQ(g_MAPIObject.m_bLoggedOn, outcome.result);
    EXPECT_EQ(g_MAPIObject.m_lpMAPISession != nullptr, outcome.result == 1);
    EXPECT_EQ(g_MAPIObject.m_lpMsgStore != nullptr, outcome.result == 1);
    if (outcome.complete) {
        ExpectWholeSession();
    } else if (outcome.result == 0) {
        EXPECT_FALSE(g_MAPIObject.m_lpContactFolder || g_MAPIObject.m_lpEventFolder);
    }
}

void ExpectNoSession(StoreState& state, const Outcome& outcome) {
    ExpectStoreUntouched(state, outcome);
    EXPECT_EQ(g_MAPIObject.m_bLoggedOn, 0);
    EXPECT_FALSE(g_MAPIObject.m_lpMAPISession || g_MAPIObject.m_lpMsgStore ||
                 g_MAPIObject.m_lpContactFolder || g_MAPIObject.m_lpEventFolder);
}

/// A choice changes one folder at most, and one that fails none. Whole it has the items of what was chosen.
template<bool OfContacts, int Items>
void ExpectChoice(StoreState& state, const Outcome& outcome) {
    ExpectStoreUntouched(state, outcome);
    EXPECT_TRUE(g_MAPIObject.m_lpContactFolder && g_MAPIObject.m_lpEventFolder);
    if (outcome.foldersReplaced) {
        return;
    }
    const bool isContactFolderOld = g_MAPIObject.m_lpContactFolder.Get() == state.contactFolder;
    const bool isEventFolderOld = g_MAPIObject.m_lpEventFolder.Get() == state.eventFolder;
    EXPECT_TRUE(OfContacts ? isEventFolderOld : isContactFolderOld);
    EXPECT_EQ(OfContacts ? isContactFolderOld : isEventFolderOld, outcome.result != kSucceeded);
    if (outcome.complete) {
        EXPECT_EQ(OfContacts ? g_MAPIObject.GetContactCount() : g_MAPIObject.GetCalendarCount(), Items);
    }
}

constexpr int kItemsBelow = StoreState::kItems - StoreState::kItemsOnTop;

std::vector<Operation> SessionOperations() {
    return {
        {.name = "LogOn",
         .firstLine = L"MAPILogOn - Begin",
         .lastLine = L"MAPILogOn - Finish",
         .successLine = L"MAPILogOn - Finish(Succeeded)",
         .failureLine = L"MAPILogOn - Finish(Failed)",
         .prepare = LogOff,
         .run = [](StoreState&) { return g_MAPIObject.MAPILogOn(0, L"Work"); },
         .check = ExpectSession,
         .complete = 1,
         .mostHandlesLeft = kZoneKeys,
         .changesSession = true},
        {.name = "LogOnDefault",
         .firstLine = L"MAPILogOn - Begin",
         .lastLine = L"MAPILogOn - Finish",
         .successLine = L"MAPILogOn - Finish(Succeeded)",
         .failureLine = L"MAPILogOn - Finish(Failed)",
         .prepare = LogOff,
         .run = [](StoreState&) { return g_MAPIObject.MAPILogOn(0, L""); },
         .check = ExpectSession,
         .complete = 1,
         .mostHandlesLeft = kZoneKeys,
         .changesSession = true},
        {.name = "LogOnAgain",
         .firstLine = L"MAPILogOn - Begin",
         .lastLine = L"MAPILogOn - Finish",
         .successLine = L"MAPILogOn - Finish(Succeeded)",
         .failureLine = L"MAPILogOn - Finish(Failed)",
         .prepare = LogOn,
         .run = [](StoreState&) { return g_MAPIObject.MAPILogOn(0, L"Work"); },
         .check = ExpectSession,
         .complete = 1,
         .mostHandlesLeft = kZoneKeys,
         .changesSession = true},
        {.name = "LogOff",
         .firstLine = L"MAPILogOff : Begin",
         .lastLine = L"MAPILogOff : Finish",
         .prepare = LogOn,
         .run =
             [](StoreState&) {
                 g_MAPIObject.MAPILogOff();
                 return kSucceeded;
             },
         .check = ExpectNoSession,
         .changesSession = true},
        {.name = "Profiles",
         .firstLine = L"GetAppProfile : Begin",
         .lastLine = L"GetAppProfile : Finish",
         .successLine = L"GetAppProfile : Finish(0)",
         .failureLine = L"GetAppProfile : Finish(1)",
         .prepare = PrepareProfiles,
         .run = [](StoreState& state) { return g_MAPIObject.GetAppProfile(state.document); },
         .check = ExpectProfileList,
         .mostBuffersLeft = 2,
         .mostObjectsLeft = 1,
         .savesDocument = true},
        {.name = "Folders",
         .firstLine = L"GetAppFolder : Begin",
         .lastLine = L"GetAppFolder : Finish",
         .successLine = L"GetAppFolder : Finish(0)",
         .failureLine = L"GetAppFolder : Finish(1)",
         .prepare = PrepareFolders,
         .run = [](StoreState& state) { return g_MAPIObject.GetAppFolder(state.document); },
         .check = ExpectFolderList,
         .savesDocument = true},
        {.name = "ChooseContacts",
         .firstLine = L"SetContactFolder - Begin",
         .lastLine = L"SetContactFolder - Finish",
         .successLine = L"SetContactFolder - Finish(0)",
         .failureLine = L"SetContactFolder - Finish(1)",
         .prepare = LogOn,
         .run =
             [](StoreState& state) { return g_MAPIObject.SetContactFolder(state.contactSelection.c_str()); },
         .check = ExpectChoice<true, kItemsBelow>},
        {.name = "ChooseCalendars",
         .firstLine = L"SetCalendarFolder - Finish",
         .lastLine = L"SetCalendarFolder - Finish",
         .successLine = L"SetCalendarFolder - Finish(0)",
         .failureLine = L"SetCalendarFolder - Finish(1)",
         .prepare = LogOn,
         .run =
             [](StoreState& state) {
                 return g_MAPIObject.SetCalendarFolder(state.calendarSelection.c_str());
             },
         .check = ExpectChoice<false, kItemsBelow>},
        {.name = "ChooseDefaultContacts",
         .firstLine = L"SetContactFolder - Begin",
         .lastLine = L"SetContactFolder - Finish",
         .successLine = L"SetContactFolder - Finish(0)",
         .failureLine = L"SetContactFolder - Finish(1)",
         .prepare = LogOn,
         .run = [](StoreState&) { return g_MAPIObject.SetContactFolder(L""); },
         .check = ExpectChoice<true, StoreState::kItems>},
        {.name = "ChooseDefaultCalendars",
         .firstLine = L"SetCalendarFolder - Finish",
         .lastLine = L"SetCalendarFolder - Finish",
         .successLine = L"SetCalendarFolder - Finish(0)",
         .failureLine = L"SetCalendarFolder - Finish(1)",
         .prepare = LogOn,
         .run = [](StoreState&) { return g_MAPIObject.SetCalendarFolder(L""); },
         .check = ExpectChoice<false, StoreState::kItems>},
    };
}

std::vector<Operation> ReadOperations() {
    return {
        {.name = "CountContacts",
         .firstLine = L"GetContactCount - Begin",
         .lastLine = L"GetContactCount - Finish",
         .prepare = PrepareItems,
         .run = [](StoreState&) { return static_cast<int>(g_MAPIObject.GetContactCount()); },
         .check = ExpectContactCount,
         .complete = StoreState::kItems},
        {.name = "CountCalendars",
         .firstLine = L"GetCalendarCount - Begin",
         .lastLine = L"GetCalendarCount - Finish",
         .prepare = PrepareItems,
         .run = [](StoreState&) { return static_cast<int>(g_MAPIObject.GetCalendarCount()); },
         .check = ExpectCalendarCount,
         .complete = StoreState::kItems},
        {.name = "ReadContacts",
         .firstLine = L"ReadContacts - Begin",
         .lastLine = L"ReadContacts - Finish",
         .prepare = PrepareItems,
         .run = [](StoreState&) { return g_MAPIObject.ReadContacts(L""); },
         .check = ExpectContactsRead,
         .stoppedWalk = L"ReadContactFromFolder"},
        {.name = "ReadCalendars",
         .firstLine = L"ReadCalendars - Begin",
         .lastLine = L"ReadCalendars - Finish",
         .successLine = L"ReadContacts - Succeeded",
         .failureLine = L"ReadContacts - Failed",
         .prepare = PrepareCalendars,
         .run = [](StoreState&) { return g_MAPIObject.ReadCalendars(L""); },
         .check = ExpectCalendarsRead,
         .mostHandlesLeft = kZoneKeys,
         .stoppedWalk = L"ReadCalendarEventFromFolder"},
        {.name = "ReadContactChanges",
         .firstLine = L"ReadContacts - Begin",
         .lastLine = L"ReadContacts - Finish",
         .prepare = PrepareItems,
         .run = [](StoreState& state) { return g_MAPIObject.ReadContacts(state.contactMap.c_str()); },
         .check = ExpectContactChangesRead},
        {.name = "ReadCalendarChanges",
         .firstLine = L"ReadCalendars - Begin",
         .lastLine = L"ReadCalendars - Finish",
         .successLine = L"ReadContacts - Succeeded",
         .failureLine = L"ReadContacts - Failed",
         .prepare = PrepareCalendars,
         .run = [](StoreState& state) { return g_MAPIObject.ReadCalendars(state.calendarMap.c_str()); },
         .check = ExpectCalendarChangesRead,
         .mostHandlesLeft = kZoneKeys},
    };
}

}  // namespace

void PrepareItems(StoreState& state) {
    state.Restore();
    LogOn(state);
    g_MAPIObject.m_bStop = 0;
    TakeSent();
    TakeSentCalendars();
}

void PrepareCalendars(StoreState& state) {
    PrepareItems(state);
    g_MAPIObject.m_arrTimeZones.RemoveAll();
}

void PrintTo(const Operation& operation, std::ostream* out) {
    *out << operation.name;
}

const std::vector<Operation>& Operations() {
    static const std::vector<Operation> operations = [] {
        std::vector<Operation> all = SessionOperations();
        std::ranges::move(ReadOperations(), std::back_inserter(all));
        std::ranges::move(WriteOperations(), std::back_inserter(all));
        return all;
    }();
    return operations;
}
