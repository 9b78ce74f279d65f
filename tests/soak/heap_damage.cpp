// Writes behind a block of its heap and waits to be ended, so that it can be seen that check_heap finds such
// a thing.

#include <windows.h>

#include <cstddef>
#include <cstdio>

int main() {
    constexpr std::size_t kSize = 24;
    auto* const block = static_cast<volatile char*>(HeapAlloc(GetProcessHeap(), 0, kSize));
    if (block == nullptr) {
        return 1;
    }
    block[kSize] = 1;
    std::puts("damaged");
    (void)std::fflush(stdout);
    Sleep(INFINITE);
}
