#pragma once

// IAttach.

#include "localstore/content_source.h"
#include "localstore/prop_object.h"

namespace localstore {

class Message;

/// An attachment of an open message. SaveChanges puts it into the message, and the message's own SaveChanges
/// into the file.
class Attachment final : public WritablePropObject<RefusingAttachment> {
  public:
    Attachment(Message* message, PartContent part, bool writable);

    STDMETHODIMP SaveChanges(ULONG flags) override;

    [[nodiscard]] bool Supports(REFIID iid) const override;
    [[nodiscard]] CallSubject Subject() const override;

    void RequireWritable() const override;
    HRESULT SetOne(Property property) override;
    HRESULT RemoveOne(PropertyId id) override;

  protected:
    [[nodiscard]] const PropertySource& Source() const override { return m_source; }
    [[nodiscard]] NamedProperties& Names() const override { return m_source.Tree().Names(); }

  private:
    ComPtr<Message> m_message;
    PartSource m_source;
    bool m_writable;
    bool m_changed = false;
};

}  // namespace localstore
