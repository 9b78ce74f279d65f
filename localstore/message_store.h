#pragma once

// IMsgStore.

#include "localstore/profile_tree.h"
#include "localstore/prop_object.h"

namespace localstore {

/// The properties of a message store, which its row in the session's table shows too.
class StoreSource : public PropertySource {
  public:
    explicit StoreSource(StoreInfo info) : m_info(std::move(info)) {}
    [[nodiscard]] std::optional<Property> Find(PropertyId id) const override;
    [[nodiscard]] std::vector<PropertyTag> Tags() const override;
    [[nodiscard]] const std::shared_ptr<StoreTree>& Tree() const { return m_info.tree; }

  private:
    StoreInfo m_info;
};

class MessageStore final : public PropObject<RefusingStore> {
  public:
    explicit MessageStore(StoreInfo info) : m_source(std::move(info)) {}

    STDMETHODIMP CompareEntryIDs(ULONG size1, LPENTRYID id1, ULONG size2, LPENTRYID id2, ULONG flags,
                                 ULONG* result) override;
    STDMETHODIMP OpenEntry(ULONG size, LPENTRYID id, LPCIID iid, ULONG flags, ULONG* type,
                           LPUNKNOWN* object) override;
    STDMETHODIMP GetReceiveFolder(LPTSTR messageClass, ULONG flags, ULONG* size, LPENTRYID* id,
                                  LPTSTR* explicitClass) override;
    STDMETHODIMP StoreLogoff(ULONG* flags) override;

    [[nodiscard]] bool Supports(REFIID iid) const override;
    [[nodiscard]] CallSubject Subject() const override;

  protected:
    [[nodiscard]] const PropertySource& Source() const override { return m_source; }
    [[nodiscard]] NamedProperties& Names() const override { return m_source.Tree()->Names(); }

  private:
    StoreSource m_source;
};

/// True if two identifiers stand for the same object: the long-term form of one counts as the other.
bool SameEntry(ULONG size1, const ENTRYID* id1, ULONG size2, const ENTRYID* id2);

}  // namespace localstore
