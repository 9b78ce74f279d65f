#include "localstore/attachment.h"

#include <algorithm>

#include "localstore/message.h"

namespace localstore {

Attachment::Attachment(Message* message, PartContent part, bool writable)
    : m_message(message),
      m_source(message->Properties().SharedTree(), message->Properties().SharedContent(), std::move(part),
               PartSource::Kind::Attachment),
      m_writable(writable) {}

bool Attachment::Supports(REFIID iid) const {
    return IsEqualGUID(iid, IID_IUnknown) || IsEqualGUID(iid, IID_IMAPIProp) ||
           IsEqualGUID(iid, IID_IAttachment);
}

CallSubject Attachment::Subject() const {
    const Text number = L"#" + std::to_wstring(m_source.Part().number);
    return {"IAttach", m_message->Properties().Label() + number, &Names()};
}

void Attachment::RequireWritable() const {
    Require(m_writable, MAPI_E_NO_ACCESS);
}

HRESULT Attachment::SetOne(Property property) {
    if (IsComputedProperty(property.Id())) {
        return MAPI_E_COMPUTED;
    }
    if (property.Id() >= kFirstNamedId) {
        const PropertyName* name = Names().NameOf(property.Id());
        const std::optional<PropertyId> id =
            name == nullptr ? std::nullopt : m_message->Edit().AddName(*name);
        if (!id) {
            return MAPI_E_INVALID_PARAMETER;
        }
        // The names are those of the message, which may have become one of its own just now.
        m_source.SetContent(m_message->Properties().SharedContent());
        property.tag = MakeTag(*id, property.Type());
    }
    m_source.Part().properties.Set(std::move(property));
    m_changed = true;
    return S_OK;
}

HRESULT Attachment::RemoveOne(PropertyId id) {
    if (IsComputedProperty(id)) {
        return MAPI_E_COMPUTED;
    }
    const std::optional<PropertyId> fileId = m_source.FileId(id);
    if (!fileId || !m_source.Part().properties.Remove(*fileId)) {
        return MAPI_E_NOT_FOUND;
    }
    m_changed = true;
    return S_OK;
}

STDMETHODIMP Attachment::SaveChanges(ULONG flags) {
    const auto describe = [&](CallText& text) { text.Flags("flags", flags); };
    return Call("SaveChanges", describe, [&] {
        RequireWritable();
        std::vector<PartContent>& attachments = m_message->Edit().attachments;
        const auto isThis = [this](const PartContent& part) { return part.number == m_source.Part().number; };
        const auto found = std::find_if(attachments.begin(), attachments.end(), isThis);
        if (found == attachments.end()) {
            attachments.push_back(m_source.Part());
        } else if (m_changed) {
            // Copied before it is put in place: half a copy would be saved with the message.
            PartContent part = m_source.Part();
            *found = std::move(part);
        }
        m_changed = false;
        return S_OK;
    });
}

}  // namespace localstore
