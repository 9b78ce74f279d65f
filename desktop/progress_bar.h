#pragma once

#include <cstddef>

#include "desktop/output_stream.h"

/// A progress bar on standard error. Draws nothing unless that is a console.
class ProgressBar {
  public:
    ProgressBar(std::size_t expected, bool wanted);
    ProgressBar(const ProgressBar&) = delete;
    ProgressBar& operator=(const ProgressBar&) = delete;
    /// Wipes the bar off.
    ~ProgressBar() { Clear(); }

    /// Draws the bar, but not more often than the eye can follow.
    void Show(std::size_t done);
    void Clear();

  private:
    void Draw(const CString& text);

    OutputStream m_stream{STD_ERROR_HANDLE};
    std::size_t m_expected;
    bool m_wanted;
    ULONGLONG m_drawnAt = 0;
    /// The columns that the bar takes on the screen.
    std::size_t m_drawn = 0;
};
