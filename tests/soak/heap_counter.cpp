// A library that counts what lives in the heaps of the process that it is loaded into, and does not stay
// there.

#include "tests/heap_count.h"
#include "tests/shared_value.h"

BOOL WINAPI DllMain(HINSTANCE /*library*/, DWORD reason, void* /*reserved*/) {
    if (reason == DLL_PROCESS_ATTACH) {
        const auto count = SharedValue<HeapCount>::Open(kHeapCount);
        if (count) {
            *count.Get() = CountHeaps();
        }
    }
    return FALSE;
}
