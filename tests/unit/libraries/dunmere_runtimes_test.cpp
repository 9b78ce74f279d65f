// The list of items crosses the border of Dunmere64bit.dll in both directions, whichever way the library
// links its run-time library. This program links it statically.

#include <gtest/gtest.h>

#include "changelog/get_change_log.h"
#include "support/owners.h"
#include "tests/unit/temporary_folder.h"
#include "tests/unit/text_printer.h"

namespace {

class DunmereLibrary : public ::testing::TestWithParam<const wchar_t*> {};

CString LongId(int number) {
    return CString::Format(L"%0140X", number);
}

void Add(LogItems& items, const CString& id) {
    tagLogItem item;
    item.m_strId = id;
    items.Add(item);
}

/// Loads a library together with those that it finds beside it.
Library LoadWithNeighbours(const wchar_t* path) {
    return Library(LoadLibraryExW(std::filesystem::path(path).make_preferred().c_str(), nullptr,
                                  LOAD_WITH_ALTERED_SEARCH_PATH));
}

TEST_P(DunmereLibrary, GrowsAListThatItsCallerFreesEvenBehindTheLibrarysEnd) {
    const TemporaryFolder folder;
    const GetChangeLogArgs arguments{L"contact", L"pim", folder.File(L"map")};
    LogItems items;
    {
        const Library library = LoadWithNeighbours(GetParam());
        ASSERT_TRUE(library) << GetLastError();
        const auto getChangeLog = reinterpret_cast<decltype(&GetChangeLog)>(
            reinterpret_cast<void*>(GetProcAddress(library.Get(), "GetChangeLog")));
        ASSERT_NE(getChangeLog, nullptr);
        for (int i = 0; i < 1000; ++i) {
            Add(items, LongId(i));
            Add(items, CString::FromNumber(i));
        }
        ASSERT_EQ(getChangeLog(&items, &arguments), 2000);
        EXPECT_EQ(items[1999].m_lLogFlag, kItemNew);
        items.RemoveAll();
        Add(items, LongId(0));
        ASSERT_EQ(getChangeLog(&items, &arguments), 1999);
    }
    ASSERT_EQ(items.GetSize(), 2000U);
    EXPECT_EQ(items[0].m_lLogFlag, 0);
    EXPECT_EQ(items[1].m_lLogFlag, kItemDeleted);
    EXPECT_EQ(items[1].m_strId, L"0");
    EXPECT_EQ(items[2].m_strId, LongId(1));
    items[1].m_strId += LongId(1);
    Add(items, LongId(5000));
    EXPECT_NE(HeapValidate(GetProcessHeap(), 0, nullptr), 0);
    items.RemoveAll();
    EXPECT_NE(HeapValidate(GetProcessHeap(), 0, nullptr), 0);
}

INSTANTIATE_TEST_SUITE_P(Runtime, DunmereLibrary, ::testing::Values(DUNMERE_STATIC, DUNMERE_SHARED),
                         [](const auto& setting) { return setting.index == 0 ? "Static" : "Shared"; });

}  // namespace
