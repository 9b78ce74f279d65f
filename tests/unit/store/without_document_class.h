#pragma once

#include <gtest/gtest.h>

#include <windows.h>

#include <cwchar>

#include "support/owners.h"

/// Takes the XML service's document class away as long as it lives: the registry names a library that is not
/// there.
class WithoutDocumentClass {
  public:
    WithoutDocumentClass() {
        EXPECT_EQ(RegCreateKeyExW(HKEY_CLASSES_ROOT, kServer, 0, nullptr, 0, KEY_ALL_ACCESS, nullptr,
                                  m_key.Put(), nullptr),
                  ERROR_SUCCESS);
        DWORD size = sizeof(m_library);
        EXPECT_EQ(RegQueryValueExW(m_key.Get(), nullptr, nullptr, nullptr, reinterpret_cast<BYTE*>(m_library),
                                   &size),
                  ERROR_SUCCESS);
        Set(L"no-such-library.dll");
    }
    WithoutDocumentClass(const WithoutDocumentClass&) = delete;
    WithoutDocumentClass& operator=(const WithoutDocumentClass&) = delete;
    ~WithoutDocumentClass() { Set(m_library); }

  private:
    static constexpr const wchar_t* kServer =
        L"CLSID\\{2933BF90-7B36-11D2-B20E-00C04F983E60}\\InprocServer32";

    void Set(const wchar_t* library) {
        RegSetValueExW(m_key.Get(), nullptr, 0, REG_SZ, reinterpret_cast<const BYTE*>(library),
                       static_cast<DWORD>((std::wcslen(library) + 1) * sizeof(wchar_t)));
    }

    RegistryKey m_key;
    wchar_t m_library[MAX_PATH] = L"";
};
