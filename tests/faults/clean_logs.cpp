#include "tests/faults/clean_logs.h"

#include <algorithm>
#include <map>
#include <string_view>
#include <vector>

#include "tests/faults/log_rules.h"
#include "tests/unit/text_printer.h"

namespace {

constexpr int kCourse = 1;
constexpr int kDecision = 3;

/// Puts the lines together. A star stands for an identifier, or for the thread's last error, which is what
/// any call in front of it left.
class Lines {
  public:
    Lines& Add(const CString& text, int level = kCourse) {
        return AddBare(CString(L"CMAPIObject::") + text, level);
    }
    /// A line that does not name the agent's class.
    Lines& AddBare(const CString& text, int level = kCourse) {
        m_lines.push_back({level, text + L"\r\n"});
        return *this;
    }
    /// A call of the mail system that gave 0.
    Lines& Call(const CString& text) { return Add(text + L"(0X00000000)"); }
    [[nodiscard]] const LogLines& All() const { return m_lines; }

  private:
    LogLines m_lines;
};

void AddOpeningOfSession(Lines& lines) {
    lines.Call(L"MAPILogOn - MAPILogonEx")
        .Call(L"MAPILogOn - m_lpMAPISession->GetMsgStoresTable")
        .Call(L"MAPILogOn - pfnHrQueryAllRows")
        .Call(L"MAPILogOn - m_lpMAPISession->OpenMsgStore")
        .Add(L"MAPILogOn - Finish(Succeeded)");
}

void AddFirstLogOn(Lines& lines, const wchar_t* profile) {
    lines.Add(CString::Format(L"MAPILogOn - Begin ---------ProfileName(%s)", profile))
        .Add(L"MAPILogOn - MAPIInitialize(Succeeded)")
        .Add(L"MAPIRelease : Begin")
        .Add(L"MAPIRelease : Finish");
    AddOpeningOfSession(lines);
}

void AddEndOfSession(Lines& lines) {
    lines.Add(L"MAPIRelease : Begin")
        .Call(L"MAPIRelease - m_lpMAPISession->Logoff")
        .Add(L"MAPIRelease : Finish");
}

void LogOn(Lines& lines, const StoreState& /*state*/) {
    AddFirstLogOn(lines, L"Work");
}

void LogOnDefault(Lines& lines, const StoreState& /*state*/) {
    AddFirstLogOn(lines, L"");
}

void LogOnAgain(Lines& lines, const StoreState& /*state*/) {
    lines.Add(L"MAPILogOn - Begin ---------ProfileName(Work)").Add(L"MAPILogOn - MAPIInitialize(Succeeded)");
    AddEndOfSession(lines);
    AddOpeningOfSession(lines);
}

void LogOff(Lines& lines, const StoreState& /*state*/) {
    lines.Add(L"MAPILogOff : Begin");
    AddEndOfSession(lines);
    lines.Add(L"MAPIUninitialize : Begin")
        .Add(L"MAPIUninitialize - pfnMAPIUninitialize(0X*)")
        .Add(L"MAPIUninitialize : Finish")
        .Add(L"MAPILogOff : Finish");
}

void Profiles(Lines& lines, const StoreState& /*state*/) {
    lines.Add(L"GetAppProfile : Begin")
        .Call(L"GetAppProfile - pfnHrQueryAllRows")
        .Add(L"GetAppProfile : Finish(0)");
}

/// The list of one folder, with some below it that have none.
void AddListed(Lines& lines, int subFolders) {
    lines.Add(L"GetAppFolderFromFolder - Begin")
        .Call(L"GetAppFolderFromFolder - lpMsgStore->OpenEntry")
        .Call(L"GetAppFolderFromFolder - lpContainer->GetHierarchyTable")
        .Call(L"GetAppFolderFromFolder - pfnHrQueryAllRows");
    for (int i = 0; i < subFolders; ++i) {
        AddListed(lines, 0);
    }
    lines.Add(L"GetAppFolderFromFolder - Finish(Succeeded)");
}

/// Below the store's upper folder the calendar and the contacts have one each and the inbox none.
void Folders(Lines& lines, const StoreState& /*state*/) {
    lines.Add(L"GetAppFolder : Begin")
        .Call(L"GetAppFolder - m_lpMAPISession->GetMsgStoresTable")
        .Call(L"GetAppFolder - pfnHrQueryAllRows")
        .Add(L"GetAppFolderFromStore - Begin")
        .Call(L"GetAppFolderFromStore - m_lpMAPISession->OpenMsgStore")
        .Add(L"GetAppFolderFromFolder - Begin")
        .Call(L"GetAppFolderFromFolder - lpMsgStore->OpenEntry")
        .Call(L"GetAppFolderFromFolder - lpContainer->GetHierarchyTable")
        .Call(L"GetAppFolderFromFolder - pfnHrQueryAllRows");
    for (const int subFolders : {1, 1, 0}) {
        AddListed(lines, subFolders);
    }
    lines.Add(L"GetAppFolderFromFolder - Finish(Succeeded)")
        .Add(L"GetAppFolderFromStore - Finish(Succeeded)")
        .Add(L"GetAppFolder : Finish(0)");
}

/// The search for a folder by the identifier that a selection holds between tags.
void AddSearch(Lines& lines, const CString& selection) {
    const std::size_t start = selection.find(L'>', selection.starts_with(L"<id><event>") ? 4 : 0) + 1;
    const CString id(selection.substr(start, selection.find(L"</") - start));
    lines.Add(L"GetOutlookFolderFromEntryID - Begin")
        .Add(L"GetOutlookFolderFromEntryID - " + id)
        .Call(L"GetOutlookFolderFromEntryID - m_lpMAPISession->GetMsgStoresTable")
        .Call(L"GetOutlookFolderFromEntryID - pfnHrQueryAllRows")
        .Call(L"GetOutlookFolderFromEntryID - m_lpMAPISession->OpenMsgStore")
        .Add(L"GetOutlookFolderFromEntryID - Finish");
}

/// A choice, of a default folder without a selection. The first line of that of calendars says "Finish".
void AddChoice(Lines& lines, const wchar_t* firstLine, const wchar_t* lastLine, const CString& selection) {
    lines.Add(firstLine).Add(L"GetOutlookFolder - Begin");
    if (!selection.empty()) {
        AddSearch(lines, selection);
    }
    lines.Add(L"GetOutlookFolder - Finish").Add(lastLine);
}

void AddContactChoice(Lines& lines, const CString& selection) {
    AddChoice(lines, L"SetContactFolder - Begin", L"SetContactFolder - Finish(0)", selection);
}

void AddCalendarChoice(Lines& lines, const CString& selection) {
    AddChoice(lines, L"SetCalendarFolder - Finish", L"SetCalendarFolder - Finish(0)", selection);
}

/// A walk through a folder and the one below it, and the words in which its lines differ from others.
struct Walk {
    const wchar_t* operation = nullptr;
    const wchar_t* opener = nullptr;
    const wchar_t* firstLine = L"Begin";
    const wchar_t* beforeSubFolders = nullptr;
    const wchar_t* lastLine = L"Finish(Succeeded)";
};
constexpr Walk kContactCount{.operation = L"GetContactCountFromFolder",
                             .opener = L"m_lpContactFolder",
                             .beforeSubFolders = L"Get Count from SubFolder",
                             .lastLine = L"Finish"};
constexpr Walk kCalendarCount{
    .operation = L"GetCalendarEventCountFromFolder", .opener = L"m_lpEventFolder", .lastLine = L"Finish"};
constexpr Walk kContactRead{.operation = L"ReadContactFromFolder", .opener = L"m_lpContactFolder"};
constexpr Walk kCalendarRead{
    .operation = L"ReadCalendarEventFromFolder", .opener = L"m_lpEventFolder", .firstLine = L"Finish"};
constexpr Walk kContactLog{.operation = L"ReadContactLogFromFolder", .opener = L"m_lpContactFolder"};
constexpr Walk kCalendarLog{.operation = L"ReadCalendarEventLogFromFolder", .opener = L"m_lpEventFolder"};

void AddWalk(Lines& lines, const Walk& walk, int foldersBelow = 1) {
    const CString start = CString(walk.operation) + L" - ";
    lines.Add(start + walk.firstLine)
        .Call(start + walk.opener + L"->OpenEntry")
        .Call(start + L"lpContainer->GetContentsTable")
        .Call(start + L"pfnHrQueryAllRows");
    if (walk.beforeSubFolders != nullptr) {
        lines.Add(start + walk.beforeSubFolders);
    }
    lines.Call(start + L"lpContainer->GetHierarchyTable").Call(start + L"pfnHrQueryAllRows");
    if (foldersBelow != 0) {
        AddWalk(lines, walk, foldersBelow - 1);
    }
    lines.Add(start + walk.lastLine);
}

void CountContacts(Lines& lines, const StoreState& /*state*/) {
    lines.Add(L"GetContactCount - Begin").Call(L"GetContactCount - GetProps");
    AddWalk(lines, kContactCount);
    lines.Add(L"GetContactCount - Finish");
}

void CountCalendars(Lines& lines, const StoreState& /*state*/) {
    lines.Add(L"GetCalendarCount - Begin")
        .Add(L"GetCalendarEventCount - Begin")
        .Call(L"GetCalendarEventCount - m_lpEventFolder->GetProps");
    AddWalk(lines, kCalendarCount);
    lines.Add(L"GetCalendarEventCount - Finish").Add(L"GetCalendarCount - Finish");
}

void AddBeginOfContactRead(Lines& lines, const StoreState& state) {
    lines.Add(L"ReadContacts - Begin");
    CountContacts(lines, state);
    lines.Add(L"ReadContacts - Contact Count(3)").Call(L"ReadContacts - m_lpContactFolder->GetProps");
}

void ReadContacts(Lines& lines, const StoreState& state) {
    AddBeginOfContactRead(lines, state);
    lines.Add(L"ReadContacts - Read All Items(NULL lParam1)", kDecision);
    AddWalk(lines, kContactRead);
    lines.Add(L"ReadContacts - Finish");
}

void ReadContactChanges(Lines& lines, const StoreState& state) {
    AddBeginOfContactRead(lines, state);
    lines.Add(L"ReadContacts - Read Changed Items(" + state.contactMap + L")");
    AddWalk(lines, kContactLog);
    lines.Add(L"ReadContacts - Call GetChangeLog")
        .AddBare(L"contact, pim: 3 items, 1 new, 1 changed, 1 gone.")
        .Add(L"ReadContacts - Read Changes")
        .Add(L"ReadContactFromLog - Begin")
        .Add(L"ReadContactFromLog - New(*)")
        .Add(L"ReadContactFromLog - Update(*)")
        .Add(CString::Format(L"ReadContactFromLog - Delete(%s)", kGoneId))
        .Add(L"ReadContactFromLog - Finish(Succeeded)")
        .Add(L"ReadContacts - Finish");
}

/// Two of the lines name the reading of contacts.
void AddBeginOfCalendarRead(Lines& lines, const StoreState& state) {
    lines.Add(L"ReadCalendars - Begin");
    CountCalendars(lines, state);
    lines.Add(L"ReadCalenda - Calendar Count(3)")
        .Add(L"ReadCalendarEvent - Begin")
        .Call(L"ReadContacts - m_lpEventFolder->GetProps");
}

void AddEndOfCalendarRead(Lines& lines) {
    lines.Add(L"before pfnfreeBuffer")
        .Add(L"ReadCalendarEvent - Finish(Succeeded)")
        .Add(L"ReadContacts - Succeeded")
        .Add(L"ReadCalendars - Finish");
}

void ReadCalendars(Lines& lines, const StoreState& state) {
    AddBeginOfCalendarRead(lines, state);
    lines.Add(L"ReadCalendarEvent - NULL lParam1", kDecision);
    AddWalk(lines, kCalendarRead);
    AddEndOfCalendarRead(lines);
}

void ReadCalendarChanges(Lines& lines, const StoreState& state) {
    AddBeginOfCalendarRead(lines, state);
    lines.Add(L"ReadCalendarEvent - Map File(" + state.calendarMap + L")");
    AddWalk(lines, kCalendarLog);
    lines.Add(L"ReadCalendarEvent - Call GetChangeLog", kDecision)
        .AddBare(L"calendar, pim: 3 items, 1 new, 1 changed, 1 gone.")
        .Add(L"ReadCalendarEvent - Read Changes")
        .Add(L"ReadCalendarEventFromLog - Begin")
        .Add(L"ReadCalendarEventFromLog - New(*)")
        .Add(L"ReadCalendarEventFromLog - Update(*)")
        .Add(CString::Format(L"ReadCalendarEventFromLog - Delete(%s)", kGoneId))
        // The three that are there and the one that is gone.
        .Add(L"total item 4 delete index - 3")
        .Add(L"ReadCalendarEventFromLog - Finish(Succeeded)")
        .Add(L"before logArrayRemoveall");
    AddEndOfCalendarRead(lines);
}

/// Operations that lie in each other, each between its two lines, in a write of this name.
void AddNested(Lines& lines, const CString& write, const std::vector<CString>& operations) {
    lines.Add(write + L" - Begin");
    for (const CString& operation : operations) {
        lines.Add(operation + L" - Begin");
    }
    std::for_each(operations.rbegin(), operations.rend(),
                  [&](const CString& operation) { lines.Add(operation + L" - Finish(Succeeded)"); });
    lines.Add(write + L" - Finish");
}

void AddContact(Lines& lines, const StoreState& /*state*/) {
    AddNested(lines, L"WriteContacts", {L"AddContact", L"UpdateContactMessage", L"UpdateContactDisplayName"});
}

void ChangeContact(Lines& lines, const StoreState& /*state*/) {
    AddNested(lines, L"WriteContacts",
              {L"UpdateContact", L"UpdateContactMessage", L"UpdateContactDisplayName"});
}

using Adder = void (*)(Lines& lines, const StoreState& state);

/// The lines of each operation, by its name.
const std::map<std::string_view, Adder> kLogs{
    {"LogOn", LogOn},
    {"LogOnDefault", LogOnDefault},
    {"LogOnAgain", LogOnAgain},
    {"LogOff", LogOff},
    {"Profiles", Profiles},
    {"Folders", Folders},
    {"ChooseContacts",
     [](Lines& lines, const StoreState& state) { AddContactChoice(lines, state.contactSelection); }},
    {"ChooseCalendars",
     [](Lines& lines, const StoreState& state) { AddCalendarChoice(lines, state.calendarSelection); }},
    {"ChooseDefaultContacts", [](Lines& lines, const StoreState&) { AddContactChoice(lines, {}); }},
    {"ChooseDefaultCalendars", [](Lines& lines, const StoreState&) { AddCalendarChoice(lines, {}); }},
    {"CountContacts", CountContacts},
    {"CountCalendars", CountCalendars},
    {"ReadContacts", ReadContacts},
    {"ReadCalendars", ReadCalendars},
    {"ReadContactChanges", ReadContactChanges},
    {"ReadCalendarChanges", ReadCalendarChanges},
    {"AddContact", AddContact},
    {"ChangeContact", ChangeContact},
    {"DeleteContact",
     [](Lines& lines, const StoreState&) { AddNested(lines, L"WriteContacts", {L"DeleteContact"}); }},
    {"AddFullContact", AddContact},
    {"ChangeFullContact", ChangeContact},
    {"AddCalendar",
     [](Lines& lines, const StoreState&) {
         AddNested(lines, L"WriteCalendars",
                   {L"AddCalendar", L"AddCalendarEvent", L"UpdateCalendarEventMessage"});
     }},
    {"ChangeCalendar",
     [](Lines& lines, const StoreState&) {
         AddNested(lines, L"WriteCalendars",
                   {L"UpdateCalendar", L"UpdateCalendarEvent", L"UpdateCalendarEventMessage"});
     }},
    {"DeleteCalendar",
     [](Lines& lines, const StoreState&) { AddNested(lines, L"WriteCalendars", {L"DeleteCalendar"}); }},
};

bool IsExpected(const LogLine& expected, const LogLine& line) {
    return expected.level == line.level && IsLike(line.text, expected.text);
}

}  // namespace

void ExpectCleanLog(const Operation& operation, const StoreState& state, const LogLines& log) {
    Lines lines;
    kLogs.at(operation.name)(lines, state);
    const LogLines& expected = lines.All();
    const auto [wanted, found] = std::ranges::mismatch(expected, log, IsExpected);
    EXPECT_TRUE(wanted == expected.end() && found == log.end())
        << "at line " << found - log.begin() + 1 << ": "
        << (found == log.end() ? "no line" : testing::PrintToString(*found)) << " in place of "
        << (wanted == expected.end() ? "none" : testing::PrintToString(*wanted));
}
