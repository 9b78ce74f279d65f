#pragma once

#include <filesystem>
#include <string>

/// Writes a .msg file with a contact that has a surname, a body and nothing else. Format: [MS-OXMSG].
void WriteContactFile(const std::filesystem::path& path, const std::wstring& surname,
                      const std::wstring& body);
