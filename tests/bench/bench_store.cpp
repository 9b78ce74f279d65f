// The store calls of a read and nothing else: bench_store MAPI32.DLL PROFILE; each line of the input,
// contacts or calendars, is one more read of the profile's default folder of that kind, and with "list" in
// front of it one more read of changes where there are none.

#include <mapix.h>

#include <stdexcept>

#include "command_loop.h"
#include "store_calls.h"

namespace {

void Run(const wchar_t* library, const std::wstring& profile) {
    const Library loaded = bench::LoadMapi(library);
    const bench::OpenedFolder contacts = bench::OpenDefaultFolder(profile, bench::kContactFolder);
    const bench::OpenedFolder calendar = bench::OpenDefaultFolder(profile, bench::kCalendarFolder);
    bench::AnswerLines([&](const std::string& line) {
        const bool isContacts = line.ends_with("contacts");
        const bench::StoreLoop& loop = isContacts ? bench::kContactLoop : bench::kCalendarLoop;
        IMAPIFolder* const folder = isContacts ? contacts.folder.Get() : calendar.folder.Get();
        const auto walk = line.starts_with("list ") ? &bench::ListWholeFolder : &bench::ReadWholeFolder;
        ULONG items = 0;
        const double seconds = bench::SecondsOf([&] { items = walk(loop, folder); });
        return std::to_string(seconds) + ' ' + std::to_string(items);
    });
}

}  // namespace

int wmain(int count, wchar_t** arguments) {
    return bench::Guarded("bench_store", [&] {
        if (count != 3) {
            throw std::invalid_argument("bench_store MAPI32.DLL PROFILE");
        }
        Run(arguments[1], arguments[2]);
    });
}
