#include "tests/faults/operation.h"

#include <mapitags.h>

#include <algorithm>
#include <initializer_list>
#include <new>
#include <ostream>
#include <set>

#include "contacts/contact_fields.h"
#include "mapi/change_flags.h"
#include "mapi/named_properties.h"
#include "mapi/store_entries.h"
#include "support/xml_parser.h"
#include "tests/unit/store/appointment_fixture.h"

namespace {

constexpr int kSucceeded = 0;

/// The field of a contact's company.
constexpr std::int32_t kCompanyField = 4004;

void LogOn(StoreState& /*state*/) {
    if (g_MAPIObject.m_bLoggedOn == 0) {
        EXPECT_EQ(g_MAPIObject.MAPILogOn(0, L"Work"), 1);
    }
}

void LogOff(StoreState& /*state*/) {
    g_MAPIObject.MAPILogOff();
}

/// The administration of profiles is kept from the first list of a session on.
void PrepareProfiles(StoreState& state) {
    LogOn(state);
    g_MAPIObject.m_lpProfAdmin.Reset();
}

void PrepareItems(StoreState& state) {
    state.Restore();
    LogOn(state);
    g_MAPIObject.m_bStop = 0;
    TakeSent();
    TakeSentCalendars();
}

/// Zones are read once in a session; here they are read in each operation that needs them.
void PrepareCalendars(StoreState& state) {
    PrepareItems(state);
    g_MAPIObject.m_arrTimeZones.RemoveAll();
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

/// A choice that fails leaves the folder that was there.
void ExpectFolders(StoreState& state, const Outcome& outcome) {
    ExpectStoreUntouched(state, outcome);
    EXPECT_TRUE(g_MAPIObject.m_lpContactFolder && g_MAPIObject.m_lpEventFolder);
}

void ExpectCount(StoreState& state, const Outcome& outcome) {
    EXPECT_GE(outcome.result, 0);
    EXPECT_LE(outcome.result, StoreState::kItems);
    EXPECT_TRUE(state.IsAsInTheBeginning());
}

/// Expects documents that can be parsed, each of an item of its own.
void ExpectDocuments(const std::vector<CString>& documents, const wchar_t* idPath) {
    std::set<CString> ids;
    for (const CString& document : documents) {
        CXMLParser parser;
        EXPECT_TRUE(parser.InitDocument());
        parser.LoadText(document.View());
        const ComPtr<IXMLDOMNode> id = parser.SelectSingleNode(idPath);
        // Without memory or service a document may lack elements; what arrives with an identifier arrives
        // once.
        if (id) {
            EXPECT_TRUE(ids.insert(parser.GetNodeText(id.Get())).second);
        }
    }
    EXPECT_LE(documents.size(), static_cast<std::size_t>(StoreState::kItems));
}

void ExpectContactsRead(StoreState& state, const Outcome& outcome) {
    ExpectDocuments(TakeSent(), L"/Contact/PIMID");
    ExpectStoreUntouched(state, outcome);
}

void ExpectCalendarsRead(StoreState& state, const Outcome& outcome) {
    ExpectDocuments(TakeSentCalendars(), L"/Calendar/PIMID");
    ExpectStoreUntouched(state, outcome);
}

void ExpectContactChangesRead(StoreState& state, const Outcome& outcome) {
    EXPECT_TRUE(state.MapIsWhole(state.contactMap));
    ExpectDocuments(TakeSent(), L"/Contact/PIMID");
    EXPECT_TRUE(outcome.result == 0 || outcome.result == 1);
}

void ExpectCalendarChangesRead(StoreState& state, const Outcome& outcome) {
    EXPECT_TRUE(state.MapIsWhole(state.calendarMap));
    ExpectDocuments(TakeSentCalendars(), L"/Calendar/PIMID");
    EXPECT_TRUE(outcome.result == 0 || outcome.result == 1);
}

/// A contact with the new name, as a document brings it.
void FillContact(StoreState& state, std::int32_t flag) {
    PrepareItems(state);
    state.contact.Reset();
    state.contact.m_lFlag = flag;
    state.contact.m_strPIMID = flag == kChangeAdd ? CString() : state.contactId;
    state.contact.AddField(kFirstNameField, kNewName);
    state.contact.AddField(kLastNameField, kNewName);
    state.contact.AddField(kCompanyField, kNewName);
}

/// The same for an appointment: a series with a reminder, which has all kinds of properties.
void FillCalendar(StoreState& state, std::int32_t flag) {
    PrepareCalendars(state);
    CCalendarEx& calendar = state.calendar;
    calendar.Reset();
    calendar.m_lFlag = flag;
    calendar.m_lCalType = 3;
    calendar.m_strPIMID = flag == kChangeAdd ? CString() : state.calendarId;
    calendar.m_dtStartTime.SetDateTime(2011, 3, 7, 9, 0, 0);
    calendar.m_dtEndTime.SetDateTime(2011, 3, 7, 10, 0, 0);
    calendar.m_lReminderMinutes = 15;
    calendar.m_lRecurType = 2;
    calendar.m_lRecurWeekMask = 2;
    calendar.AddField(kSubjectField, kNewName);
    calendar.AddField(kBodyField, kNewName);
    calendar.AddField(kLocationField, kNewName);
}

/// How many of some texts of a message are this one.
int TextsWith(IMessage* message, std::initializer_list<ULONG> tags, const wchar_t* text) {
    return static_cast<int>(std::ranges::count_if(tags, [&](ULONG tag) {
        const MapiBuffer<SPropValue> value = GetProperty(message, tag);
        return value && CString(value->Value.lpszW) == text;
    }));
}

/// A message that was to be changed is the old one if that failed. A single call that fails is one property
/// that stays as it was, and does not fail the write.
void ExpectOldOrNew(IMAPIFolder* folder, const CString& id, std::initializer_list<ULONG> tags, bool failed) {
    const ComPtr<IMessage> message = OpenMessageByHexId(folder, id);
    ASSERT_TRUE(message);
    const int all = static_cast<int>(tags.size());
    if (failed) {
        EXPECT_EQ(TextsWith(message.Get(), tags, kOldName), all);
    } else {
        EXPECT_LE(TextsWith(message.Get(), tags, kOldName), all);
    }
}

int WriteContact(StoreState& state) {
    return g_MAPIObject.WriteContacts(&state.contact);
}

/// Expects one message more after an add that succeeded. One that failed has left none, or one whose
/// identifier could not be handed back, which is then empty.
void ExpectAdded(std::size_t messages, std::int32_t flag, const CString& id, bool storeLied) {
    const auto before = static_cast<std::size_t>(StoreState::kItems);
    if (storeLied) {
        return;
    }
    if (flag == 0) {
        EXPECT_EQ(messages, before + 1);
    } else if (messages != before) {
        EXPECT_EQ(messages, before + 1);
        EXPECT_EQ(id, L"");
    }
}

void ExpectContactAdded(StoreState& state, const Outcome& outcome) {
    EXPECT_EQ(outcome.result, kSucceeded);
    ExpectAdded(state.MessagesIn(L"Contacts"), state.contact.m_lFlag, state.contact.m_strPIMID,
                outcome.storeLied);
}

void ExpectContactChanged(StoreState& state, const Outcome& outcome) {
    EXPECT_EQ(outcome.result, kSucceeded);
    EXPECT_EQ(state.MessagesIn(L"Contacts"), static_cast<std::size_t>(StoreState::kItems));
    ExpectOldOrNew(g_MAPIObject.m_lpContactFolder.Get(), state.contactId,
                   {PR_GIVEN_NAME_W, PR_SURNAME_W, PR_COMPANY_NAME_W}, state.contact.m_lFlag != 0);
    if (state.contact.m_lFlag != 0) {
        EXPECT_TRUE(state.IsAsInTheBeginning());
    }
}

void ExpectContactDeleted(StoreState& state, const Outcome& outcome) {
    EXPECT_EQ(outcome.result, kSucceeded);
    if (!outcome.storeLied) {
        EXPECT_EQ(state.MessagesIn(L"Contacts") == StoreState::kItems, state.contact.m_lFlag != 0);
    }
    if (state.contact.m_lFlag != 0) {
        EXPECT_TRUE(state.IsAsInTheBeginning());
    }
}

/// The closing callback may fail, behind everything else; the remote procedure then fails as it did.
int WriteCalendar(StoreState& state) {
    try {
        return g_MAPIObject.WriteCalendars(&state.calendar);
    } catch (const std::bad_alloc&) {
        return 1;
    }
}

/// The result of a write is 0, or 1 where the zones could not even be looked for.
void ExpectCalendarAdded(StoreState& state, const Outcome& outcome) {
    EXPECT_TRUE(outcome.result == 0 || outcome.result == 1);
    ExpectAdded(state.MessagesIn(L"Calendar"), state.calendar.m_lFlag, state.calendar.m_strPIMID,
                outcome.storeLied);
}

void ExpectCalendarChanged(StoreState& state, const Outcome& outcome) {
    EXPECT_TRUE(outcome.result == 0 || outcome.result == 1);
    EXPECT_EQ(state.MessagesIn(L"Calendar"), static_cast<std::size_t>(StoreState::kItems));
    ExpectOldOrNew(g_MAPIObject.m_lpEventFolder.Get(), state.calendarId, {PR_SUBJECT_W, PR_BODY_W},
                   state.calendar.m_lFlag != 0);
    if (state.calendar.m_lFlag != 0) {
        EXPECT_TRUE(state.IsAsInTheBeginning());
    }
}

void ExpectCalendarDeleted(StoreState& state, const Outcome& outcome) {
    EXPECT_TRUE(outcome.result == 0 || outcome.result == 1);
    if (!outcome.storeLied) {
        EXPECT_EQ(state.MessagesIn(L"Calendar") == StoreState::kItems, state.calendar.m_lFlag != 0);
    }
    if (state.calendar.m_lFlag != 0) {
        EXPECT_TRUE(state.IsAsInTheBeginning());
    }
}

}  // namespace

void PrintTo(const Operation& operation, std::ostream* out) {
    *out << operation.name;
}

const std::vector<Operation>& Operations() {
    static const std::vector<Operation> operations = {
        {"LogOn", L"MAPILogOn - Begin", L"MAPILogOn - Finish", LogOff,
         [](StoreState&) { return g_MAPIObject.MAPILogOn(0, L"Work"); }, ExpectSession, 1, 0, 0, true},
        {"LogOff", L"MAPILogOff : Begin", L"MAPILogOff : Finish", LogOn,
         [](StoreState&) {
             g_MAPIObject.MAPILogOff();
             return 0;
         },
         ExpectNoSession, kSucceeded, 0, 0, true},
        {"Profiles", L"GetAppProfile : Begin", L"GetAppProfile : Finish", PrepareProfiles,
         [](StoreState& state) { return g_MAPIObject.GetAppProfile(state.document); }, ExpectStoreUntouched,
         kSucceeded, 2, 1, false},
        {"Folders", L"GetAppFolder : Begin", L"GetAppFolder : Finish", LogOn,
         [](StoreState& state) { return g_MAPIObject.GetAppFolder(state.document); }, ExpectStoreUntouched,
         kSucceeded, 0, 0, false},
        {"ChooseContacts", L"SetContactFolder - Begin", L"SetContactFolder - Finish", LogOn,
         [](StoreState& state) { return g_MAPIObject.SetContactFolder(state.contactSelection.c_str()); },
         ExpectFolders, kSucceeded, 0, 0, false},
        {"ChooseCalendars", L"SetCalendarFolder - Finish", L"SetCalendarFolder - Finish", LogOn,
         [](StoreState& state) { return g_MAPIObject.SetCalendarFolder(state.calendarSelection.c_str()); },
         ExpectFolders, kSucceeded, 0, 0, false},
        {"CountContacts", L"GetContactCount - Begin", L"GetContactCount - Finish", PrepareItems,
         [](StoreState&) { return static_cast<int>(g_MAPIObject.GetContactCount()); }, ExpectCount,
         StoreState::kItems, 0, 0, false},
        {"CountCalendars", L"GetCalendarCount - Begin", L"GetCalendarCount - Finish", PrepareItems,
         [](StoreState&) { return static_cast<int>(g_MAPIObject.GetCalendarCount()); }, ExpectCount,
         StoreState::kItems, 0, 0, false},
        {"ReadContacts", L"ReadContacts - Begin", L"ReadContacts - Finish", PrepareItems,
         [](StoreState&) { return g_MAPIObject.ReadContacts(L""); }, ExpectContactsRead, kSucceeded, 0, 0,
         false},
        {"ReadCalendars", L"ReadCalendars - Begin", L"ReadCalendars - Finish", PrepareCalendars,
         [](StoreState&) { return g_MAPIObject.ReadCalendars(L""); }, ExpectCalendarsRead, kSucceeded, 0, 0,
         false},
        {"ReadContactChanges", L"ReadContacts - Begin", L"ReadContacts - Finish", PrepareItems,
         [](StoreState& state) { return g_MAPIObject.ReadContacts(state.contactMap.c_str()); },
         ExpectContactChangesRead, kSucceeded, 0, 0, false},
        {"ReadCalendarChanges", L"ReadCalendars - Begin", L"ReadCalendars - Finish", PrepareCalendars,
         [](StoreState& state) { return g_MAPIObject.ReadCalendars(state.calendarMap.c_str()); },
         ExpectCalendarChangesRead, kSucceeded, 0, 0, false},
        {"AddContact", L"WriteContacts - Begin", L"WriteContacts - Finish",
         [](StoreState& state) { FillContact(state, kChangeAdd); }, WriteContact, ExpectContactAdded,
         kSucceeded, 0, 0, false},
        {"ChangeContact", L"WriteContacts - Begin", L"WriteContacts - Finish",
         [](StoreState& state) { FillContact(state, kChangeUpdate); }, WriteContact, ExpectContactChanged,
         kSucceeded, 0, 0, false},
        {"DeleteContact", L"WriteContacts - Begin", L"WriteContacts - Finish",
         [](StoreState& state) { FillContact(state, kChangeDelete); }, WriteContact, ExpectContactDeleted,
         kSucceeded, 0, 0, false},
        {"AddCalendar", L"WriteCalendars - Begin", L"WriteCalendars - Finish",
         [](StoreState& state) { FillCalendar(state, kChangeAdd); }, WriteCalendar, ExpectCalendarAdded,
         kSucceeded, 0, 0, false},
        {"ChangeCalendar", L"WriteCalendars - Begin", L"WriteCalendars - Finish",
         [](StoreState& state) { FillCalendar(state, kChangeUpdate); }, WriteCalendar, ExpectCalendarChanged,
         kSucceeded, 0, 0, false},
        {"DeleteCalendar", L"WriteCalendars - Begin", L"WriteCalendars - Finish",
         [](StoreState& state) { FillCalendar(state, kChangeDelete); }, WriteCalendar, ExpectCalendarDeleted,
         kSucceeded, 0, 0, false},
    };
    return operations;
}
