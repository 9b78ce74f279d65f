#include "tests/soak/remote_library.h"

#include <cwchar>
#include <stdexcept>

#include "support/owners.h"

namespace {

/// A text in another process.
class RemoteText {
  public:
    RemoteText(HANDLE process, const wchar_t* text) : m_process(process) {
        const SIZE_T size = (std::wcslen(text) + 1) * sizeof(wchar_t);
        m_place = VirtualAllocEx(process, nullptr, size, MEM_COMMIT | MEM_RESERVE, PAGE_READWRITE);
        m_isThere = m_place != nullptr && WriteProcessMemory(process, m_place, text, size, nullptr) != FALSE;
    }
    RemoteText(const RemoteText&) = delete;
    RemoteText& operator=(const RemoteText&) = delete;
    ~RemoteText() {
        if (m_place != nullptr) {
            VirtualFreeEx(m_process, m_place, 0, MEM_RELEASE);
        }
    }

    [[nodiscard]] bool IsThere() const { return m_isThere; }
    [[nodiscard]] void* Get() const { return m_place; }

  private:
    HANDLE m_process;
    void* m_place = nullptr;
    bool m_isThere = false;
};

}  // namespace

bool LoadInto(HANDLE process, const wchar_t* library) {
    const RemoteText path(process, library);
    // The system's libraries lie at the same place in all processes.
    const auto load = reinterpret_cast<LPTHREAD_START_ROUTINE>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"kernel32.dll"), "LoadLibraryW")));
    const Handle thread(path.IsThere() ? CreateRemoteThread(process, nullptr, 0, load, path.Get(), 0, nullptr)
                                       : nullptr);
    DWORD loaded = 0;
    if (!thread || WaitForSingleObject(thread.Get(), INFINITE) != WAIT_OBJECT_0 ||
        GetExitCodeThread(thread.Get(), &loaded) == FALSE) {
        throw std::runtime_error("a process cannot be made to load a library");
    }
    return loaded != 0;
}
