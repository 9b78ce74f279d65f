#include "localstore/msg_storage.h"

#include <wtypes.h>

#include <mapicode.h>

#include <algorithm>
#include <cstring>
#include <vector>

#include "localstore/compound_file.h"
#include "localstore/failure.h"
#include "localstore/file_system.h"
#include "support/owners.h"

namespace localstore {

namespace {

constexpr DWORD kReading = STGM_READ | STGM_SHARE_EXCLUSIVE;
constexpr DWORD kWriting = STGM_CREATE | STGM_READWRITE | STGM_SHARE_EXCLUSIVE;

/// Bounds of one file, so that entries which lead to one another cannot be followed for ever.
constexpr std::size_t kMostElements = 1'048'576;

/// A name that the platform allocated.
struct TaskTextTraits {
    using Type = LPOLESTR;
    static Type Empty() noexcept { return nullptr; }
    static void Close(Type text) noexcept { CoTaskMemFree(text); }
};
using TaskText = Owner<TaskTextTraits>;

struct ReadState {
    std::size_t elements = 0;
    /// Bytes of streams that may still be read: together they cannot be longer than the file.
    std::uint64_t bytesLeft = 0;
};

/// Ends the operation if a result of the platform is a failure. A shortage of memory has one code from here
/// on, so that nobody takes it for damage.
void RequireRead(HRESULT result) {
    const bool isShortage = result == E_OUTOFMEMORY || result == STG_E_INSUFFICIENTMEMORY;
    RequireSuccess(isShortage ? MAPI_E_NOT_ENOUGH_MEMORY : result);
}

/// The same for a file that is being made. Its medium is memory, which has no faults but being too short.
void RequireWritten(HRESULT result) {
    const bool isShortage =
        result == STG_E_MEDIUMFULL || result == STG_E_WRITEFAULT || result == STG_E_READFAULT;
    RequireRead(isShortage ? MAPI_E_NOT_ENOUGH_MEMORY : result);
}

ComPtr<ILockBytes> NewMemory(const StorageCalls& calls) {
    ComPtr<ILockBytes> memory;
    RequireWritten(calls.createMemory(nullptr, TRUE, &memory));
    Require(static_cast<bool>(memory), MAPI_E_NOT_ENOUGH_MEMORY);
    return memory;
}

ComPtr<ILockBytes> MemoryOf(const Bytes& file, const StorageCalls& calls) {
    ComPtr<ILockBytes> memory = NewMemory(calls);
    ULONG written = 0;
    const HRESULT result = memory->WriteAt({}, file.data(), static_cast<ULONG>(file.size()), &written);
    // Nothing but a shortage keeps memory from being written.
    Require(SUCCEEDED(result) && written == file.size(), MAPI_E_NOT_ENOUGH_MEMORY);
    return memory;
}

SharedBytes ReadStream(IStorage* storage, const STATSTG& element, ReadState& state) {
    Require(element.cbSize.QuadPart <= state.bytesLeft, STG_E_DOCFILECORRUPT);
    state.bytesLeft -= element.cbSize.QuadPart;
    ComPtr<IStream> stream;
    RequireRead(storage->OpenStream(element.pwcsName, nullptr, kReading, 0, &stream));
    auto bytes = std::make_shared<Bytes>(static_cast<std::size_t>(element.cbSize.QuadPart));
    if (bytes->empty()) {
        return bytes;
    }
    ULONG read = 0;
    RequireRead(stream->Read(bytes->data(), static_cast<ULONG>(bytes->size()), &read));
    Require(read == bytes->size(), STG_E_DOCFILECORRUPT);
    return bytes;
}

StorageTree ReadTree(IStorage* storage, int depth, ReadState& state) {
    Require(depth < kDeepestStorage, STG_E_DOCFILECORRUPT);
    StorageTree tree;
    STATSTG self{};
    RequireRead(storage->Stat(&self, STATFLAG_NONAME));
    std::memcpy(tree.classId.data(), &self.clsid, sizeof(CLSID));

    ComPtr<IEnumSTATSTG> elements;
    RequireRead(storage->EnumElements(0, nullptr, 0, &elements));
    STATSTG element{};
    HRESULT next = S_OK;
    while ((next = elements->Next(1, &element, nullptr)) == S_OK) {
        const TaskText name(element.pwcsName);
        Require(name && ++state.elements <= kMostElements, STG_E_DOCFILECORRUPT);
        if (element.type == STGTY_STREAM) {
            tree.streams[name.Get()] = ReadStream(storage, element, state);
        } else if (element.type == STGTY_STORAGE) {
            ComPtr<IStorage> inner;
            RequireRead(storage->OpenStorage(name.Get(), nullptr, kReading, nullptr, 0, &inner));
            tree.storages[name.Get()] = ReadTree(inner.Get(), depth + 1, state);
        }
        element = {};
    }
    // An enumeration that broke off has not shown everything.
    RequireRead(next);
    return tree;
}

void WriteTree(const StorageTree& tree, IStorage* storage);

/// A stream or storage to be written, in the order in which directories keep names (MS-CFB, section 2.6.4).
struct Element {
    const Text* name;
    const SharedBytes* stream;
    const StorageTree* storage;

    bool operator<(const Element& other) const {
        return name->size() != other.name->size() ? name->size() < other.name->size() : *name < *other.name;
    }
};

void WriteElement(const Element& element, IStorage* storage) {
    if (element.storage != nullptr) {
        ComPtr<IStorage> created;
        RequireWritten(storage->CreateStorage(element.name->c_str(), kWriting, 0, 0, &created));
        WriteTree(*element.storage, created.Get());
        return;
    }
    const Bytes& bytes = **element.stream;
    ComPtr<IStream> stream;
    RequireWritten(storage->CreateStream(element.name->c_str(), kWriting, 0, 0, &stream));
    if (bytes.empty()) {
        return;
    }
    ULONG written = 0;
    RequireWritten(stream->Write(bytes.data(), static_cast<ULONG>(bytes.size()), &written));
    Require(written == bytes.size(), MAPI_E_NOT_ENOUGH_MEMORY);
}

/// Writes the middle one first, then both halves in the same way. Some systems put names into the tree of a
/// directory as they come: in order, they would make it a list, through which every look-up goes from end to
/// end.
void WriteBalanced(const Element* first, const Element* last, IStorage* storage) {
    if (first == last) {
        return;
    }
    const Element* middle = first + (last - first) / 2;
    WriteElement(*middle, storage);
    WriteBalanced(first, middle, storage);
    WriteBalanced(middle + 1, last, storage);
}

void WriteTree(const StorageTree& tree, IStorage* storage) {
    CLSID classId{};
    std::memcpy(&classId, tree.classId.data(), sizeof(CLSID));
    RequireWritten(storage->SetClass(classId));
    std::vector<Element> elements;
    for (const auto& [name, bytes] : tree.streams) {
        elements.push_back({&name, &bytes, nullptr});
    }
    for (const auto& [name, inner] : tree.storages) {
        elements.push_back({&name, nullptr, &inner});
    }
    std::sort(elements.begin(), elements.end());
    WriteBalanced(elements.data(), elements.data() + elements.size(), storage);
}

}  // namespace

std::optional<StorageTree> ReadStorage(const Bytes& file, const char*& reason, const StorageCalls& calls) {
    if (file.empty()) {
        reason = "it is empty";
        return std::nullopt;
    }
    if (const char* damage = DamageOfCompoundFile(file)) {
        reason = damage;
        return std::nullopt;
    }
    const ComPtr<ILockBytes> bytes = MemoryOf(file, calls);
    reason = "it is no structured storage file";
    try {
        ComPtr<IStorage> root;
        RequireRead(calls.open(bytes.Get(), nullptr, STGM_READ | STGM_SHARE_DENY_WRITE, nullptr, 0, &root));
        Require(static_cast<bool>(root), MAPI_E_NOT_ENOUGH_MEMORY);
        reason = "its storages or streams cannot be read";
        ReadState state;
        state.bytesLeft = file.size();
        return ReadTree(root.Get(), 0, state);
    } catch (const StoreError& error) {
        Require(error.Code() != MAPI_E_NOT_ENOUGH_MEMORY, error.Code());
        return std::nullopt;
    }
}

Bytes WriteStorage(const StorageTree& tree, const StorageCalls& calls) {
    const ComPtr<ILockBytes> memory = NewMemory(calls);
    ComPtr<IStorage> root;
    RequireWritten(StgCreateDocfileOnILockBytes(memory.Get(), kWriting, 0, &root));
    Require(static_cast<bool>(root), MAPI_E_NOT_ENOUGH_MEMORY);
    WriteTree(tree, root.Get());
    RequireWritten(root->Commit(STGC_DEFAULT));
    RequireWritten(memory->Flush());
    STATSTG size{};
    RequireWritten(memory->Stat(&size, STATFLAG_NONAME));
    Require(size.cbSize.QuadPart <= kLongestFile, MAPI_E_NOT_ENOUGH_MEMORY);
    Bytes bytes(static_cast<std::size_t>(size.cbSize.QuadPart));
    ULONG read = 0;
    RequireWritten(memory->ReadAt({}, bytes.data(), static_cast<ULONG>(bytes.size()), &read));
    Require(read == bytes.size(), MAPI_E_NOT_ENOUGH_MEMORY);
    // Some platforms pass over a write that memory was too short for, and the file would lack a piece.
    const char* reason = "";
    Require(ReadStorage(bytes, reason, calls) == tree, MAPI_E_NOT_ENOUGH_MEMORY);
    return bytes;
}

}  // namespace localstore
