#include "support/mapi_entry_points.h"

#include <gtest/gtest.h>

namespace {

TEST(FillMAPIEntryPoints, ALibraryWithoutTheFunctionsLeavesTheTableEmpty) {
    EXPECT_EQ(FillMAPIEntryPoints(GetModuleHandleW(L"kernel32.dll")), 0);
    EXPECT_EQ(pfnMAPIInitialize, nullptr);
    EXPECT_EQ(pfnMAPILogonEx, nullptr);
    EXPECT_EQ(pfnHrQueryAllRows, nullptr);
}

}  // namespace
