#pragma once

// IMAPISession and IProfAdmin.

#include "localstore/com_object.h"
#include "localstore/store_tree.h"

namespace localstore {

/// A session of one profile.
class Session final : public ComObject<RefusingSession> {
  public:
    explicit Session(Text profile) : m_profile(std::move(profile)) {}

    STDMETHODIMP GetLastError(HRESULT result, ULONG flags, LPMAPIERROR* error) override;
    STDMETHODIMP GetMsgStoresTable(ULONG flags, LPMAPITABLE* table) override;
    STDMETHODIMP OpenMsgStore(ULONG_PTR window, ULONG size, LPENTRYID id, LPCIID iid, ULONG flags,
                              LPMDB* store) override;
    STDMETHODIMP OpenEntry(ULONG size, LPENTRYID id, LPCIID iid, ULONG flags, ULONG* type,
                           LPUNKNOWN* object) override;
    STDMETHODIMP CompareEntryIDs(ULONG size1, LPENTRYID id1, ULONG size2, LPENTRYID id2, ULONG flags,
                                 ULONG* result) override;
    STDMETHODIMP Logoff(ULONG_PTR window, ULONG flags, ULONG reserved) override;

    [[nodiscard]] bool Supports(REFIID iid) const override;
    [[nodiscard]] CallSubject Subject() const override;

  private:
    /// Ends the operation if Logoff was called.
    void RequireOpen() const;

    Text m_profile;
    bool m_loggedOff = false;
};

/// The administration of profiles, which here means their list.
class ProfileAdmin final : public ComObject<RefusingProfileAdmin> {
  public:
    STDMETHODIMP GetLastError(HRESULT result, ULONG flags, LPMAPIERROR* error) override;
    STDMETHODIMP GetProfileTable(ULONG flags, LPMAPITABLE* table) override;

    [[nodiscard]] bool Supports(REFIID iid) const override;
    [[nodiscard]] CallSubject Subject() const override;
};

/// Logs on to the profile of a name, or with `useDefault` and an empty name to the default profile.
/// MAPI_E_LOGON_FAILED if there is none.
ComPtr<Session> LogOn(const Text& name, bool useDefault);

}  // namespace localstore
