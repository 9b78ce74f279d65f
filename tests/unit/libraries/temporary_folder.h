#pragma once

#include <gtest/gtest.h>
#include <windows.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "support/text.h"

/// An empty folder of one test, which goes away with it.
class TemporaryFolder {
  public:
    TemporaryFolder() {
        const auto* test = testing::UnitTest::GetInstance()->current_test_info();
        const std::string name = std::string("zeb-") + test->test_suite_name() + "-" + test->name() + "-" +
                                 std::to_string(GetCurrentProcessId());
        m_path = std::filesystem::temp_directory_path() / name;
        std::filesystem::remove_all(m_path);
        std::filesystem::create_directories(m_path);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    ~TemporaryFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }

    [[nodiscard]] const std::filesystem::path& Path() const { return m_path; }
    /// The path with a backslash behind it.
    [[nodiscard]] CString Prefix() const { return CString((m_path.wstring() + L"\\").c_str()); }

  private:
    std::filesystem::path m_path;
};

/// The bytes of a file, or an empty text if there is none.
inline std::string ReadBytes(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}
