#include "libraries/fennic/log_name.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "tests/unit/text_printer.h"

namespace {

TEST(LogFileName, KeepsAnOrdinaryName) {
    EXPECT_EQ(LogFileName(WIDE("ZebAgentOutlook64")), WIDE("ZebAgentOutlook64.log"));
}

TEST(LogFileName, ReplacesWhatAFileNameCannotHold) {
    EXPECT_EQ(LogFileName(WIDE("..\\..\\a/b:c*d?e\"f<g>h|i\n")), WIDE(".._.._a_b_c_d_e_f_g_h_i_.log"));
    EXPECT_EQ(LogFileName(WIDE("a\xD800z")), WIDE("a_z.log"));
    EXPECT_EQ(LogFileName(WIDE("\xD7FF\xDFFF\xE000")), WIDE("\xD7FF_\xE000.log"));
}

TEST(LogFileName, NamesWhatHasNoName) {
    EXPECT_EQ(LogFileName(WIDE("")), WIDE("unnamed.log"));
    EXPECT_EQ(LogFileName(WIDE(".. ")), WIDE("unnamed.log"));
}

TEST(LogFileName, AvoidsDevices) {
    EXPECT_EQ(LogFileName(WIDE("con")), WIDE("_con.log"));
    EXPECT_EQ(LogFileName(WIDE("LPT1.x")), WIDE("_LPT1.x.log"));
    EXPECT_EQ(LogFileName(WIDE("com9")), WIDE("_com9.log"));
    EXPECT_EQ(LogFileName(WIDE("AUX .x")), WIDE("_AUX .x.log"));
    EXPECT_EQ(LogFileName(WIDE("COM\u00B2")), WIDE("_COM\u00B2.log"));
    EXPECT_EQ(LogFileName(WIDE("COMx")), WIDE("COMx.log"));
    EXPECT_EQ(LogFileName(WIDE("CON1")), WIDE("CON1.log"));
    EXPECT_EQ(LogFileName(WIDE("console")), WIDE("console.log"));
}

TEST(LogFileName, CutsALongName) {
    for (const std::size_t length : {99U, 100U, 101U, 5000U}) {
        const WideString name(std::min<std::size_t>(length, 100), WIDE('x'));
        EXPECT_EQ(LogFileName(WideString(length, WIDE('x'))), CString(name + WIDE(".log")));
    }
}

}  // namespace
