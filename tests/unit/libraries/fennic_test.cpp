#include <gmock/gmock.h>

#include <windows.h>

#include <algorithm>
#include <cwctype>
#include <future>
#include <thread>
#include <vector>

#include "libraries/fennic/log_writer.h"
#include "support/fnv.h"
#include "support/owners.h"
#include "tests/unit/temporary_folder.h"

namespace {

namespace fs = std::filesystem;

/// Settings by which all files go below one folder.
LogSettings SettingsFor(const TemporaryFolder& folder) {
    fs::create_directories(folder.File(L"image").c_str());
    fs::create_directories(folder.File(L"temp").c_str());
    LogSettings settings;
    settings.imageFolder = folder.Path() + L"image\\";
    settings.temporaryFolder = folder.Path() + L"temp\\";
    return settings;
}

/// The mutex by which all processes that write to a path exclude each other: its name is a number made of the
/// path in capital letters, by FNV-1a.
Handle MutexOfPath(CString path) {
    std::transform(path.begin(), path.end(), path.begin(),
                   [](wchar_t unit) { return static_cast<wchar_t>(std::towupper(unit)); });
    const CString name = CString::Format(L"Global\\Fennic64-%016I64x", Fnv1a(path.View()));
    return Handle(OpenMutexW(SYNCHRONIZE | MUTEX_MODIFY_STATE, FALSE, name.c_str()));
}

TEST(LogWriter, WritesFailuresBesideTheImageAsTheyAre) {
    const TemporaryFolder folder;
    LogWriter writer(SettingsFor(folder));
    writer.Write(L"Module", 3, L"no line end");
    writer.Write(L"Module", 3, L" Grüße 例 \U0001F980 \xDC00\r\n");
    writer.Write(L"Other", 3, L"x\n");
    EXPECT_EQ(folder.Read(L"image/Logs/Module.log"), "no line end Grüße 例 \U0001F980 \uFFFD\r\n");
    EXPECT_EQ(folder.Read(L"image/Logs/Other.log"), "x\n");
}

TEST(LogWriter, WritesPrivateLinesOnlyWhenWanted) {
    const TemporaryFolder folder;
    LogSettings settings = SettingsFor(folder);
    LogWriter(settings).Write(L"M", 1, L"+43 1 000000");
    EXPECT_FALSE(fs::exists(folder.File(L"image/Logs/M.log").c_str()));
    settings.privateLines = true;
    LogWriter(settings).Write(L"M", 1, L"+43 1 000000");
    EXPECT_EQ(folder.Read(L"image/Logs/M.log"), "+43 1 000000");
}

TEST(LogWriter, TakesNullTexts) {
    const TemporaryFolder folder;
    LogWriter writer(SettingsFor(folder));
    writer.Write(L"M", 3, nullptr);
    writer.Write(nullptr, 3, L"x");
    EXPECT_EQ(folder.Read(L"image/Logs/unnamed.log"), "x");
    EXPECT_FALSE(fs::exists(folder.File(L"image/Logs/M.log").c_str()));
}

TEST(LogWriter, GoesToTheTemporaryFolderWhereItCannotWrite) {
    const TemporaryFolder folder;
    LogWriter writer(SettingsFor(folder));
    // A file where the folder should be keeps everybody out, whatever rights the tests run with.
    folder.Write(L"image/Logs", "in the way");
    writer.Write(L"M", 3, L"x");
    EXPECT_EQ(folder.Read(L"temp/M.log"), "x");
}

TEST(LogWriter, LosesALineThatCanGoNowhere) {
    const TemporaryFolder folder;
    LogSettings settings;
    settings.imageFolder = folder.Path() + L"missing\\";
    settings.temporaryFolder = settings.imageFolder;
    LogWriter writer(settings);
    writer.Write(L"M", 3, L"x");
    EXPECT_TRUE(fs::is_empty(folder.Path().c_str()));
}

TEST(LogWriter, PutsAllModulesIntoTheNamedFile) {
    const TemporaryFolder folder;
    LogSettings settings = SettingsFor(folder);
    settings.namedFile = folder.Path() + L"all.txt";
    LogWriter writer(settings);
    writer.Write(L"A", 3, L"a");
    writer.Write(L"B", 3, L"b");
    EXPECT_EQ(folder.Read(L"all.txt"), "ab");
}

TEST(LogWriter, KeepsThreeFiles) {
    const TemporaryFolder folder;
    LogSettings settings = SettingsFor(folder);
    settings.sizeLimit = 4;
    LogWriter writer(settings);
    for (const wchar_t* text : {L"1111", L"2222", L"33", L"33", L"4444", L"5"}) {
        writer.Write(L"M", 3, text);
    }
    EXPECT_EQ(folder.Read(L"image/Logs/M.log"), "5");
    EXPECT_EQ(folder.Read(L"image/Logs/M.log.1"), "4444");
    EXPECT_EQ(folder.Read(L"image/Logs/M.log.2"), "3333");
    const fs::directory_iterator files(folder.File(L"image/Logs").c_str());
    EXPECT_EQ(std::distance(files, fs::directory_iterator()), 3);
}

TEST(LogWriter, MovesAFileAsideAt10MegabytesAndBreaksNoLine) {
    constexpr std::size_t kLimit = std::size_t{10} * 1024 * 1024;
    const TemporaryFolder folder;
    LogWriter writer(SettingsFor(folder));
    writer.Write(L"M", 3, std::wstring(kLimit - 1, L'1').c_str());
    // There is room for one byte, so the line goes where all of it does not fit.
    writer.Write(L"M", 3, L"22");
    EXPECT_EQ(folder.Read(L"image/Logs/M.log").size(), kLimit + 1);
    writer.Write(L"M", 3, L"3");
    EXPECT_EQ(folder.Read(L"image/Logs/M.log"), "3");
    EXPECT_EQ(folder.Read(L"image/Logs/M.log.1").size(), kLimit + 1);
}

TEST(LogWriter, WritesALineThoughAnotherKeepsTheFileToItself) {
    const TemporaryFolder folder;
    const LogSettings settings = SettingsFor(folder);
    LogWriter writer(settings);
    writer.Write(L"M", 3, L"1");
    // To the mutex a thread of this process is as good as one of another.
    std::promise<void> held;
    std::promise<void> done;
    std::thread other([&] {
        CString path = settings.imageFolder + L"Logs\\M.log";
        const Handle mutex = MutexOfPath(path);
        EXPECT_EQ(WaitForSingleObject(mutex.Get(), INFINITE), WAIT_OBJECT_0);
        held.set_value();
        done.get_future().wait();
        ReleaseMutex(mutex.Get());
    });
    held.get_future().wait();
    writer.Write(L"M", 3, L"2");
    EXPECT_EQ(folder.Read(L"image/Logs/M.log"), "12");
    done.set_value();
    other.join();
}

TEST(LogWriter, KeepsWritingWhenAFileCannotBeMovedAside) {
    const TemporaryFolder folder;
    LogSettings settings = SettingsFor(folder);
    settings.sizeLimit = 2;
    fs::create_directories(folder.File(L"image/Logs/M.log.1/full").c_str());
    fs::create_directories(folder.File(L"image/Logs/M.log.2/full").c_str());
    LogWriter writer(settings);
    writer.Write(L"M", 3, L"11");
    writer.Write(L"M", 3, L"22");
    EXPECT_EQ(folder.Read(L"image/Logs/M.log"), "1122");
}

TEST(LogWriter, KeepsLinesOfManyThreadsWhole) {
    constexpr int kThreads = 8;
    constexpr int kLines = 200;
    const TemporaryFolder folder;
    LogWriter writer(SettingsFor(folder));
    std::vector<std::thread> threads;
    threads.reserve(kThreads);
    for (int thread = 0; thread < kThreads; ++thread) {
        threads.emplace_back([&writer, thread] {
            const CString line = CString(std::wstring(100, static_cast<wchar_t>(L'a' + thread))) + L"\n";
            for (int i = 0; i < kLines; ++i) {
                writer.Write(L"M", 3, line.c_str());
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    std::ifstream file(folder.File(L"image/Logs/M.log").c_str());
    std::vector<int> counts(kThreads);
    for (std::string line; std::getline(file, line);) {
        ASSERT_EQ(line, std::string(100, line.front()));
        ++counts.at(static_cast<std::size_t>(line.front() - 'a'));
    }
    EXPECT_THAT(counts, testing::Each(kLines));
}

}  // namespace
