// Reads of changes: the walk that lists a folder, and what is sent of the marked list.

#include <algorithm>
#include <filesystem>

#include "changelog/folder_log.h"
#include "mapi/hex_text.h"
#include "mapi/property_tags.h"
#include "support/settings.h"
#include "tests/unit/store/change_log.h"
#include "tests/unit/store/contact_reading_fixture.h"
#include "tests/unit/store/without_document_class.h"
#include "tests/unit/temporary_folder.h"
#include "tests/unit/text_printer.h"

namespace {

namespace recorder = localstore::recorder;

class ContactChanges : public ContactReading {
  protected:
    void TearDown() override {
        OnGetChangeLog({});
        ContactReading::TearDown();
    }

    int ReadChanges() { return g_MAPIObject.ReadContacts(m_folder.File(L"map").c_str()); }
    /// Reads everything once, so that it is known.
    void Know() {
        ASSERT_EQ(ReadChanges(), 0);
        TakeSent();
        TakeLog();
        recorder::ClearCalls();
    }
    /// The lines of a read of changes from its first one up to the walk.
    LogLines FirstLines(int count) const {
        LogLines lines{{1, L"CMAPIObject::ReadContacts - Begin\r\n"}};
        Append(lines, CountLines());
        Append(lines,
               {{1, CString::Format(L"CMAPIObject::ReadContacts - Contact Count(%d)\r\n", count)},
                {1, L"CMAPIObject::ReadContacts - m_lpContactFolder->GetProps(0X00000000)\r\n"},
                {1, L"CMAPIObject::ReadContacts - Read Changed Items(" + m_folder.File(L"map") + L")\r\n"}});
        return lines;
    }
    static LogLines WalkLines() {
        return {{1, L"CMAPIObject::ReadContactLogFromFolder - Begin\r\n"},
                {1, L"CMAPIObject::ReadContactLogFromFolder - m_lpContactFolder->OpenEntry(0X00000000)\r\n"},
                {1, L"CMAPIObject::ReadContactLogFromFolder - lpContainer->GetContentsTable(0X00000000)\r\n"},
                {1, L"CMAPIObject::ReadContactLogFromFolder - pfnHrQueryAllRows(0X00000000)\r\n"},
                {1, L"CMAPIObject::ReadContactLogFromFolder - Finish(Succeeded)\r\n"}};
    }
    /// The lines of the agent; the change-log library has a log of its own.
    static LogLines TakeAgentLog() {
        LogLines lines = TakeLog();
        std::erase_if(lines, [](const LogLine& line) { return line.text.starts_with(L"contact, pim: "); });
        return lines;
    }
    /// Makes the comparison mark the items as told, and append what is told.
    static void MarkAs(const std::vector<std::int32_t>& flags, const std::vector<tagLogItem>& gone = {}) {
        OnGetChangeLog([=](LogItems& items, const GetChangeLogArgs& /*arguments*/) {
            for (std::size_t i = 0; i < flags.size(); ++i) {
                items[i].m_lLogFlag = flags[i];
            }
            for (const tagLogItem& item : gone) {
                items.Add(item);
            }
            return 1;
        });
    }
    static std::size_t CallsOf(const std::string& method) {
        const std::vector<recorder::Call> calls = recorder::Calls();
        return static_cast<std::size_t>(std::count_if(
            calls.begin(), calls.end(), [&](const recorder::Call& call) { return call.method == method; }));
    }

    TemporaryFolder m_folder;
};

TEST_F(ContactChanges, EmptyMapNameSendsEverythingWithoutTheChangeLog) {
    AddContacts(L"Contacts", {L"One"});
    LogOn();
    OnGetChangeLog([](LogItems&, const GetChangeLogArgs&) {
        ADD_FAILURE() << "the change log was used";
        return 0;
    });
    EXPECT_EQ(g_MAPIObject.ReadContacts(L""), 0);
    EXPECT_EQ(TakeSent().size(), 1U);
}

TEST_F(ContactChanges, ChangeLogIsCalledForAFolderWithoutItems) {
    LogOn();
    int calls = 0;
    OnGetChangeLog([&](LogItems& items, const GetChangeLogArgs& arguments) {
        ++calls;
        EXPECT_TRUE(items.IsEmpty());
        EXPECT_EQ(arguments.m_strKind, L"contact");
        EXPECT_EQ(arguments.m_strDomain, L"pim");
        EXPECT_EQ(arguments.m_strMapFile, m_folder.File(L"map"));
        return 0;
    });
    EXPECT_EQ(ReadChanges(), 0);
    EXPECT_EQ(calls, 1);
}

TEST_F(ContactChanges, WithoutAChangeNothingIsSentAndTheLinesComeInOrder) {
    AddContacts(L"Contacts", {L"One"});
    LogOn();
    Know();
    EXPECT_EQ(ReadChanges(), 0);
    EXPECT_TRUE(TakeSent().empty());
    LogLines expected = FirstLines(1);
    Append(expected, WalkLines());
    Append(expected, {{1, L"CMAPIObject::ReadContacts - Call GetChangeLog\r\n"},
                      {3, L"CMAPIObject::ReadContacts - No Change\r\n"},
                      {1, L"CMAPIObject::ReadContacts - Finish\r\n"}});
    EXPECT_EQ(TakeAgentLog(), expected);
}

TEST_F(ContactChanges, WithoutAChangeNoMessageIsOpened) {
    AddContacts(L"Contacts", {L"One", L"Two", L"Three"});
    LogOn();
    Know();
    ASSERT_EQ(ReadChanges(), 0);
    // Two folders: that of the count and that of the walk.
    EXPECT_EQ(CallsOf("IMAPIFolder::OpenEntry"), 2U);
    EXPECT_EQ(CallsOf("IMessage::GetProps"), 0U);
}

TEST_F(ContactChanges, NewChangedAndDeletedContactsAreSentWithTheirLinesInOrder) {
    {
        // The store lists messages by the names of their files, which come from the subjects.
        FolderWriter writer(L"Work", L"Contacts");
        writer.AddContact(PropertyValues().Text(PR_SUBJECT_W, L"A").Text(PR_GIVEN_NAME_W, L"Changed"));
        writer.AddContact(PropertyValues().Text(PR_SUBJECT_W, L"B").Text(PR_GIVEN_NAME_W, L"New"));
        writer.AddContact(PropertyValues().Text(PR_SUBJECT_W, L"C").Text(PR_GIVEN_NAME_W, L"Same"));
    }
    LogOn();
    tagLogItem gone;
    gone.m_lLogFlag = 32;
    gone.m_strId = L"00FF";
    gone.m_dtModified.SetDateTime(2020, 2, 29, 13, 14, 15);
    std::vector<CString> ids;
    OnGetChangeLog([&](LogItems& items, const GetChangeLogArgs&) {
        for (const tagLogItem& item : items) {
            ids.push_back(item.m_strId);
        }
        items[0].m_lLogFlag = 4;
        items[1].m_lLogFlag = 8;
        items.Add(gone);
        return 3;
    });
    EXPECT_EQ(ReadChanges(), 0);
    ASSERT_EQ(ids.size(), 3U);
    LogLines expected = FirstLines(3);
    Append(expected, WalkLines());
    Append(expected, {{1, L"CMAPIObject::ReadContacts - Call GetChangeLog\r\n"},
                      {1, L"CMAPIObject::ReadContacts - Read Changes\r\n"},
                      {1, L"CMAPIObject::ReadContactFromLog - Begin\r\n"},
                      {1, L"CMAPIObject::ReadContactFromLog - Update(" + ids[0] + L")\r\n"},
                      {1, L"CMAPIObject::ReadContactFromLog - New(" + ids[1] + L")\r\n"},
                      {1, L"CMAPIObject::ReadContactFromLog - Delete(00FF)\r\n"},
                      {1, L"CMAPIObject::ReadContactFromLog - Finish(Succeeded)\r\n"},
                      {1, L"CMAPIObject::ReadContacts - Finish\r\n"}});
    EXPECT_EQ(TakeLog(), expected);
    const std::vector<CString> documents = TakeSent();
    ASSERT_EQ(documents.size(), 3U);
    EXPECT_TRUE(Contains(documents[0],
                         L"<Contact>\r\n\t<CsFolder>Contacts</CsFolder>\r\n\t<lFlag>4</lFlag>\r\n"
                         L"\t<CreateTime>"));
    EXPECT_TRUE(Contains(
        documents[0],
        (L"\t<FirstName>Changed</FirstName>\r\n\t<PIMID>" + ids[0] + L"</PIMID>\r\n\t<FULLNAME/>").c_str()));
    EXPECT_TRUE(Contains(documents[1], L"<lFlag>8</lFlag>"));
    EXPECT_TRUE(Contains(documents[1], L"<FirstName>New</FirstName>"));
    EXPECT_EQ(documents[2].substr(documents[2].find(L"<Contact>")),
              L"<Contact>\r\n\t<lFlag>32</lFlag>\r\n\t<PIMID>00FF</PIMID>\r\n"
              L"\t<LastModifiedTime>02/29/2020 13:14:15</LastModifiedTime></Contact>\r\n");
    EXPECT_EQ(g_MAPIObject.m_nItemsSent, 0);
    EXPECT_EQ(g_MAPIObject.m_nItemTotal, 4);
}

TEST_F(ContactChanges, SentDocumentHasTheFieldsOfAFullRead) {
    AddContacts(L"Contacts", {L"One"});
    LogOn();
    ASSERT_EQ(g_MAPIObject.ReadContacts(L""), 0);
    CString full = TakeSent().at(0);
    ASSERT_EQ(ReadChanges(), 0);
    CString changed = TakeSent().at(0);
    const CString flag = L"\r\n\t<lFlag>8</lFlag>";
    const std::size_t place = changed.find(flag);
    ASSERT_NE(place, CString::npos);
    changed.erase(place, flag.size());
    EXPECT_EQ(changed, full);
}

TEST_F(ContactChanges, ItemThatIsNewAndChangedCountsAsNew) {
    AddContacts(L"Contacts", {L"One"});
    LogOn();
    MarkAs({12});
    EXPECT_EQ(ReadChanges(), 0);
    const std::vector<CString> documents = TakeSent();
    ASSERT_EQ(documents.size(), 1U);
    EXPECT_TRUE(Contains(documents[0], L"<lFlag>12</lFlag>"));
    EXPECT_TRUE(Contains(documents[0], L"<FirstName>One</FirstName>"));
    const LogLines log = TakeLog();
    EXPECT_TRUE(log[log.size() - 3].text.starts_with(L"CMAPIObject::ReadContactFromLog - New("));
}

TEST_F(ContactChanges, ItemThatIsDeletedAndChangedIsSentInFull) {
    AddContacts(L"Contacts", {L"One"});
    LogOn();
    tagLogItem gone;
    gone.m_lLogFlag = 36;
    gone.m_strId = L"00FF";
    MarkAs({36}, {gone});
    EXPECT_EQ(ReadChanges(), 0);
    // The one that is not there does not open, and goes without a document.
    const std::vector<CString> documents = TakeSent();
    ASSERT_EQ(documents.size(), 1U);
    EXPECT_TRUE(Contains(documents[0], L"<lFlag>36</lFlag>"));
    EXPECT_TRUE(Contains(documents[0], L"<FirstName>One</FirstName>"));
}

TEST_F(ContactChanges, ItemsWithOtherBitsAloneAreSkipped) {
    AddContacts(L"Contacts", {L"One", L"Two"});
    LogOn();
    MarkAs({1 | 2 | 16 | 64, 0});
    EXPECT_EQ(ReadChanges(), 0);
    EXPECT_TRUE(TakeSent().empty());
}

TEST_F(ContactChanges, DeletionWithoutAValidDateNamesFlagAndIdentifierOnly) {
    LogOn();
    std::vector<tagLogItem> gone(4);
    for (tagLogItem& item : gone) {
        item.m_lLogFlag = 32;
        item.m_strId = L"AB";
        item.m_dtModified.SetDateTime(2020, 1, 1, 0, 0, 0);
    }
    gone[0].m_dtModified.m_status = kDateInvalid;
    gone[1].m_dtModified.m_status = kDateNull;
    gone[2].m_dtModified.m_dt = 0.0;
    gone[3].m_dtModified.SetDateTime(1900, 12, 31, 23, 59, 59);
    MarkAs({}, gone);
    EXPECT_EQ(ReadChanges(), 0);
    const std::vector<CString> documents = TakeSent();
    ASSERT_EQ(documents.size(), 4U);
    for (const CString& document : documents) {
        EXPECT_EQ(document.substr(document.find(L"<Contact>")),
                  L"<Contact>\r\n\t<lFlag>32</lFlag>\r\n\t<PIMID>AB</PIMID></Contact>\r\n");
    }
}

TEST_F(ContactChanges, DeletionsFrom1901OnNameTheirTime) {
    LogOn();
    tagLogItem gone;
    gone.m_lLogFlag = 32;
    gone.m_dtModified.SetDateTime(1901, 1, 1, 0, 0, 0);
    MarkAs({}, {gone});
    EXPECT_EQ(ReadChanges(), 0);
    EXPECT_TRUE(Contains(TakeSent().at(0), L"<LastModifiedTime>01/01/1901 00:00:00</LastModifiedTime>"));
}

TEST_F(ContactChanges, StopEndsTheSendingWithFailure) {
    AddContacts(L"Contacts", {L"One", L"Two", L"Three"});
    LogOn();
    OnSend([] { g_MAPIObject.Stop(); });
    EXPECT_EQ(ReadChanges(), 1);
    EXPECT_EQ(TakeSent().size(), 1U);
    EXPECT_EQ(g_MAPIObject.m_bStop, 0);
    const LogLines log = TakeLog();
    EXPECT_EQ(LogLines(log.end() - 3, log.end()),
              (LogLines{{1, L"CMAPIObject::ReadContactFromLog - Finish(Failed)\r\n"},
                        {3, L"CMAPIObject::ReadContacts - Failed to read contacts from log\r\n"},
                        {1, L"CMAPIObject::ReadContacts - Finish\r\n"}}));
}

TEST_F(ContactChanges, CallbackThatAlwaysFailsDoesNotEndTheSending) {
    AddContacts(L"Contacts", {L"One", L"Two"});
    LogOn();
    OnSend([] { throw std::runtime_error("nobody listens"); });
    EXPECT_EQ(ReadChanges(), 0);
    const LogLines log = TakeLog();
    EXPECT_EQ(std::count(log.begin(), log.end(), LogLine{3, L"MAPISendBackOneContact Excetipion"}), 2);
}

TEST_F(ContactChanges, MessageWithoutValuesEndsTheSending) {
    AddContacts(L"Contacts", {L"One", L"Two"});
    LogOn();
    recorder::FailMethod("IMessage::GetProps", {}, E_FAIL);
    EXPECT_EQ(ReadChanges(), 1);
    EXPECT_TRUE(TakeSent().empty());
    const LogLines log = TakeLog();
    EXPECT_EQ(LogLines(log.end() - 4, log.end()),
              (LogLines{{3, L"CMAPIObject::ReadContactFromLog - NULL lpPropValues\r\n"},
                        {1, L"CMAPIObject::ReadContactFromLog - Finish(Failed)\r\n"},
                        {3, L"CMAPIObject::ReadContacts - Failed to read contacts from log\r\n"},
                        {1, L"CMAPIObject::ReadContacts - Finish\r\n"}}));
}

TEST_F(ContactChanges, WithoutTheXmlServiceTheSendingEndsAtOnce) {
    AddContacts(L"Contacts", {L"One", L"Two"});
    LogOn();
    tagLogItem gone;
    gone.m_lLogFlag = 32;
    gone.m_strId = L"00FF";
    for (const bool deletion : {false, true}) {
        MarkAs({deletion ? 0 : 8, 8}, {gone});
        if (deletion) {
            OnGetChangeLog([&](LogItems& items, const GetChangeLogArgs&) {
                items.RemoveAll();
                items.Add(gone);
                return 1;
            });
        }
        TakeLog();
        int result = 0;
        {
            const WithoutDocumentClass nothing;
            result = ReadChanges();
        }
        EXPECT_EQ(result, 1);
        EXPECT_TRUE(TakeSent().empty());
        const LogLines log = TakeLog();
        EXPECT_TRUE(log[log.size() - 4].text.starts_with(deletion
                                                             ? L"CMAPIObject::ReadContactFromLog - Delete("
                                                             : L"CMAPIObject::ReadContactFromLog - New("));
        EXPECT_EQ(LogLines(log.end() - 3, log.end()),
                  (LogLines{{3, L"Xml to calnedaex - failed\r\n"},
                            {3, L"CMAPIObject::ReadContacts - Failed to read contacts from log\r\n"},
                            {1, L"CMAPIObject::ReadContacts - Finish\r\n"}}));
    }
}

TEST_F(ContactChanges, ItemThatDoesNotOpenIsPassedOverWithoutAWord) {
    LogOn();
    tagLogItem away;
    away.m_lLogFlag = 8;
    away.m_strId = L"00FF";
    MarkAs({}, {away});
    EXPECT_EQ(ReadChanges(), 0);
    EXPECT_TRUE(TakeSent().empty());
    LogLines expected = FirstLines(0);
    Append(expected, WalkLines());
    Append(expected, {{1, L"CMAPIObject::ReadContacts - Call GetChangeLog\r\n"},
                      {1, L"CMAPIObject::ReadContacts - Read Changes\r\n"},
                      {1, L"CMAPIObject::ReadContactFromLog - Begin\r\n"},
                      {1, L"CMAPIObject::ReadContactFromLog - New(00FF)\r\n"},
                      {1, L"CMAPIObject::ReadContactFromLog - Finish(Succeeded)\r\n"},
                      {1, L"CMAPIObject::ReadContacts - Finish\r\n"}});
    EXPECT_EQ(TakeLog(), expected);
}

TEST_F(ContactChanges, ComparisonThatFailsCountsAsNoChange) {
    AddContacts(L"Contacts", {L"One"});
    LogOn();
    OnGetChangeLog([](LogItems& items, const GetChangeLogArgs&) {
        items[0].m_lLogFlag = 8;
        return -1;
    });
    EXPECT_EQ(ReadChanges(), 0);
    EXPECT_TRUE(TakeSent().empty());
    LogLines expected = FirstLines(1);
    Append(expected, WalkLines());
    Append(expected, {{1, L"CMAPIObject::ReadContacts - Call GetChangeLog\r\n"},
                      {3, L"CMAPIObject::ReadContacts - No Change\r\n"},
                      {1, L"CMAPIObject::ReadContacts - Finish\r\n"}});
    EXPECT_EQ(TakeLog(), expected);
}

TEST_F(ContactChanges, ChangeOfAnItemWithALongTermIdentifierIsSentUnderIt) {
    AddContacts(L"Contacts", {L"One"});
    WriteFile(L"Work\\Mail\\folder.ini", "[Store]\nLongTermIds=1\n");
    LogOn();
    ASSERT_EQ(g_MAPIObject.ReadContacts(L""), 0);
    const CString full = TakeSent().at(0);
    const std::size_t start = full.find(L"<PIMID>");
    const CString id(full.substr(start, full.find(L"</PIMID>") - start));
    ASSERT_EQ(ReadChanges(), 0);
    EXPECT_TRUE(Contains(TakeSent().at(0), id.c_str()));
    EXPECT_EQ(ReadChanges(), 0);
    EXPECT_TRUE(TakeSent().empty());
    const std::filesystem::directory_iterator files(m_root + L"\\Work\\Mail\\Contacts");
    const auto message = std::find_if(begin(files), end(files),
                                      [](const auto& entry) { return entry.path().extension() == L".msg"; });
    ASSERT_NE(message, end(files));
    std::filesystem::remove(message->path());
    EXPECT_EQ(ReadChanges(), 0);
    EXPECT_TRUE(Contains(TakeSent().at(0), id.c_str()));
}

TEST_F(ContactChanges, ContactOfASubFolderIsSentUnderTheNameOfTheTopFolder) {
    MakeFolder(L"Work\\Mail\\Contacts\\Private");
    AddContacts(L"Contacts\\Private", {L"Below"});
    LogOn();
    g_bSubFolder = true;
    EXPECT_EQ(ReadChanges(), 0);
    const std::vector<CString> documents = TakeSent();
    ASSERT_EQ(documents.size(), 1U);
    EXPECT_TRUE(Contains(documents[0], L"<CsFolder>Contacts</CsFolder>"));
    EXPECT_TRUE(Contains(documents[0], L"<FirstName>Below</FirstName>"));
}

TEST_F(ContactChanges, MessagesAreReadWithTheColumnsOfAFullRead) {
    AddContacts(L"Contacts", {L"One"});
    LogOn();
    ASSERT_EQ(ReadChanges(), 0);
    const std::vector<recorder::Call> calls = recorder::Calls();
    const auto query = std::find_if(calls.begin(), calls.end(), [](const recorder::Call& call) {
        return call.method == "HrQueryAllRows" && call.arguments.starts_with("0x0FFF0102,");
    });
    const auto read = std::find_if(calls.begin(), calls.end(), [](const recorder::Call& call) {
        return call.method == "IMessage::GetProps";
    });
    ASSERT_NE(query, calls.end());
    ASSERT_NE(read, calls.end());
    EXPECT_EQ(query->arguments,
              "0x0FFF0102,0x66700102,0x30080040 "
              "property(0x001A001F==0x001A001F=\"IPM.Contact\") unsorted most=0");
    EXPECT_TRUE(read->arguments.starts_with("0x0FFF0102,0x66700102,0x30070040,0x30080040,0x3A11001F,"));
    EXPECT_TRUE(read->arguments.ends_with("flags=0x80000000"));
}

TEST_F(ContactChanges, ProgressMessageIsSentWhenNothingChanged) {
    struct Message {
        UINT number;
        WPARAM first;
        LPARAM second;
        bool operator==(const Message&) const = default;
    };
    static std::vector<Message> received;
    received.clear();
    WNDCLASSW windowClass{};
    windowClass.lpszClassName = L"zeb-progress-test";
    windowClass.lpfnWndProc = [](HWND window, UINT message, WPARAM first, LPARAM second) -> LRESULT {
        received.push_back({message, first, second});
        return DefWindowProcW(window, message, first, second);
    };
    RegisterClassW(&windowClass);
    auto* const window = CreateWindowExW(0, windowClass.lpszClassName, nullptr, 0, 0, 0, 0, 0, HWND_MESSAGE,
                                         nullptr, nullptr, nullptr);
    ASSERT_NE(window, nullptr);
    LogOn();
    received.clear();
    g_MAPIObject.m_hNotifyWnd = window;
    EXPECT_EQ(ReadChanges(), 0);
    g_MAPIObject.m_hNotifyWnd = nullptr;
    EXPECT_EQ(std::count(received.begin(), received.end(), Message{2524, 0x10002, 100}), 1);
    DestroyWindow(window);
}

}  // namespace
