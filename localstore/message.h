#pragma once

// IMessage.

#include "localstore/content_source.h"
#include "localstore/message_edit.h"
#include "localstore/prop_object.h"

namespace localstore {

/// A message of a folder. It works on a state of its own, which SaveChanges writes; until then nobody else
/// sees it.
class Message final : public WritablePropObject<RefusingMessage> {
  public:
    enum class Mode { ReadOnly, ReadWrite, New };

    /// `digest` is that of the file's name, if it is known.
    Message(std::shared_ptr<StoreTree> tree, MessageFolder folder, LoadedMessage message, Mode mode,
            std::optional<NameDigest> digest = std::nullopt);

    STDMETHODIMP GetProps(LPSPropTagArray tags, ULONG flags, ULONG* count, LPSPropValue* values) override;
    STDMETHODIMP SaveChanges(ULONG flags) override;
    STDMETHODIMP GetAttachmentTable(ULONG flags, LPMAPITABLE* table) override;
    STDMETHODIMP OpenAttach(ULONG number, LPCIID iid, ULONG flags, LPATTACH* attachment) override;
    STDMETHODIMP CreateAttach(LPCIID iid, ULONG flags, ULONG* number, LPATTACH* attachment) override;
    STDMETHODIMP DeleteAttach(ULONG number, ULONG window, LPMAPIPROGRESS progress, ULONG flags) override;
    STDMETHODIMP GetRecipientTable(ULONG flags, LPMAPITABLE* table) override;

    [[nodiscard]] bool Supports(REFIID iid) const override;
    [[nodiscard]] CallSubject Subject() const override;

    void RequireWritable() const override;
    HRESULT SetOne(Property property) override;
    HRESULT RemoveOne(PropertyId id) override;

    /// The state, to be changed. From now on the message has something to save.
    MessageContent& Edit();
    [[nodiscard]] const MessageSource& Properties() const { return m_source; }

  protected:
    [[nodiscard]] const PropertySource& Source() const override { return m_source; }
    [[nodiscard]] NamedProperties& Names() const override { return m_source.Tree().Names(); }

  private:
    void ReserveName();
    void Save(ULONG flags);
    /// Takes over what is on the disk now.
    void NoteSaved(const Text& path, Text name, const FileStamp& stamp,
                   std::shared_ptr<MessageContent> saved) noexcept;
    [[nodiscard]] LPMAPITABLE PartTable(const wchar_t* label, const std::vector<PartContent>& parts,
                                        PartSource::Kind kind, ULONG flags);

    MessageSource m_source;
    /// The state that is being changed; null as long as the message shares what was read.
    std::shared_ptr<MessageContent> m_own;
    Mode m_mode;
    bool m_changed = false;
    /// The numbers of attachments are not used twice, even by one that was never saved.
    std::uint32_t m_nextAttachment;
};

}  // namespace localstore
