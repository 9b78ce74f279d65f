#include "tests/wire/contact_file.h"

#include <objbase.h>

#include <iomanip>
#include <sstream>
#include <stdexcept>

#include "support/owners.h"
#include "tests/wire/bytes.h"

namespace {

constexpr DWORD kAccess = STGM_CREATE | STGM_READWRITE | STGM_SHARE_EXCLUSIVE;
constexpr std::uint32_t kMessageClass = 0x001A001F;
constexpr std::uint32_t kNarrowMessageClass = 0x001A001E;
constexpr std::uint32_t kNarrowSurname = 0x3A11001E;
constexpr std::uint32_t kCodePage = 0x3FFD0003;
constexpr std::uint32_t kSurname = 0x3A11001F;
constexpr std::uint32_t kSubject = 0x0037001F;
constexpr std::uint32_t kBody = 0x1000001F;
/// Readable and writable.
constexpr std::uint32_t kPropertyFlags = 6;

void Require(HRESULT result) {
    if (FAILED(result)) {
        throw std::runtime_error("a message file cannot be written, result " + std::to_string(result));
    }
}

void WriteStream(IStorage* storage, const wchar_t* name, const Bytes& bytes) {
    ComPtr<IStream> stream;
    Require(storage->CreateStream(name, kAccess, 0, 0, stream.GetAddressOf()));
    if (bytes.empty()) {
        return;
    }
    Require(stream->Write(bytes.data(), static_cast<ULONG>(bytes.size()), nullptr));
}

/// A text: its units in a stream of its own, and an entry whose size counts the terminator that is not there.
void AddUnits(IStorage* storage, ByteWriter& entries, std::uint32_t tag, const Bytes& units,
              std::size_t terminator) {
    std::wostringstream name;
    name << L"__substg1.0_" << std::hex << std::uppercase << std::setw(8) << std::setfill(L'0') << tag;
    WriteStream(storage, name.str().c_str(), units);
    entries.U32(tag).U32(kPropertyFlags).U32(static_cast<std::uint32_t>(units.size() + terminator)).U32(0);
}

void AddText(IStorage* storage, ByteWriter& entries, std::uint32_t tag, const std::wstring& text) {
    ByteWriter units;
    for (const wchar_t unit : text) {
        units.U16(unit);
    }
    AddUnits(storage, entries, tag, units.Written(), 2);
}

void AddNarrowText(IStorage* storage, ByteWriter& entries, std::uint32_t tag, const std::string& text) {
    AddUnits(storage, entries, tag, Bytes(text.begin(), text.end()), 1);
}

ByteWriter BeginEntries() {
    ByteWriter entries;
    entries.Raw(Bytes(32));  // the header: no recipients, no attachments
    return entries;
}

ComPtr<IStorage> CreateMessageFile(const std::filesystem::path& path) {
    ComPtr<IStorage> storage;
    Require(StgCreateDocfile(path.c_str(), kAccess, 0, storage.GetAddressOf()));
    return storage;
}

void Finish(IStorage* storage, const ByteWriter& entries) {
    WriteStream(storage, L"__properties_version1.0", entries.Written());
    // Every message has the table of named properties, even if it names none.
    ComPtr<IStorage> names;
    Require(storage->CreateStorage(L"__nameid_version1.0", kAccess, 0, 0, names.GetAddressOf()));
    for (const wchar_t* stream :
         {L"__substg1.0_00020102", L"__substg1.0_00030102", L"__substg1.0_00040102"}) {
        WriteStream(names.Get(), stream, {});
    }
    Require(names->Commit(STGC_DEFAULT));
    Require(storage->Commit(STGC_DEFAULT));
}

}  // namespace

void WriteContactFile(const std::filesystem::path& path, const std::wstring& surname,
                      const std::wstring& body) {
    const ComPtr<IStorage> storage = CreateMessageFile(path);
    ByteWriter entries = BeginEntries();
    AddText(storage.Get(), entries, kMessageClass, L"IPM.Contact");
    AddText(storage.Get(), entries, kSurname, surname);
    AddText(storage.Get(), entries, kBody, body);
    Finish(storage.Get(), entries);
}

void WriteAppointmentFile(const std::filesystem::path& path, const std::wstring& subject) {
    const ComPtr<IStorage> storage = CreateMessageFile(path);
    ByteWriter entries = BeginEntries();
    AddText(storage.Get(), entries, kMessageClass, L"IPM.Appointment");
    AddText(storage.Get(), entries, kSubject, subject);
    Finish(storage.Get(), entries);
}

void WriteNarrowContactFile(const std::filesystem::path& path, const std::string& surname,
                            std::uint32_t codePage) {
    const ComPtr<IStorage> storage = CreateMessageFile(path);
    ByteWriter entries = BeginEntries();
    AddNarrowText(storage.Get(), entries, kNarrowMessageClass, "IPM.Contact");
    AddNarrowText(storage.Get(), entries, kNarrowSurname, surname);
    entries.U32(kCodePage).U32(kPropertyFlags).U32(codePage).U32(0);
    Finish(storage.Get(), entries);
}
