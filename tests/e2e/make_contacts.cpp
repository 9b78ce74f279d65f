// Makes contacts and appointments in the default folders of the default profile, with whatever it is given:
// also what no user could type. make_contacts MAPI32.DLL LIST, where LIST is a file of lines:
//
//   contact                        begins a contact; the lines behind it are its properties
//   appointment                    the same for an appointment
//   tag 3A11001F TEXT              a property by its tag
//   named 00062004 8083 TEXT       one by the first 32 bits of its property set and its number
//   time 3A420040 125911260000000000   a time by its tag
//   keywords TEXT TEXT ...         the categories
//   attachment TEXT                an attachment of this name, without bytes
//   number 00260003 1              a number by its tag
//   namednumber 00062002 8231 2    one by property set and number, as are the next ones
//   namedflag 00062002 8223 1      a yes or no
//   namedtime 00062002 820D 129439548000000000
//   namedbytes 00062002 8216 HEX   bytes, or "-" for none
//
// A TEXT is the hexadecimal form of its UTF-16 units, four digits each, or "-" for an empty one.

#include <mapiutil.h>
#include <mapix.h>
#include <windows.h>

#include <fstream>
#include <iostream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "support/owners.h"

namespace {

void Require(HRESULT result, const char* what) {
    if (result != S_OK) {
        std::ostringstream text;
        text << what << " gives " << std::hex << static_cast<unsigned long>(result);
        throw std::runtime_error(text.str());
    }
}

std::wstring Text(const std::string& hex) {
    std::wstring text;
    for (std::size_t i = 0; i + 4 <= hex.size(); i += 4) {
        text += static_cast<wchar_t>(std::stoul(hex.substr(i, 4), nullptr, 16));
    }
    return text;
}

/// MAPI, a session with the default profile and what is open in it.
class Mail {
  public:
    explicit Mail(const wchar_t* library) : m_library(LoadLibraryW(library)) {
        if (!m_library || FillMAPIEntryPoints(m_library.Get()) == 0) {
            throw std::runtime_error("the MAPI library cannot be loaded");
        }
        MAPIINIT_0 init{MAPI_INIT_VERSION, 0};
        Require(pfnMAPIInitialize(&init), "MAPIInitialize");
        Require(pfnMAPILogonEx(0, nullptr, nullptr, MAPI_EXTENDED | MAPI_NEW_SESSION | MAPI_USE_DEFAULT,
                               m_session.GetAddressOf()),
                "MAPILogonEx");
        OpenStore();
        m_contacts = OpenDefaultFolder(kContactFolder);
        m_calendar = OpenDefaultFolder(kCalendarFolder);
    }
    Mail(const Mail&) = delete;
    Mail& operator=(const Mail&) = delete;
    ~Mail() {
        m_contacts.Reset();
        m_calendar.Reset();
        m_store.Reset();
        if (m_session) {
            m_session->Logoff(0, 0, 0);
            m_session.Reset();
        }
        pfnMAPIUninitialize();
    }

    [[nodiscard]] ComPtr<IMessage> CreateContact() const { return Create(m_contacts.Get()); }
    [[nodiscard]] ComPtr<IMessage> CreateAppointment() const { return Create(m_calendar.Get()); }

  private:
    static constexpr ULONG kContactFolder = 0x36D10102;   // PR_IPM_CONTACT_ENTRYID
    static constexpr ULONG kCalendarFolder = 0x36D00102;  // PR_IPM_APPOINTMENT_ENTRYID

    static ComPtr<IMessage> Create(IMAPIFolder* folder) {
        ComPtr<IMessage> message;
        if (folder == nullptr) {
            throw std::runtime_error("the store has no folder for this");
        }
        Require(folder->CreateMessage(nullptr, 0, message.GetAddressOf()), "CreateMessage");
        return message;
    }

    void OpenStore() {
        ComPtr<IMAPITable> table;
        Require(m_session->GetMsgStoresTable(0, table.GetAddressOf()), "GetMsgStoresTable");
        SizedSPropTagArray(2, columns) = {2, {PR_DEFAULT_STORE, PR_ENTRYID}};
        RowSet rows;
        Require(pfnHrQueryAllRows(table.Get(), reinterpret_cast<LPSPropTagArray>(&columns), nullptr, nullptr,
                                  0, rows.Put()),
                "HrQueryAllRows");
        for (ULONG i = 0; i < rows->cRows && !m_store; ++i) {
            const SPropValue* values = rows->aRow[i].lpProps;
            if (values[0].Value.b != 0) {
                const SBinary& id = values[1].Value.bin;
                Require(m_session->OpenMsgStore(0, id.cb, reinterpret_cast<LPENTRYID>(id.lpb), nullptr,
                                                MAPI_BEST_ACCESS, m_store.GetAddressOf()),
                        "OpenMsgStore");
            }
        }
        if (!m_store) {
            throw std::runtime_error("there is no default store");
        }
    }

    template<class Interface>
    [[nodiscard]] ComPtr<Interface> Open(const SBinary& id) const {
        ULONG type = 0;
        ComPtr<IUnknown> object;
        Require(m_store->OpenEntry(id.cb, reinterpret_cast<LPENTRYID>(id.lpb), nullptr, MAPI_BEST_ACCESS,
                                   &type, object.GetAddressOf()),
                "OpenEntry");
        // A folder is opened with its own interface.
        return ComPtr<Interface>(static_cast<Interface*>(object.Get()));
    }

    /// The folder's identifier stands on the Inbox, or on the root of a store without one. Null if it is on
    /// neither.
    [[nodiscard]] ComPtr<IMAPIFolder> OpenDefaultFolder(ULONG tag) const {
        SBinary inbox{};
        const HRESULT found = m_store->GetReceiveFolder(nullptr, 0, &inbox.cb,
                                                        reinterpret_cast<LPENTRYID*>(&inbox.lpb), nullptr);
        const MapiBuffer<BYTE> owner(inbox.lpb);
        MapiBuffer<SPropValue> id;
        if ((found != S_OK || pfnHrGetOneProp(Open<IMAPIFolder>(inbox).Get(), tag, id.Put()) != S_OK) &&
            pfnHrGetOneProp(Open<IMAPIFolder>(SBinary{}).Get(), tag, id.Put()) != S_OK) {
            return nullptr;
        }
        return Open<IMAPIFolder>(id->Value.bin);
    }

    Library m_library;
    ComPtr<IMAPISession> m_session;
    ComPtr<IMsgStore> m_store;
    ComPtr<IMAPIFolder> m_contacts;
    ComPtr<IMAPIFolder> m_calendar;
};

void SetOne(IMAPIProp* object, SPropValue& value) {
    MapiBuffer<SPropProblemArray> problems;
    Require(object->SetProps(1, &value, problems.Put()), "SetProps");
    if (problems && problems->cProblem != 0) {
        Require(problems->aProblem[0].scode, "a property of SetProps");
    }
}

void SetText(IMAPIProp* object, ULONG tag, std::wstring text) {
    SPropValue value{};
    value.ulPropTag = CHANGE_PROP_TYPE(tag, PT_UNICODE);
    value.Value.lpszW = text.data();
    SetOne(object, value);
}

void SetTime(IMessage* message, ULONG tag, ULONGLONG time) {
    SPropValue value{};
    value.ulPropTag = tag;
    value.Value.ft.dwLowDateTime = static_cast<DWORD>(time & 0xFFFFFFFF);
    value.Value.ft.dwHighDateTime = static_cast<DWORD>(time >> 32);
    SetOne(message, value);
}

ULONG NamedTag(IMessage* message, MAPINAMEID name) {
    LPMAPINAMEID names = &name;
    MapiBuffer<SPropTagArray> tags;
    Require(message->GetIDsFromNames(1, &names, MAPI_CREATE, tags.Put()), "GetIDsFromNames");
    return tags->aulPropTag[0];
}

GUID PropertySet(ULONG first) {
    return {first, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
}

ULONG NumberedTag(IMessage* message, ULONG set, ULONG number) {
    GUID guid = PropertySet(set);
    MAPINAMEID name{};
    name.lpguid = &guid;
    name.ulKind = MNID_ID;
    name.Kind.lID = static_cast<LONG>(number);
    return NamedTag(message, name);
}

void SetNumber(IMessage* message, ULONG tag, LONG number) {
    SPropValue value{};
    value.ulPropTag = CHANGE_PROP_TYPE(tag, PT_LONG);
    value.Value.l = number;
    SetOne(message, value);
}

void SetFlag(IMessage* message, ULONG tag, bool flag) {
    SPropValue value{};
    value.ulPropTag = CHANGE_PROP_TYPE(tag, PT_BOOLEAN);
    value.Value.b = flag ? TRUE : FALSE;
    SetOne(message, value);
}

void SetBytes(IMessage* message, ULONG tag, const std::string& hex) {
    std::vector<BYTE> bytes;
    for (std::size_t i = 0; i + 2 <= hex.size(); i += 2) {
        bytes.push_back(static_cast<BYTE>(std::stoul(hex.substr(i, 2), nullptr, 16)));
    }
    SPropValue value{};
    value.ulPropTag = CHANGE_PROP_TYPE(tag, PT_BINARY);
    value.Value.bin = {static_cast<ULONG>(bytes.size()), bytes.data()};
    SetOne(message, value);
}

void SetKeywords(IMessage* message, std::vector<std::wstring> texts) {
    constexpr ULONG kPublicStrings = 0x00020329;
    GUID guid = PropertySet(kPublicStrings);
    wchar_t keywords[] = L"Keywords";
    MAPINAMEID name{};
    name.lpguid = &guid;
    name.ulKind = MNID_STRING;
    name.Kind.lpwstrName = keywords;
    std::vector<LPWSTR> pointers;
    pointers.reserve(texts.size());
    for (std::wstring& text : texts) {
        pointers.push_back(text.data());
    }
    SPropValue value{};
    value.ulPropTag = CHANGE_PROP_TYPE(NamedTag(message, name), PT_MV_UNICODE);
    value.Value.MVszW.cValues = static_cast<ULONG>(pointers.size());
    value.Value.MVszW.lppszW = pointers.data();
    SetOne(message, value);
}

void AddAttachment(IMessage* message, std::wstring name) {
    ULONG number = 0;
    ComPtr<IAttach> attachment;
    Require(message->CreateAttach(nullptr, 0, &number, attachment.GetAddressOf()), "CreateAttach");
    SetText(attachment.Get(), PR_ATTACH_LONG_FILENAME_W, std::move(name));
    Require(attachment->SaveChanges(KEEP_OPEN_READWRITE), "SaveChanges of an attachment");
}

void SetFromLine(IMessage* message, const std::string& kind, std::istringstream& words) {
    std::string text;
    ULONG tagOrSet = 0;
    ULONG number = 0;
    ULONGLONG time = 0;
    LONG value = 0;
    if (kind == "tag" && words >> std::hex >> tagOrSet >> text) {
        SetText(message, tagOrSet, Text(text));
    } else if (kind == "named" && words >> std::hex >> tagOrSet >> number >> text) {
        SetText(message, NumberedTag(message, tagOrSet, number), Text(text));
    } else if (kind == "number" && words >> std::hex >> tagOrSet >> std::dec >> value) {
        SetNumber(message, tagOrSet, value);
    } else if (kind == "namednumber" && words >> std::hex >> tagOrSet >> number >> std::dec >> value) {
        SetNumber(message, NumberedTag(message, tagOrSet, number), value);
    } else if (kind == "namedflag" && words >> std::hex >> tagOrSet >> number >> std::dec >> value) {
        SetFlag(message, NumberedTag(message, tagOrSet, number), value != 0);
    } else if (kind == "namedtime" && words >> std::hex >> tagOrSet >> number >> std::dec >> time) {
        SetTime(message, CHANGE_PROP_TYPE(NumberedTag(message, tagOrSet, number), PT_SYSTIME), time);
    } else if (kind == "namedbytes" && words >> std::hex >> tagOrSet >> number >> text) {
        SetBytes(message, NumberedTag(message, tagOrSet, number), text);
    } else if (kind == "time" && words >> std::hex >> tagOrSet >> std::dec >> time) {
        SetTime(message, tagOrSet, time);
    } else if (kind == "attachment" && words >> text) {
        AddAttachment(message, Text(text));
    } else if (kind == "keywords") {
        std::vector<std::wstring> texts;
        while (words >> text) {
            texts.push_back(Text(text));
        }
        SetKeywords(message, std::move(texts));
    } else {
        throw std::invalid_argument("not a line of a list: " + kind);
    }
}

int MakeItems(const Mail& mail, std::istream& list) {
    int made = 0;
    ComPtr<IMessage> message;
    const auto save = [&message, &made] {
        if (message) {
            Require(message->SaveChanges(0), "SaveChanges");
            ++made;
        }
    };
    for (std::string line; std::getline(list, line);) {
        std::istringstream words(line);
        std::string kind;
        words >> kind;
        if (kind == "contact") {
            save();
            message = mail.CreateContact();
            SetText(message.Get(), PR_MESSAGE_CLASS_W, L"IPM.Contact");
        } else if (kind == "appointment") {
            save();
            message = mail.CreateAppointment();
            SetText(message.Get(), PR_MESSAGE_CLASS_W, L"IPM.Appointment");
        } else if (message) {
            SetFromLine(message.Get(), kind, words);
        }
    }
    save();
    return made;
}

}  // namespace

int wmain(int count, wchar_t** arguments) {
    if (count != 3) {
        std::cerr << "make_contacts MAPI32.DLL LIST\n";
        return 2;
    }
    try {
        std::ifstream list(arguments[2]);
        if (!list) {
            throw std::runtime_error("the list cannot be read");
        }
        const Mail mail(arguments[1]);
        std::cout << MakeItems(mail, list) << " items\n";
        return 0;
    } catch (const std::exception& failure) {
        std::cerr << "make_contacts: " << failure.what() << '\n';
        return 1;
    }
}
