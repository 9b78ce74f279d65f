#pragma once

#include <string>

#include "support/owners.h"

namespace sample {

/// A session with the default store of the default profile, for as long as the object lives. COM and MAPI are
/// initialised with it.
class SampleSession {
  public:
    SampleSession();
    SampleSession(const SampleSession&) = delete;
    SampleSession& operator=(const SampleSession&) = delete;
    ~SampleSession();

    /// The store's default contact folder.
    ComPtr<IMAPIFolder> OpenContacts();
    /// The folder of a name in another one.
    ComPtr<IMAPIFolder> OpenSubFolder(IMAPIFolder* parent, const std::wstring& name);

  private:
    void OpenDefaultStore();

    ComPtr<IMAPISession> m_session;
    ComPtr<IMsgStore> m_store;
};

}  // namespace sample
