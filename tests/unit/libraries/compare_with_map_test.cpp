#include "libraries/dunmere/compare_with_map.h"

#include <gmock/gmock.h>

// Behind the base header.
#include <psapi.h>

#include <chrono>
#include <filesystem>
#include <random>

#include "libraries/dunmere/change_map.h"
#include "support/owners.h"
#include "tests/unit/recorded_log.h"
#include "tests/unit/temporary_folder.h"
#include "tests/unit/text_printer.h"

namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;

using Flags = std::vector<std::int32_t>;

void Add(LogItems& items, const CString& id, double date = 43831.5) {
    tagLogItem item;
    item.m_strId = id;
    item.m_dtModified.m_dt = date;
    items.Add(item);
}

LogItems ItemsCalled(std::initializer_list<const wchar_t*> ids) {
    LogItems items;
    for (const wchar_t* id : ids) {
        Add(items, id);
    }
    return items;
}

Flags FlagsOf(const LogItems& items) {
    Flags flags;
    for (const tagLogItem& item : items) {
        flags.push_back(item.m_lLogFlag);
    }
    return flags;
}

class CompareWithMapTest : public ::testing::Test {
  protected:
    void SetUp() override { TakeLog(); }

    int Compare(LogItems& items, const wchar_t* kind = L"contact", const wchar_t* map = L"map") const {
        const GetChangeLogArgs arguments{kind, L"pim", m_folder.File(map)};
        return CompareWithMap(&items, &arguments);
    }
    /// Puts items into the map, so that they are known.
    void Know(std::initializer_list<const wchar_t*> ids, const wchar_t* kind = L"contact") const {
        LogItems items = ItemsCalled(ids);
        Compare(items, kind);
        TakeLog();
    }
    void ExpectAllNew() const {
        LogItems items = ItemsCalled({L"A", L"B"});
        EXPECT_EQ(Compare(items), 2);
        EXPECT_EQ(FlagsOf(items), (Flags{8, 8}));
    }
    /// The names of the files in the folder, in order.
    std::vector<std::string> Files() const {
        std::vector<std::string> names;
        for (const fs::directory_entry& entry : fs::directory_iterator(m_folder.Path().c_str())) {
            names.push_back(entry.path().filename().string());
        }
        std::sort(names.begin(), names.end());
        return names;
    }
    /// The line of level 3 that the last comparison wrote; the map's path in it stands as MAP.
    CString FailureLine() const {
        CString found;
        for (const LogLine& line : TakeLog()) {
            if (line.level == 3) {
                EXPECT_TRUE(found.empty());
                found = line.text;
            }
        }
        const CString path = m_folder.File(L"map");
        for (std::size_t place = found.find(path); place != CString::npos; place = found.find(path)) {
            found.replace(place, path.size(), L"MAP");
        }
        return found;
    }

    TemporaryFolder m_folder;
};

TEST_F(CompareWithMapTest, WithoutAMapAllItemsAreNewAndThenKnown) {
    ExpectAllNew();
    ChangeMap map;
    ASSERT_EQ(ReadMap(m_folder.Read(L"map"), map), MapState::kGood);
    EXPECT_EQ(map.ItemsOf(L"contact", L"pim").size(), 2U);
    EXPECT_EQ(TakeLog(), (LogLines{{1, L"contact, pim: 2 items, 2 new, 0 changed, 0 gone.\r\n"}}));
    LogItems again = ItemsCalled({L"A", L"B"});
    EXPECT_EQ(Compare(again), 0);
    EXPECT_EQ(FlagsOf(again), (Flags{0, 0}));
    EXPECT_EQ(TakeLog(), (LogLines{{1, L"contact, pim: 2 items, 0 new, 0 changed, 0 gone.\r\n"}}));
    EXPECT_THAT(Files(), ElementsAre("map"));
}

TEST_F(CompareWithMapTest, MarksWhatChangedAndAppendsWhatIsGone) {
    Know({L"A", L"B", L"C"});
    LogItems items = ItemsCalled({L"D", L"C"});
    Add(items, L"A", 43832.5);
    EXPECT_EQ(Compare(items), 3);
    EXPECT_EQ(FlagsOf(items), (Flags{8, 0, 4, 32}));
    EXPECT_EQ(items[3].m_strId, L"B");
    EXPECT_DOUBLE_EQ(items[3].m_dtModified.m_dt, 43831.5);
    LogItems again = ItemsCalled({L"D", L"C"});
    Add(again, L"A", 43832.5);
    EXPECT_EQ(Compare(again), 0);
}

TEST_F(CompareWithMapTest, AnEmptyFolderAfterAFullOneIsAllGone) {
    Know({L"A", L"B"});
    LogItems items;
    EXPECT_EQ(Compare(items), 2);
    EXPECT_EQ(FlagsOf(items), (Flags{32, 32}));
    LogItems again;
    EXPECT_EQ(Compare(again), 0);
}

TEST_F(CompareWithMapTest, AnEmptyFolderWithoutAMapIsNoChangeAndMakesTheMap) {
    LogItems items;
    EXPECT_EQ(Compare(items), 0);
    EXPECT_EQ(m_folder.Read(L"map").substr(0, 13), "DunmereMap 1\n");
}

TEST_F(CompareWithMapTest, KindsDoNotKnowOfEachOther) {
    Know({L"A"}, L"contact");
    LogItems items = ItemsCalled({L"B"});
    EXPECT_EQ(Compare(items, L"calendar"), 1);
    EXPECT_EQ(FlagsOf(items), (Flags{8}));
    LogItems contacts = ItemsCalled({L"A"});
    EXPECT_EQ(Compare(contacts, L"contact"), 0);
}

TEST_F(CompareWithMapTest, DomainsDoNotKnowOfEachOther) {
    Know({L"A"});
    LogItems items = ItemsCalled({L"B"});
    const GetChangeLogArgs arguments{L"contact", L"other", m_folder.File(L"map")};
    EXPECT_EQ(CompareWithMap(&items, &arguments), 1);
    EXPECT_EQ(FlagsOf(items), (Flags{8}));
    LogItems known = ItemsCalled({L"A"});
    EXPECT_EQ(Compare(known), 0);
}

TEST_F(CompareWithMapTest, ADamagedMapIsKeptAsideAndAllItemsAreNew) {
    Know({L"A", L"B", L"C"});
    const std::string good = m_folder.Read(L"map");
    for (std::size_t place = 0; place < good.size(); ++place) {
        std::string damaged = good;
        damaged[place] = static_cast<char>(damaged[place] ^ 0x80);
        m_folder.Write(L"map", damaged);
        ExpectAllNew();
        EXPECT_EQ(FailureLine(),
                  L"The map file MAP is damaged. It is kept as MAP.aside, and all items count as new.\r\n");
        EXPECT_EQ(m_folder.Read(L"map.aside"), damaged);
        fs::remove(m_folder.File(L"map.aside").c_str());
    }
}

TEST_F(CompareWithMapTest, AMapThatWasCutOffIsKeptAsideAndAllItemsAreNew) {
    Know({L"A", L"B", L"C"});
    const std::string good = m_folder.Read(L"map");
    for (std::size_t length = 0; length < good.size(); ++length) {
        m_folder.Write(L"map", good.substr(0, length));
        ExpectAllNew();
        EXPECT_EQ(FailureLine(),
                  L"The map file MAP is damaged. It is kept as MAP.aside, and all items count as new.\r\n");
        EXPECT_EQ(m_folder.Read(L"map.aside"), good.substr(0, length));
        fs::remove(m_folder.File(L"map.aside").c_str());
    }
}

TEST_F(CompareWithMapTest, AFileOfRandomBytesIsKeptAsideAndAllItemsAreNew) {
    std::mt19937 random(20250611);  // NOLINT(cert-msc32-c,cert-msc51-cpp): the same files each time.
    for (int file = 0; file < 300; ++file) {
        std::string bytes(random() % 4096, '\0');
        for (char& byte : bytes) {
            byte = static_cast<char>(random());
        }
        m_folder.Write(L"map", file % 2 == 0 ? bytes : "DunmereMap 1\n[contact pim]\n" + bytes);
        ExpectAllNew();
        EXPECT_EQ(FailureLine(),
                  L"The map file MAP is damaged. It is kept as MAP.aside, and all items count as new.\r\n");
        fs::remove(m_folder.File(L"map.aside").c_str());
    }
}

TEST_F(CompareWithMapTest, AFileLongerThanAnyMapIsKeptAside) {
    constexpr LONGLONG kTooLong = (1LL << 30) + 1;
    {
        const FileHandle file(CreateFileW(m_folder.File(L"map").c_str(), GENERIC_WRITE, 0, nullptr,
                                          CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr));
        LARGE_INTEGER size{};
        size.QuadPart = kTooLong;
        ASSERT_NE(SetFilePointerEx(file.Get(), size, nullptr, FILE_BEGIN), 0);
        ASSERT_NE(SetEndOfFile(file.Get()), 0);
    }
    ExpectAllNew();
    EXPECT_EQ(fs::file_size(m_folder.File(L"map.aside").c_str()), std::uintmax_t{kTooLong});
}

TEST_F(CompareWithMapTest, AMapOfALongPathIsKeptWhereTheSystemOpensIt) {
    // Behind the prefix a path may be longer than 259 characters.
    CString folder = CString(L"\\\\?\\") + m_folder.File(std::wstring(200, L'd').c_str());
    ASSERT_NE(CreateDirectoryW(folder.c_str(), nullptr), 0);
    folder += CString(L"\\") + std::wstring(200, L'e').c_str();
    ASSERT_NE(CreateDirectoryW(folder.c_str(), nullptr), 0);
    const GetChangeLogArgs arguments{L"contact", L"pim", folder + L"\\map"};
    LogItems items = ItemsCalled({L"A"});
    EXPECT_EQ(CompareWithMap(&items, &arguments), 1);
    LogItems again = ItemsCalled({L"A"});
    EXPECT_EQ(CompareWithMap(&again, &arguments), 0);
}

TEST_F(CompareWithMapTest, ADamagedMapThatCannotBeRenamedMakesAllItemsNewEachTime) {
    m_folder.Write(L"map", "damaged");
    const FileHandle held(CreateFileW(m_folder.File(L"map").c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr,
                                      OPEN_EXISTING, 0, nullptr));
    ASSERT_TRUE(held);
    for (int times = 0; times < 2; ++times) {
        ExpectAllNew();
        EXPECT_EQ(FailureLine(),
                  L"The map file MAP is damaged and cannot be renamed (error 32). All items count as "
                  L"new, and it stays as it is.\r\n");
    }
    EXPECT_EQ(m_folder.Read(L"map"), "damaged");
}

TEST_F(CompareWithMapTest, AFileBesideTheMapThatCannotBeMadeLeavesTheChangesForTheNextTime) {
    fs::create_directory(m_folder.File(L"map.writing").c_str());
    for (int times = 0; times < 2; ++times) {
        ExpectAllNew();
        EXPECT_EQ(FailureLine(),
                  L"The map file MAP cannot be written (error 5). The next comparison finds the same "
                  L"changes again.\r\n");
    }
    EXPECT_THAT(Files(), ElementsAre("map.writing"));
}

TEST_F(CompareWithMapTest, AMapOfALaterVersionIsKeptAside) {
    m_folder.Write(L"map", "DunmereMap 2\nbeyond us");
    ExpectAllNew();
    EXPECT_EQ(
        FailureLine(),
        L"The map file MAP was written by a later version. It is kept as MAP.aside, and all items count as "
        L"new.\r\n");
    EXPECT_EQ(m_folder.Read(L"map.aside"), "DunmereMap 2\nbeyond us");
}

TEST_F(CompareWithMapTest, NothingThatWasKeptAsideIsOverwritten) {
    for (const char* damaged : {"one", "two", "three"}) {
        m_folder.Write(L"map", damaged);
        ExpectAllNew();
    }
    EXPECT_EQ(m_folder.Read(L"map.aside"), "one");
    EXPECT_EQ(m_folder.Read(L"map.aside2"), "two");
    EXPECT_EQ(m_folder.Read(L"map.aside3"), "three");
}

TEST_F(CompareWithMapTest, AThousandMapsAreKeptAsideAndNoMore) {
    m_folder.Write(L"map.aside", "1");
    for (int number = 2; number < 1000; ++number) {
        m_folder.Write((L"map.aside" + std::to_wstring(number)).c_str(), "");
    }
    m_folder.Write(L"map", "the last one");
    ExpectAllNew();
    EXPECT_EQ(m_folder.Read(L"map.aside1000"), "the last one");
    TakeLog();
    m_folder.Write(L"map", "one too many");
    for (int times = 0; times < 2; ++times) {
        ExpectAllNew();
        EXPECT_EQ(FailureLine(),
                  L"The map file MAP is damaged and cannot be renamed (error 183). All items count as "
                  L"new, and it stays as it is.\r\n");
        EXPECT_EQ(m_folder.Read(L"map"), "one too many");
    }
    EXPECT_EQ(Files().size(), 1001U);
}

TEST_F(CompareWithMapTest, AFolderInPlaceOfTheMapMakesAllItemsNewEachTime) {
    fs::create_directory(m_folder.File(L"map").c_str());
    ExpectAllNew();
    EXPECT_EQ(
        FailureLine(),
        L"The map file MAP cannot be read (error 5). All items count as new, and it stays as it is.\r\n");
    ExpectAllNew();
    EXPECT_THAT(Files(), ElementsAre("map"));
}

TEST_F(CompareWithMapTest, AMapThatIsHeldMakesAllItemsNewAndStaysAsItIs) {
    Know({L"A", L"B", L"C"});
    const std::string known = m_folder.Read(L"map");
    {
        const FileHandle held(
            CreateFileW(m_folder.File(L"map").c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr));
        ASSERT_TRUE(held);
        ExpectAllNew();
    }
    EXPECT_EQ(
        FailureLine(),
        L"The map file MAP cannot be read (error 32). All items count as new, and it stays as it is.\r\n");
    EXPECT_EQ(m_folder.Read(L"map"), known);
    // What went meanwhile is still found.
    LogItems items = ItemsCalled({L"A", L"B"});
    EXPECT_EQ(Compare(items), 1);
    EXPECT_EQ(FlagsOf(items), (Flags{0, 0, 32}));
}

TEST_F(CompareWithMapTest, AMapThatCannotBeWrittenLeavesTheChangesForTheNextTime) {
    Know({L"A", L"C"});
    const CString map = m_folder.File(L"map");
    SetFileAttributesW(map.c_str(), FILE_ATTRIBUTE_READONLY);
    for (int times = 0; times < 2; ++times) {
        LogItems items = ItemsCalled({L"A", L"B"});
        EXPECT_EQ(Compare(items), 2);
        EXPECT_EQ(FlagsOf(items), (Flags{0, 8, 32}));
        EXPECT_EQ(FailureLine(),
                  L"The map file MAP cannot be written (error 5). The next comparison finds the same "
                  L"changes again.\r\n");
    }
    SetFileAttributesW(map.c_str(), FILE_ATTRIBUTE_NORMAL);
    LogItems items = ItemsCalled({L"A", L"B"});
    EXPECT_EQ(Compare(items), 2);
    EXPECT_THAT(Files(), ElementsAre("map"));
}

TEST_F(CompareWithMapTest, AFolderThatIsNotThereForTheMapMakesAllItemsNew) {
    LogItems items = ItemsCalled({L"A"});
    EXPECT_EQ(Compare(items, L"contact", L"no\\map"), 1);
    EXPECT_EQ(FlagsOf(items), (Flags{8}));
    EXPECT_TRUE(FailureLine().find(L"no\\map cannot be written (error 3)") != CString::npos);
}

TEST_F(CompareWithMapTest, WhatAKilledWriterLeftBesideTheMapIsReplaced) {
    m_folder.Write(L"map.writing", "half a m");
    ExpectAllNew();
    EXPECT_THAT(Files(), ElementsAre("map"));
}

TEST_F(CompareWithMapTest, WithoutAnArrayOrArgumentsNothingIsCompared) {
    LogItems items;
    const GetChangeLogArgs arguments{L"contact", L"pim", m_folder.File(L"map")};
    EXPECT_LT(CompareWithMap(nullptr, &arguments), 0);
    EXPECT_LT(CompareWithMap(&items, nullptr), 0);
    EXPECT_TRUE(Files().empty());
}

TEST_F(CompareWithMapTest, LinesComeInALogOfTheLibrarysOwn) {
    ExpectAllNew();
    EXPECT_THAT(LogModules(), ElementsAre(CString(L"Dunmere64bit")));
}

std::size_t WorkingSet() {
    PROCESS_MEMORY_COUNTERS counters{};
    GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof(counters));
    return counters.WorkingSetSize;
}

TEST_F(CompareWithMapTest, TakesAHundredThousandItems) {
    constexpr int kItems = 100'000;
    LogItems items;
    for (int i = 0; i < kItems; ++i) {
        Add(items, CString::Format(L"%0180d", i), 40000.0 + i);
    }
    const std::size_t before = WorkingSet();
    const auto measure = [&](const char* what, int expected) {
        const auto start = std::chrono::steady_clock::now();
        EXPECT_EQ(Compare(items), expected);
        const std::chrono::duration<double, std::milli> time = std::chrono::steady_clock::now() - start;
        std::printf("MEASURED: %d items, %s: compared in %.0f ms, map of %.1f MB\n", kItems, what,
                    time.count(), static_cast<double>(fs::file_size(m_folder.File(L"map").c_str())) / 1e6);
    };
    measure("all new", kItems);
    measure("none changed", 0);
    for (int i = 0; i < kItems; i += 100) {
        items[static_cast<std::size_t>(i)].m_dtModified.m_dt += 1;
    }
    measure("one of a hundred changed", kItems / 100);
    PROCESS_MEMORY_COUNTERS counters{};
    GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof(counters));
    std::printf("MEASURED: memory of the comparison: %.0f MB for the items, %.0f MB at the most\n",
                static_cast<double>(before) / 1e6, static_cast<double>(counters.PeakWorkingSetSize) / 1e6);
}

}  // namespace
