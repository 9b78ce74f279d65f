#include "tests/faults/living.h"

#include <windows.h>

#include <stdexcept>

#include "tests/faults/document_faults.h"
#include "tests/heap_count.h"
#include "tests/unit/localstore/scarce_memory.h"
#include "tests/unit/timezone/handle_count.h"

namespace {

/// What the document service loses with each header.
long g_blocksPerHeader = 0;

long BlocksInUse() {
    const HeapCount count = CountHeaps();
    if (count.isComplete == 0) {
        throw std::runtime_error("the heaps");
    }
    return static_cast<long>(count.blocks);
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
