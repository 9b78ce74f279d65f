#include "desktop/output_stream.h"

#include <algorithm>
#include <string>

#include "desktop/failure.h"
#include "support/utf8.h"

OutputStream::OutputStream(DWORD which) : m_handle(GetStdHandle(which)) {
    DWORD mode = 0;
    m_isConsole = GetConsoleMode(m_handle, &mode) != 0;
}

std::size_t OutputStream::Columns() const {
    CONSOLE_SCREEN_BUFFER_INFO info{};
    if (!m_isConsole || GetConsoleScreenBufferInfo(m_handle, &info) == 0) {
        return 0;
    }
    // A character in the last column makes the console begin a new line.
    return static_cast<std::size_t>(std::max(info.srWindow.Right - info.srWindow.Left, 1));
}

bool OutputStream::Write(WideView text) const {
    return m_isConsole ? WriteConsoleText(text) : WriteBytes(text);
}

bool OutputStream::WriteConsoleText(WideView text) const {
    // A console takes no more than this at once.
    constexpr std::size_t kLongestPiece = 8192;
    while (!text.empty()) {
        const auto length = static_cast<DWORD>(std::min(text.size(), kLongestPiece));
        DWORD written = 0;
        if (WriteConsoleW(m_handle, text.data(), length, &written, nullptr) == 0 || written == 0) {
            return false;
        }
        text.remove_prefix(written);
    }
    return true;
}

bool OutputStream::WriteBytes(WideView text) const {
    const std::string bytes = Utf8FromWide(text);
    std::string_view rest = bytes;
    while (!rest.empty()) {
        constexpr std::size_t kLongestPiece = 0x10000;
        const auto length = static_cast<DWORD>(std::min(rest.size(), kLongestPiece));
        DWORD written = 0;
        if (WriteFile(m_handle, rest.data(), length, &written, nullptr) == 0 || written == 0) {
            return false;
        }
        rest.remove_prefix(written);
    }
    return true;
}

void PrintOutput(WideView text) {
    if (!OutputStream(STD_OUTPUT_HANDLE).Write(text)) {
        throw Failure(ExitCode::kOutputFailed, L"standard output cannot be written");
    }
}
