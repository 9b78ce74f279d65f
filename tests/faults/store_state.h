#pragma once

// A store with contacts and appointments in a folder and its sub-folder, and what the operations are given
// and give back.

#include <map>
#include <string>
#include <vector>

#include "calendar/calendar_record.h"
#include "contacts/contact_record.h"
#include "tests/unit/store/store_fixture.h"

/// The name that stands in a message before a write, and the one that the write puts there.
constexpr const wchar_t* kOldName = L"an old name of some length";
constexpr const wchar_t* kNewName = L"a new name of some length";

/// The identifier of the item that the maps know and the store does not hold.
constexpr const wchar_t* kGoneId = L"00000000";

/// The bytes of a file, none if it is not there; and puts them there.
std::string BytesOf(const std::wstring& path);
void WriteBytes(const std::wstring& path, const std::string& bytes);

class StoreState {
  public:
    /// Contacts, and appointments, with those of the sub-folder and without.
    static constexpr int kItems = 3;
    static constexpr int kItemsOnTop = 2;

    /// Makes the store below a root that holds its folders, and remembers it. The agent must be logged on.
    explicit StoreState(const std::wstring& root);
    StoreState(const StoreState&) = delete;
    StoreState& operator=(const StoreState&) = delete;
    ~StoreState();

    /// True if the messages and the maps are what they were in the beginning.
    [[nodiscard]] bool IsAsInTheBeginning() const;
    /// True if all that was there in the beginning still is as it was, save what lies in one folder. A null
    /// pointer stands for none.
    [[nodiscard]] bool KeepsAllBut(const wchar_t* folder) const;
    /// Brings messages and maps back to that, and removes what the store could not remove while all its calls
    /// failed: when a thousand of its temporary files lie in a folder it makes no more there.
    void Restore() const;
    /// The number of messages in the two folders of a kind.
    [[nodiscard]] std::size_t MessagesIn(const std::wstring& folder) const;

    /// The identifier of a message that was added to an upper folder; empty if there is none.
    [[nodiscard]] CString AddedId() const;

    void RememberFolders();

    /// Logons with which operations were prepared. Each leaves the keys of the zones as one that is run does.
    long logonsMade = 0;

    /// True if the map of a kind is the one of the beginning.
    [[nodiscard]] bool MapIsOld(const CString& map) const;
    /// True if it is, or knows all items that there are and none besides.
    [[nodiscard]] bool MapIsWhole(const CString& map) const;
    /// True if the messages are what they were in the beginning, whatever the maps are.
    [[nodiscard]] bool KeepsMessages() const;

    CString incoming;            ///< the document of a write
    std::int32_t flag = 0;       ///< what it asks for
    std::int32_t flagFound = 0;  ///< what was read of that
    std::int32_t flagLeft = 0;   ///< what was left of that by the write
    CContactEx contact;
    CCalendarEx calendar;
    CString picture;     ///< the file of a contact's new picture
    CString contactId;   ///< of the contact in the sub-folder, whose name is the old one
    CString calendarId;  ///< likewise of an appointment
    CString contactSelection;
    CString calendarSelection;
    /// Maps that lack one item, know another with an older time, and know one that is not there.
    CString contactMap;
    CString calendarMap;
    wchar_t document[1] = {};
    std::string wholeList;  ///< the file of a list as the first run without a failure left it
    /// The chosen folders before an operation, for comparison alone.
    const void* contactFolder = nullptr;
    const void* eventFolder = nullptr;

  private:
    using Files = std::map<std::wstring, std::string>;
    [[nodiscard]] Files Content() const;
    /// The messages of the upper folders.
    static std::vector<CString> TopIds();
    void RemoveTemporaries() const;
    static void MakeMap(const CString& map, bool ofContacts);

    std::wstring m_store;
    std::wstring m_beside;
    Files m_beginning;
    std::vector<CString> m_knownIds;  ///< of the upper folders in the beginning
};
