#include "libraries/fennic/log_writer.h"

#include <windows.h>

#include <string>

#include "libraries/fennic/log_name.h"
#include "support/utf8.h"

namespace {

/// Lines from this level on report failures and are always written.
constexpr int kFailureLevel = 3;

}  // namespace

void LogWriter::Write(const wchar_t* module, int level, const wchar_t* text) {
    if ((level < kFailureLevel && !m_settings.privateLines) || text == nullptr) {
        return;
    }
    const std::string bytes = Utf8FromWide(text);
    if (bytes.empty()) {
        return;
    }
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
