#include "localstore/folder_ini.h"

#include <gtest/gtest.h>

using namespace localstore;

TEST(FolderIni, FindsKeysInSectionsWithoutRegardToCase) {
    const FolderIni ini(WIDE("[Store]\r\nName = My mail \r\nDEFAULT=1\r\n[Folder]\nname=Private"));
    EXPECT_EQ(ini.Find(WIDE("store"), WIDE("NAME")), WIDE("My mail"));
    EXPECT_EQ(ini.Find(WIDE("Folder"), WIDE("Name")), WIDE("Private"));
    EXPECT_EQ(ini.FindFlag(WIDE("Store"), WIDE("Default")), true);
    EXPECT_FALSE(ini.Find(WIDE("Profile"), WIDE("Default")));
}

TEST(FolderIni, TellsAnEmptyValueFromNone) {
    const FolderIni ini(WIDE("[Folder]\nClass=\n"));
    EXPECT_EQ(ini.Find(WIDE("Folder"), WIDE("Class")), Text());
    EXPECT_FALSE(ini.Find(WIDE("Folder"), WIDE("Name")));
}

TEST(FolderIni, TakesTheFirstOfEqualKeys) {
    EXPECT_EQ(FolderIni(WIDE("[A]\nb=1\nB=2\n[a]\nb=3")).Find(WIDE("A"), WIDE("b")), WIDE("1"));
}

TEST(FolderIni, PassesOverCommentsAndLinesThatMeanNothing) {
    const FolderIni ini(WIDE("; Name=x\n# Name=y\nnothing\n[]\n[Store\n[Store]\n=5\nName=z=1\n"));
    EXPECT_EQ(ini.Find(WIDE("Store"), WIDE("Name")), WIDE("z=1"));
}

TEST(FolderIni, CutsTabsAndPassesOverEmptyLines) {
    const FolderIni ini(WIDE("\n\r\n \t\n[\tStore\t]\t\n\tName\t=\tMy\tmail\t\r\n"));
    EXPECT_EQ(ini.Find(WIDE("Store"), WIDE("Name")), WIDE("My\tmail"));
}

TEST(FolderIni, ReadsYesAndNo) {
    const FolderIni ini(WIDE("[S]\na=1\nb=TRUE\nc=Yes\nd=0\ne=\nf=2"));
    for (const wide* key : {WIDE("a"), WIDE("b"), WIDE("c")}) {
        EXPECT_EQ(ini.FindFlag(WIDE("S"), key), true);
    }
    for (const wide* key : {WIDE("d"), WIDE("e"), WIDE("f")}) {
        EXPECT_EQ(ini.FindFlag(WIDE("S"), key), false);
    }
    EXPECT_FALSE(ini.FindFlag(WIDE("S"), WIDE("g")));
}
