#pragma once

// A machine's zones as a test wants them: a key of the user's own takes the place of HKEY_LOCAL_MACHINE in
// this process.

#include <windows.h>

#include <gtest/gtest.h>

#include <array>
#include <string>

#include "support/owners.h"

/// The bytes of a value "TZI": three biases and two rules.
struct ZoneBytes {
    LONG bias = 0;
    LONG standardBias = 0;
    LONG daylightBias = 0;
    SYSTEMTIME standardDate{};
    SYSTEMTIME daylightDate{};
};
static_assert(sizeof(ZoneBytes) == 44);

class ZoneRegistry {
  public:
    ZoneRegistry() : m_name(L"Software\\zeb-zones-" + std::to_wstring(GetCurrentProcessId())) {
        HKEY machine = nullptr;
        RegCreateKeyExW(HKEY_CURRENT_USER, m_name.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &machine,
                        nullptr);
        m_machine.Reset(machine);
        EXPECT_EQ(RegOverridePredefKey(HKEY_LOCAL_MACHINE, machine), ERROR_SUCCESS);
    }
    ZoneRegistry(const ZoneRegistry&) = delete;
    ZoneRegistry& operator=(const ZoneRegistry&) = delete;
    ~ZoneRegistry() {
        RegOverridePredefKey(HKEY_LOCAL_MACHINE, nullptr);
        m_machine.Reset();
        EXPECT_EQ(RegDeleteTreeW(HKEY_CURRENT_USER, m_name.c_str()), ERROR_SUCCESS);
    }

    /// Makes the key that holds the zones, and the key of a zone below it unless the name is empty.
    [[nodiscard]] RegistryKey MakeKey(const std::wstring& zone = {}) const {
        const std::wstring path = L"Software\\Microsoft\\Windows NT\\CurrentVersion\\Time Zones" +
                                  (zone.empty() ? L"" : L"\\" + zone);
        RegistryKey key;
        EXPECT_EQ(RegCreateKeyExW(m_machine.Get(), path.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr,
                                  key.Put(), nullptr),
                  ERROR_SUCCESS);
        return key;
    }

    static void SetValue(HKEY key, const wchar_t* name, DWORD type, const void* bytes, std::size_t size) {
        EXPECT_EQ(
            RegSetValueExW(key, name, 0, type, static_cast<const BYTE*>(bytes), static_cast<DWORD>(size)),
            ERROR_SUCCESS);
    }
    static void SetText(HKEY key, const wchar_t* name, const std::wstring& text) {
        SetValue(key, name, REG_SZ, text.c_str(), (text.size() + 1) * sizeof(wchar_t));
    }

    /// Adds a zone whose three names are made of one.
    void AddZone(const std::wstring& name, const ZoneBytes& rules) const {
        const RegistryKey key = MakeKey(name);
        SetText(key.Get(), L"Display", L"Display of " + name);
        SetText(key.Get(), L"Std", L"Std of " + name);
        SetText(key.Get(), L"Dlt", L"Dlt of " + name);
        SetValue(key.Get(), L"TZI", REG_BINARY, &rules, sizeof(rules));
    }
    void RemoveValue(const std::wstring& zone, const wchar_t* value) const {
        EXPECT_EQ(RegDeleteValueW(MakeKey(zone).Get(), value), ERROR_SUCCESS);
    }

  private:
    std::wstring m_name;
    RegistryKey m_machine;
};
