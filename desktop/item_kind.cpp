#include "desktop/item_kind.h"

#include <windows.h>

#include <rpc.h>

#include <algorithm>
#include <iterator>

#include "desktop/calendar_conversion.h"
#include "desktop/calendar_row.h"
#include "desktop/contact_conversion.h"
#include "desktop/contact_row.h"

extern "C" {
#include "command.h"
}

namespace {

const wchar_t* NoObjection(ItemDocument& /*document*/) {
    return nullptr;
}

constexpr ItemKind kKinds[] = {
    {L"contacts", L"contact", L"Contact", L"<id>", L"</id>", "[contact pim]", GetContactCount,
     SetContactFolder, ReadContacts, WriteContacts, ContactHeadings, ContactRow, NoObjection, IsWholeContact,
     ConvertContact},
    {L"calendars", L"calendar", L"Calendar", L"<id><event>", L"</event></id>", "[calendar pim]",
     GetCalendarCount, SetCalendarFolder, ReadCalendars, WriteCalendars, CalendarHeadings, CalendarRow,
     ObjectionToCalendar, IsWholeCalendar, ConvertCalendar},
};

}  // namespace

std::span<const ItemKind> ItemKinds() {
    return kKinds;
}

const ItemKind* FindItemKind(WideView word) {
    const auto* kind = std::find_if(std::begin(kKinds), std::end(kKinds),
                                    [word](const ItemKind& candidate) { return word == candidate.word; });
    return kind == std::end(kKinds) ? nullptr : kind;
}
