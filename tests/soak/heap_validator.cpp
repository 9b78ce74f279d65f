// A library that loads where all heaps of the process are whole, and nowhere else.

#include <windows.h>

#include <algorithm>
#include <array>
#include <span>

BOOL WINAPI DllMain(HINSTANCE /*library*/, DWORD reason, void* /*reserved*/) {
    if (reason != DLL_PROCESS_ATTACH) {
        return TRUE;
    }
    std::array<HANDLE, 256> heaps{};
    const DWORD count = GetProcessHeaps(static_cast<DWORD>(heaps.size()), heaps.data());
    const auto isWhole = [](HANDLE heap) { return HeapValidate(heap, 0, nullptr) != FALSE; };
    return count != 0 && count <= heaps.size() && std::ranges::all_of(std::span(heaps).first(count), isWhole)
               ? TRUE
               : FALSE;
}
