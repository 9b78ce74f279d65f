#pragma once

// What the tests of reading calendar folders share.

#include "tests/unit/store/appointment_fixture.h"
#include "tests/unit/store/reading_fixture.h"

class CalendarReading : public ReadingTest {
  protected:
    /// Adds appointments, which a table lists by their subjects.
    void AddAppointments(const std::wstring& folder, const std::vector<const wchar_t*>& subjects) {
        localstore::recorder::SetRoot(m_root);
        FolderWriter writer(L"Work", folder);
        for (const wchar_t* subject : subjects) {
            NewAppointment(writer, subject).Save();
        }
    }
    /// Adds a message of another class.
    static void AddMessage(const wchar_t* messageClass) {
        FolderWriter writer(L"Work", L"Calendar");
        FolderWriter::Save(
            writer.NewMessage(messageClass, PropertyValues().Text(PR_SUBJECT_W, L"Neighbour")).Get());
    }
    static std::vector<CString> Subjects(const std::vector<CString>& documents) {
        std::vector<CString> subjects;
        subjects.reserve(documents.size());
        for (const CString& document : documents) {
            subjects.push_back(TextBetween(document, L"<Description>", L"</Description>"));
        }
        return subjects;
    }
    static CString TextBetween(const CString& text, const wchar_t* from, const wchar_t* to) {
        const std::size_t start = text.find(from);
        const std::size_t end = text.find(to);
        const std::size_t length = CString(from).size();
        return start == CString::npos || end == CString::npos
                   ? CString(L"(none)")
                   : CString(text.substr(start + length, end - start - length));
    }
    /// The lines of an event count of a folder without sub-folders.
    static LogLines EventCountLines() {
        return {
            {1, L"CMAPIObject::GetCalendarEventCount - Begin\r\n"},
            {1, L"CMAPIObject::GetCalendarEventCount - m_lpEventFolder->GetProps(0X00000000)\r\n"},
            {1, L"CMAPIObject::GetCalendarEventCountFromFolder - Begin\r\n"},
            {1, L"CMAPIObject::GetCalendarEventCountFromFolder - m_lpEventFolder->OpenEntry(0X00000000)\r\n"},
            {1,
             L"CMAPIObject::GetCalendarEventCountFromFolder - lpContainer->GetContentsTable(0X00000000)\r\n"},
            {1, L"CMAPIObject::GetCalendarEventCountFromFolder - pfnHrQueryAllRows(0X00000000)\r\n"},
            {1, L"CMAPIObject::GetCalendarEventCountFromFolder - Finish\r\n"},
            {1, L"CMAPIObject::GetCalendarEventCount - Finish\r\n"}};
    }
    /// The lines of a read up to the properties of the folder.
    static LogLines FirstLines(int count) {
        LogLines lines{{1, L"CMAPIObject::ReadCalendars - Begin\r\n"},
                       {1, L"CMAPIObject::GetCalendarCount - Begin\r\n"}};
        Append(lines, EventCountLines());
        Append(lines, {{1, L"CMAPIObject::GetCalendarCount - Finish\r\n"},
                       {1, CString::Format(L"CMAPIObject::ReadCalenda - Calendar Count(%d)\r\n", count)},
                       {1, L"CMAPIObject::ReadCalendarEvent - Begin\r\n"},
                       {1, L"CMAPIObject::ReadContacts - m_lpEventFolder->GetProps(0X00000000)\r\n"}});
        return lines;
    }
    /// The lines of a read that succeeds behind the folder.
    static LogLines LastLines() {
        return {{1, L"CMAPIObject::before pfnfreeBuffer\r\n"},
                {1, L"CMAPIObject::ReadCalendarEvent - Finish(Succeeded)\r\n"},
                {1, L"CMAPIObject::ReadContacts - Succeeded\r\n"},
                {1, L"CMAPIObject::ReadCalendars - Finish\r\n"}};
    }
    /// The lines of a full read that fails behind the folder, which is told by its last line.
    static LogLines LastLinesOfAFailedRead(const wchar_t* outcome = L"Failed") {
        return {{3, L"CMAPIObject::ReadCalendarEvent - Failed to read from folder\r\n"},
                {1, L"CMAPIObject::before pfnfreeBuffer\r\n"},
                {1, L"CMAPIObject::ReadCalendarEvent - Finish(Failed)\r\n"},
                {3, CString::Format(L"CMAPIObject::ReadContacts - %s\r\n", outcome)},
                {1, L"CMAPIObject::ReadCalendars - Finish\r\n"}};
    }
    /// The last lines of the log since the last look at it, as many as are expected.
    static LogLines LastOf(const LogLines& log, const LogLines& expected) {
        const auto count = static_cast<std::ptrdiff_t>(std::min(log.size(), expected.size()));
        return {log.end() - count, log.end()};
    }
};
