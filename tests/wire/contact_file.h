#pragma once

#include <cstdint>
#include <filesystem>
#include <string>

/// Writes a .msg file with a contact that has a surname, a body and nothing else. Format: [MS-OXMSG].
void WriteContactFile(const std::filesystem::path& path, const std::wstring& surname,
                      const std::wstring& body);

/// The same with an appointment that has a subject.
void WriteAppointmentFile(const std::filesystem::path& path, const std::wstring& subject);

/// A contact without a body and with 8-bit texts, as mail programs of old wrote them: the surname's bytes are
/// of the code page, which the file names.
void WriteNarrowContactFile(const std::filesystem::path& path, const std::string& surname,
                            std::uint32_t codePage);
