#include "libraries/fennic/log_writer.h"

#include <windows.h>

#include <string>

#include "libraries/fennic/log_name.h"

namespace {

/// Lines from this level on report failures and are always written.
constexpr int kFailureLevel = 3;

/// The text in UTF-8; a lone surrogate becomes U+FFFD.
std::string ToUtf8(std::wstring_view text) {
    const int length = static_cast<int>(text.size());
    const int size = WideCharToMultiByte(CP_UTF8, 0, text.data(), length, nullptr, 0, nullptr, nullptr);
    std::string bytes(static_cast<std::size_t>(size), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text.data(), length, bytes.data(), size, nullptr, nullptr);
    return bytes;
}

}  // namespace

void LogWriter::Write(const wchar_t* module, int level, const wchar_t* text) {
    if ((level < kFailureLevel && !m_settings.privateLines) || text == nullptr) {
        return;
    }
    constexpr std::size_t kLongestText = 0x10000000;
    const std::wstring_view line = std::wstring_view(text).substr(0, kLongestText);
    if (line.empty()) {
        return;
    }
    const std::string bytes = ToUtf8(line);
    const CString fileName = LogFileName(module == nullptr ? L"" : module);
    const std::lock_guard lock(m_mutex);
    auto position = m_files.find(fileName);
    if (position == m_files.end()) {
        position = m_files.emplace(fileName, MakeCandidates(fileName)).first;
    }
    for (std::optional<RotatingFile>& file : position->second) {
        if (file && file->Append(bytes)) {
            return;
        }
    }
}

LogWriter::Candidates LogWriter::MakeCandidates(const CString& fileName) const {
    Candidates files;
    if (!m_settings.namedFile.empty()) {
        files[0].emplace(m_settings.namedFile, m_settings.sizeLimit);
    }
    if (!m_settings.imageFolder.empty()) {
        const CString folder = m_settings.imageFolder + L"Logs";
        CreateDirectoryW(folder.c_str(), nullptr);
        files[1].emplace(folder + L"\\" + fileName, m_settings.sizeLimit);
    }
    if (!m_settings.temporaryFolder.empty()) {
        files[2].emplace(m_settings.temporaryFolder + fileName, m_settings.sizeLimit);
    }
    return files;
}
