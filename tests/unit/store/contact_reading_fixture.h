#pragma once

// What the tests of reading contacts share.

#include <algorithm>

#include <mapitags.h>

#include "localstore/recorder.h"
#include "tests/unit/store/store_fixture.h"

class ContactReading : public StoreTest {
  protected:
    static bool Contains(const CString& text, const wchar_t* part) {
        return text.find(part) != CString::npos;
    }
    void AddContacts(const std::wstring& folder, const std::vector<const wchar_t*>& firstNames) {
        localstore::recorder::SetRoot(m_root);
        FolderWriter writer(L"Work", folder);
        for (const wchar_t* name : firstNames) {
            writer.AddContact(PropertyValues().Text(PR_GIVEN_NAME_W, name));
        }
    }
    /// Adds a message of another class.
    void AddMessage(const wchar_t* messageClass) {
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
    /// The number of the last call of a method since logon, from 1 on; 0 if there was none.
    static std::size_t LastCallOf(const std::string& method) {
        const std::vector<localstore::recorder::Call> calls = localstore::recorder::Calls();
        const auto last =
            std::find_if(calls.rbegin(), calls.rend(),
                         [&](const localstore::recorder::Call& call) { return call.method == method; });
        return static_cast<std::size_t>(calls.rend() - last);
    }
    /// The number of the nth call of a method since logon, from 1 on.
    static std::size_t NthCallOf(const std::string& method, std::size_t n) {
        const std::vector<localstore::recorder::Call> calls = localstore::recorder::Calls();
        for (std::size_t i = 0; i < calls.size(); ++i) {
            if (calls[i].method == method && --n == 0) {
                return i + 1;
            }
        }
        return 0;
    }
    static void Append(LogLines& lines, const LogLines& more) {
        lines.insert(lines.end(), more.begin(), more.end());
    }
};
