#include "localstore/file_names.h"

#include <gtest/gtest.h>

using namespace localstore;

TEST(FileNameOfTitle, KeepsWhatIsReadable) {
    EXPECT_EQ(FileNameOfTitle(WIDE("John Doe")), WIDE("John Doe"));
    EXPECT_EQ(FileNameOfTitle(WIDE("\x5C71\x7530")), WIDE("\x5C71\x7530"));
    EXPECT_EQ(FileNameOfTitle(WIDE("Dr. A. B.c")), WIDE("Dr. A. B.c"));
}

TEST(FileNameOfTitle, ReplacesWhatNoFileSystemTakes) {
    EXPECT_EQ(FileNameOfTitle(WIDE("a/b\\c:d*e?f\"g<h>i|j")), WIDE("a_b_c_d_e_f_g_h_i_j"));
    EXPECT_EQ(FileNameOfTitle(WIDE("line\r\nline\ttab")), WIDE("line__line_tab"));
    EXPECT_EQ(FileNameOfTitle(WIDE("a\x7F{z}")), WIDE("a_{z}"));
}

TEST(FileNameOfTitle, CutsPointsAndBlanksAtTheEnds) {
    EXPECT_EQ(FileNameOfTitle(WIDE("name. .")), WIDE("name"));
    EXPECT_EQ(FileNameOfTitle(WIDE(" ..name")), WIDE("name"));
    EXPECT_EQ(FileNameOfTitle(WIDE("..\\..\\evil")), WIDE("_.._evil"));
}

TEST(FileNameOfTitle, NeverComesBackEmpty) {
    EXPECT_EQ(FileNameOfTitle(WIDE("")), WIDE("Message"));
    EXPECT_EQ(FileNameOfTitle(WIDE("...")), WIDE("Message"));
    EXPECT_EQ(FileNameOfTitle(WIDE("\xD83D")), WIDE("Message"));
}

TEST(FileNameOfTitle, AvoidsTheNamesOfDevices) {
    EXPECT_EQ(FileNameOfTitle(WIDE("con")), WIDE("_con"));
    EXPECT_EQ(FileNameOfTitle(WIDE("NUL.txt")), WIDE("_NUL.txt"));
    EXPECT_EQ(FileNameOfTitle(WIDE("com1")), WIDE("_com1"));
    EXPECT_EQ(FileNameOfTitle(WIDE("lpt9.x")), WIDE("_lpt9.x"));
    EXPECT_EQ(FileNameOfTitle(WIDE("console")), WIDE("console"));
    EXPECT_EQ(FileNameOfTitle(WIDE("comx")), WIDE("comx"));
    EXPECT_EQ(FileNameOfTitle(WIDE("Tom1")), WIDE("Tom1"));
    EXPECT_EQ(FileNameOfTitle(WIDE("co{")), WIDE("co{"));
}

TEST(FileNameOfTitle, AvoidsTheNamesOfDevicesWithBlanksAndRaisedDigits) {
    EXPECT_EQ(FileNameOfTitle(WIDE("AUX  .txt")), WIDE("_AUX  .txt"));
    EXPECT_EQ(FileNameOfTitle(WIDE("PRN ")), WIDE("_PRN"));
    EXPECT_EQ(FileNameOfTitle(WIDE("COM\u00B9")), WIDE("_COM\u00B9"));
    EXPECT_EQ(FileNameOfTitle(WIDE("lpt\u00B3 .x")), WIDE("_lpt\u00B3 .x"));
    EXPECT_EQ(FileNameOfTitle(WIDE("COM\u2074")), WIDE("COM\u2074"));
    EXPECT_EQ(FileNameOfTitle(WIDE("CO N")), WIDE("CO N"));
}

TEST(FileNameOfTitle, IsAtMost80UnitsLong) {
    EXPECT_EQ(FileNameOfTitle(Text(300, WIDE('x'))).size(), 80U);
    EXPECT_EQ(FileNameOfTitle(WIDE("NUL.") + Text(76, WIDE('x'))), WIDE("_NUL.") + Text(75, WIDE('x')));
    // What the cut brings to the end is cut off too.
    EXPECT_EQ(FileNameOfTitle(WIDE("NUL.") + Text(74, WIDE('x')) + WIDE(" y")),
              WIDE("_NUL.") + Text(74, WIDE('x')));
}

TEST(MessageFileName, EndsInMsgInAnyCase) {
    EXPECT_TRUE(IsMessageFileName(WIDE("a.msg")));
    EXPECT_TRUE(IsMessageFileName(WIDE("a.MsG")));
    EXPECT_FALSE(IsMessageFileName(WIDE(".msg")));
    EXPECT_FALSE(IsMessageFileName(WIDE("a.msg.tmp")));
    EXPECT_FALSE(IsMessageFileName(WIDE("msg")));
}
