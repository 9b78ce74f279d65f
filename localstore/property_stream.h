#pragma once

// A string or binary property as an IStream.

#include "localstore/com_object.h"
#include "localstore/property_source.h"
#include "localstore/property_target.h"

namespace localstore {

/// What is written goes to the object at Commit and when the last reference goes, and to the disk with the
/// object's own SaveChanges.
class PropertyStream final : public ComObject<RefusingStream> {
  public:
    /// `target` is null for a stream that is only read; otherwise it is the target of `owner`, which the
    /// stream keeps alive.
    PropertyStream(IUnknown* owner, PropertyTarget* target, CallSubject subject, PropertyTag tag,
                   Bytes bytes);

    STDMETHODIMP Read(void* buffer, ULONG size, ULONG* read) override;
    STDMETHODIMP Write(const void* buffer, ULONG size, ULONG* written) override;
    STDMETHODIMP Seek(LARGE_INTEGER move, DWORD origin, ULARGE_INTEGER* position) override;
    STDMETHODIMP SetSize(ULARGE_INTEGER size) override;
    STDMETHODIMP Commit(DWORD flags) override;
    STDMETHODIMP Revert() override;
    STDMETHODIMP Stat(STATSTG* stat, DWORD flags) override;

    [[nodiscard]] bool Supports(REFIID iid) const override;
    [[nodiscard]] CallSubject Subject() const override;

  protected:
    void BeforeDestruction() noexcept override;

  private:
    HRESULT WriteToTarget();

    ComPtr<IUnknown> m_owner;
    PropertyTarget* m_target;
    CallSubject m_subject;
    PropertyTag m_tag;
    Bytes m_bytes;
    std::size_t m_position = 0;
    bool m_changed = false;
};

/// IMAPIProp::OpenProperty for IID_IStream.
ComPtr<IStream> OpenStreamOf(const PropertySource& source, IUnknown* owner, PropertyTarget* target,
                             const CallSubject& subject, PropertyTag tag, ULONG flags);

}  // namespace localstore
