#include "desktop/folder_list.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "support/wide.h"
#include "tests/unit/text_printer.h"

namespace {

std::vector<FolderEntry> TwoStores() {
    return {
        {0, WIDE("Mailbox"), WIDE("IPF.Post"), WIDE("A0"), true},
        {1, WIDE("Contacts"), WIDE("IPF.Contact"), WIDE("A1"), true},
        {2, WIDE("Fam\u00EDlia"), WIDE("IPF.Contact.Custom"), WIDE("A2"), false},
        {1, WIDE("Inbox"), WIDE("IPF.Note"), WIDE("A3"), false},
        {0, WIDE("Closed"), WIDE("IPF.Post"), WIDE("B0"), false},
    };
}

TEST(FolderList, IsATreeWithTheIdentifiersOfTheFoldersBelow) {
    EXPECT_EQ(FolderListText(TwoStores(), 0), WIDE("NO  FOLDER       CLASS               DEFAULT\n"
                                                   "1   Mailbox      store               default\n"
                                                   "2     Contacts   IPF.Contact         default\n"
                                                   "3       Fam\u00EDlia  IPF.Contact.Custom\n"
                                                   "4     Inbox      IPF.Note\n"
                                                   "5   Closed       store\n"
                                                   "\n"
                                                   "NO  IDENTIFIER, FOR --folder\n"
                                                   "2   A1\n"
                                                   "3   A2\n"
                                                   "4   A3\n"));
}

TEST(FolderList, CutsNamesAndNeverIdentifiers) {
    std::vector<FolderEntry> folders = TwoStores();
    folders.resize(2);
    folders[1].name = CString(WideString(100, WIDE('x')));
    folders[1].id = CString(WideString(200, WIDE('A')));
    const CString text = FolderListText(folders, 40);
    EXPECT_NE(text.find(WideString(200, WIDE('A'))), CString::npos);
    EXPECT_EQ(text.find(WideString(41, WIDE('x'))), CString::npos);
}

TEST(FolderList, KeepsALineForEachFolderWhateverItsName) {
    const CString text =
        FolderListText({{1, WIDE("a\r\n\x1B[31mb"), WIDE("IPF.Note"), WIDE("A1"), false}}, 0);
    EXPECT_EQ(std::count(text.begin(), text.end(), WIDE('\n')), 5);
    EXPECT_EQ(text.find(WIDE('\x1B')), CString::npos);
}

TEST(FolderList, HasNoIdentifiersWithoutFolders) {
    EXPECT_EQ(FolderListText({}, 0), WIDE("NO  FOLDER  CLASS  DEFAULT\n"));
    EXPECT_EQ(FolderListText({{0, WIDE("Closed"), WIDE("IPF.Post"), WIDE("B0"), false}}, 0),
              WIDE("NO  FOLDER  CLASS  DEFAULT\n1   Closed  store\n"));
}

TEST(ProfileList, MarksTheDefault) {
    EXPECT_EQ(ProfileListText({{WIDE("Work"), false}, {WIDE("Zo\u00EB & \"co\""), true}}, 0),
              WIDE("PROFILE     DEFAULT\n"
                   "Work\n"
                   "Zo\u00EB & \"co\"  default\n"));
    EXPECT_EQ(ProfileListText({}, 0), WIDE("PROFILE  DEFAULT\n"));
}

}  // namespace
