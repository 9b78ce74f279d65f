#pragma once

// The owners: one type for every kind of resource. Outside this header nothing is released by hand, except
// where a documented behaviour is to leave something open.

#include <wrl/client.h>

#include <utility>

#include "support/mapi_entry_points.h"

/// A reference to a COM or MAPI object.
template<class Interface>
using ComPtr = Microsoft::WRL::ComPtr<Interface>;

/// Takes over the one reference that the caller has. ComPtr::Attach is not that everywhere: the one of
/// MinGW-w64 adds a reference.
template<class Interface>
ComPtr<Interface> Adopt(Interface* object) noexcept {
    ComPtr<Interface> owner;
    *owner.GetAddressOf() = object;
    return owner;
}

/// Owns one resource of a kind that `Traits` describes: its `Type`, its `Empty` value and how to `Close` it.
template<class Traits>
class Owner {
  public:
    using Type = typename Traits::Type;

    Owner() noexcept = default;
    explicit Owner(Type value) noexcept : m_value(value) {}
    Owner(Owner&& other) noexcept : m_value(other.Detach()) {}
    Owner& operator=(Owner&& other) noexcept {
        Reset(other.Detach());
        return *this;
    }
    Owner(const Owner&) = delete;
    Owner& operator=(const Owner&) = delete;
    ~Owner() { Reset(); }

    [[nodiscard]] Type Get() const noexcept { return m_value; }
    [[nodiscard]] explicit operator bool() const noexcept { return m_value != Traits::Empty(); }
    [[nodiscard]] Type operator->() const noexcept { return m_value; }

    /// Frees what is held and gives the place where a function stores a new one.
    [[nodiscard]] Type* Put() noexcept {
        Reset();
        return &m_value;
    }
    /// Hands the resource to the caller.
    [[nodiscard]] Type Detach() noexcept { return std::exchange(m_value, Traits::Empty()); }
    void Reset(Type value = Traits::Empty()) noexcept {
        const Type old = std::exchange(m_value, value);
        if (old != Traits::Empty()) {
            Traits::Close(old);
        }
    }

  private:
    Type m_value = Traits::Empty();
};

/// A buffer of MAPIAllocateBuffer with all that was allocated under it.
template<class T>
struct MapiBufferTraits {
    using Type = T*;
    static Type Empty() noexcept { return nullptr; }
    static void Close(Type buffer) noexcept { pfnMAPIFreeBuffer(buffer); }
};
template<class T>
using MapiBuffer = Owner<MapiBufferTraits<T>>;

/// The rows of a table, as HrQueryAllRows delivers them.
struct RowSetTraits {
    using Type = LPSRowSet;
    static Type Empty() noexcept { return nullptr; }
    static void Close(Type rows) noexcept { pfnFreeProws(rows); }
};
using RowSet = Owner<RowSetTraits>;

/// A text that crosses the border to COM.
struct BstrTraits {
    using Type = BSTR;
    static Type Empty() noexcept { return nullptr; }
    static void Close(Type text) noexcept { SysFreeString(text); }
};
using Bstr = Owner<BstrTraits>;

/// A kernel handle of which the empty value is null: threads, events, processes, mappings.
struct HandleTraits {
    using Type = HANDLE;
    static Type Empty() noexcept { return nullptr; }
    static void Close(Type handle) noexcept { CloseHandle(handle); }
};
using Handle = Owner<HandleTraits>;

/// A handle of CreateFile, of which the empty value is INVALID_HANDLE_VALUE.
struct FileHandleTraits {
    using Type = HANDLE;
    // The platform's macro makes a pointer of a number. NOLINTNEXTLINE(performance-no-int-to-ptr)
    static Type Empty() noexcept { return INVALID_HANDLE_VALUE; }
    static void Close(Type handle) noexcept { CloseHandle(handle); }
};
using FileHandle = Owner<FileHandleTraits>;

/// A directory search.
struct FindHandleTraits {
    using Type = HANDLE;
    // The platform's macro makes a pointer of a number. NOLINTNEXTLINE(performance-no-int-to-ptr)
    static Type Empty() noexcept { return INVALID_HANDLE_VALUE; }
    static void Close(Type search) noexcept { FindClose(search); }
};
using FindHandle = Owner<FindHandleTraits>;

/// An open registry key.
struct RegistryKeyTraits {
    using Type = HKEY;
    static Type Empty() noexcept { return nullptr; }
    static void Close(Type key) noexcept { RegCloseKey(key); }
};
using RegistryKey = Owner<RegistryKeyTraits>;

/// A loaded library.
struct LibraryTraits {
    using Type = HMODULE;
    static Type Empty() noexcept { return nullptr; }
    static void Close(Type library) noexcept { FreeLibrary(library); }
};
using Library = Owner<LibraryTraits>;
