#include <mapitags.h>

#include <new>

#include "calendar/calendar_xml_input.h"
#include "contacts/contact_fields.h"
#include "contacts/contact_xml_input.h"
#include "mapi/change_flags.h"
#include "mapi/named_properties.h"
#include "mapi/store_entries.h"
#include "support/xml_parser.h"
#include "tests/faults/contact_details.h"
#include "tests/faults/preparations.h"
#include "tests/unit/store/appointment_fixture.h"
#include "tests/unit/text_printer.h"

namespace {

constexpr int kSucceeded = 0;

/// The sub-folders, which hold the items that are changed and deleted, and nothing else.
constexpr const wchar_t* kContactsBelow = L"Contacts\\Below";
constexpr const wchar_t* kCalendarBelow = L"Calendar\\Below";

/// The field of a contact's company.
constexpr std::int32_t kCompanyField = 4004;

/// An element of a document that comes in.
CString Element(const wchar_t* name, const CString& text) {
    return CString::Format(L"<%s>%s</%s>", name, text.c_str(), name);
}

/// What is to be done, and with which item.
CString Identity(std::int32_t flag, const CString& id) {
    return Element(L"lFlag", CString::Format(L"%d", flag)) +
           (flag == kChangeAdd ? CString() : Element(L"PIMID", id));
}

/// A contact with the new name and, for a full one, the new details.
void MakeContactDocument(StoreState& state, std::int32_t flag, bool isFull) {
    PrepareItems(state);
    state.contact.Reset();
    state.flag = flag;
    CString fields;
    for (const std::int32_t field : {kFirstNameField, kLastNameField, kCompanyField}) {
        fields += Element(FindContactField(field)->in, kNewName);
    }
    if (isFull) {
        fields += DetailElements(state.picture);
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
    const int result = g_MAPIObject.WriteContacts(&state.contact);
    state.flagLeft = state.contact.m_lFlag;
    return result;
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

/// The details of the contact that was written, if one was.
void ExpectContactDetails(StoreState& state, const Outcome& outcome) {
    if (state.flagFound == 0 || state.flagLeft != 0 || outcome.storeLied) {
        return;
    }
    const ComPtr<IMessage> message =
        OpenMessageByHexId(g_MAPIObject.m_lpContactFolder.Get(), state.contact.m_strPIMID);
    if (message) {
        ExpectDetails(message.Get(), outcome);
    } else {
        EXPECT_FALSE(outcome.complete);
    }
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
    int result = 1;
    try {
        const ComApartmentHold apartment;
        ParseCalendarXml(state.incoming, state.calendar);
        state.flagFound = state.calendar.m_lFlag;
        result = g_MAPIObject.WriteCalendars(&state.calendar);
    } catch (const std::bad_alloc&) {
        result = 1;
    }
    state.flagLeft = state.calendar.m_lFlag;
    return result;
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

/// What was found to be done and is not to be done any more. Empty if nothing was found.
std::optional<bool> HasWritten(const StoreState& state) {
    return state.flagFound == 0 ? std::optional<bool>() : state.flagLeft == 0;
}

}  // namespace

std::vector<Operation> WriteOperations() {
    return {
        {.name = "AddContact",
         .firstLine = L"WriteContacts - Begin",
         .lastLine = L"WriteContacts - Finish",
         .successLine = L"AddContact - Finish(Succeeded)",
         .failureLine = L"AddContact - Finish(Failed)",
         .prepare = [](StoreState& state) { MakeContactDocument(state, kChangeAdd, false); },
         .run = WriteContact,
         .check = ExpectContactAdded,
         .succeeded = HasWritten},
        {.name = "ChangeContact",
         .firstLine = L"WriteContacts - Begin",
         .lastLine = L"WriteContacts - Finish",
         .successLine = L"UpdateContact - Finish(Succeeded)",
         .failureLine = L"UpdateContact - Finish(Failed)",
         .prepare = [](StoreState& state) { MakeContactDocument(state, kChangeUpdate, false); },
         .run = WriteContact,
         .check = ExpectContactChanged,
         .succeeded = HasWritten},
        {.name = "DeleteContact",
         .firstLine = L"WriteContacts - Begin",
         .lastLine = L"WriteContacts - Finish",
         .successLine = L"DeleteContact - Finish(Succeeded)",
         .failureLine = L"DeleteContact - Finish(Failed)",
         .prepare = [](StoreState& state) { MakeContactDocument(state, kChangeDelete, false); },
         .run = WriteContact,
         .check = ExpectContactDeleted,
         .succeeded = HasWritten},
        {.name = "AddFullContact",
         .firstLine = L"WriteContacts - Begin",
         .lastLine = L"WriteContacts - Finish",
         .successLine = L"AddContact - Finish(Succeeded)",
         .failureLine = L"AddContact - Finish(Failed)",
         .prepare = [](StoreState& state) { MakeContactDocument(state, kChangeAdd, true); },
         .run = WriteContact,
         .check =
             [](StoreState& state, const Outcome& outcome) {
                 ExpectContactAdded(state, outcome);
                 ExpectContactDetails(state, outcome);
             },
         .succeeded = HasWritten},
        {.name = "ChangeFullContact",
         .firstLine = L"WriteContacts - Begin",
         .lastLine = L"WriteContacts - Finish",
         .successLine = L"UpdateContact - Finish(Succeeded)",
         .failureLine = L"UpdateContact - Finish(Failed)",
         .prepare = [](StoreState& state) { MakeContactDocument(state, kChangeUpdate, true); },
         .run = WriteContact,
         .check =
             [](StoreState& state, const Outcome& outcome) {
                 ExpectContactChanged(state, outcome);
                 ExpectContactDetails(state, outcome);
             },
         .succeeded = HasWritten},
        {.name = "AddCalendar",
         .firstLine = L"WriteCalendars - Begin",
         .lastLine = L"WriteCalendars - Finish",
         .successLine = L"AddCalendar - Finish(Succeeded)",
         .failureLine = L"AddCalendar - Finish(Failed)",
         .prepare = [](StoreState& state) { MakeCalendarDocument(state, kChangeAdd); },
         .run = WriteCalendar,
         .check = ExpectCalendarAdded,
         .succeeded = HasWritten,
         .mostHandlesLeft = kZoneKeys},
        {.name = "ChangeCalendar",
         .firstLine = L"WriteCalendars - Begin",
         .lastLine = L"WriteCalendars - Finish",
         .successLine = L"UpdateCalendar - Finish(Succeeded)",
         .failureLine = L"UpdateCalendar - Finish(Failed)",
         .prepare = [](StoreState& state) { MakeCalendarDocument(state, kChangeUpdate); },
         .run = WriteCalendar,
         .check = ExpectCalendarChanged,
         .succeeded = HasWritten,
         .mostHandlesLeft = kZoneKeys},
        {.name = "DeleteCalendar",
         .firstLine = L"WriteCalendars - Begin",
         .lastLine = L"WriteCalendars - Finish",
         .successLine = L"DeleteCalendar - Finish(Succeeded)",
         .failureLine = L"DeleteCalendar - Finish(Failed)",
         .prepare = [](StoreState& state) { MakeCalendarDocument(state, kChangeDelete); },
         .run = WriteCalendar,
         .check = ExpectCalendarDeleted,
         .succeeded = HasWritten,
         .mostHandlesLeft = kZoneKeys},
    };
}
