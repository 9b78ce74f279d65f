#pragma once

// A value that two processes see under a name.

#include <windows.h>

#include "support/owners.h"

template<class T>
class SharedValue {
  public:
    /// Makes the value, which begins as zeros. Without one if the system has none.
    static SharedValue Make(const wchar_t* name) noexcept {
        return SharedValue(
            Handle(CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, sizeof(T), name)));
    }
    /// The value that another process made. Without one if there is none.
    static SharedValue Open(const wchar_t* name) noexcept {
        return SharedValue(Handle(OpenFileMappingW(FILE_MAP_WRITE, FALSE, name)));
    }

    [[nodiscard]] explicit operator bool() const noexcept { return static_cast<bool>(m_view); }
    [[nodiscard]] T* Get() const noexcept { return static_cast<T*>(m_view.Get()); }

  private:
    struct ViewTraits {
        using Type = void*;
        static Type Empty() noexcept { return nullptr; }
        static void Close(Type view) noexcept { UnmapViewOfFile(view); }
    };

    explicit SharedValue(Handle section) noexcept
        : m_section(std::move(section)),
          m_view(m_section ? MapViewOfFile(m_section.Get(), FILE_MAP_WRITE, 0, 0, sizeof(T)) : nullptr) {}

    Handle m_section;
    Owner<ViewTraits> m_view;
};
