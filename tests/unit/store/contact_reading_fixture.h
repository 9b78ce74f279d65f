#pragma once

// What the tests of reading contacts share.

#include "tests/unit/store/reading_fixture.h"

class ContactReading : public ReadingTest {
  protected:
    void AddContacts(const std::wstring& folder, const std::vector<const wchar_t*>& firstNames) {
        localstore::recorder::SetRoot(m_root);
        FolderWriter writer(L"Work", folder);
        for (const wchar_t* name : firstNames) {
            writer.AddContact(PropertyValues().Text(PR_GIVEN_NAME_W, name));
        }
    }
    /// Adds a message of another class.
    static void AddMessage(const wchar_t* messageClass) {
        FolderWriter writer(L"Work", L"Contacts");
        FolderWriter::Save(
            writer.NewMessage(messageClass, PropertyValues().Text(PR_GIVEN_NAME_W, L"Neighbour")).Get());
    }
    static std::vector<CString> FirstNames(const std::vector<CString>& documents) {
        std::vector<CString> names;
        for (const CString& document : documents) {
            const std::size_t start = document.find(L"<FirstName>") + 11;
            names.emplace_back(document.substr(start, document.find(L"</FirstName>") - start));
        }
        return names;
    }
    static LogLines CountLines() {
        return {
            {1, L"CMAPIObject::GetContactCount - Begin\r\n"},
            {1, L"CMAPIObject::GetContactCount - GetProps(0X00000000)\r\n"},
            {1, L"CMAPIObject::GetContactCountFromFolder - Begin\r\n"},
            {1, L"CMAPIObject::GetContactCountFromFolder - m_lpContactFolder->OpenEntry(0X00000000)\r\n"},
            {1, L"CMAPIObject::GetContactCountFromFolder - lpContainer->GetContentsTable(0X00000000)\r\n"},
            {1, L"CMAPIObject::GetContactCountFromFolder - pfnHrQueryAllRows(0X00000000)\r\n"},
            {1, L"CMAPIObject::GetContactCountFromFolder - Finish\r\n"},
            {1, L"CMAPIObject::GetContactCount - Finish\r\n"}};
    }
};
