#pragma once

// The store's part of a read's floor: the calls that a read makes on the mail system, in their order and with
// their arguments, and nothing of what the agent does with the results. store_loop_test.cpp compares both.

#include <functional>
#include <string>

#include "require_result.h"
#include "support/owners.h"

namespace bench {

constexpr ULONG kAddressSet = 0x00062004;
constexpr ULONG kAppointmentSet = 0x00062002;
constexpr ULONG kCommonSet = 0x00062008;
constexpr ULONG kPublicStrings = 0x00020329;

/// A name of a property: by its number or, if there is a word, by that. 0 if the store does not know it.
ULONG TagOf(IMAPIProp* object, ULONG set, LONG number, const wchar_t* word = nullptr);

/// One property of an object; nothing if it is absent.
MapiBuffer<SPropValue> ValueOf(IMAPIProp* object, ULONG tag);
MapiBuffer<SPropValue> NamedValueOf(IMAPIProp* object, ULONG set, LONG number);

/// The same for values of types that a read looks into: false and 0 if it is absent.
bool NamedFlagOf(IMAPIProp* object, ULONG set, LONG number);
LONG NamedNumberOf(IMAPIProp* object, ULONG set, LONG number);

/// Reads a property as a stream to its end, in pieces.
void ReadStream(IMAPIProp* object, ULONG tag, ULONG pieceBytes);

/// A kind of item: the tags of its rows, the class of its messages, and what a read asks an open one for.
struct StoreLoop {
    const SPropTagArray* columns;
    const wchar_t* messageClass;
    void (*readMessage)(IMessage* message);
};

/// What is done with an open message and its number, from 0.
using MessageVisit = std::function<void(ComPtr<IMessage> message, std::size_t number)>;

/// Counts the items of a folder and opens them all, one after the other. Returns their number.
ULONG VisitWholeFolder(const StoreLoop& loop, IMAPIFolder* folder, const MessageVisit& visit);

/// The same with what a read asks each message for.
ULONG ReadWholeFolder(const StoreLoop& loop, IMAPIFolder* folder);

/// Counts the items of a folder and lists them, as a read of changes does that finds none. Returns their
/// number.
ULONG ListWholeFolder(const StoreLoop& loop, IMAPIFolder* folder);

extern const StoreLoop kContactLoop;
extern const StoreLoop kCalendarLoop;

constexpr ULONG kContactFolder = 0x36D10102;   // PR_IPM_CONTACT_ENTRYID
constexpr ULONG kCalendarFolder = 0x36D00102;  // PR_IPM_APPOINTMENT_ENTRYID

/// Loads the mail system's library and initialises it, for the rest of the process.
Library LoadMapi(const wchar_t* library);

/// The folder that the default store of a profile names by a property of its Inbox, as a logon finds it, with
/// the session behind it.
struct OpenedFolder {
    ComPtr<IMAPISession> session;
    ComPtr<IMsgStore> store;
    ComPtr<IMAPIFolder> folder;
};
OpenedFolder OpenDefaultFolder(const std::wstring& profile, ULONG tag);

}  // namespace bench
