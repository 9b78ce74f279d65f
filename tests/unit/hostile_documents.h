#pragma once

// What tests of documents from somebody who means harm have in common.

#include <windows.h>

// Behind the base types, which they use.
#include <objbase.h>
#include <psapi.h>

#include <thread>

#include <gtest/gtest.h>

#include "support/text.h"
#include "tests/xml_document.h"

inline CString Repeated(const CString& piece, std::size_t count) {
    CString text;
    text.reserve(piece.size() * count);
    for (std::size_t i = 0; i < count; ++i) {
        text += piece;
    }
    return text;
}

/// Memory that belongs to this process alone, in bytes.
inline std::size_t PrivateMemory() {
    PROCESS_MEMORY_COUNTERS counters{};
    GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof(counters));
    return counters.PagefileUsage;
}

// Interfaces of COM have no virtual destructor, and nothing is deleted through one.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"

/// A class object that makes nothing, in the place of the one for documents.
class NoDocuments : public IClassFactory {
  public:
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
        *object = iid == IID_IUnknown || iid == IID_IClassFactory ? this : nullptr;
        return *object == nullptr ? E_NOINTERFACE : S_OK;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
    ULONG STDMETHODCALLTYPE Release() override { return 1; }
    HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown*, REFIID, void** object) override {
        *object = nullptr;
        ++m_asked;
        return E_OUTOFMEMORY;
    }
    HRESULT STDMETHODCALLTYPE LockServer(BOOL) override { return S_OK; }

    int m_asked = 0;
};

#pragma GCC diagnostic pop

/// Runs some work on a thread of its own, on which no XML document can be made. Returns how often one was
/// asked for.
template<class Work>
int DocumentsRefusedTo(Work work) {
    int asked = 0;
    std::thread([&] {
        CoInitialize(nullptr);
        NoDocuments factory;
        DWORD cookie = 0;
        ASSERT_EQ(CoRegisterClassObject(kDocumentClass, &factory, CLSCTX_INPROC_SERVER, REGCLS_MULTIPLEUSE,
                                        &cookie),
                  S_OK);
        work();
        CoRevokeClassObject(cookie);
        CoUninitialize();
        asked = factory.m_asked;
    }).join();
    return asked;
}
