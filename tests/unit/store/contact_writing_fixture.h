#pragma once

// What the tests of writing contacts share.

#include <mapitags.h>

#include <initializer_list>
#include <utility>

#include "contacts/contact_record.h"
#include "localstore/recorder.h"
#include "mapi/named_properties.h"
#include "mapi/store_entries.h"
#include "tests/unit/store/store_fixture.h"

class ContactWriting : public StoreTest {
  protected:
    using Values = std::initializer_list<std::pair<std::int32_t, const wchar_t*>>;

    void SetUp() override {
        StoreTest::SetUp();
        LogOn();
        g_MAPIObject.m_CurrentTimeZone.Bias = 0;
    }

    /// Fills the record, writes it, and keeps its identifier for the next write.
    void Write(std::int32_t flag, Values fields, const std::wstring& photo = {}) {
        const CString id = m_contact.m_strPIMID;
        m_contact.Reset();
        m_contact.m_strPIMID = id;
        m_contact.m_lFlag = flag;
        for (const auto& [field, value] : fields) {
            m_contact.AddField(field, value);
        }
        if (!photo.empty()) {
            SetPhoto(photo);
        }
        EXPECT_EQ(g_MAPIObject.WriteContacts(&m_contact), 0);
    }
    /// Puts the path of a photo where it rides: on the first entry of the name, or on one of its own.
    void SetPhoto(const std::wstring& path) {
        if (FindPhotoEntry(m_contact) == nullptr) {
            CContactInfoEx entry;
            entry.m_nFieldId = 5;
            m_contact.AddFieldCopy(entry);
        }
        FindPhotoEntry(m_contact)->m_strPicPath = CString(path.c_str());
    }
    /// The message of the record; null if it is not there.
    [[nodiscard]] ComPtr<IMessage> Message() const {
        return OpenMessageByHexId(g_MAPIObject.m_lpContactFolder.Get(), m_contact.m_strPIMID);
    }
    /// A text of the message; "(none)" if it is not there.
    [[nodiscard]] CString Text(ULONG tag) const {
        const ComPtr<IMessage> message = Message();
        const MapiBuffer<SPropValue> value =
            message ? GetProperty(message.Get(), tag) : MapiBuffer<SPropValue>();
        return value ? CString(value->Value.lpszW) : CString(L"(none)");
    }
    [[nodiscard]] CString NamedText(LONG id) const {
        const ComPtr<IMessage> message = Message();
        return message ? Text(FolderWriter::AddressTag(message.Get(), id)) : CString(L"(none)");
    }
    /// The property that says whether there is a photo; -1 if it is not there.
    [[nodiscard]] int HasPicture() const {
        const ComPtr<IMessage> message = Message();
        const MapiBuffer<SPropValue> value =
            GetProperty(message.Get(), FolderWriter::AddressTag(message.Get(), 0x8015, PT_BOOLEAN));
        return value ? value->Value.b : -1;
    }
    /// The number of the message's attachments.
    [[nodiscard]] ULONG Attachments() const {
        const ComPtr<IMessage> message = Message();
        ComPtr<IMAPITable> table;
        ULONG count = 0;
        EXPECT_EQ(message->GetAttachmentTable(0, table.GetAddressOf()), S_OK);
        EXPECT_EQ(table->GetRowCount(0, &count), S_OK);
        return count;
    }

    CContactEx m_contact;
};
