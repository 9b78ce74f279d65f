#include "localstore/sample/sample_tree.h"

#include <windows.h>

#include <shlobj.h>

#include <string_view>

#include "localstore/sample/sample_error.h"
#include "support/owners.h"

namespace sample {

namespace {

/// A directory below the root and the text of its folder.ini; null for none.
struct SampleDirectory {
    const wchar_t* path;
    const char* ini;
};

constexpr SampleDirectory kDirectories[] = {
    {L"Sample", "[Profile]\r\nDefault=1\r\n"},
    {L"Sample\\Mailbox", "[Store]\r\nDefault=1\r\nName=Sample mailbox\r\n"},
    {L"Sample\\Mailbox\\Inbox", nullptr},
    {L"Sample\\Mailbox\\Drafts", nullptr},
    {L"Sample\\Mailbox\\Calendar", nullptr},
    {L"Sample\\Mailbox\\Tasks", nullptr},
    {L"Sample\\Mailbox\\Journal", nullptr},
    {L"Sample\\Mailbox\\Notes", nullptr},
    {L"Sample\\Mailbox\\Contacts", nullptr},
    // The name comes from folder.ini, in UTF-8, and not from the directory.
    {L"Sample\\Mailbox\\Contacts\\Family", "[Folder]\r\nName=Fam\xC3\xADlia\r\nClass=IPF.Contact\r\n"},
    {L"Sample\\Mailbox\\Contacts\\People to call", "[Folder]\r\nClass=IPF.Task\r\n"},
    {L"Sample\\Mailbox\\Contacts\\Quick Contacts", "[Folder]\r\nClass=IPF.Contact.MOC.QuickContacts\r\n"},
    {L"Sample\\Mailbox\\Projects", "[Folder]\r\nClass=\r\n"},
    {L"Sample\\Mailbox\\Projects\\Harbour & bridge", "[Folder]\r\nClass=IPF.Note\r\n"},
    {L"Sample\\Mailbox\\Projects\\Harbour & bridge\\People", "[Folder]\r\nClass=IPF.Contact\r\n"},
    {L"Sample\\Mailbox\\Projects\\Harbour & bridge\\Birthdays",
     "[Folder]\r\nClass=IPF.Appointment.Birthday\r\n"},
    {L"Sample\\Archive", "[Store]\r\nName=Archive of the sample\r\n"},
    {L"Sample\\Archive\\Inbox", nullptr},
    {L"Sample\\Archive\\Drafts", nullptr},
    {L"Sample\\Archive\\Contacts", nullptr},
    {L"Sample\\Archive\\Contacts\\Former colleagues", nullptr},
    // A store that is listed and cannot be opened, as one on a server that does not answer.
    {L"Sample\\Shared", "[Store]\r\nName=Shared folders, out of reach\r\nRefuse=1\r\n"},
    {L"Sample\\Shared\\Contacts", nullptr},
    {L"Second", nullptr},
    {L"Second\\Mailbox", nullptr},
    {L"Second\\Mailbox\\Inbox", nullptr},
    {L"Second\\Mailbox\\Contacts", nullptr},
    {L"Second\\Mailbox\\Calendar", nullptr},
};

void WriteTextFile(const std::wstring& path, std::string_view text) {
    const FileHandle file(
        CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
    RequireTrue(static_cast<bool>(file), L"make folder.ini");
    DWORD written = 0;
    RequireTrue(
        WriteFile(file.Get(), text.data(), static_cast<DWORD>(text.size()), &written, nullptr) != FALSE,
        L"write folder.ini");
}

void MakeDirectory(const std::wstring& path) {
    const int result = SHCreateDirectoryExW(nullptr, path.c_str(), nullptr);
    const bool there =
        result == ERROR_SUCCESS || result == ERROR_FILE_EXISTS || result == ERROR_ALREADY_EXISTS;
    SetLastError(static_cast<DWORD>(result));
    RequireTrue(there, L"make a folder");
}

}  // namespace

void MakeSampleTree(const std::wstring& root) {
    MakeDirectory(root);
    if (GetFileAttributesW((root + L"\\" + kSampleProfile).c_str()) != INVALID_FILE_ATTRIBUTES) {
        throw SampleError{L"make a sample where there is one", HRESULT_FROM_WIN32(ERROR_ALREADY_EXISTS)};
    }
    for (const SampleDirectory& directory : kDirectories) {
        const std::wstring path = root + L"\\" + directory.path;
        MakeDirectory(path);
        if (directory.ini != nullptr) {
            WriteTextFile(path + L"\\folder.ini", directory.ini);
        }
    }
}

}  // namespace sample
