#pragma once

// A store in a temporary folder, made through the mail system's own interface, for tests that run the agent's
// rooms on the recording build of the local store in one process.

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "mapi/mapi_object.h"
#include "tests/unit/recorded_log.h"

/// The properties of a message or attachment that a test makes. The texts and bytes must live until it is
/// saved.
class PropertyValues {
  public:
    PropertyValues& Text(ULONG tag, const wchar_t* text);
    PropertyValues& Number(ULONG tag, LONG number);
    PropertyValues& Boolean(ULONG tag, bool isTrue);
    PropertyValues& Binary(ULONG tag, const std::vector<BYTE>& bytes);
    PropertyValues& Time(ULONG tag, WORD year, WORD month, WORD day, WORD hour = 0, WORD minute = 0);
    PropertyValues& Texts(ULONG tag, std::vector<const wchar_t*> texts);

    void SetOn(IMAPIProp* object) const;

  private:
    std::vector<SPropValue> m_values;
    std::vector<std::vector<const wchar_t*>> m_texts;
};

/// Writes what a test needs into one folder of a store, as a mail program would.
class FolderWriter {
  public:
    /// Logs on to a profile under the root and opens a folder, such as L"Contacts\\Private", of its default
    /// store or of the one that is named.
    FolderWriter(const std::wstring& profile, const std::wstring& folderPath, const std::wstring& store = {});
    FolderWriter(const FolderWriter&) = delete;
    FolderWriter& operator=(const FolderWriter&) = delete;
    ~FolderWriter();

    /// The identifier of the folder as the agent writes it.
    [[nodiscard]] CString FolderId() const;
    /// Those of its messages likewise.
    [[nodiscard]] std::vector<CString> MessageIds() const;

    /// A new message of a class with some properties; not saved yet.
    ComPtr<IMessage> NewMessage(const wchar_t* messageClass, const PropertyValues& values = {});
    /// The tag of a property named by number in PSETID_Address, or by text in the public strings.
    static ULONG AddressTag(IMessage* message, LONG id, ULONG type = PT_UNICODE);
    /// The tag of a property named by number in PSETID_Appointment, or from 0x8500 on in PSETID_Common.
    static ULONG AppointmentTag(IMessage* message, LONG id, ULONG type);
    static ULONG KeywordsTag(IMessage* message);
    /// Adds an attachment with data and saves it.
    static void AddAttachment(IMessage* message, const std::string& data, bool isPhoto);
    static void Save(IMessage* message);

    /// A contact with some properties, saved.
    void AddContact(const PropertyValues& values);

  private:
    ComPtr<IMAPISession> m_session;
    ComPtr<IMAPIFolder> m_folder;
};

class StoreTest : public ::testing::Test {
  protected:
    /// Makes a root with the profile Work, its store Mail and the folders Contacts, Calendar and Inbox.
    void SetUp() override;
    /// Logs the agent off and counts what is still alive.
    void TearDown() override;

    void MakeFolder(const std::wstring& path) const;
    void WriteFile(const std::wstring& path, const std::string& text) const;

    /// The identifier of a folder of the default store of profile Work.
    static CString FolderId(const std::wstring& path) { return FolderWriter(L"Work", path).FolderId(); }

    /// Logs the agent on and forgets the lines and calls that it took.
    static void LogOn(const wchar_t* profile = L"Work");

    std::wstring m_root;
    /// Buffers that a test expects to be left allocated by design.
    long m_expectedBuffers = 0;

  private:
    long m_objectsBefore = 0;
    long m_buffersBefore = 0;
};

/// What the agent sent since the last call, oldest first: contacts, and appointments.
std::vector<CString> TakeSent();
std::vector<CString> TakeSentCalendars();

/// Makes sending run something first, or fail; reset by the fixture.
void OnSend(std::function<void()> action);
