// The profile document and the folder document, character for character, and their lines.

#include <algorithm>
#include <filesystem>

#include "localstore/recorder.h"
#include "tests/unit/store/documents_fixture.h"
#include "tests/unit/text_printer.h"

namespace {

namespace recorder = localstore::recorder;

TEST_F(Documents, ProfilesAreListedWithTheDefaultOneMarked) {
    MakeFolder(L"Zoo & Co");
    EXPECT_EQ(g_MAPIObject.GetAppProfile(m_buffer), 0);
    EXPECT_EQ(Saved(g_strProfileXml),
              "<profiles name=\"outlook\">"
              "\n\t<node default=\"true\">\n\t\t<pname>Work</pname>\n\t</node>"
              "\n\t<node default=\"false\">\n\t\t<pname>Zoo &amp; Co</pname>\n\t</node>"
              "\n</profiles>");
    m_expectedBuffers = 4;  // the values and the name of each row: the rows are freed as one buffer
}

TEST_F(Documents, NoProfilesGiveAnEmptyElement) {
    recorder::SetRoot(m_documents);
    EXPECT_EQ(g_MAPIObject.GetAppProfile(m_buffer), 0);
    EXPECT_EQ(Saved(g_strProfileXml), "<profiles name=\"outlook\">\n</profiles>");
}

TEST_F(Documents, ProfilesBeforeLogonInitializeMapiAndLeaveItAgain) {
    EXPECT_EQ(g_MAPIObject.GetAppProfile(m_buffer), 0);
    LogLines log = TakeLog();
    ASSERT_EQ(log.size(), 8U);
    EXPECT_TRUE(log[5].text.starts_with(L"CMAPIObject::MAPIUninitialize - pfnMAPIUninitialize(0X"));
    log.erase(log.begin() + 5);
    EXPECT_EQ(log, (LogLines{{1, L"CMAPIObject::GetAppProfile : Begin\r\n"},
                             {1, L"CMAPIObject::GetAppProfile - pfnHrQueryAllRows(0X00000000)\r\n"},
                             {1, L"CMAPIObject::MAPIRelease : Begin\r\n"},
                             {1, L"CMAPIObject::MAPIRelease : Finish\r\n"},
                             {1, L"CMAPIObject::MAPIUninitialize : Begin\r\n"},
                             {1, L"CMAPIObject::MAPIUninitialize : Finish\r\n"},
                             {1, L"CMAPIObject::GetAppProfile : Finish(0)\r\n"}}));
    EXPECT_EQ(g_MAPIObject.m_bMAPIInitialized, 0);
    EXPECT_FALSE(g_MAPIObject.m_lpProfAdmin);
    m_expectedBuffers = 2;
}

TEST_F(Documents, ProfilesWhileLoggedOnLeaveTheSessionAlone) {
    LogOn();
    EXPECT_EQ(g_MAPIObject.GetAppProfile(m_buffer), 0);
    EXPECT_EQ(TakeLog(), (LogLines{{1, L"CMAPIObject::GetAppProfile : Begin\r\n"},
                                   {1, L"CMAPIObject::GetAppProfile - pfnHrQueryAllRows(0X00000000)\r\n"},
                                   {1, L"CMAPIObject::GetAppProfile : Finish(0)\r\n"}}));
    EXPECT_TRUE(g_MAPIObject.m_lpMAPISession);
    EXPECT_TRUE(g_MAPIObject.m_lpProfAdmin);
    m_expectedBuffers = 2;
}

TEST_F(Documents, FailedInitializeShowsAsMissingProfileAdministration) {
    recorder::FailMethod("MAPIInitialize", {}, E_FAIL);
    EXPECT_EQ(g_MAPIObject.GetAppProfile(m_buffer), 1);
    EXPECT_EQ(TakeLog(), (LogLines{{1, L"CMAPIObject::GetAppProfile : Begin\r\n"},
                                   {3, L"CMAPIObject::GetAppProfile : NULL lpProfAdmin\r\n"},
                                   {1, L"CMAPIObject::MAPIRelease : Begin\r\n"},
                                   {1, L"CMAPIObject::MAPIRelease : Finish\r\n"},
                                   {1, L"CMAPIObject::MAPIUninitialize : Begin\r\n"},
                                   {1, L"CMAPIObject::MAPIUninitialize : Finish\r\n"},
                                   {1, L"CMAPIObject::GetAppProfile : Finish(1)\r\n"}}));
}

TEST_F(Documents, ProfileTableThatFailsGivesAnEmptyDocument) {
    recorder::FailMethod("IProfAdmin::GetProfileTable", {}, E_FAIL);
    EXPECT_EQ(g_MAPIObject.GetAppProfile(m_buffer), 0);
    EXPECT_EQ(Saved(g_strProfileXml), "<profiles name=\"outlook\">\n</profiles>");
}

TEST_F(Documents, ProfilesWithANullBufferFail) {
    EXPECT_EQ(g_MAPIObject.GetAppProfile(nullptr), 1);
    EXPECT_EQ(TakeLog()[1], (LogLine{3, L"CMAPIObject::GetAppProfile : NULL lpszProfiles\r\n"}));
}

TEST_F(Documents, FolderTreeStandsCharacterForCharacter) {
    MakeFolder(L"Work\\Mail\\Contacts\\Private");
    MakeFolder(L"Work\\Mail\\Drafts");
    LogOn();
    EXPECT_EQ(g_MAPIObject.GetAppFolder(m_buffer), 0);
    const std::string contacts = Narrow(FolderId(L"Contacts"));
    std::string nested = Node(R"(class="IPF.Contact" type="2" default="true")", "Contacts", contacts, 2);
    nested.insert(nested.rfind('\n'), Node(R"(class="IPF.Contact" type="2" default="false")", "Private",
                                           Narrow(FolderId(L"Contacts\\Private")), 3));
    std::string store = Node(R"(class="IPF.Post" type="6" default="true")", "Mail", StoreId(), 1);
    store.insert(
        store.rfind('\n'),
        Node(R"(class="IPF.Appointment" type="1" default="true")", "Calendar", Narrow(FolderId(L"Calendar")),
             2) +
            nested +
            Node(R"(class="IPF.Note" type="0" default="true")", "Drafts", Narrow(FolderId(L"Drafts")), 2) +
            Node(R"(class="IPF.Note" type="0" default="false")", "Inbox", Narrow(FolderId(L"Inbox")), 2));
    EXPECT_EQ(Saved(g_strOutlookXml), "<folders name=\"outlook\">" + store + "\n</folders>");
}

TEST_F(Documents, FolderExportWritesItsLinesInOrder) {
    std::filesystem::remove(m_root + L"\\Work\\Mail\\Inbox");
    std::filesystem::remove(m_root + L"\\Work\\Mail\\Calendar");
    recorder::SetRoot(m_root);
    LogOn();
    EXPECT_EQ(g_MAPIObject.GetAppFolder(m_buffer), 0);
    EXPECT_EQ(
        TakeLog(),
        (LogLines{
            {1, L"CMAPIObject::GetAppFolder : Begin\r\n"},
            {1, L"CMAPIObject::GetAppFolder - m_lpMAPISession->GetMsgStoresTable(0X00000000)\r\n"},
            {1, L"CMAPIObject::GetAppFolder - pfnHrQueryAllRows(0X00000000)\r\n"},
            {1, L"CMAPIObject::GetAppFolderFromStore - Begin\r\n"},
            {1, L"CMAPIObject::GetAppFolderFromStore - m_lpMAPISession->OpenMsgStore(0X00000000)\r\n"},
            {1, L"CMAPIObject::GetAppFolderFromFolder - Begin\r\n"},
            {1, L"CMAPIObject::GetAppFolderFromFolder - lpMsgStore->OpenEntry(0X00000000)\r\n"},
            {1, L"CMAPIObject::GetAppFolderFromFolder - lpContainer->GetHierarchyTable(0X00000000)\r\n"},
            {1, L"CMAPIObject::GetAppFolderFromFolder - pfnHrQueryAllRows(0X00000000)\r\n"},
            {1, L"CMAPIObject::GetAppFolderFromFolder - Begin\r\n"},
            {1, L"CMAPIObject::GetAppFolderFromFolder - lpMsgStore->OpenEntry(0X00000000)\r\n"},
            {1, L"CMAPIObject::GetAppFolderFromFolder - lpContainer->GetHierarchyTable(0X00000000)\r\n"},
            {1, L"CMAPIObject::GetAppFolderFromFolder - pfnHrQueryAllRows(0X00000000)\r\n"},
            {1, L"CMAPIObject::GetAppFolderFromFolder - Finish(Succeeded)\r\n"},
            {1, L"CMAPIObject::GetAppFolderFromFolder - Finish(Succeeded)\r\n"},
            {1, L"CMAPIObject::GetAppFolderFromStore - Finish(Succeeded)\r\n"},
            {1, L"CMAPIObject::GetAppFolder : Finish(0)\r\n"}}));
}

TEST_F(Documents, FoldersAskForTheirColumnsAndNoRestriction) {
    LogOn();
    ASSERT_EQ(g_MAPIObject.GetAppFolder(m_buffer), 0);
    std::vector<std::string> queries;
    for (const recorder::Call& call : recorder::Calls()) {
        if (call.method == "HrQueryAllRows") {
            queries.push_back(call.arguments);
        }
    }
    ASSERT_EQ(queries.size(), 5U);  // the stores, the top of the tree, three folders
    EXPECT_EQ(queries[0].substr(0, 32), "0x3400000B,0x0FFF0102,0x3001001F");
    EXPECT_EQ(queries[1].substr(0, 43), "0x3613001F,0x3001001F,0x0FFF0102,0x360A000B");
    for (const std::string& query : queries) {
        EXPECT_EQ(query.find("property("), std::string::npos) << query;
    }
}

TEST_F(Documents, StoreThatDoesNotOpenHasNoFoldersAndEndsNothing) {
    MakeFolder(L"Work\\Archive\\Contacts");
    WriteFile(L"Work\\Archive\\folder.ini", "[Store]\r\nRefuse=1\r\n");
    WriteFile(L"Work\\Mail\\folder.ini", "[Store]\r\nDefault=1\r\n");
    recorder::SetRoot(m_root);
    LogOn();
    EXPECT_EQ(g_MAPIObject.GetAppFolder(m_buffer), 0);
    const LogLines log = TakeLog();
    const std::string document = Saved(g_strOutlookXml);
    // The refused store comes first and takes nothing from the one behind it.
    const std::string archive =
        Node(R"(class="IPF.Post" type="6" default="false")", "Archive", FirstIdOf(document), 1);
    std::string mail = Node(R"(class="IPF.Post" type="6" default="true")", "Mail", StoreId(), 1);
    mail.insert(mail.rfind('\n'), DefaultFolders());
    EXPECT_EQ(document, "<folders name=\"outlook\">" + archive + mail + "\n</folders>");
    EXPECT_EQ(
        LogLines(log.begin(), log.begin() + 8),
        (LogLines{
            {1, L"CMAPIObject::GetAppFolder : Begin\r\n"},
            {1, L"CMAPIObject::GetAppFolder - m_lpMAPISession->GetMsgStoresTable(0X00000000)\r\n"},
            {1, L"CMAPIObject::GetAppFolder - pfnHrQueryAllRows(0X00000000)\r\n"},
            {1, L"CMAPIObject::GetAppFolderFromStore - Begin\r\n"},
            {1, L"CMAPIObject::GetAppFolderFromStore - m_lpMAPISession->OpenMsgStore(0X8004011D)\r\n"},
            {1, L"CMAPIObject::GetAppFolderFromStore - Finish(Succeeded)\r\n"},
            {1, L"CMAPIObject::GetAppFolderFromStore - Begin\r\n"},
            {1, L"CMAPIObject::GetAppFolderFromStore - m_lpMAPISession->OpenMsgStore(0X00000000)\r\n"}}));
}

TEST_F(Documents, FolderWhoseTableFailsKeepsTheTreeAroundIt) {
    MakeFolder(L"Work\\Mail\\Contacts\\A\\Deep");
    LogOn();
    recorder::FailMethod("IMAPIFolder::GetHierarchyTable", "Contacts", E_FAIL);
    EXPECT_EQ(g_MAPIObject.GetAppFolder(m_buffer), 0);
    EXPECT_EQ(LinesOf(TakeLog(), L"CMAPIObject::GetAppFolderFromFolder - Finish(Failed)\r\n"), 0);
    recorder::ClearFailures();
    // As of a clean export without the folders below the one that failed.
    std::string mail = Node(R"(class="IPF.Post" type="6" default="true")", "Mail", StoreId(), 1);
    mail.insert(mail.rfind('\n'), DefaultFolders());
    EXPECT_EQ(Saved(g_strOutlookXml), "<folders name=\"outlook\">" + mail + "\n</folders>");
    EXPECT_EQ(g_MAPIObject.GetAppFolder(m_buffer), 0);
    EXPECT_NE(Saved(g_strOutlookXml).find("<fname>Deep</fname>"), std::string::npos);
}

TEST_F(Documents, DefaultFolderOfContactsIsMarked) {
    LogOn();
    EXPECT_EQ(g_MAPIObject.GetAppFolder(m_buffer), 0);
    EXPECT_NE(Saved(g_strOutlookXml)
                  .find(Node(R"(class="IPF.Contact" type="2" default="true")", "Contacts",
                             Narrow(FolderId(L"Contacts")), 2)),
              std::string::npos);
}

TEST_F(Documents, DefaultFolderOfLettersIsTheDraftsAndNotTheInbox) {
    MakeFolder(L"Work\\Mail\\Drafts");
    LogOn();
    EXPECT_EQ(g_MAPIObject.GetAppFolder(m_buffer), 0);
    const std::string document = Saved(g_strOutlookXml);
    const auto marked = [](const char* flag) {
        return std::string(R"(class="IPF.Note" type="0" default=")") + flag + "\"";
    };
    EXPECT_NE(document.find(Node(marked("true").c_str(), "Drafts", Narrow(FolderId(L"Drafts")), 2)),
              std::string::npos);
    EXPECT_NE(document.find(Node(marked("false").c_str(), "Inbox", Narrow(FolderId(L"Inbox")), 2)),
              std::string::npos);
}

TEST_F(Documents, TopOfAStoreThatDoesNotOpenFailsTheExport) {
    LogOn();
    recorder::FailMethod("IMsgStore::OpenEntry", {}, E_FAIL);
    EXPECT_EQ(g_MAPIObject.GetAppFolder(m_buffer), 1);
    const LogLines log = TakeLog();
    EXPECT_NE(
        std::ranges::find(log, LogLine{3,
                                       L"CMAPIObject::GetAppFolderFromFolder - OpenEntry Failed or NULL "
                                       L"lpContainer\r\n"}),
        log.end());
}

TEST_F(Documents, SubFolderThatDoesNotOpenShowsInTheLogAlone) {
    LogOn();
    // The first opens the top of the tree, the second the first folder below it.
    ASSERT_EQ(g_MAPIObject.GetAppFolder(m_buffer), 0);
    std::size_t number = 0;
    int opens = 0;
    for (const recorder::Call& call : recorder::Calls()) {
        ++number;
        if (call.method == "IMsgStore::OpenEntry" && ++opens == 2) {
            break;
        }
    }
    TakeLog();
    recorder::FailCall(number, false, E_FAIL);
    EXPECT_EQ(g_MAPIObject.GetAppFolder(m_buffer), 0);
    const std::string document = Saved(g_strOutlookXml);
    for (const char* name : {"Calendar", "Contacts", "Inbox"}) {
        EXPECT_NE(document.find(std::string("<fname>") + name), std::string::npos) << name;
    }
    const LogLines log = TakeLog();
    EXPECT_EQ(LinesOf(log, L"CMAPIObject::GetAppFolderFromFolder - Finish(Failed)\r\n"), 1);
    EXPECT_EQ(log[log.size() - 3],
              (LogLine{1, L"CMAPIObject::GetAppFolderFromFolder - Finish(Succeeded)\r\n"}));
}

TEST_F(Documents, StoreThatFailsStopsTheWalkAndWritesNoFile) {
    MakeFolder(L"Work\\Second\\Contacts");
    recorder::SetRoot(m_root);
    LogOn();
    recorder::FailMethod("IMsgStore::OpenEntry", {}, E_FAIL);
    EXPECT_EQ(g_MAPIObject.GetAppFolder(m_buffer), 1);
    EXPECT_EQ(LinesOf(TakeLog(), L"CMAPIObject::GetAppFolderFromStore - Begin\r\n"), 1);
    EXPECT_FALSE(std::filesystem::exists(g_strOutlookXml.c_str()));
}

TEST_F(Documents, StoresStandInTableOrderAndOneIsTheDefault) {
    MakeFolder(L"Work\\Second\\Contacts");
    recorder::SetRoot(m_root);
    LogOn();
    EXPECT_EQ(g_MAPIObject.GetAppFolder(m_buffer), 0);
    const std::string document = Saved(g_strOutlookXml);
    const std::size_t mail =
        document.find("\n\t<node class=\"IPF.Post\" type=\"6\" default=\"true\">\n\t\t<fname>Mail</fname>");
    const std::size_t second = document.find(
        "\n\t<node class=\"IPF.Post\" type=\"6\" default=\"false\">\n\t\t<fname>Second</fname>");
    EXPECT_NE(mail, std::string::npos);
    EXPECT_NE(second, std::string::npos);
    EXPECT_LT(mail, second);
    // A default folder of another store than the one logged on to is not marked.
    EXPECT_NE(document.find("<node class=\"IPF.Contact\" type=\"2\" default=\"false\">", second),
              std::string::npos);
}

TEST_F(Documents, StoreWithoutATreeIsANodeWithoutChildren) {
    LogOn();
    recorder::FailMethod("HrGetOneProp", {}, MAPI_E_NOT_FOUND);
    EXPECT_EQ(g_MAPIObject.GetAppFolder(m_buffer), 0);
    recorder::ClearFailures();
    EXPECT_EQ(Saved(g_strOutlookXml),
              "<folders name=\"outlook\">" +
                  Node(R"(class="IPF.Post" type="6" default="true")", "Mail", StoreId(), 1) + "\n</folders>");
}

TEST_F(Documents, SessionWithoutStoresGivesAnEmptyElement) {
    LogOn();
    std::filesystem::remove_all(m_root + L"\\Work\\Mail");
    EXPECT_EQ(g_MAPIObject.GetAppFolder(m_buffer), 0);
    EXPECT_EQ(Saved(g_strOutlookXml), "<folders name=\"outlook\">\n</folders>");
}

TEST_F(Documents, DirectCallsWithNothingToWorkOnFailWithTheirLines) {
    CXMLParser document;
    EXPECT_EQ(g_MAPIObject.GetAppFolderFromStore(nullptr, nullptr, document, nullptr, 1), 0);
    EXPECT_EQ(TakeLog(), (LogLines{{1, L"CMAPIObject::GetAppFolderFromStore - Begin\r\n"},
                                   {3, L"CMAPIObject::GetAppFolderFromStore - NULL lpPropValue\r\n"},
                                   {1, L"CMAPIObject::GetAppFolderFromStore - Finish(Failed)\r\n"}}));
    EXPECT_EQ(g_MAPIObject.GetAppFolderFromFolder(nullptr, {0, nullptr}, document, nullptr, 1), 0);
    EXPECT_EQ(TakeLog(),
              (LogLines{{1, L"CMAPIObject::GetAppFolderFromFolder - Begin\r\n"},
                        {3, L"CMAPIObject::GetAppFolderFromFolder - Interrupted or INVALID Parameter\r\n"},
                        {1, L"CMAPIObject::GetAppFolderFromFolder - Finish(Failed)\r\n"}}));
}

TEST_F(Documents, ProfileAdministrationIsKeptForLaterCallsWhileLoggedOn) {
    LogOn();
    EXPECT_EQ(g_MAPIObject.GetAppProfile(m_buffer), 0);
    EXPECT_EQ(g_MAPIObject.GetAppProfile(m_buffer), 0);
    std::vector<std::string> methods;
    for (const recorder::Call& call : recorder::Calls()) {
        if (call.method == "MAPIAdminProfiles" || call.method == "MAPIInitialize") {
            methods.push_back(call.method);
        }
    }
    EXPECT_EQ(methods, (std::vector<std::string>{"MAPIAdminProfiles"}));
    m_expectedBuffers = 4;
}

TEST_F(Documents, ProfileTableIsReadFromItsBeginning) {
    EXPECT_EQ(g_MAPIObject.GetAppProfile(m_buffer), 0);
    std::vector<std::string> calls;
    for (const recorder::Call& call : recorder::Calls()) {
        if (call.method == "IMAPITable::SeekRow" || call.method == "HrQueryAllRows") {
            calls.push_back(call.method + " " + call.arguments);
        }
    }
    EXPECT_EQ(calls, (std::vector<std::string>{
                         "IMAPITable::SeekRow origin=0 rows=0",
                         "HrQueryAllRows 0x3001001E,0x3D04000B unrestricted unsorted most=0"}));
    m_expectedBuffers = 2;
}

TEST_F(Documents, ProfileRowsThatCannotBeHadGiveAnEmptyDocument) {
    recorder::FailMethod("HrQueryAllRows", {}, E_FAIL);
    EXPECT_EQ(g_MAPIObject.GetAppProfile(m_buffer), 0);
    EXPECT_EQ(Saved(g_strProfileXml), "<profiles name=\"outlook\">\n</profiles>");
}

TEST_F(Documents, StoreRowsThatCannotBeHadGiveAnEmptyElement) {
    LogOn();
    recorder::FailMethod("HrQueryAllRows", {}, E_FAIL);
    EXPECT_EQ(g_MAPIObject.GetAppFolder(m_buffer), 0);
    EXPECT_EQ(Saved(g_strOutlookXml), "<folders name=\"outlook\">\n</folders>");
}

TEST_F(Documents, MissingStoreTableEndsWithoutAFile) {
    LogOn();
    recorder::FailMethod("IMAPISession::GetMsgStoresTable", {}, E_FAIL);
    EXPECT_EQ(g_MAPIObject.GetAppFolder(m_buffer), 0);
    EXPECT_FALSE(std::filesystem::exists(g_strOutlookXml.c_str()));
    EXPECT_EQ(
        TakeLog(),
        (LogLines{{1, L"CMAPIObject::GetAppFolder : Begin\r\n"},
                  {1, L"CMAPIObject::GetAppFolder - m_lpMAPISession->GetMsgStoresTable(0X80004005)\r\n"},
                  {1, L"CMAPIObject::GetAppFolder : Finish(0)\r\n"}}));
}

TEST_F(Documents, FolderWithoutAClassCountsAsAMailFolder) {
    MakeFolder(L"Work\\Mail\\Plain");
    WriteFile(L"Work\\Mail\\Plain\\folder.ini", "[Folder]\r\nClass=\r\n");
    recorder::SetRoot(m_root);
    LogOn();
    EXPECT_EQ(g_MAPIObject.GetAppFolder(m_buffer), 0);
    EXPECT_NE(Saved(g_strOutlookXml)
                  .find(Node(R"(class="IPF.Note" type="0" default="false")", "Plain",
                             Narrow(FolderId(L"Plain")), 2)),
              std::string::npos);
}

TEST_F(Documents, ClassWithASuffixIsOfTheOtherType) {
    MakeFolder(L"Work\\Mail\\Quick");
    WriteFile(L"Work\\Mail\\Quick\\folder.ini", "[Folder]\r\nClass=IPF.Contact.MOC.QuickContacts\r\n");
    recorder::SetRoot(m_root);
    LogOn();
    EXPECT_EQ(g_MAPIObject.GetAppFolder(m_buffer), 0);
    EXPECT_NE(Saved(g_strOutlookXml)
                  .find("<node class=\"IPF.Contact.MOC.QuickContacts\" type=\"6\" default=\"false\">"),
              std::string::npos);
}

TEST_F(Documents, FolderNamesWithMarkupAndControlCharactersStandEscaped) {
    MakeFolder(L"Work\\Mail\\Odd");
    WriteFile(L"Work\\Mail\\Odd\\folder.ini", "[Folder]\r\nName=<a>&\"b\"\x01 c\r\n");
    recorder::SetRoot(m_root);
    LogOn();
    EXPECT_EQ(g_MAPIObject.GetAppFolder(m_buffer), 0);
    EXPECT_NE(Saved(g_strOutlookXml).find("<fname>&lt;a&gt;&amp;\"b\" c</fname>"), std::string::npos)
        << Saved(g_strOutlookXml);
}

TEST_F(Documents, FoldersBeforeLogonFail) {
    EXPECT_EQ(g_MAPIObject.GetAppFolder(m_buffer), 1);
    EXPECT_EQ(TakeLog(), (LogLines{{1, L"CMAPIObject::GetAppFolder : Begin\r\n"},
                                   {3, L"CMAPIObject::GetAppFolder : NULL m_lpMAPISession\r\n"},
                                   {1, L"CMAPIObject::GetAppFolder : Finish(1)\r\n"}}));
}

TEST_F(Documents, FoldersWithANullBufferFail) {
    LogOn();
    EXPECT_EQ(g_MAPIObject.GetAppFolder(nullptr), 1);
    EXPECT_EQ(TakeLog()[1], (LogLine{3, L"CMAPIObject::GetAppFolder : NULL lpszFolders\r\n"}));
}

}  // namespace
