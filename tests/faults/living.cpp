#include "tests/faults/living.h"

#include <windows.h>

#include <algorithm>
#include <array>
#include <span>

#include "tests/faults/document_faults.h"
#include "tests/unit/localstore/scarce_memory.h"
#include "tests/unit/timezone/handle_count.h"

namespace {

/// What the document service loses with each header.
long g_blocksPerHeader = 0;

long BlocksInUse() {
    std::array<HANDLE, 256> heaps{};
    const DWORD count = GetProcessHeaps(static_cast<DWORD>(heaps.size()), heaps.data());
    long blocks = 0;
    for (const HANDLE heap : std::span(heaps).first(std::min<std::size_t>(count, heaps.size()))) {
        PROCESS_HEAP_ENTRY entry{};
        while (HeapWalk(heap, &entry) != FALSE) {
            blocks += (entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) != 0 ? 1 : 0;
        }
    }
    return blocks;
}

/// Ends that texts which are let go are kept for later ones of their length.
bool LetTextsGo() {
    const auto set = reinterpret_cast<void(WINAPI*)()>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"oleaut32.dll"), "SetOaNoCache")));
    if (set == nullptr) {
        return false;
    }
    set();
    return true;
}

/// What some headers leave that are made without the agent.
long BlocksOfHeaders(int count) {
    const long before = BlocksInUse();
    for (int i = 0; i < count; ++i) {
        MakeHeader();
    }
    return BlocksInUse() - before;
}

}  // namespace

bool PrepareToCountLiving() {
    constexpr int kHeaders = 10;
    if (!LetTextsGo()) {
        return false;
    }
    BlocksOfHeaders(kHeaders);
    const long blocks = BlocksOfHeaders(kHeaders);
    g_blocksPerHeader = blocks / kHeaders;
    return blocks % kHeaders == 0;
}

Living WhatLives() {
    return {static_cast<long>(localstore_test::LiveAllocations()), static_cast<long>(OpenHandles()),
            BlocksInUse() - g_blocksPerHeader * HeadersMade()};
}
