#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <system_error>

#include "support/text.h"
#include "tests/unit/new_folder.h"

/// A folder of its own for one test, gone with all it holds at the end.
class TemporaryFolder {
  public:
    TemporaryFolder() : m_path(MakeNewFolder(L"zeb-test")) {}
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    ~TemporaryFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }

    /// The path of the folder, with a trailing backslash.
    [[nodiscard]] CString Path() const { return {(m_path.wstring() + L"\\").c_str()}; }

    /// The path of a file in it.
    [[nodiscard]] CString File(const wchar_t* name) const { return {(m_path / name).wstring().c_str()}; }

    void Write(const wchar_t* name, const std::string& bytes) const {
        std::ofstream(m_path / name, std::ios::binary) << bytes;
    }

    [[nodiscard]] std::string Read(const wchar_t* name) const {
        std::ifstream file(m_path / name, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

  private:
    std::filesystem::path m_path;
};
