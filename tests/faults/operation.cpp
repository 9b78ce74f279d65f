#include "tests/faults/operation.h"

#include <algorithm>
#include <iterator>
#include <ostream>
#include <set>

#include "support/xml_parser.h"
#include "tests/faults/preparations.h"
#include "tests/unit/text_printer.h"

namespace {

constexpr int kSucceeded = 0;
void LogOn(StoreState& state) {
    if (g_MAPIObject.m_bLoggedOn == 0) {
        EXPECT_EQ(g_MAPIObject.MAPILogOn(0, L"Work"), 1);
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
}

void ExpectStoreUntouched(StoreState& state, const Outcome& outcome) {
    EXPECT_TRUE(outcome.result == 0 || outcome.result == 1);
    EXPECT_TRUE(state.IsAsInTheBeginning());
}

void ExpectSession(StoreState& state, const Outcome& outcome) {
    ExpectStoreUntouched(state, outcome);
    EXPECT_EQ(g_MAPIObject.m_bLoggedOn, outcome.result);
    EXPECT_EQ(g_MAPIObject.m_lpMAPISession != nullptr, outcome.result == 1);
    EXPECT_EQ(g_MAPIObject.m_lpMsgStore != nullptr, outcome.result == 1);
}

void ExpectNoSession(StoreState& state, const Outcome& outcome) {
    ExpectStoreUntouched(state, outcome);
    EXPECT_EQ(g_MAPIObject.m_bLoggedOn, 0);
    EXPECT_FALSE(g_MAPIObject.m_lpMAPISession || g_MAPIObject.m_lpMsgStore ||
                 g_MAPIObject.m_lpContactFolder || g_MAPIObject.m_lpEventFolder);
}

/// A choice changes one folder at most, and one that fails none.
void ExpectFolders(StoreState& state, const Outcome& outcome, bool ofContacts) {
    ExpectStoreUntouched(state, outcome);
    EXPECT_TRUE(g_MAPIObject.m_lpContactFolder && g_MAPIObject.m_lpEventFolder);
    if (outcome.foldersReplaced) {
        return;
    }
    const bool isContactFolderOld = g_MAPIObject.m_lpContactFolder.Get() == state.contactFolder;
    const bool isEventFolderOld = g_MAPIObject.m_lpEventFolder.Get() == state.eventFolder;
    EXPECT_TRUE(ofContacts ? isEventFolderOld : isContactFolderOld);
    EXPECT_EQ(ofContacts ? isContactFolderOld : isEventFolderOld, outcome.result != kSucceeded);
}

void ExpectContactFolder(StoreState& state, const Outcome& outcome) {
    ExpectFolders(state, outcome, true);
}

void ExpectEventFolder(StoreState& state, const Outcome& outcome) {
    ExpectFolders(state, outcome, false);
}

void ExpectCount(StoreState& state, const Outcome& outcome) {
    EXPECT_GE(outcome.result, 0);
    EXPECT_LE(outcome.result, StoreState::kItems);
    EXPECT_TRUE(state.IsAsInTheBeginning());
}

/// Expects documents that can be parsed, each of an item of its own; all of them if nothing failed. For the
/// map one item is new, one changed and one deleted, which are as many as there are. Where memory or the
/// document service fails a document may lack elements, the root too.
void ExpectDocuments(const std::vector<CString>& documents, const wchar_t* rootPath, const wchar_t* idPath,
                     const Outcome& outcome) {
    std::set<CString> ids;
    for (const CString& document : documents) {
        CXMLParser parser;
        EXPECT_TRUE(parser.InitDocument());
        parser.LoadText(document.View());
        EXPECT_TRUE(outcome.documentsFailed || parser.SelectSingleNode(rootPath))
            << testing::PrintToString(document);
        const ComPtr<IXMLDOMNode> id = parser.SelectSingleNode(idPath);
        // What arrives with an identifier arrives once.
        if (id) {
            EXPECT_TRUE(ids.insert(parser.GetNodeText(id.Get())).second);
        }
    }
    EXPECT_LE(documents.size(), kAllItems);
    if (outcome.complete) {
        EXPECT_EQ(ids.size(), kAllItems);
    }
}

void ExpectContactsRead(StoreState& state, const Outcome& outcome) {
    ExpectDocuments(TakeSent(), L"/Contact", L"/Contact/PIMID", outcome);
    ExpectStoreUntouched(state, outcome);
}

void ExpectCalendarsRead(StoreState& state, const Outcome& outcome) {
    ExpectDocuments(TakeSentCalendars(), L"/Calendar", L"/Calendar/PIMID", outcome);
    ExpectStoreUntouched(state, outcome);
}

/// Expects the old map, or a whole new one. By design that is written in front of the documents, and a marked
/// message that does not open then is passed over; the deletion, which needs no call, arrives unless the read
/// was stopped.
void ExpectMap(const StoreState& state, const CString& map, std::size_t documents, const Outcome& outcome) {
    EXPECT_TRUE(state.MapIsWhole(map));
    if (outcome.result == kSucceeded && !outcome.documentsFailed && !state.IsAsInTheBeginning()) {
        EXPECT_GE(documents, 1U);
    }
}

void ExpectContactChangesRead(StoreState& state, const Outcome& outcome) {
    const std::vector<CString> documents = TakeSent();
    ExpectDocuments(documents, L"/Contact", L"/Contact/PIMID", outcome);
    ExpectMap(state, state.contactMap, documents.size(), outcome);
    EXPECT_TRUE(outcome.result == 0 || outcome.result == 1);
}

void ExpectCalendarChangesRead(StoreState& state, const Outcome& outcome) {
    const std::vector<CString> documents = TakeSentCalendars();
    ExpectDocuments(documents, L"/Calendar", L"/Calendar/PIMID", outcome);
    ExpectMap(state, state.calendarMap, documents.size(), outcome);
    EXPECT_TRUE(outcome.result == 0 || outcome.result == 1);
}

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
         // One that fails ends the session, so that the next one is prepared by a logon besides.
         .mostHandlesLeft = 2 * kZoneKeys,
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
         .mostHandlesLeft = kZoneKeys,
         .changesSession = true},
        {.name = "Profiles",
         .firstLine = L"GetAppProfile : Begin",
         .lastLine = L"GetAppProfile : Finish",
         .successLine = L"GetAppProfile : Finish(0)",
         .failureLine = L"GetAppProfile : Finish(1)",
         .prepare = PrepareProfiles,
         .run = [](StoreState& state) { return g_MAPIObject.GetAppProfile(state.document); },
         .check = ExpectStoreUntouched,
         .mostBuffersLeft = 2,
         .mostObjectsLeft = 1},
        {.name = "Folders",
         .firstLine = L"GetAppFolder : Begin",
         .lastLine = L"GetAppFolder : Finish",
         .successLine = L"GetAppFolder : Finish(0)",
         .failureLine = L"GetAppFolder : Finish(1)",
         .prepare = LogOn,
         .run = [](StoreState& state) { return g_MAPIObject.GetAppFolder(state.document); },
         .check = ExpectStoreUntouched},
        {.name = "ChooseContacts",
         .firstLine = L"SetContactFolder - Begin",
         .lastLine = L"SetContactFolder - Finish",
         .successLine = L"SetContactFolder - Finish(0)",
         .failureLine = L"SetContactFolder - Finish(1)",
         .prepare = LogOn,
         .run =
             [](StoreState& state) { return g_MAPIObject.SetContactFolder(state.contactSelection.c_str()); },
         .check = ExpectContactFolder},
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
         .check = ExpectEventFolder},
        {.name = "ChooseDefaultContacts",
         .firstLine = L"SetContactFolder - Begin",
         .lastLine = L"SetContactFolder - Finish",
         .successLine = L"SetContactFolder - Finish(0)",
         .failureLine = L"SetContactFolder - Finish(1)",
         .prepare = LogOn,
         .run = [](StoreState&) { return g_MAPIObject.SetContactFolder(L""); },
         .check = ExpectContactFolder},
        {.name = "ChooseDefaultCalendars",
         .firstLine = L"SetCalendarFolder - Finish",
         .lastLine = L"SetCalendarFolder - Finish",
         .successLine = L"SetCalendarFolder - Finish(0)",
         .failureLine = L"SetCalendarFolder - Finish(1)",
         .prepare = LogOn,
         .run = [](StoreState&) { return g_MAPIObject.SetCalendarFolder(L""); },
         .check = ExpectEventFolder},
    };
}

std::vector<Operation> ReadOperations() {
    return {
        {.name = "CountContacts",
         .firstLine = L"GetContactCount - Begin",
         .lastLine = L"GetContactCount - Finish",
         .prepare = PrepareItems,
         .run = [](StoreState&) { return static_cast<int>(g_MAPIObject.GetContactCount()); },
         .check = ExpectCount,
         .complete = StoreState::kItems},
        {.name = "CountCalendars",
         .firstLine = L"GetCalendarCount - Begin",
         .lastLine = L"GetCalendarCount - Finish",
         .prepare = PrepareItems,
         .run = [](StoreState&) { return static_cast<int>(g_MAPIObject.GetCalendarCount()); },
         .check = ExpectCount,
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
