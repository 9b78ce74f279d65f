// The life of the session, with its lines and its calls as whole sequences.

#include <algorithm>
#include <regex>

#include "localstore/recorder.h"
#include "mapi/hex_text.h"
#include "mapi/store_entries.h"
#include "tests/unit/store/store_fixture.h"
#include "tests/unit/text_printer.h"

namespace {

namespace recorder = localstore::recorder;

const LogLines kLogOffLines{{1, L"CMAPIObject::MAPILogOff : Begin\r\n"},
                            {1, L"CMAPIObject::MAPIRelease : Begin\r\n"},
                            {1, L"CMAPIObject::MAPIRelease : Finish\r\n"},
                            {1, L"CMAPIObject::MAPIUninitialize : Begin\r\n"},
                            {1, L"CMAPIObject::MAPIUninitialize - pfnMAPIUninitialize(0X00000000)\r\n"},
                            {1, L"CMAPIObject::MAPIUninitialize : Finish\r\n"},
                            {1, L"CMAPIObject::MAPILogOff : Finish\r\n"}};

LogLines Joined(LogLines first, const LogLines& second) {
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

/// The value of GetLastError in the line of MAPIUninitialize is the platform's and differs.
LogLines TakeLogWithoutLastError() {
    LogLines lines = TakeLog();
    const CString start = L"CMAPIObject::MAPIUninitialize - pfnMAPIUninitialize(0X";
    for (LogLine& line : lines) {
        if (line.text.starts_with(start.View())) {
            line.text = CString(start + L"00000000)\r\n");
        }
    }
    return lines;
}

std::vector<std::string> CallsOf(const std::string& method) {
    std::vector<std::string> calls;
    for (const recorder::Call& call : recorder::Calls()) {
        if (call.method == method) {
            calls.push_back(call.arguments);
        }
    }
    return calls;
}

/// Arguments with "id=*" for every identifier, which depends on the folder of the test.
std::string WithoutIdentifiers(const std::string& arguments) {
    static const std::regex identifier("id=[0-9A-F]*");
    return std::regex_replace(arguments, identifier, "id=*");
}

class Session : public StoreTest {};

TEST_F(Session, LogonWritesItsLinesInOrder) {
    SetLastError(0);
    EXPECT_EQ(g_MAPIObject.MAPILogOn(0, L"Work"), 1);
    EXPECT_EQ(TakeLog(),
              (LogLines{{1, L"CMAPIObject::MAPILogOn - Begin ---------ProfileName(Work)\r\n"},
                        {1, L"CMAPIObject::MAPILogOn - MAPIInitialize(Succeeded)\r\n"},
                        {1, L"CMAPIObject::MAPIRelease : Begin\r\n"},
                        {1, L"CMAPIObject::MAPIRelease : Finish\r\n"},
                        {1, L"CMAPIObject::MAPILogOn - MAPILogonEx(0X00000000)\r\n"},
                        {1, L"CMAPIObject::MAPILogOn - m_lpMAPISession->GetMsgStoresTable(0X00000000)\r\n"},
                        {1, L"CMAPIObject::MAPILogOn - pfnHrQueryAllRows(0X00000000)\r\n"},
                        {1, L"CMAPIObject::MAPILogOn - m_lpMAPISession->OpenMsgStore(0X00000000)\r\n"},
                        {1, L"CMAPIObject::MAPILogOn - Finish(Succeeded)\r\n"}}));
    EXPECT_EQ(g_MAPIObject.m_bLoggedOn, 1);
    EXPECT_EQ(g_MAPIObject.m_bMAPIInitialized, 1);
    EXPECT_TRUE(g_MAPIObject.m_lpContactFolder);
    EXPECT_TRUE(g_MAPIObject.m_lpEventFolder);
    EXPECT_EQ(g_MAPIObject.m_arrDefaultFolderIds.GetSize(), 7U);
    EXPECT_NE(g_MAPIObject.m_arrDefaultFolderIds[1], L"");
    EXPECT_NE(g_MAPIObject.m_arrDefaultFolderIds[2], L"");
    EXPECT_EQ(g_MAPIObject.m_arrDefaultFolderIds[6], L"");
}

TEST_F(Session, LogonAsksTheMailSystemInOrder) {
    LogOn();
    g_MAPIObject.MAPILogOff();
    recorder::ClearCalls();
    ASSERT_EQ(g_MAPIObject.MAPILogOn(0, L"Work"), 1);
    std::vector<std::string> calls;
    for (const recorder::Call& call : recorder::Calls()) {
        if (call.method != "MAPIFreeBuffer" && call.method != "FreeProws") {
            calls.push_back(call.method + " " + WithoutIdentifiers(call.arguments));
        }
    }
    const std::string readTag = "HrGetOneProp ";
    std::vector<std::string> expected{
        "MAPIInitialize version=0 flags=0x00000000",
        "MAPILogonEx profile=\"Work\" flags=0x80100032",
        "IMAPISession::GetMsgStoresTable flags=0x00000000",
        ("HrQueryAllRows 0x3400000B,0x0FFF0102,0x3001001F property(0x3400000B==0x3400000B=true) unsorted "
         "most=0"),
        "IMAPISession::OpenMsgStore id=* flags=0x00000010",
    };
    const std::vector<std::string> inbox{"IMsgStore::GetReceiveFolder class=\"IPM.Note\" flags=0x80000000",
                                         "IMsgStore::OpenEntry id=* flags=0x00000010"};
    // The identifiers: Inbox and root opened once. Drafts and the calendar stand on the Inbox or on the root.
    expected.insert(expected.end(), inbox.begin(), inbox.end());
    ASSERT_GE(calls.size(), expected.size());
    EXPECT_EQ(
        std::vector<std::string>(calls.begin(), calls.begin() + static_cast<std::ptrdiff_t>(expected.size())),
        expected);
    std::vector<std::string> tags;
    for (const std::string& call : calls) {
        if (call.starts_with(readTag)) {
            tags.push_back(call.substr(readTag.size()));
        }
    }
    tags.erase(std::unique(tags.begin(), tags.end()), tags.end());
    EXPECT_EQ(tags, (std::vector<std::string>{"0x36D70102", "0x36D00102", "0x36D10102", "0x36D40102",
                                              "0x36D20102", "0x36D30102", "0x36D10102", "0x36D00102"}));
}

TEST_F(Session, NamedProfileIsLoggedOnWithItsFlags) {
    LogOn();
    g_MAPIObject.MAPILogOff();
    recorder::ClearCalls();
    g_MAPIObject.MAPILogOn(0, L"Work");
    ASSERT_EQ(CallsOf("MAPILogonEx").size(), 1U);
    EXPECT_NE(CallsOf("MAPILogonEx")[0].find("0x80100032"), std::string::npos) << CallsOf("MAPILogonEx")[0];
}

TEST_F(Session, EmptyProfileNameLogsOnWithTheDefaultProfile) {
    EXPECT_EQ(g_MAPIObject.MAPILogOn(0, L""), 1);
    ASSERT_EQ(CallsOf("MAPILogonEx").size(), 1U);
    EXPECT_NE(CallsOf("MAPILogonEx")[0].find("0x80100072"), std::string::npos) << CallsOf("MAPILogonEx")[0];
}

TEST_F(Session, NameOfAProfileMayHaveAnyLength) {
    for (const std::size_t length : {259U, 260U, 100'000U}) {
        EXPECT_EQ(g_MAPIObject.MAPILogOn(0, std::wstring(length, L'p').c_str()), 0) << length;
        EXPECT_EQ(g_MAPIObject.m_lpMAPISession.Get(), nullptr);
    }
    LogOn();
}

TEST_F(Session, UnknownProfileFailsAndUndoesEverything) {
    EXPECT_EQ(g_MAPIObject.MAPILogOn(0, L"Nobody"), 0);
    const LogLines log = TakeLogWithoutLastError();
    EXPECT_EQ(log[4].text.substr(0, 46), L"CMAPIObject::MAPILogOn - MAPILogonEx(0X8004011");
    EXPECT_EQ(LogLines(log.begin() + 5, log.end()),
              Joined(kLogOffLines, {{1, L"CMAPIObject::MAPILogOn - Finish(Failed)\r\n"}}));
    EXPECT_EQ(g_MAPIObject.m_bLoggedOn, 0);
    EXPECT_EQ(g_MAPIObject.m_bMAPIInitialized, 0);
}

TEST_F(Session, FailedInitializeWritesNoFurtherLine) {
    recorder::FailMethod("MAPIInitialize", {}, E_FAIL);
    EXPECT_EQ(g_MAPIObject.MAPILogOn(0, L"Work"), 0);
    EXPECT_EQ(TakeLog(), (LogLines{{1, L"CMAPIObject::MAPILogOn - Begin ---------ProfileName(Work)\r\n"},
                                   {1, L"CMAPIObject::MAPILogOff : Begin\r\n"},
                                   {1, L"CMAPIObject::MAPIRelease : Begin\r\n"},
                                   {1, L"CMAPIObject::MAPIRelease : Finish\r\n"},
                                   {1, L"CMAPIObject::MAPIUninitialize : Begin\r\n"},
                                   {1, L"CMAPIObject::MAPIUninitialize : Finish\r\n"},
                                   {1, L"CMAPIObject::MAPILogOff : Finish\r\n"},
                                   {1, L"CMAPIObject::MAPILogOn - Finish(Failed)\r\n"}}));
    EXPECT_TRUE(CallsOf("MAPIUninitialize").empty());
}

TEST_F(Session, NoDefaultStoreFailsAndUninitializesMapiAgain) {
    WriteFile(L"Work\\Mail\\folder.ini", "[Store]\r\nDefault=0\r\n");
    recorder::SetRoot(m_root);
    EXPECT_EQ(g_MAPIObject.MAPILogOn(0, L"Work"), 0);
    const LogLines log = TakeLogWithoutLastError();
    ASSERT_GE(log.size(), 10U);
    EXPECT_EQ(log[6], (LogLine{1, L"CMAPIObject::MAPILogOn - pfnHrQueryAllRows(0X00000000)\r\n"}));
    EXPECT_EQ(log[7], (LogLine{1, L"CMAPIObject::MAPILogOff : Begin\r\n"}));
    EXPECT_EQ(log[9], (LogLine{1, L"CMAPIObject::MAPIRelease - m_lpMAPISession->Logoff(0X00000000)\r\n"}));
    EXPECT_EQ(CallsOf("MAPIUninitialize").size(), 1U);
    EXPECT_EQ(g_MAPIObject.m_bMAPIInitialized, 0);
}

TEST_F(Session, EachStepThatFailsEndsTheLogon) {
    for (const char* method :
         {"MAPILogonEx", "IMAPISession::GetMsgStoresTable", "HrQueryAllRows", "IMAPISession::OpenMsgStore"}) {
        recorder::FailMethod(method, {}, E_FAIL);
        EXPECT_EQ(g_MAPIObject.MAPILogOn(0, L"Work"), 0) << method;
        const LogLines log = TakeLog();
        EXPECT_EQ(log.back(), (LogLine{1, L"CMAPIObject::MAPILogOn - Finish(Failed)\r\n"})) << method;
        EXPECT_FALSE(g_MAPIObject.m_lpMAPISession) << method;
        recorder::ClearFailures();
    }
}

TEST_F(Session, AWarningCountsAsAFailure) {
    recorder::FailMethod("IMAPISession::OpenMsgStore", {}, MAPI_W_ERRORS_RETURNED);
    EXPECT_EQ(g_MAPIObject.MAPILogOn(0, L"Work"), 0);
}

TEST_F(Session, StoreWithoutContactFolderLogsOnAndReadsFail) {
    MakeFolder(L"Bare\\Mail\\Inbox");
    recorder::SetRoot(m_root);
    LogOn(L"Bare");
    EXPECT_FALSE(g_MAPIObject.m_lpContactFolder);
    EXPECT_EQ(g_MAPIObject.ReadContacts(L""), 1);
    EXPECT_EQ(TakeLog(), (LogLines{{1, L"CMAPIObject::ReadContacts - Begin\r\n"},
                                   {3, L"CMAPIObject::ReadContacts - NULL m_lpContactFolder\r\n"},
                                   {1, L"CMAPIObject::ReadContacts - Finish\r\n"}}));
}

TEST_F(Session, SecondLogonEndsTheFirstSessionBeforeItLogsOn) {
    LogOn();
    EXPECT_EQ(g_MAPIObject.MAPILogOn(0, L"Work"), 1);
    const LogLines log = TakeLog();
    EXPECT_EQ(LogLines(log.begin(), log.begin() + 6),
              (LogLines{{1, L"CMAPIObject::MAPILogOn - Begin ---------ProfileName(Work)\r\n"},
                        {1, L"CMAPIObject::MAPILogOn - MAPIInitialize(Succeeded)\r\n"},
                        {1, L"CMAPIObject::MAPIRelease : Begin\r\n"},
                        {1, L"CMAPIObject::MAPIRelease - m_lpMAPISession->Logoff(0X00000000)\r\n"},
                        {1, L"CMAPIObject::MAPIRelease : Finish\r\n"},
                        {1, L"CMAPIObject::MAPILogOn - MAPILogonEx(0X00000000)\r\n"}}));
    EXPECT_TRUE(CallsOf("MAPIInitialize").empty());
}

TEST_F(Session, FailedSecondLogonLeavesNothingOpen) {
    LogOn();
    EXPECT_EQ(g_MAPIObject.MAPILogOn(0, L"Nobody"), 0);
    EXPECT_FALSE(g_MAPIObject.m_lpMAPISession);
    EXPECT_FALSE(g_MAPIObject.m_lpContactFolder);
    EXPECT_EQ(g_MAPIObject.m_bMAPIInitialized, 0);
}

TEST_F(Session, LogOffEndsTheSessionWithItsLines) {
    LogOn();
    g_MAPIObject.m_bStop = 1;
    g_MAPIObject.MAPILogOff();
    EXPECT_EQ(TakeLogWithoutLastError(),
              (LogLines{{1, L"CMAPIObject::MAPILogOff : Begin\r\n"},
                        {1, L"CMAPIObject::MAPIRelease : Begin\r\n"},
                        {1, L"CMAPIObject::MAPIRelease - m_lpMAPISession->Logoff(0X00000000)\r\n"},
                        {1, L"CMAPIObject::MAPIRelease : Finish\r\n"},
                        {1, L"CMAPIObject::MAPIUninitialize : Begin\r\n"},
                        {1, L"CMAPIObject::MAPIUninitialize - pfnMAPIUninitialize(0X00000000)\r\n"},
                        {1, L"CMAPIObject::MAPIUninitialize : Finish\r\n"},
                        {1, L"CMAPIObject::MAPILogOff : Finish\r\n"}}));
    EXPECT_EQ(g_MAPIObject.m_bLoggedOn, 0);
    EXPECT_EQ(g_MAPIObject.m_bStop, 1);
    EXPECT_NE(g_MAPIObject.m_arrDefaultFolderIds[2], L"");
}

TEST_F(Session, SessionIsLoggedOffWithItsFlag) {
    LogOn();
    g_MAPIObject.MAPILogOff();
    EXPECT_EQ(CallsOf("IMAPISession::Logoff"), (std::vector<std::string>{"flags=0x00000002"}));
}

TEST_F(Session, FailedLogoffOfTheSessionChangesNothing) {
    LogOn();
    recorder::FailMethod("IMAPISession::Logoff", {}, E_FAIL);
    g_MAPIObject.MAPILogOff();
    EXPECT_EQ(TakeLog()[2],
              (LogLine{1, L"CMAPIObject::MAPIRelease - m_lpMAPISession->Logoff(0X80004005)\r\n"}));
    EXPECT_FALSE(g_MAPIObject.m_lpMAPISession);
}

TEST_F(Session, LogOffWithNothingOpenMakesNoMailCall) {
    g_MAPIObject.MAPILogOff();
    EXPECT_EQ(TakeLog(), (LogLines{{1, L"CMAPIObject::MAPILogOff : Begin\r\n"},
                                   {1, L"CMAPIObject::MAPIRelease : Begin\r\n"},
                                   {1, L"CMAPIObject::MAPIRelease : Finish\r\n"},
                                   {1, L"CMAPIObject::MAPIUninitialize : Begin\r\n"},
                                   {1, L"CMAPIObject::MAPIUninitialize : Finish\r\n"},
                                   {1, L"CMAPIObject::MAPILogOff : Finish\r\n"}}));
    EXPECT_TRUE(recorder::CallLines().empty());
}

TEST_F(Session, SlotOfADefaultFolderKeepsItsValueWhenTheNewStoreHasNone) {
    LogOn();
    const CString contacts = g_MAPIObject.m_arrDefaultFolderIds[2];
    MakeFolder(L"Bare\\Mail\\Inbox");
    recorder::SetRoot(m_root);
    LogOn(L"Bare");
    EXPECT_EQ(g_MAPIObject.m_arrDefaultFolderIds[2], contacts);
}

TEST_F(Session, DefaultFolderIsFoundThroughTheRootWhenTheInboxLacksIt) {
    LogOn();
    const ULONG tag = 0x36D10102;
    recorder::ClearCalls();
    recorder::FailMethod("HrGetOneProp", "Inbox", MAPI_E_NOT_FOUND);
    const ComPtr<IMAPIFolder> folder = GetDefaultFolder(g_MAPIObject.m_lpMsgStore.Get(), tag);
    EXPECT_TRUE(folder);
    EXPECT_EQ(CallsOf("HrGetOneProp").size(), 2U);
}

TEST_F(Session, DefaultFolderOfNoStoreIsNull) {
    EXPECT_FALSE(GetDefaultFolder(nullptr, 0x36D10102));
}

TEST_F(Session, DefaultFolderOfANonBinaryPropertyIsNull) {
    LogOn();
    EXPECT_FALSE(GetDefaultFolder(g_MAPIObject.m_lpMsgStore.Get(), 0x3001001F));
}

TEST_F(Session, MessageOpensByItsIdentifierForChanges) {
    {
        FolderWriter writer(L"Work", L"Contacts");
        writer.AddContact(PropertyValues().Text(0x3A06001F, L"John"));
    }
    LogOn();
    OnSend({});
    ASSERT_EQ(g_MAPIObject.ReadContacts(L""), 0);
    const std::vector<std::string> opens = CallsOf("IMAPIFolder::OpenEntry");
    ASSERT_EQ(opens.size(), 3U);  // the folder to count, the folder to read, the message
    EXPECT_NE(opens[0].find("flags=0x00000010"), std::string::npos) << opens[0];
    EXPECT_NE(opens[2].find("flags=0x00000011"), std::string::npos) << opens[2];
    TakeSent();
}

TEST_F(Session, EmptyIdentifierOpensNoMessage) {
    LogOn();
    EXPECT_FALSE(OpenMessageByHexId(g_MAPIObject.m_lpContactFolder.Get(), L""));
    EXPECT_FALSE(OpenMessageByHexId(nullptr, L"00"));
    EXPECT_TRUE(recorder::CallLines().empty());
}

TEST_F(Session, OneCharacterIdentifierAsksWithAZeroCount) {
    LogOn();
    OpenMessageByHexId(g_MAPIObject.m_lpContactFolder.Get(), L"A");
    EXPECT_EQ(CallsOf("IMAPIFolder::OpenEntry").size(), 1U);
}

TEST_F(Session, IdentifierOfAFolderOpensNoMessage) {
    LogOn();
    const CString folder = FolderId(L"Contacts");
    EXPECT_FALSE(OpenMessageByHexId(g_MAPIObject.m_lpContactFolder.Get(), folder));
    EXPECT_FALSE(OpenMessageByHexId(g_MAPIObject.m_lpContactFolder.Get(), L"A"));
}

TEST_F(Session, ParentFolderOfAMessageOpens) {
    {
        FolderWriter writer(L"Work", L"Contacts");
        writer.AddContact({});
    }
    LogOn();
    ASSERT_EQ(g_MAPIObject.ReadContacts(L""), 0);
    const CString xml = TakeSent().at(0);
    const std::size_t start = xml.find(L"<PIMID>") + 7;
    const CString id = xml.substr(start, xml.find(L"</PIMID>") - start);
    IMAPIFolder* contacts = g_MAPIObject.m_lpContactFolder.Get();
    EXPECT_TRUE(OpenParentFolderByHexId(contacts, id));
    EXPECT_FALSE(OpenParentFolderByHexId(contacts, L""));
    EXPECT_FALSE(OpenParentFolderByHexId(nullptr, id));
    EXPECT_FALSE(OpenParentFolderByEntryId(contacts, 0, nullptr));
    recorder::FailMethod("IMessage::GetProps", {}, E_FAIL);
    EXPECT_FALSE(OpenParentFolderByHexId(contacts, id));
}

}  // namespace
