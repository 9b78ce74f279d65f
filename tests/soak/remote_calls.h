#pragma once

// The agent's remote procedures as calls of a program that makes many of them. A remote call that fails
// throws RpcFailure; what the agent refuses throws std::runtime_error where that is said.

#include <string>

#include "command.h"

using TextCall = void (*)(wchar_t* text, long* status);
using ReadCall = void (*)(wchar_t* ignored, wchar_t* map, long* status);
using CountCall = void (*)(long* count, long* status);
using WriteCall = void (*)(wchar_t* xml, wchar_t* id, wchar_t* time, long* status);

/// A kind of item, and what is written of it.
struct Kind {
    const wchar_t* root;
    const wchar_t* texts;
    CountCall count;
    ReadCall read;
    WriteCall write;
    const wchar_t* map;  ///< the name of a map file
};

inline constexpr Kind kKinds[] = {
    {L"Contact", L"<FirstName>Ada</FirstName><LastName>Lovelace</LastName><Email1>ada@example.org</Email1>",
     GetContactCount, ReadContacts, WriteContacts, L"contacts.map"},
    {L"Calendar",
     L"<lCalType>3</lCalType><Description>Review</Description><dtStartTime>05/10/2010 10:00:00</dtStartTime>"
     L"<dtEndTime>05/10/2010 "
     L"11:00:00</dtEndTime><lRecurType>2</lRecurType><lRecurWeekMask>2</lRecurWeekMask>",
     GetCalendarCount, ReadCalendars, WriteCalendars, L"calendars.map"},
};

/// Returns the status of a procedure that takes a text.
long CallWithText(TextCall procedure, std::wstring text);

/// Reads all items for an empty map, or what changed. Returns the status.
long Read(const Kind& kind, std::wstring map);

/// Throws std::runtime_error unless all is read.
void RequireRead(const Kind& kind, const std::wstring& map);

/// Returns the number of items, which is 0 without a session too. Throws std::runtime_error for a status.
long Count(const Kind& kind);

/// Throws std::runtime_error if the logon is refused.
void LogOn();

void LogOff();

/// Adds an item. Returns its identifier, without which a caller could not go on with it: throws
/// std::runtime_error if none comes back. All writes throw it for a status.
std::wstring Add(const Kind& kind);

void Change(const Kind& kind, const std::wstring& id);

void Delete(const Kind& kind, const std::wstring& id);
