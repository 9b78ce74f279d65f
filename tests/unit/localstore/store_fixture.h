#pragma once

// A root folder of its own for each test, and the shortest ways to what stands in it. The store is linked in,
// in its recording build, and reached through the entry point table as the agent reaches it.

#include <windows.h>

#include <mapitags.h>
#include <mapix.h>

#include <gtest/gtest.h>

#include <initializer_list>
#include <string>
#include <vector>

#include "localstore/recorder.h"
#include "support/owners.h"

namespace localstore_test {

/// The profile, store and folder that every root has.
inline constexpr wchar_t kContactsPath[] = L"Work\\Mail\\Contacts";

class StoreTest : public testing::Test {
  protected:
    void SetUp() override;
    /// Fails the test if anything that the store handed out is still there.
    void TearDown() override;

    [[nodiscard]] const std::wstring& Root() const { return m_root; }
    /// The full path of something below the root.
    [[nodiscard]] std::wstring PathOf(const std::wstring& relative) const {
        return m_root + L"\\" + relative;
    }
    void MakeFolder(const std::wstring& relative) const;
    void WriteFileText(const std::wstring& relative, const std::string& text) const;

    static ComPtr<IMAPISession> LogOn(const wchar_t* profile = L"Work");
    static ComPtr<IMsgStore> OpenStore(IMAPISession* session, const wchar_t* name = L"Mail");
    /// The folder of a path below the store, with backslashes; an empty path is the top of the mail folders.
    static ComPtr<IMAPIFolder> OpenFolder(IMsgStore* store, const std::wstring& path);
    /// The folder Contacts of the store Mail of the profile Work.
    static ComPtr<IMAPIFolder> OpenContacts();
    static ComPtr<IMessage> OpenMessage(IMAPIFolder* folder, const std::vector<BYTE>& id, ULONG flags = 0x11);

  private:
    std::wstring m_root;
};

// A value for SetProps, which refers to the memory that it is given.
SPropValue StringValue(ULONG tag, const wchar_t* text);
SPropValue NarrowValue(ULONG tag, const char* text);
SPropValue LongValue(ULONG tag, LONG number);
SPropValue BoolValue(ULONG tag, bool on);
SPropValue TimeValue(ULONG tag, unsigned long long time);
SPropValue BinaryValue(ULONG tag, std::vector<BYTE>& bytes);

HRESULT Set(IMAPIProp* object, std::initializer_list<SPropValue> values);
HRESULT Delete(IMAPIProp* object, std::initializer_list<ULONG> tags);

/// One value read with GetProps and MAPI_UNICODE.
class OneValue {
  public:
    OneValue(IMAPIProp* object, ULONG tag, ULONG flags = MAPI_UNICODE);
    [[nodiscard]] HRESULT Result() const { return m_result; }
    [[nodiscard]] const SPropValue& Value() const { return *m_values.Get(); }
    /// The error code of a PT_ERROR value, and S_OK for any other.
    [[nodiscard]] SCODE Error() const;
    [[nodiscard]] std::wstring Text() const;
    [[nodiscard]] std::vector<BYTE> Bytes() const;
    [[nodiscard]] unsigned long long Time() const;

  private:
    MapiBuffer<SPropValue> m_values;
    HRESULT m_result;
};

std::wstring TextOf(IMAPIProp* object, ULONG tag);
std::vector<BYTE> IdOf(IMAPIProp* object);

/// The tag of a named property with a number, made if it does not exist.
ULONG NamedTag(IMAPIProp* object, ULONG firstOfSet, LONG number, ULONG type, ULONG flags = MAPI_CREATE);
/// The same for a name in PS_PUBLIC_STRINGS.
ULONG PublicTag(IMAPIProp* object, const wchar_t* name, ULONG type, ULONG flags = MAPI_CREATE);

/// All rows of a table.
RowSet RowsOf(IMAPITable* table, std::initializer_list<ULONG> columns, SRestriction* restriction = nullptr);
/// All messages of a folder.
RowSet ContentsOf(IMAPIFolder* folder, std::initializer_list<ULONG> columns,
                  SRestriction* restriction = nullptr);
RowSet FoldersOf(IMAPIFolder* folder, std::initializer_list<ULONG> columns,
                 SRestriction* restriction = nullptr);
/// The texts of the first column.
std::vector<std::wstring> FirstTexts(const RowSet& rows);

/// A saved message of class IPM.Contact with a subject. Returns its entry identifier.
std::vector<BYTE> AddContact(IMAPIFolder* folder, const wchar_t* subject);

/// What a stream over a property delivers, read in pieces of 1,024 bytes.
std::vector<BYTE> ReadStream(IMAPIProp* object, ULONG tag);
HRESULT WriteStream(IMAPIProp* object, ULONG tag, const std::vector<BYTE>& bytes);

std::vector<BYTE> FileBytes(const std::wstring& path);
void WriteFileBytes(const std::wstring& path, const std::vector<BYTE>& bytes);
/// Names of the files in a folder, in order.
std::vector<std::wstring> FileNames(const std::wstring& folder);

}  // namespace localstore_test
