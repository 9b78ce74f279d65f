// The choice of the working folders, and its lines.

#include "localstore/recorder.h"
#include "mapi/hex_text.h"
#include "mapi/store_entries.h"
#include "tests/unit/store/store_fixture.h"
#include "tests/unit/text_printer.h"

namespace {

namespace recorder = localstore::recorder;

class FolderChoice : public StoreTest {
  protected:
    void SetUp() override {
        StoreTest::SetUp();
        MakeFolder(L"Work\\Mail\\Contacts\\Private");
        MakeFolder(L"Work\\Mail\\Calendar\\Team");
        recorder::SetRoot(m_root);
        LogOn();
    }
    static CString IdOf(const ComPtr<IMAPIFolder>& folder) {
        MapiBuffer<SPropValue> id;
        EXPECT_EQ(pfnHrGetOneProp(folder.Get(), 0x0FFF0102, id.Put()), S_OK);
        return BinaryToHexString(id->Value.bin.lpb, id->Value.bin.cb);
    }
    static CString Selection(const CString& id) { return {L"<id>" + id + L"</id>"}; }
    static CString EventSelection(const CString& id) { return {L"<id><event>" + id + L"</event></id>"}; }
};

TEST_F(FolderChoice, ContactFolderIsChosenByItsIdentifier) {
    const CString id = FolderId(L"Contacts\\Private");
    TakeLog();
    EXPECT_EQ(g_MAPIObject.SetContactFolder(Selection(id).c_str()), 0);
    EXPECT_EQ(IdOf(g_MAPIObject.m_lpContactFolder), id);
    EXPECT_EQ(
        TakeLog(),
        (LogLines{
            {1, L"CMAPIObject::SetContactFolder - Begin\r\n"},
            {1, L"CMAPIObject::GetOutlookFolder - Begin\r\n"},
            {1, L"CMAPIObject::GetOutlookFolderFromEntryID - Begin\r\n"},
            {1, CString(L"CMAPIObject::GetOutlookFolderFromEntryID - " + id + L"\r\n")},
            {1,
             L"CMAPIObject::GetOutlookFolderFromEntryID - "
             L"m_lpMAPISession->GetMsgStoresTable(0X00000000)\r\n"},
            {1, L"CMAPIObject::GetOutlookFolderFromEntryID - pfnHrQueryAllRows(0X00000000)\r\n"},
            {1, L"CMAPIObject::GetOutlookFolderFromEntryID - m_lpMAPISession->OpenMsgStore(0X00000000)\r\n"},
            {1, L"CMAPIObject::GetOutlookFolderFromEntryID - Finish\r\n"},
            {1, L"CMAPIObject::GetOutlookFolder - Finish\r\n"},
            {1, L"CMAPIObject::SetContactFolder - Finish(0)\r\n"}}));
}

TEST_F(FolderChoice, EmptyIdGoesBackToTheDefaultFolder) {
    const CString contacts = FolderId(L"Contacts");
    for (const wchar_t* selection : {L"<id></id>", L"", L"  \r\n"}) {
        ASSERT_EQ(g_MAPIObject.SetContactFolder(Selection(FolderId(L"Contacts\\Private")).c_str()), 0);
        TakeLog();
        EXPECT_EQ(g_MAPIObject.SetContactFolder(selection), 0);
        EXPECT_EQ(IdOf(g_MAPIObject.m_lpContactFolder), contacts);
        EXPECT_EQ(TakeLog(), (LogLines{{1, L"CMAPIObject::SetContactFolder - Begin\r\n"},
                                       {1, L"CMAPIObject::GetOutlookFolder - Begin\r\n"},
                                       {1, L"CMAPIObject::GetOutlookFolder - Finish\r\n"},
                                       {1, L"CMAPIObject::SetContactFolder - Finish(0)\r\n"}}));
    }
}

TEST_F(FolderChoice, BlanksAroundASelectionAreAccepted) {
    const CString id = FolderId(L"Contacts\\Private");
    EXPECT_EQ(g_MAPIObject.SetContactFolder(CString(L" \t" + Selection(id) + L"\r\n ").c_str()), 0);
    EXPECT_EQ(IdOf(g_MAPIObject.m_lpContactFolder), id);
}

TEST_F(FolderChoice, SelectionWithoutItsTagsFailsAndKeepsTheFolder) {
    const CString before = IdOf(g_MAPIObject.m_lpContactFolder);
    TakeLog();
    EXPECT_EQ(g_MAPIObject.SetContactFolder(FolderId(L"Contacts\\Private").c_str()), 1);
    EXPECT_EQ(IdOf(g_MAPIObject.m_lpContactFolder), before);
    EXPECT_EQ(TakeLog(), (LogLines{{1, L"CMAPIObject::SetContactFolder - Begin\r\n"},
                                   {1, L"CMAPIObject::GetOutlookFolder - Begin\r\n"},
                                   {1, L"CMAPIObject::GetOutlookFolder - Finish\r\n"},
                                   {3, L"CMAPIObject::SetContactFolder - Failed to get contact folder\r\n"},
                                   {1, L"CMAPIObject::SetContactFolder - Finish(1)\r\n"}}));
}

TEST_F(FolderChoice, WrongIdentifierLeavesTheEarlierChoiceInForceAndUsable) {
    {
        FolderWriter writer(L"Work", L"Contacts\\Private");
        writer.AddContact({});
    }
    ASSERT_EQ(g_MAPIObject.SetContactFolder(Selection(FolderId(L"Contacts\\Private")).c_str()), 0);
    for (const wchar_t* wrong : {L"<id>00AB</id>", L"<id>nothing of this kind</id>", L"<id>"}) {
        EXPECT_EQ(g_MAPIObject.SetContactFolder(wrong), 1);
    }
    EXPECT_EQ(g_MAPIObject.ReadContacts(L""), 0);
    EXPECT_EQ(TakeSent().size(), 1U);
}

TEST_F(FolderChoice, IdentifierOfOneCharacterDecodesToNothingAndOpensTheRootOfTheFirstStore) {
    const auto root = OpenStoreFolder(g_MAPIObject.m_lpMsgStore.Get(), 0, nullptr);
    EXPECT_EQ(g_MAPIObject.SetContactFolder(L"<id>Z</id>"), 0);
    EXPECT_EQ(IdOf(g_MAPIObject.m_lpContactFolder), IdOf(root));
}

TEST_F(FolderChoice, IdentifierOfAMessageIsRefusedAndKeepsTheFolder) {
    {
        FolderWriter writer(L"Work", L"Contacts");
        writer.AddContact({});
    }
    ASSERT_EQ(g_MAPIObject.ReadContacts(L""), 0);
    const CString xml = TakeSent().at(0);
    const std::size_t start = xml.find(L"<PIMID>") + 7;
    const CString id = xml.substr(start, xml.find(L"</PIMID>") - start);
    EXPECT_EQ(g_MAPIObject.SetContactFolder(Selection(id).c_str()), 1);
    EXPECT_EQ(g_MAPIObject.GetContactCount(), 1);
}

TEST_F(FolderChoice, ContactSelectionWithAnEventPartIsAcceptedByNoStore) {
    EXPECT_EQ(g_MAPIObject.SetContactFolder(EventSelection(FolderId(L"Contacts\\Private")).c_str()), 1);
}

TEST_F(FolderChoice, CalendarFolderIsChosenByItsEventPart) {
    const CString id = FolderId(L"Calendar\\Team");
    TakeLog();
    EXPECT_EQ(g_MAPIObject.SetCalendarFolder(EventSelection(id).c_str()), 0);
    EXPECT_EQ(IdOf(g_MAPIObject.m_lpEventFolder), id);
    const LogLines log = TakeLog();
    EXPECT_EQ(log.front(), (LogLine{1, L"CMAPIObject::SetCalendarFolder - Finish\r\n"}));
    EXPECT_EQ(log.back(), (LogLine{1, L"CMAPIObject::SetCalendarFolder - Finish(0)\r\n"}));
}

TEST_F(FolderChoice, PlainIdentifierSelectsTheDefaultCalendar) {
    ASSERT_EQ(g_MAPIObject.SetCalendarFolder(EventSelection(FolderId(L"Calendar\\Team")).c_str()), 0);
    EXPECT_EQ(g_MAPIObject.SetCalendarFolder(L"<id>AB</id>"), 0);
    EXPECT_EQ(IdOf(g_MAPIObject.m_lpEventFolder), FolderId(L"Calendar"));
}

TEST_F(FolderChoice, CalendarIdentifierThatIsJunkFails) {
    TakeLog();
    EXPECT_EQ(g_MAPIObject.SetCalendarFolder(L"<id><event>XYZ</event></id>"), 1);
    const LogLines log = TakeLog();
    EXPECT_EQ(log[log.size() - 2],
              (LogLine{3, L"CMAPIObject::SetCalendarFolder - Failed to get event folder\r\n"}));
    EXPECT_EQ(IdOf(g_MAPIObject.m_lpEventFolder), FolderId(L"Calendar"));
}

TEST_F(FolderChoice, BlanksAroundACalendarSelectionAreAccepted) {
    const CString id = FolderId(L"Calendar\\Team");
    EXPECT_EQ(g_MAPIObject.SetCalendarFolder(CString(L" \t" + EventSelection(id) + L"\r\n ").c_str()), 0);
    EXPECT_EQ(IdOf(g_MAPIObject.m_lpEventFolder), id);
}

TEST_F(FolderChoice, BareEventPartHasNoWrapperAndFails) {
    EXPECT_EQ(g_MAPIObject.SetCalendarFolder(L"<event>AB</event>"), 1);
}

TEST_F(FolderChoice, NullTextsFailWithTheirLines) {
    EXPECT_EQ(g_MAPIObject.SetContactFolder(nullptr), 1);
    EXPECT_EQ(TakeLog()[1], (LogLine{3, L"CMAPIObject::SetContactFolder : NULL Parameter\r\n"}));
    EXPECT_EQ(g_MAPIObject.SetCalendarFolder(nullptr), 1);
    EXPECT_EQ(TakeLog()[1], (LogLine{3, L"CMAPIObject::SetCalendarFolder - NULL Parameter\r\n"}));
}

TEST_F(FolderChoice, EmptyIdentifierIsRefusedWithItsLine) {
    EXPECT_FALSE(g_MAPIObject.GetOutlookFolderFromEntryID(L""));
    EXPECT_EQ(TakeLog(), (LogLines{{1, L"CMAPIObject::GetOutlookFolderFromEntryID - Begin\r\n"},
                                   {3, L"CMAPIObject::GetOutlookFolderFromEntryID - NULL Parameter\r\n"},
                                   {1, L"CMAPIObject::GetOutlookFolderFromEntryID - Finish\r\n"}}));
}

TEST_F(FolderChoice, FolderOfASecondStoreIsFoundAndStaysOpen) {
    MakeFolder(L"Work\\Second\\People");
    WriteFile(L"Work\\Second\\People\\folder.ini", "[Folder]\r\nClass=IPF.Contact\r\n");
    recorder::SetRoot(m_root);
    LogOn();
    const CString id = FolderWriter(L"Work", L"People", L"Second").FolderId();
    EXPECT_EQ(g_MAPIObject.SetContactFolder(Selection(id).c_str()), 0);
    EXPECT_EQ(IdOf(g_MAPIObject.m_lpContactFolder), id);
    EXPECT_EQ(g_MAPIObject.GetContactCount(), 0);
}

TEST_F(FolderChoice, BeforeLogonEverySelectionFails) {
    const CString id = FolderId(L"Contacts");
    g_MAPIObject.MAPILogOff();
    EXPECT_EQ(g_MAPIObject.SetContactFolder(L""), 1);
    EXPECT_EQ(g_MAPIObject.SetContactFolder(Selection(id).c_str()), 1);
    EXPECT_EQ(g_MAPIObject.SetCalendarFolder(L"<id></id>"), 1);
}

TEST_F(FolderChoice, VeryLongSelectionsAreRefusedWithoutHarm) {
    EXPECT_EQ(g_MAPIObject.SetContactFolder(Selection(CString(std::wstring(100000, L'A').c_str())).c_str()),
              1);
    EXPECT_EQ(
        g_MAPIObject.SetCalendarFolder(EventSelection(CString(std::wstring(100000, L'A').c_str())).c_str()),
        1);
}

}  // namespace
