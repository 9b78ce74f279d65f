#pragma once

// How often COM is initialised on a thread.

#include <windows.h>

#include <objbase.h>

#include <thread>

/// How often COM is initialised on this thread. Counting takes all of it away.
inline int TakeInitialisations() {
    int count = 0;
    APTTYPE type = {};
    APTTYPEQUALIFIER qualifier = {};
    while (count < 100 && SUCCEEDED(CoGetApartmentType(&type, &qualifier))) {
        CoUninitialize();
        ++count;
    }
    return count;
}

/// Runs some work on a thread on which COM is initialised three times, for a kind of apartment, and returns
/// how often it is afterwards.
template<class Work>
int InitialisationsLeftBy(Work work, DWORD apartment = COINIT_APARTMENTTHREADED) {
    int left = -1;
    std::thread([&] {
        for (int i = 0; i < 3; ++i) {
            CoInitializeEx(nullptr, apartment);
        }
        work();
        left = TakeInitialisations();
    }).join();
    return left;
}
