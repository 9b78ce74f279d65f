#pragma once

// What the tests of writing contacts share.

#include <mapitags.h>

#include <algorithm>
#include <filesystem>
#include <initializer_list>
#include <utility>
#include <vector>

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
        Fill(flag, fields, photo);
        EXPECT_EQ(g_MAPIObject.WriteContacts(&m_contact), 0);
    }
    /// Fills the record anew; only its identifier stays.
    void Fill(std::int32_t flag, Values fields, const std::wstring& photo = {}) {
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
    }
    /// The lines of one write around those of its operation.
    static LogLines Lines(const std::vector<const wchar_t*>& operation) {
        LogLines lines{{1, L"CMAPIObject::WriteContacts - Begin\r\n"}};
        for (const wchar_t* const line : operation) {
            lines.push_back({1, CString::Format(L"CMAPIObject::%s\r\n", line)});
        }
        lines.push_back({1, L"CMAPIObject::WriteContacts - Finish\r\n"});
        return lines;
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
        if (!message) {
            return -1;
        }
        const MapiBuffer<SPropValue> value =
            GetProperty(message.Get(), FolderWriter::AddressTag(message.Get(), 0x8015, PT_BOOLEAN));
        return value ? value->Value.b : -1;
    }
    /// The categories of the message; none if the property is not there.
    [[nodiscard]] std::vector<CString> Categories() const {
        std::vector<CString> categories;
        const ComPtr<IMessage> message = Message();
        if (!message) {
            return categories;
        }
        const MapiBuffer<SPropValue> value =
            GetProperty(message.Get(), FolderWriter::KeywordsTag(message.Get()));
        for (ULONG i = 0; value && i < value->Value.MVszW.cValues; ++i) {
            categories.emplace_back(value->Value.MVszW.lppszW[i]);
        }
        return categories;
    }
    /// When the message was changed last, in local time.
    [[nodiscard]] COleDateTime TimeOfChange() const {
        const ComPtr<IMessage> message = Message();
        const MapiBuffer<SPropValue> time =
            message ? GetProperty(message.Get(), PR_LAST_MODIFICATION_TIME) : MapiBuffer<SPropValue>();
        if (!time) {
            ADD_FAILURE() << "no time of change";
            return {};
        }
        FILETIME local{};
        SYSTEMTIME fields{};
        EXPECT_TRUE(FileTimeToLocalFileTime(&time->Value.ft, &local) != FALSE &&
                    FileTimeToSystemTime(&local, &fields) != FALSE);
        COleDateTime date;
        date.SetDateTime(fields.wYear, fields.wMonth, fields.wDay, fields.wHour, fields.wMinute,
                         fields.wSecond);
        return date;
    }
    /// The number of messages that lie in a folder, which need not count as contacts.
    [[nodiscard]] std::size_t Files(const std::wstring& folder = L"Contacts") const {
        const std::filesystem::directory_iterator entries(m_root + L"\\Work\\Mail\\" + folder);
        return static_cast<std::size_t>(std::count_if(begin(entries), end(entries), [](const auto& entry) {
            return entry.path().extension() == L".msg";
        }));
    }
    /// The number of the message's attachments; 0 without a message.
    [[nodiscard]] ULONG Attachments() const {
        const ComPtr<IMessage> message = Message();
        ComPtr<IMAPITable> table;
        ULONG count = 0;
        if (!message) {
            return count;
        }
        EXPECT_EQ(message->GetAttachmentTable(0, table.GetAddressOf()), S_OK);
        EXPECT_EQ(table->GetRowCount(0, &count), S_OK);
        return count;
    }

    CContactEx m_contact;
};
