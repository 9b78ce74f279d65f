#include "desktop/progress_bar.h"

#include <algorithm>

#include "desktop/progress_text.h"

ProgressBar::ProgressBar(std::size_t expected, bool wanted)
    : m_expected(expected), m_wanted(wanted && m_stream.IsConsole()) {
    Show(0);
}

void ProgressBar::Show(std::size_t done) {
    constexpr ULONGLONG kMillisecondsBetween = 100;
    const ULONGLONG now = GetTickCount64();
    if (m_wanted && (m_drawn == 0 || now - m_drawnAt >= kMillisecondsBetween)) {
        m_drawnAt = now;
        Draw(ProgressText(done, m_expected));
    }
}

void ProgressBar::Clear() {
    if (m_drawn != 0) {
        Draw({});
        m_drawn = 0;
    }
}

/// Puts the text in the place of what was drawn before.
void ProgressBar::Draw(const CString& text) {
    CString line = L"\r" + text.substr(0, m_stream.Columns());
    const std::size_t length = line.size() - 1;
    line.append(std::max(m_drawn, length) - length, L' ');
    line += text.empty() ? L"\r" : L"";
    m_stream.Write(line.View());
    m_drawn = length;
}
