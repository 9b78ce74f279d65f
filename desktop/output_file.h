#pragma once

#include <filesystem>
#include <string>

/// Makes a folder and its parents unless they are there. Throws a Failure if it is not there in the end.
void RequireFolder(const std::filesystem::path& folder);

/// Writes a file, or replaces it, first under another name, so that a file is whole if it is there. With
/// `durable` it is on the disk itself at the return. Throws a Failure if it cannot be written.
void WriteFileWhole(const std::filesystem::path& path, const std::string& bytes, bool durable);

/// Copies a file in the same way. False if that cannot be done; then what was there is still there.
[[nodiscard]] bool CopyFileWhole(const std::filesystem::path& from, const std::filesystem::path& to,
                                 bool durable);
