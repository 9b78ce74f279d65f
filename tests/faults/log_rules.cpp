#include "tests/faults/log_rules.h"

#include <algorithm>
#include <string>
#include <utility>

namespace {

/// A line that stands in the log when something fails, as far as a sweep reaches it, without its line end. A
/// star stands for any text.
struct FailureLine {
    WideView operation;  ///< the word that the operation's first line begins with
    int level;
    WideView text;
};
constexpr FailureLine kFailureLines[] = {
    {L"MAPILogOn", 1, L"CMAPIObject::MAPILogOff : Begin"},
    {L"MAPILogOn", 1, L"CMAPIObject::MAPIRelease : Begin"},
    {L"MAPILogOn", 1, L"CMAPIObject::MAPIRelease - m_lpMAPISession->Logoff(*)"},
    {L"MAPILogOn", 1, L"CMAPIObject::MAPIRelease : Finish"},
    {L"MAPILogOn", 1, L"CMAPIObject::MAPIUninitialize : Begin"},
    {L"MAPILogOn", 1, L"CMAPIObject::MAPIUninitialize - pfnMAPIUninitialize(*)"},
    {L"MAPILogOn", 1, L"CMAPIObject::MAPIUninitialize : Finish"},
    {L"MAPILogOn", 1, L"CMAPIObject::MAPILogOff : Finish"},
    {L"MAPILogOn", 3, L"CMAPIObject::MAPILogOn - Failed"},
    {L"GetAppProfile", 3, L"CMAPIObject::GetAppProfile : Failed to Init XMLParser"},
    {L"GetAppProfile", 3, L"CMAPIObject::GetAppProfile : Failed to Create XMLParser's Header"},
    {L"GetAppProfile", 3, L"CMAPIObject::GetAppProfile : Failed to Create XMLParser's root node"},
    {L"GetAppProfile", 3, L"CMAPIObject::GetAppProfile : Failed to Save Profiles"},
    {L"GetAppFolder", 3, L"CMAPIObject::GetAppFolder : Failed to Init XMLParser"},
    {L"GetAppFolder", 3, L"CMAPIObject::GetAppFolder : Failed to Create XMLParser's Header"},
    {L"GetAppFolder", 3, L"CMAPIObject::GetAppFolder : Failed to Create XMLParser's root node"},
    {L"GetAppFolder", 3, L"CMAPIObject::GetAppFolder : Failed to Save Folders"},
    {L"GetAppProfile", 3, L"CMAPIObject::GetAppProfile : NULL lpProfAdmin"},
    {L"GetAppFolder", 3, L"CMAPIObject::GetAppFolderFromStore - Failed to create node"},
    {L"GetAppFolder", 3, L"CMAPIObject::GetAppFolderFromFolder - Interrupted or INVALID Parameter"},
    {L"GetAppFolder", 3, L"CMAPIObject::GetAppFolderFromFolder - OpenEntry Failed or NULL lpContainer"},
    {L"SetContactFolder", 3, L"CMAPIObject::SetContactFolder - Failed to get contact folder"},
    {L"SetCalendarFolder", 3, L"CMAPIObject::SetCalendarFolder - Failed to get event folder"},
    {L"GetContactCount", 3, L"CMAPIObject::GetContactCountFromFolder - INVALID Parameter"},
    {L"ReadContacts", 3, L"CMAPIObject::GetContactCountFromFolder - INVALID Parameter"},
    {L"GetCalendarCount", 3, L"CMAPIObject::GetCalendarEventCountFromFolder - NULL or INVALID Parameter"},
    {L"GetCalendarCount", 3,
     L"CMAPIObject::GetCalendarEventCountFromFolder - OpenEntry Failed or NULL lpContainer"},
    {L"ReadCalendars", 3, L"CMAPIObject::GetCalendarEventCountFromFolder - NULL or INVALID Parameter"},
    {L"ReadCalendars", 3,
     L"CMAPIObject::GetCalendarEventCountFromFolder - OpenEntry Failed or NULL lpContainer"},
    {L"ReadContacts", 3, L"Xml to calnedaex - failed"},
    {L"ReadContacts", 3, L"CMAPIObject::ReadContacts - Failed to GetProps or NULL lpPropValues"},
    {L"ReadContacts", 3, L"CMAPIObject::ReadContactFromFolder - Interrupted or INVALID Parameter"},
    {L"ReadContacts", 3, L"CMAPIObject::ReadContactFromFolder - OpenEntry Failed or NULL lpContainer"},
    {L"ReadContacts", 3, L"CMAPIObject::ReadContactLogFromFolder - Interrupted or INVALID Parameter"},
    {L"ReadContacts", 3, L"CMAPIObject::ReadContactLogFromFolder - OpenEntry Failed or NULL lpContainer"},
    {L"ReadContacts", 3, L"The map file * The next comparison finds the same changes again."},
    {L"ReadContacts", 3, L"The map file * All items count as new, and it stays as it is."},
    {L"ReadContacts", 3, L"There is no memory for a comparison of *.map."},
    {L"ReadContacts", 3, L"There is no memory for writing the map file *.map."},
    {L"ReadCalendars", 3, L"Xml to calnedaex - failed"},
    {L"ReadCalendars", 3, L"CMAPIObject::ReadContacts - Failed to GetProps or NULL lpPropValues"},
    {L"ReadCalendars", 3, L"CMAPIObject::ReadCalendarEventFromFolder - Interrupted or INVALID Parameter"},
    {L"ReadCalendars", 3, L"CMAPIObject::ReadCalendarEventFromFolder - OpenEntry Failed or NULL lpContainer"},
    {L"ReadCalendars", 3, L"CMAPIObject::ReadCalendarEventLogFromFolder - Interrupted or INVALID Parameter"},
    {L"ReadCalendars", 3,
     L"CMAPIObject::ReadCalendarEventLogFromFolder - OpenEntry Failed or NULL lpContainer"},
    {L"ReadCalendars", 3, L"The map file * The next comparison finds the same changes again."},
    {L"ReadCalendars", 3, L"The map file * All items count as new, and it stays as it is."},
    {L"ReadCalendars", 3, L"There is no memory for a comparison of *.map."},
    {L"ReadCalendars", 3, L"There is no memory for writing the map file *.map."},
    {L"ReadContacts", 3, L"CMAPIObject::ReadContacts - Failed to read contacts from folder"},
    {L"ReadContacts", 3, L"CMAPIObject::ReadContacts - Failed to read contacts from log"},
    {L"ReadContacts", 3, L"CMAPIObject::ReadContacts - No Change"},
    {L"ReadContacts", 3, L"CMAPIObject::ReadContactFromLog - NULL lpPropValues"},
    // Without its old map a comparison finds all items new.
    {L"ReadContacts", 1, L"CMAPIObject::ReadContactFromLog - New(*)"},
    {L"ReadCalendars", 1, L"CMAPIObject::ReadCalendarEventFromLog - New(*)"},
    {L"ReadContacts", 1, L"contact, pim: * gone."},
    {L"ReadCalendars", 1, L"calendar, pim: * gone."},
    {L"ReadContacts", 3, L"MAPISendBackOneContact Excetipion"},
    {L"ReadCalendars", 3, L"CMAPIObject::ReadContacts - Failed"},
    {L"ReadCalendars", 3, L"CMAPIObject::ReadContacts - Failed to read calendars from log"},
    {L"ReadCalendars", 3, L"CMAPIObject::ReadCalendarEvent - No Calendar to Read"},
    {L"ReadCalendars", 3, L"CMAPIObject::ReadCalendarEvent - Failed to read from folder"},
    {L"ReadCalendars", 3, L"CMAPIObject::ReadCalendarEvent - Failed to read from log"},
    {L"ReadCalendars", 3, L"CMAPIObject::ReadCalendarEvent - No Change"},
    {L"ReadCalendars", 3, L"CMAPIObject::ReadCalendarEventFromLog - NULL lpPropValues"},
    {L"ReadCalendars", 3, L"MAPISendBackOneCalenda Excetipion"},
};

WideView WithoutLineEnd(WideView text) {
    return text.ends_with(L"\r\n") ? text.substr(0, text.size() - 2) : text;
}

/// A text without what stands in parentheses at its end.
WideView WithoutValue(const CString& text) {
    const WideView view = text;
    constexpr WideView end = L")\r\n";
    return view.ends_with(end) ? view.substr(0, view.rfind(L'(')) : view;
}

bool IsSameBeforeTheValue(const LogLine& a, const LogLine& b) {
    return a.level == b.level && WithoutValue(a.text) == WithoutValue(b.text);
}

/// The result that a line tells of a call of the mail system. That of the end of the mail system has none,
/// and its line tells the thread's last error.
std::optional<std::uint32_t> ToldResult(const CString& text) {
    constexpr WideView start = L"(0X";
    constexpr WideView end = L")\r\n";
    constexpr std::size_t digits = 8;
    constexpr std::size_t length = start.size() + digits + end.size();
    const WideView view = text;
    if (view.size() < length || view.find(L" - pfnMAPIUninitialize(") != WideView::npos) {
        return std::nullopt;
    }
    const WideView value = view.substr(view.size() - length);
    const std::wstring number(value.substr(start.size(), digits));
    if (!value.starts_with(start) || !value.ends_with(end) ||
        number.find_first_not_of(L"0123456789ABCDEF") != std::wstring::npos) {
        return std::nullopt;
    }
    constexpr int hexadecimal = 16;
    return static_cast<std::uint32_t>(std::stoull(number, nullptr, hexadecimal));
}

std::size_t LinesBefore(const Outcome& outcome, std::size_t call) {
    return static_cast<std::size_t>(
        std::ranges::count_if(outcome.callsBefore, [&](std::size_t begun) { return begun < call; }));
}

LogLines FirstLines(const LogLines& log, std::size_t count) {
    return {log.begin(), log.begin() + static_cast<std::ptrdiff_t>(std::min(count, log.size()))};
}

}  // namespace

bool IsLike(WideView text, WideView pattern) {
    const std::size_t star = pattern.find(L'*');
    if (star == WideView::npos) {
        return text == pattern;
    }
    const WideView first = pattern.substr(0, star);
    const WideView last = pattern.substr(star + 1);
    return text.size() >= first.size() + last.size() && text.starts_with(first) && text.ends_with(last);
}

LogRules::LogRules(const Operation& operation, Outcome clean)
    : m_operation(CString(operation.firstLine)), m_clean(std::move(clean)) {}

bool LogRules::IsFailureLine(const LogLine& line) const {
    return std::ranges::any_of(kFailureLines, [&](const FailureLine& known) {
        return m_operation.starts_with(known.operation) && line.level == known.level &&
               IsLike(WithoutLineEnd(line.text), known.text);
    });
}

std::optional<LogLine> LogRules::Stray(const LogLines& lines) const {
    auto next = m_clean.log.begin();
    for (const LogLine& line : lines) {
        const auto found = std::find_if(
            next, m_clean.log.end(), [&](const LogLine& clean) { return IsSameBeforeTheValue(line, clean); });
        if (found != m_clean.log.end()) {
            next = found + 1;
        } else if (!IsFailureLine(line)) {
            return line;
        }
    }
    return std::nullopt;
}

void LogRules::ExpectStoreFailure(const Outcome& outcome, std::size_t n, std::uint32_t code) const {
    const std::size_t before = LinesBefore(m_clean, n);
    EXPECT_EQ(LinesBefore(outcome, n), before);
    LogLines wanted = FirstLines(m_clean.log, LinesBefore(m_clean, n + 1));
    const auto told = std::find_if(wanted.begin() + static_cast<std::ptrdiff_t>(before), wanted.end(),
                                   [](const LogLine& line) { return ToldResult(line.text).has_value(); });
    if (told == wanted.end()) {
        wanted.resize(before);
    } else {
        told->text = CString(WithoutValue(told->text)) + CString::Format(L"(0X%08X)\r\n", code);
        wanted.erase(told + 1, wanted.end());
    }
    EXPECT_EQ(FirstLines(outcome.log, wanted.size()), wanted);
    for (const LogLine& line : outcome.log) {
        const std::uint32_t result = ToldResult(line.text).value_or(0);
        EXPECT_TRUE(result == 0 || result == code) << testing::PrintToString(line);
    }
}

void ExpectOutcomeLine(const Operation& operation, const LogLines& log, std::optional<bool> succeeded,
                       bool mayLack) {
    if (operation.successLine == nullptr) {
        return;
    }
    const auto count = [&](const wchar_t* line) {
        const CString text = CString::Format(L"CMAPIObject::%s\r\n", line);
        return std::ranges::count(log, text, &LogLine::text);
    };
    const auto successes = count(operation.successLine);
    const auto failures = count(operation.failureLine);
    EXPECT_LE(successes, succeeded == true ? 1 : 0);
    EXPECT_LE(failures, succeeded == false ? 1 : 0);
    EXPECT_TRUE(mayLack || successes + failures == (succeeded ? 1 : 0));
}
