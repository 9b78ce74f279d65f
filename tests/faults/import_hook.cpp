#include "tests/faults/import_hook.h"

#include <windows.h>

#include <cstddef>
#include <cstring>
#include <utility>

namespace {

BYTE* ImageBase() {
    return reinterpret_cast<BYTE*>(GetModuleHandleW(nullptr));
}

const IMAGE_IMPORT_DESCRIPTOR* FirstLibrary() {
    BYTE* const base = ImageBase();
    const auto* const dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(base);
    const auto* const headers = reinterpret_cast<const IMAGE_NT_HEADERS*>(base + dos->e_lfanew);
    const IMAGE_DATA_DIRECTORY& imports = headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
    return reinterpret_cast<const IMAGE_IMPORT_DESCRIPTOR*>(base + imports.VirtualAddress);
}

/// The slot of a function among those of one library, or null.
void** FindSlot(const IMAGE_IMPORT_DESCRIPTOR& library, const char* function) {
    BYTE* const base = ImageBase();
    const auto* name = reinterpret_cast<const IMAGE_THUNK_DATA*>(base + library.OriginalFirstThunk);
    auto* slot = reinterpret_cast<void**>(base + library.FirstThunk);
    for (; name->u1.AddressOfData != 0; ++name, ++slot) {
        if (IMAGE_SNAP_BY_ORDINAL(name->u1.Ordinal)) {
            continue;
        }
        const auto* const entry =
            reinterpret_cast<const IMAGE_IMPORT_BY_NAME*>(base + name->u1.AddressOfData);
        if (std::strcmp(reinterpret_cast<const char*>(entry->Name), function) == 0) {
            return slot;
        }
    }
    return nullptr;
}

}  // namespace

void* ReplaceImport(const char* function, void* replacement) {
    for (const IMAGE_IMPORT_DESCRIPTOR* library = FirstLibrary(); library->Name != 0; ++library) {
        void** const slot = FindSlot(*library, function);
        DWORD protection = 0;
        if (slot != nullptr && VirtualProtect(slot, sizeof(*slot), PAGE_READWRITE, &protection) != FALSE) {
            return std::exchange(*slot, replacement);
        }
    }
    return nullptr;
}
