#include <mapitags.h>

#include <new>

#include "calendar/calendar_xml_input.h"
#include "contacts/contact_fields.h"
#include "contacts/contact_xml_input.h"
#include "mapi/change_flags.h"
#include "mapi/store_entries.h"
#include "support/xml_parser.h"
#include "tests/faults/appointment_details.h"
#include "tests/faults/contact_details.h"
#include "tests/faults/preparations.h"

namespace {

constexpr int kSucceeded = 0;

/// The sub-folders, which hold the items that are changed and deleted, and nothing else.
constexpr const wchar_t* kContactsBelow = L"Contacts\\Below";
constexpr const wchar_t* kCalendarBelow = L"Calendar\\Below";

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

/// The same for an appointment.
void MakeCalendarDocument(StoreState& state, std::int32_t flag) {
    PrepareCalendars(state);
    state.calendar.Reset();
    state.flag = flag;
    state.incoming = Element(L"Calendar", Identity(flag, state.calendarId) + AppointmentElements());
}

int WriteContact(StoreState& state) {
    const ComApartmentHold apartment;
    ParseContactXml(state.incoming, state.contact);
    state.flagFound = state.contact.m_lFlag;
    const int result = g_MAPIObject.WriteContacts(&state.contact);
    state.flagLeft = state.contact.m_lFlag;
    return result;
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

/// The flag's bit is cleared when the write succeeded, which it must do if nothing failed, and cannot do if
/// the save or the deletion did not give 0. A flag that was not found in the document asks for nothing.
bool HasSucceeded(const StoreState& state, std::int32_t flag, const Outcome& outcome) {
    EXPECT_TRUE(state.flagFound == state.flag || (outcome.documentsFailed && state.flagFound == 0));
    EXPECT_TRUE(flag == 0 || !outcome.complete) << "flag " << flag;
    const bool succeeded = flag == 0 && state.flagFound != 0;
    if (outcome.commitFailed) {
        EXPECT_EQ(succeeded, outcome.storeLied);
    }
    return succeeded;
}

/// Whether what a write has to do is to be found in the store: what it warns of is done, and what it says it
/// did and did not is not.
bool IsDone(bool succeeded, const Outcome& outcome) {
    return outcome.commitFailed ? outcome.storeWarned : succeeded;
}

/// A kind of items that are written, and how.
struct ItemKind {
    const wchar_t* folder;
    const wchar_t* below;  ///< the folder of the item that is changed
    int (*write)(StoreState& state);
    std::int32_t (*flag)(const StoreState& state);
    /// The identifier that an add gave back, and that of the item that is changed.
    CString (*added)(const StoreState& state);
    CString (*changed)(const StoreState& state);
    void (*reset)(StoreState& state);
    /// Looks at all that was written in a message, which was added or else changed.
    void (*expect)(IMessage* message, const StoreState& state, bool wasAdded, const Outcome& outcome);
};

/// Opens a message of either kind.
ComPtr<IMessage> Open(const CString& id) {
    return OpenMessageByHexId(g_MAPIObject.m_lpContactFolder.Get(), id);
}

/// Expects a caller who repeats an add that failed and left its message to make a second one.
void ExpectSecondOnRepeat(StoreState& state, const ItemKind& kind) {
    const std::int32_t found = state.flagFound;
    const std::int32_t left = state.flagLeft;
    kind.reset(state);
    kind.write(state);
    EXPECT_EQ(kind.flag(state), 0);
    EXPECT_EQ(state.MessagesIn(kind.folder), kAllItems + 2);
    state.flagFound = found;
    state.flagLeft = left;
}

/// Expects one message more after an add that succeeded. One that failed has left none, or one whose
/// identifier memory was lacking for, which is then empty, or one whose save the store warned of; what it
/// holds is looked at all the same.
void ExpectAdded(StoreState& state, const ItemKind& kind, const Outcome& outcome) {
    EXPECT_TRUE(state.KeepsAllBut(nullptr));
    const bool succeeded = HasSucceeded(state, kind.flag(state), outcome);
    const std::size_t messages = state.MessagesIn(kind.folder);
    const CString id = kind.added(state);
    if (messages == kAllItems) {
        EXPECT_FALSE(IsDone(succeeded, outcome));
        return;
    }
    ASSERT_EQ(messages, kAllItems + 1);
    EXPECT_TRUE(IsDone(succeeded, outcome) || (outcome.memoryFailed && id.empty()));
    EXPECT_TRUE(!id.empty() || outcome.memoryFailed || (outcome.storeFailed && succeeded));
    const ComPtr<IMessage> message = Open(id.empty() ? state.AddedId() : id);
    ASSERT_TRUE(message);
    kind.expect(message.Get(), state, true, outcome);
    if (!succeeded) {
        ExpectSecondOnRepeat(state, kind);
    }
}

void ExpectChanged(StoreState& state, const ItemKind& kind, const Outcome& outcome) {
    EXPECT_EQ(state.MessagesIn(kind.folder), kAllItems);
    EXPECT_TRUE(state.KeepsAllBut(kind.below));
    if (!IsDone(HasSucceeded(state, kind.flag(state), outcome), outcome)) {
        EXPECT_TRUE(state.IsAsInTheBeginning());
        return;
    }
    const ComPtr<IMessage> message = Open(kind.changed(state));
    ASSERT_TRUE(message);
    kind.expect(message.Get(), state, false, outcome);
}

constexpr ItemKind kContact{
    .folder = L"Contacts",
    .below = kContactsBelow,
    .write = WriteContact,
    .flag = [](const StoreState& state) { return state.contact.m_lFlag; },
    .added = [](const StoreState& state) { return state.contact.m_strPIMID; },
    .changed = [](const StoreState& state) { return state.contactId; },
    .reset = [](StoreState& state) { state.contact.Reset(); },
    .expect = ExpectContact,
};

/// The same with details, which are looked at as well.
constexpr ItemKind FullContact() {
    ItemKind kind = kContact;
    kind.expect = ExpectFullContact;
    return kind;
}
constexpr ItemKind kFullContact = FullContact();

constexpr ItemKind kAppointment{
    .folder = L"Calendar",
    .below = kCalendarBelow,
    .write = WriteCalendar,
    .flag = [](const StoreState& state) { return state.calendar.m_lFlag; },
    .added = [](const StoreState& state) { return state.calendar.m_strPIMID; },
    .changed = [](const StoreState& state) { return state.calendarId; },
    .reset = [](StoreState& state) { state.calendar.Reset(); },
    .expect = ExpectAppointment,
};

/// The result of a write of a contact is 0. That of an appointment is 0, or 1 where the zones could not even
/// be looked for.
template<const ItemKind& Kind>
void ExpectAdd(StoreState& state, const Outcome& outcome) {
    EXPECT_TRUE(outcome.result == kSucceeded || (&Kind == &kAppointment && outcome.result == 1));
    ExpectAdded(state, Kind, outcome);
}

template<const ItemKind& Kind>
void ExpectChange(StoreState& state, const Outcome& outcome) {
    EXPECT_TRUE(outcome.result == kSucceeded || (&Kind == &kAppointment && outcome.result == 1));
    ExpectChanged(state, Kind, outcome);
}

/// Expects one message less after a deletion that was done, and otherwise all as they were.
void ExpectDeleted(const StoreState& state, std::size_t messages, bool succeeded, const Outcome& outcome) {
    if (IsDone(succeeded, outcome)) {
        EXPECT_EQ(messages, kAllItems - 1);
    } else {
        EXPECT_TRUE(state.IsAsInTheBeginning());
    }
}

void ExpectContactDeleted(StoreState& state, const Outcome& outcome) {
    EXPECT_EQ(outcome.result, kSucceeded);
    EXPECT_TRUE(state.KeepsAllBut(kContactsBelow));
    ExpectDeleted(state, state.MessagesIn(L"Contacts"), HasSucceeded(state, state.contact.m_lFlag, outcome),
                  outcome);
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
         .check = ExpectAdd<kContact>,
         .succeeded = HasWritten},
        {.name = "ChangeContact",
         .firstLine = L"WriteContacts - Begin",
         .lastLine = L"WriteContacts - Finish",
         .successLine = L"UpdateContact - Finish(Succeeded)",
         .failureLine = L"UpdateContact - Finish(Failed)",
         .prepare = [](StoreState& state) { MakeContactDocument(state, kChangeUpdate, false); },
         .run = WriteContact,
         .check = ExpectChange<kContact>,
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
         .check = ExpectAdd<kFullContact>,
         .succeeded = HasWritten},
        {.name = "ChangeFullContact",
         .firstLine = L"WriteContacts - Begin",
         .lastLine = L"WriteContacts - Finish",
         .successLine = L"UpdateContact - Finish(Succeeded)",
         .failureLine = L"UpdateContact - Finish(Failed)",
         .prepare = [](StoreState& state) { MakeContactDocument(state, kChangeUpdate, true); },
         .run = WriteContact,
         .check = ExpectChange<kFullContact>,
         .succeeded = HasWritten},
        {.name = "AddCalendar",
         .firstLine = L"WriteCalendars - Begin",
         .lastLine = L"WriteCalendars - Finish",
         .successLine = L"AddCalendar - Finish(Succeeded)",
         .failureLine = L"AddCalendar - Finish(Failed)",
         .prepare = [](StoreState& state) { MakeCalendarDocument(state, kChangeAdd); },
         .run = WriteCalendar,
         .check = ExpectAdd<kAppointment>,
         .succeeded = HasWritten,
         .mostHandlesLeft = kZoneKeys},
        {.name = "ChangeCalendar",
         .firstLine = L"WriteCalendars - Begin",
         .lastLine = L"WriteCalendars - Finish",
         .successLine = L"UpdateCalendar - Finish(Succeeded)",
         .failureLine = L"UpdateCalendar - Finish(Failed)",
         .prepare = [](StoreState& state) { MakeCalendarDocument(state, kChangeUpdate); },
         .run = WriteCalendar,
         .check = ExpectChange<kAppointment>,
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
