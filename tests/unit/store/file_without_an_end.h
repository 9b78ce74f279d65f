#pragma once

#include <gtest/gtest.h>

#include <windows.h>

#include <array>
#include <string>

#include "support/owners.h"

/// A file that opens but cannot be read to its end. On Windows that is one of which another handle has locked
/// all but the beginning. Wine holds no reader to a lock, but shows files of Linux, of which there is one
/// that anybody may open and nobody can read from its beginning.
class FileWithoutAnEnd {
  public:
    /// Takes a file of more than a kilobyte.
    explicit FileWithoutAnEnd(const std::wstring& path) : m_path(path), m_lock(Open(path)) {
        OVERLAPPED rest{};
        rest.Offset = 1024;
        EXPECT_NE(LockFileEx(m_lock.Get(), LOCKFILE_EXCLUSIVE_LOCK | LOCKFILE_FAIL_IMMEDIATELY, 0, MAXDWORD,
                             0, &rest),
                  FALSE);
        if (HasAnEnd(m_path)) {
            m_path = L"\\\\?\\unix\\proc\\self\\mem";
            EXPECT_FALSE(HasAnEnd(m_path));
        }
    }
    FileWithoutAnEnd(const FileWithoutAnEnd&) = delete;
    FileWithoutAnEnd& operator=(const FileWithoutAnEnd&) = delete;
    ~FileWithoutAnEnd() = default;

    [[nodiscard]] const std::wstring& Path() const { return m_path; }

  private:
    static FileHandle Open(const std::wstring& path) {
        FileHandle file(CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                    OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
        EXPECT_TRUE(file);
        return file;
    }
    static bool HasAnEnd(const std::wstring& path) {
        const FileHandle file = Open(path);
        std::array<char, 1024> piece{};
        DWORD read = 0;
        do {
            if (ReadFile(file.Get(), piece.data(), static_cast<DWORD>(piece.size()), &read, nullptr) ==
                FALSE) {
                return false;
            }
        } while (read != 0);
        return true;
    }

    std::wstring m_path;
    FileHandle m_lock;
};
