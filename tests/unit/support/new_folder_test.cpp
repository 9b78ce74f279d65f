#include "tests/unit/new_folder.h"

#include <gtest/gtest.h>

#include <fstream>

namespace {

/// The path whose number at the end is higher.
std::filesystem::path Later(const std::filesystem::path& path, int steps) {
    const std::wstring text = path.wstring();
    const std::size_t digits = text.rfind(L'-') + 1;
    return text.substr(0, digits) + std::to_wstring(std::stoi(text.substr(digits)) + steps);
}

}  // namespace

TEST(NewFolders, AreEmptyWhateverAKilledProgramLeft) {
    const std::filesystem::path first = MakeNewFolder(L"zeb-new");
    const std::filesystem::path left[] = {Later(first, 1), Later(first, 2)};
    for (const std::filesystem::path& path : left) {
        ASSERT_TRUE(std::filesystem::create_directory(path));
        std::ofstream(path / "left.txt") << "left";
    }
    const std::filesystem::path second = MakeNewFolder(L"zeb-new");
    EXPECT_EQ(second, Later(first, 3));
    EXPECT_TRUE(std::filesystem::is_empty(second));
    for (const std::filesystem::path& path : left) {
        EXPECT_TRUE(std::filesystem::exists(path / "left.txt"));
    }
    for (const std::filesystem::path& path : {first, left[0], left[1], second}) {
        std::filesystem::remove_all(path);
    }
}
