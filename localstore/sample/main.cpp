// zebsample ROOT [COUNT]: makes profiles with stores, contacts and appointments below ROOT, which the local
// store serves from then on, and in the second profile COUNT plain contacts. All messages are written through
// the MAPI interface, as any program would.

#include <windows.h>

#include <cstdio>
#include <cwchar>
#include <exception>

#include "localstore/sample/appointment_writer.h"
#include "localstore/sample/contact_writer.h"
#include "localstore/sample/sample_error.h"
#include "localstore/sample/sample_session.h"
#include "localstore/sample/sample_tree.h"

namespace {

constexpr unsigned kMostFurtherContacts = 1'000'000;

/// The default contact folder's own name leads to it, any other to a folder in it.
ComPtr<IMAPIFolder> OpenFolderOf(IMAPIFolder* contacts, const std::wstring& name) {
    return name == sample::kContactsFolder ? ComPtr<IMAPIFolder>(contacts)
                                           : sample::OpenSubFolder(contacts, name);
}

unsigned WriteSampleItems() {
    sample::SampleSession session(sample::kSampleProfile);
    sample::NamedTags tags;
    const ComPtr<IMAPIFolder> contacts = session.OpenContacts();
    unsigned written = 0;
    for (const sample::SampleItem& item : sample::SampleItems()) {
        sample::WriteItem(OpenFolderOf(contacts.Get(), item.folder).Get(), item, tags);
        ++written;
    }
    const ComPtr<IMAPIFolder> calendar = session.OpenCalendar();
    for (const sample::SampleAppointment& appointment : sample::SampleAppointments()) {
        sample::WriteAppointment(calendar.Get(), appointment, tags);
        ++written;
    }
    return written;
}

void WriteFurtherContacts(unsigned count) {
    sample::SampleSession session(sample::kSecondProfile);
    sample::NamedTags tags;
    const ComPtr<IMAPIFolder> contacts = session.OpenContacts();
    for (unsigned number = 0; number < count; ++number) {
        sample::WriteItem(contacts.Get(), sample::FurtherContact(number), tags);
    }
}

void MakeSample(const std::wstring& root, unsigned furtherContacts) {
    sample::MakeSampleTree(root);
    sample::RequireTrue(SetEnvironmentVariableW(L"LOCALSTORE_ROOT", root.c_str()) != FALSE, L"name the root");
    sample::Require(CoInitializeEx(nullptr, COINIT_MULTITHREADED), L"begin with COM");
    sample::LoadMapi();
    const unsigned written = WriteSampleItems();
    WriteFurtherContacts(furtherContacts);
    std::printf("%u items in profile %ls, %u in profile %ls\n", written, sample::kSampleProfile,
                furtherContacts, sample::kSecondProfile);
}

/// A number of the command line; false for anything else.
bool ParseCount(const wchar_t* text, unsigned& count) {
    wchar_t* end = nullptr;
    const unsigned long number = std::wcstoul(text, &end, 10);
    count = static_cast<unsigned>(number);
    return end != text && *end == L'\0' && number <= kMostFurtherContacts;
}

}  // namespace

int wmain(int count, wchar_t** arguments) {
    unsigned furtherContacts = 0;
    if (count < 2 || count > 3 || (count == 3 && !ParseCount(arguments[2], furtherContacts))) {
        (void)std::fputs("usage: zebsample ROOT [COUNT]\n", stderr);
        return 2;
    }
    try {
        MakeSample(arguments[1], furtherContacts);
        return 0;
    } catch (const sample::SampleError& error) {
        (void)std::fprintf(stderr, "zebsample: could not %ls (0x%08lX)\n", error.doing.c_str(),
                           static_cast<unsigned long>(error.result));
    } catch (const std::exception& error) {
        (void)std::fprintf(stderr, "zebsample: %s\n", error.what());
    }
    return 1;
}
