#include "tests/faults/operation.h"

#include <mapitags.h>

#include <algorithm>
#include <new>
#include <ostream>
#include <set>

#include "calendar/calendar_xml_input.h"
#include "contacts/contact_fields.h"
#include "contacts/contact_xml_input.h"
#include "mapi/change_flags.h"
#include "mapi/named_properties.h"
#include "mapi/store_entries.h"
#include "support/xml_parser.h"
#include "tests/unit/store/appointment_fixture.h"
#include "tests/unit/text_printer.h"

namespace {

constexpr int kSucceeded = 0;
constexpr auto kAllItems = static_cast<std::size_t>(StoreState::kItems);

/// The sub-folders, which hold the items that are changed and deleted, and nothing else.
constexpr const wchar_t* kContactsBelow = L"Contacts\\Below";
constexpr const wchar_t* kCalendarBelow = L"Calendar\\Below";

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

/// An element of a document that comes in.
CString Element(const wchar_t* name, const CString& text) {
    return CString::Format(L"<%s>%s</%s>", name, text.c_str(), name);
}

/// What is to be done, and with which item.
CString Identity(std::int32_t flag, const CString& id) {
    return Element(L"lFlag", CString::Format(L"%d", flag)) +
           (flag == kChangeAdd ? CString() : Element(L"PIMID", id));
}

/// A contact with the new name.
void MakeContactDocument(StoreState& state, std::int32_t flag) {
    PrepareItems(state);
    state.contact.Reset();
    state.flag = flag;
    CString fields;
    for (const std::int32_t field : {kFirstNameField, kLastNameField, kCompanyField}) {
        fields += Element(FindContactField(field)->in, kNewName);
    }
    state.incoming = Element(L"Contact", Identity(flag, state.contactId) + fields);
}

/// The same for an appointment: a series with a reminder, which has all kinds of properties.
void MakeCalendarDocument(StoreState& state, std::int32_t flag) {
    PrepareCalendars(state);
    state.calendar.Reset();
    state.flag = flag;
    state.incoming =
        Element(L"Calendar", Identity(flag, state.calendarId) + Element(L"Description", kNewName) +
                                 Element(L"Location", kNewName) + Element(L"Body", kNewName) +
                                 Element(L"dtStartTime", L"03/07/2011 09:00:00") +
                                 Element(L"dtEndTime", L"03/07/2011 10:00:00") +
                                 Element(L"lReminderMinutes", L"15") + Element(L"lRecurType", L"2") +
                                 Element(L"lCalType", L"3") + Element(L"lRecurWeekMask", L"2"));
}

/// The texts that a write brings.
struct WrittenTexts {
    IMAPIFolder* folder;
    std::vector<ULONG> tags;
};

/// The text of a message, empty if it has none.
CString TextOf(IMessage* message, ULONG tag) {
    const MapiBuffer<SPropValue> value = GetProperty(message, tag);
    return value ? CString(value->Value.lpszW) : CString();
}

/// Expects each of some texts of a message to be the one that was there, or the new one. A single property
/// that could not be set does not fail the write; all are new if nothing failed. Where the reading of the
/// document was interrupted the write goes on with what was found.
void ExpectTexts(const WrittenTexts& texts, const CString& id, const CString& old, const Outcome& outcome) {
    const ComPtr<IMessage> message = OpenMessageByHexId(texts.folder, id);
    ASSERT_TRUE(message);
    for (const ULONG tag : texts.tags) {
        const CString text = TextOf(message.Get(), tag);
        const bool isLacking = outcome.documentsFailed && text.empty();
        EXPECT_TRUE(text == kNewName || isLacking || (!outcome.complete && text == old))
            << std::hex << tag << ": " << testing::PrintToString(text);
    }
}

WrittenTexts ContactTexts() {
    return {g_MAPIObject.m_lpContactFolder.Get(), {PR_GIVEN_NAME_W, PR_SURNAME_W, PR_COMPANY_NAME_W}};
}

WrittenTexts CalendarTexts() {
    return {g_MAPIObject.m_lpEventFolder.Get(), {PR_SUBJECT_W, PR_BODY_W}};
}

int WriteContact(StoreState& state) {
    const ComApartmentHold apartment;
    ParseContactXml(state.incoming, state.contact);
    state.flagFound = state.contact.m_lFlag;
    return g_MAPIObject.WriteContacts(&state.contact);
}

/// The flag's bit is cleared when the write succeeded, which it must do if nothing failed. A flag that was
/// not found in the document asks for nothing.
bool HasSucceeded(const StoreState& state, std::int32_t flag, const Outcome& outcome) {
    EXPECT_TRUE(state.flagFound == state.flag || (outcome.documentsFailed && state.flagFound == 0));
    EXPECT_TRUE(flag == 0 || !outcome.complete) << "flag " << flag;
    return flag == 0 && state.flagFound != 0;
}

/// Expects one message more, with its texts, after an add that succeeded. One that failed has left none, or
/// one whose identifier could not be handed back, which is then empty.
void ExpectAdded(std::size_t messages, bool succeeded, const CString& id, const WrittenTexts& texts,
                 const Outcome& outcome) {
    if (outcome.storeLied) {
        return;
    }
    if (succeeded) {
        EXPECT_EQ(messages, kAllItems + 1);
        if (outcome.complete || !id.empty()) {
            ExpectTexts(texts, id, {}, outcome);
        }
    } else if (messages != kAllItems) {
        EXPECT_EQ(messages, kAllItems + 1);
        EXPECT_EQ(id, L"");
    }
}

void ExpectContactAdded(StoreState& state, const Outcome& outcome) {
    EXPECT_EQ(outcome.result, kSucceeded);
    ExpectAdded(state.MessagesIn(L"Contacts"), HasSucceeded(state, state.contact.m_lFlag, outcome),
                state.contact.m_strPIMID, ContactTexts(), outcome);
    EXPECT_TRUE(state.KeepsAllBut(nullptr));
}

void ExpectContactChanged(StoreState& state, const Outcome& outcome) {
    EXPECT_EQ(outcome.result, kSucceeded);
    EXPECT_EQ(state.MessagesIn(L"Contacts"), kAllItems);
    EXPECT_TRUE(state.KeepsAllBut(kContactsBelow));
    if (HasSucceeded(state, state.contact.m_lFlag, outcome)) {
        ExpectTexts(ContactTexts(), state.contactId, kOldName, outcome);
    } else {
        EXPECT_TRUE(state.IsAsInTheBeginning());
    }
}

/// Expects one message less after a deletion that succeeded, and otherwise all as they were.
void ExpectDeleted(const StoreState& state, std::size_t messages, bool succeeded, const Outcome& outcome) {
    if (!succeeded) {
        EXPECT_TRUE(state.IsAsInTheBeginning());
    } else if (!outcome.storeLied) {
        EXPECT_EQ(messages, kAllItems - 1);
    }
}

void ExpectContactDeleted(StoreState& state, const Outcome& outcome) {
    EXPECT_EQ(outcome.result, kSucceeded);
    EXPECT_TRUE(state.KeepsAllBut(kContactsBelow));
    ExpectDeleted(state, state.MessagesIn(L"Contacts"), HasSucceeded(state, state.contact.m_lFlag, outcome),
                  outcome);
}

/// The closing callback may fail, behind everything else; the remote procedure then fails as it did.
int WriteCalendar(StoreState& state) {
    try {
        const ComApartmentHold apartment;
        ParseCalendarXml(state.incoming, state.calendar);
        state.flagFound = state.calendar.m_lFlag;
        return g_MAPIObject.WriteCalendars(&state.calendar);
    } catch (const std::bad_alloc&) {
        return 1;
    }
}

/// The result of a write is 0, or 1 where the zones could not even be looked for.
void ExpectCalendarAdded(StoreState& state, const Outcome& outcome) {
    EXPECT_TRUE(outcome.result == 0 || outcome.result == 1);
    ExpectAdded(state.MessagesIn(L"Calendar"), HasSucceeded(state, state.calendar.m_lFlag, outcome),
                state.calendar.m_strPIMID, CalendarTexts(), outcome);
    EXPECT_TRUE(state.KeepsAllBut(nullptr));
}

void ExpectCalendarChanged(StoreState& state, const Outcome& outcome) {
    EXPECT_TRUE(outcome.result == 0 || outcome.result == 1);
    EXPECT_EQ(state.MessagesIn(L"Calendar"), kAllItems);
    EXPECT_TRUE(state.KeepsAllBut(kCalendarBelow));
    if (HasSucceeded(state, state.calendar.m_lFlag, outcome)) {
        ExpectTexts(CalendarTexts(), state.calendarId, kOldName, outcome);
    } else {
        EXPECT_TRUE(state.IsAsInTheBeginning());
    }
}

void ExpectCalendarDeleted(StoreState& state, const Outcome& outcome) {
    EXPECT_TRUE(outcome.result == 0 || outcome.result == 1);
    EXPECT_TRUE(state.KeepsAllBut(kCalendarBelow));
    ExpectDeleted(state, state.MessagesIn(L"Calendar"), HasSucceeded(state, state.calendar.m_lFlag, outcome),
                  outcome);
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
         [](StoreState& state) { MakeContactDocument(state, kChangeAdd); }, WriteContact, ExpectContactAdded,
         kSucceeded, 0, 0, false},
        {"ChangeContact", L"WriteContacts - Begin", L"WriteContacts - Finish",
         [](StoreState& state) { MakeContactDocument(state, kChangeUpdate); }, WriteContact,
         ExpectContactChanged, kSucceeded, 0, 0, false},
        {"DeleteContact", L"WriteContacts - Begin", L"WriteContacts - Finish",
         [](StoreState& state) { MakeContactDocument(state, kChangeDelete); }, WriteContact,
         ExpectContactDeleted, kSucceeded, 0, 0, false},
        {"AddCalendar", L"WriteCalendars - Begin", L"WriteCalendars - Finish",
         [](StoreState& state) { MakeCalendarDocument(state, kChangeAdd); }, WriteCalendar,
         ExpectCalendarAdded, kSucceeded, 0, 0, false},
        {"ChangeCalendar", L"WriteCalendars - Begin", L"WriteCalendars - Finish",
         [](StoreState& state) { MakeCalendarDocument(state, kChangeUpdate); }, WriteCalendar,
         ExpectCalendarChanged, kSucceeded, 0, 0, false},
        {"DeleteCalendar", L"WriteCalendars - Begin", L"WriteCalendars - Finish",
         [](StoreState& state) { MakeCalendarDocument(state, kChangeDelete); }, WriteCalendar,
         ExpectCalendarDeleted, kSucceeded, 0, 0, false},
    };
    return operations;
}
