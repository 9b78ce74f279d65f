#pragma once

#include <string>

#include "support/owners.h"

namespace sample {

/// Loads MAPI32.dll, which stays until the process ends: what it made may be asked for its last reference
/// late.
void LoadMapi();

/// A session with the default store of a profile, for as long as the object lives. MAPI must be loaded, and
/// COM initialised on the thread.
class SampleSession {
  public:
    explicit SampleSession(const wchar_t* profile);
    SampleSession(const SampleSession&) = delete;
    SampleSession& operator=(const SampleSession&) = delete;
    ~SampleSession();

    /// The store's default contact folder and its default calendar folder.
    ComPtr<IMAPIFolder> OpenContacts();
    ComPtr<IMAPIFolder> OpenCalendar();

  private:
    void OpenDefaultStore();
    ComPtr<IMAPIFolder> OpenDefaultFolder(ULONG tag, const wchar_t* doing);

    ComPtr<IMAPISession> m_session;
    ComPtr<IMsgStore> m_store;
};

/// The folder of a name in another one.
ComPtr<IMAPIFolder> OpenSubFolder(IMAPIFolder* parent, const std::wstring& name);

}  // namespace sample
