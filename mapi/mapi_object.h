#pragma once

// CMAPIObject, the session class. Its header stands here; its members are defined in the room that each
// belongs to, a file per operation family.

#include <array>
#include <cstddef>

#include "support/containers.h"
#include "support/owners.h"
#include "support/text.h"
#include "support/xml_parser.h"
#include "timezone/zone_table.h"

class CCalendarEx;
class CContactEx;
struct FolderIdentity;
struct tagContactFields;
struct tagLogItem;

namespace NAMESPACE_MAPI {

/// What an operation works with from its beginning to its end: references of its own, so that a call that
/// comes meanwhile and replaces the session or the folder takes nothing away from it. They are let go in the
/// order of a logoff.
struct HeldObjects {
    ComPtr<IMAPISession> session;
    ComPtr<IMsgStore> store;
    ComPtr<IMAPIFolder> folder;  ///< the chosen one; null without one
};

/// The mail session and what was chosen in it. There is one instance, g_MAPIObject, used by whichever call
/// thread of the RPC runtime is running, without a lock: a desktop program makes one call at a time. `Stop`
/// alone may come while a read runs, and sets a flag.
///
/// Operations begin and end with a line in the log and turn all exceptions inside them into their failure
/// result.
class CMAPIObject {
  public:
    CMAPIObject();
    CMAPIObject(const CMAPIObject&) = delete;
    CMAPIObject& operator=(const CMAPIObject&) = delete;
    virtual ~CMAPIObject();

    // session.cpp: the life of the session.

    /// Logs on with a profile name, or with the default profile for an empty one, after ending a session that
    /// is still open. Returns 1, or 0 with everything closed again.
    int MAPILogOn(ULONG reserved, const wchar_t* profile);
    /// Ends the session and MAPI.
    void MAPILogOff();
    /// Ends the session: folders, store, session and profile administration, in this order.
    void MAPIRelease();
    /// Undoes MAPIInitialize if it was done.
    void MAPIUninitialize();
    /// Interrupts the running read; without one, the next read that has items.
    void Stop();

    // profile_document.cpp and folder_document.cpp: what there is to choose from.

    /// Writes the list of profiles to its file; the buffer is only emptied. Works without a logon too.
    /// Returns 0 for success and 1 for failure.
    int GetAppProfile(wchar_t* lpszProfiles);
    /// Writes the folder trees of all stores to their file. Returns 0 for success and 1 for failure.
    int GetAppFolder(wchar_t* lpszFolders);
    /// Appends one store of the store table with its folders, opened through the session that the operation
    /// holds, which must be there. Returns 1 or 0; a store that does not open is no failure.
    int GetAppFolderFromStore(IMAPISession* session, const SRow* row, CXMLParser& document,
                              IXMLDOMNode* parent, int depth);
    /// Appends the sub-folders of a folder, with theirs. Returns 1 or 0.
    int GetAppFolderFromFolder(IMsgStore* store, const SBinary& entryId, CXMLParser& document,
                               IXMLDOMNode* parent, int depth);

    // folder_choice.cpp: the folders to work on.

    /// Makes a folder the one that contacts are read from and written to. Returns 0, or 1 with the earlier
    /// one kept.
    int SetContactFolder(const wchar_t* selection);
    /// The same for calendar items; the folder stands in an event element of the selection.
    int SetCalendarFolder(const wchar_t* selection);
    /// The folder of a selection, or for an empty one the default folder that a property names. Null if there
    /// is none.
    ComPtr<IMAPIFolder> GetOutlookFolder(const CString& selection, ULONG defaultTag);
    /// The folder of an identifier as text, searched for in all stores. Null if no store accepts it.
    ComPtr<IMAPIFolder> GetOutlookFolderFromEntryID(const CString& hexId);

    // contacts/contact_reading.cpp.

    /// The number of contacts that a full read sends; 0 without a contact folder.
    long GetContactCount() const;
    /// Sends all contacts of the chosen folder or, for the path of a map file, what changed in it since the
    /// map was written. Returns 0 for success and 1 for failure.
    int ReadContacts(const wchar_t* lParam1);
    /// Counts the contacts of a folder and, by setting, of its sub-folders. Failures count as 0. The steps of
    /// a read, of which this is the first, open everything through `chosen`, the folder that the read holds;
    /// a null one fails them.
    static ULONG GetContactCountFromFolder(IMAPIFolder* chosen, const SBinary& entryId);
    /// Sends the contacts of a folder, then those of its sub-folders. `path` names the folder in the
    /// documents. Returns 1 if all was walked to the end, otherwise 0.
    int ReadContactFromFolder(IMAPIFolder* chosen, const SBinary& entryId, const CString& path);

    // contacts/contact_changes.cpp.

    /// Appends what a contact folder and, by setting, its sub-folders hold now. Returns 1, or 0 for a list
    /// that is not complete.
    int ReadContactLogFromFolder(IMAPIFolder* chosen, const SBinary& entryId,
                                 CArray<tagLogItem, const tagLogItem&>& items) const;
    /// Sends the marked items: new and changed ones in full, deleted ones as what the list knows of them.
    /// Returns 1 if all was walked to the end, otherwise 0.
    int ReadContactFromLog(IMAPIFolder* chosen, const CArray<tagLogItem, const tagLogItem&>& items,
                           const CString& path);

    // contacts/contact_writing.cpp. A write puts exactly what the record holds into the message: what it
    // leaves empty is removed.

    /// Adds, updates or deletes a contact, as its flag says, and clears the flag's bit if that succeeded.
    /// Returns 0, also when the mail system failed or an exception ended the operation, and 1 for a null
    /// record alone.
    int WriteContacts(CContactEx* contact) const;
    /// Makes a message in the chosen folder. The record receives its identifier, empty if that cannot be
    /// read, and the time of its change. Returns 1 if it was saved, otherwise 0.
    int AddContact(CContactEx* contact) const;
    /// Replaces the message of the record's identifier. The record receives the time of its change. Returns 1
    /// if it was saved, otherwise 0.
    int UpdateContact(CContactEx* contact) const;
    /// Removes the message of the record's identifier from the folder that it lives in. Returns 1 or 0.
    int DeleteContact(CContactEx* contact) const;
    /// Writes a record to an open message and saves it. The record receives the time of the change, or no
    /// date if the message has none. Returns 1 if the message was saved, otherwise 0.
    int UpdateContactMessage(IMessage* message, CContactEx* contact) const;
    /// Writes what is made of the parts of the name. Returns 1, or 0 after an exception.
    static int UpdateContactDisplayName(IMessage* message, const tagContactFields& fields);

    // calendar/calendar_reading.cpp.

    /// The number of appointments that a full read sends; 0 without a calendar folder.
    long GetCalendarCount() const;
    /// The same, without the lines of the remote procedure.
    static long GetCalendarEventCount(IMAPIFolder* chosen);
    /// Counts the appointments of a folder and, by setting, of its sub-folders. Failures count as 0.
    static ULONG GetCalendarEventCountFromFolder(IMAPIFolder* chosen, const SBinary& entryId);
    /// Sends all appointments of the chosen folder or, for the path of a map file, what changed in it since
    /// the map was written. Returns 0 for success and 1 for failure.
    int ReadCalendars(const wchar_t* lParam1);
    /// The read itself, behind the count. Returns 1 for success and 0 for failure.
    int ReadCalendarEvent(IMAPIFolder* chosen, const CString& lParam1);
    /// Sends the appointments of a folder, then those of its sub-folders. `path` names the folder in the
    /// documents. Returns 1 if all was walked to the end, otherwise 0.
    int ReadCalendarEventFromFolder(IMAPIFolder* chosen, const SBinary& entryId, const CString& path);

    // calendar/calendar_changes.cpp.

    /// Appends what a calendar folder and, by setting, its sub-folders hold now. Returns 1, or 0 for a list
    /// that is not complete.
    int ReadCalendarEventLogFromFolder(IMAPIFolder* chosen, const SBinary& entryId,
                                       CArray<tagLogItem, const tagLogItem&>& items) const;
    /// Sends the marked items, to the end even when stopped: new and changed ones in full, deleted ones as
    /// what the list knows of them. Returns 1, or 0 after an exception.
    int ReadCalendarEventFromLog(IMAPIFolder* chosen, const CArray<tagLogItem, const tagLogItem&>& items,
                                 const CString& path);

    // calendar/calendar_writing.cpp. A write puts exactly what the record holds into the message, as that of
    // a contact does.

    /// Adds, updates or deletes an appointment, as its flag says, and clears the flag's bit if that
    /// succeeded. Then sends an empty text, whatever came of it: a failure of that call is not caught here
    /// and leaves as RpcFailure. Returns 0, also when the mail system failed, and 1 after an exception in
    /// front of the operation and for a null record, which sends nothing.
    int WriteCalendars(CCalendarEx* calendar);
    /// Adds an appointment if its kind is the one that is written. Returns 1 if it was saved, otherwise 0.
    int AddCalendar(CCalendarEx* calendar) const;
    /// Updates one on the same condition. Returns 1 if it was saved, otherwise 0.
    int UpdateCalendar(CCalendarEx* calendar) const;
    /// Removes the message of the record's identifier from the folder that it lives in, whatever the record's
    /// kind. Returns 1 or 0.
    int DeleteCalendar(CCalendarEx* calendar) const;
    /// Makes a message in the chosen folder. The record receives its identifier, empty if that cannot be
    /// read, and the time of its change. Returns 1 if it was saved, otherwise 0.
    int AddCalendarEvent(CCalendarEx* calendar) const;
    /// Replaces the message of the record's identifier. The record receives the time of its change. Returns 1
    /// if it was saved, otherwise 0.
    int UpdateCalendarEvent(CCalendarEx* calendar) const;
    /// Writes a record to an open message and saves it. The record receives the time of the change, or no
    /// date if the message has none, and whole days become midnights in it. Returns 1 if the message was
    /// saved, otherwise 0.
    int UpdateCalendarEventMessage(IMessage* message, CCalendarEx* calendar) const;

    HWND m_hNotifyWnd = nullptr;  ///< progress messages go here; never set to a window
    // Only the beginning of an operation looks at these; it then works on what it holds.
    ComPtr<IMAPISession> m_lpMAPISession;
    ComPtr<IProfAdmin> m_lpProfAdmin;  ///< kept from the first list of profiles
    ComPtr<IMsgStore> m_lpMsgStore;    ///< the default store
    int m_bMAPIInitialized = 0;
    int m_bLoggedOn = 0;
    ComPtr<IMAPIFolder> m_lpContactFolder;
    ComPtr<IMAPIFolder> m_lpEventFolder;
    int m_nItemsSent = 0;
    int m_nItemTotal = 0;
    int m_bStop = 0;  ///< a plain flag: written by Stop's thread, polled by the read
    NAMESPACE_COMMON::tagZebTimeZone m_CurrentTimeZone;  ///< the zone of the machine at logon
    TimeZoneTable m_arrTimeZones;           ///< zones from the registry, once LoadTimeZones has run
    CArray<CString> m_arrDefaultFolderIds;  ///< hexadecimal, by folder type number

  private:
    /// For the beginning of an operation: takes the references that it works on.
    [[nodiscard]] HeldObjects Hold(const ComPtr<IMAPIFolder>& chosen) const {
        return {m_lpMAPISession, m_lpMsgStore, chosen};
    }
    bool InitializeMAPI();
    bool OpenSession(const wchar_t* profile);
    bool OpenDefaultStore();
    void WriteProfileDocument(CXMLParser& document, wchar_t* lpszProfiles);
    ComPtr<IProfAdmin> OpenProfileAdministration();
    void WriteFolderDocument(CXMLParser& document, wchar_t* lpszFolders);
    bool AppendStoreFolders(IMAPISession* session, const SRow& row, CXMLParser& document, IXMLDOMNode* node,
                            int depth);
    bool AppendSubFolders(IMsgStore* store, const SBinary& entryId, CXMLParser& document, IXMLDOMNode* parent,
                          int depth);
    bool AppendFolder(IMsgStore* store, const SRow& row, CXMLParser& document, IXMLDOMNode* parent,
                      int depth);
    ComPtr<IMAPIFolder> SearchStores(const CString& hexId) const;
    bool ReadChosenContacts(const CString& lParam1);
    bool ReadAllContacts(IMAPIFolder* chosen, const FolderIdentity& identity);
    bool ReadChangedContacts(IMAPIFolder* chosen, const FolderIdentity& identity, const CString& mapFile);
    void SendContactRow(IMAPIFolder* chosen, const SRow& row, const CString& path);
    bool CountAndReadCalendars(const CString& lParam1);
    void ReportCalendarRead(bool succeeded) const;
    bool ReadChosenCalendar(IMAPIFolder* chosen, const CString& lParam1);
    bool ReadAllCalendars(IMAPIFolder* chosen, const FolderIdentity& identity);
    bool ReadChangedCalendars(IMAPIFolder* chosen, const FolderIdentity& identity, const CString& mapFile);
    void SendCalendarRow(IMAPIFolder* chosen, const SRow& row, const CString& path);
    void WriteOneContact(CContactEx* contact) const;
};

}  // namespace NAMESPACE_MAPI

/// The one session object. Built before the entry function; it does not end its session when the process
/// ends.
extern NAMESPACE_MAPI::CMAPIObject g_MAPIObject;
