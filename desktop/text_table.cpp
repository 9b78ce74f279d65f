#include "desktop/text_table.h"

#include <algorithm>
#include <numeric>

#include "desktop/text_cell.h"

namespace {

constexpr std::size_t kGap = 2;
/// Where nothing is cut, a cell that is wider than this stands out of its column, instead of widening every
/// line.
constexpr std::size_t kWidestColumn = 60;

void AppendAligned(CString& text, const TextTable::Row& row, const std::vector<std::size_t>& widths,
                   bool cut) {
    CString line;
    for (std::size_t column = 0; column < row.size(); ++column) {
        const WideView cell = row[column].View();
        line +=
            cut ? FitText(cell, widths[column]) : FitText(cell, std::max(widths[column], DisplayWidth(cell)));
        line.append(kGap, WIDE(' '));
    }
    line.erase(line.find_last_not_of(WIDE(' ')) + 1);
    text += line;
    text += WIDE('\n');
}

void AppendTabSeparated(CString& text, const TextTable::Row& row) {
    for (const CString& cell : row) {
        text += cell;
        text += &cell == &row.back() ? WIDE('\n') : WIDE('\t');
    }
}

}  // namespace

void TextTable::Add(const Row& row) {
    Row printable;
    for (const CString& cell : row) {
        printable.push_back(PrintableText(cell.View()));
    }
    m_rows.push_back(std::move(printable));
}

CString TextTable::Aligned(std::size_t width) const {
    const std::vector<std::size_t> widths = ColumnWidths(width);
    CString text;
    AppendAligned(text, m_headings, widths, width != 0);
    for (const Row& row : m_rows) {
        AppendAligned(text, row, widths, width != 0);
    }
    return text;
}

CString TextTable::TabSeparated() const {
    CString text;
    AppendTabSeparated(text, m_headings);
    for (const Row& row : m_rows) {
        AppendTabSeparated(text, row);
    }
    return text;
}

std::vector<std::size_t> TextTable::ColumnWidths(std::size_t width) const {
    std::vector<std::size_t> widths;
    for (const CString& heading : m_headings) {
        widths.push_back(DisplayWidth(heading.View()));
    }
    for (const Row& row : m_rows) {
        for (std::size_t column = 0; column < row.size(); ++column) {
            widths[column] = std::max(widths[column], DisplayWidth(row[column].View()));
        }
    }
    if (width == 0) {
        for (std::size_t& column : widths) {
            column = std::min(column, kWidestColumn);
        }
        return widths;
    }
    const std::size_t gaps = kGap * (widths.size() - 1);
    for (std::size_t total = std::accumulate(widths.begin(), widths.end(), gaps); total > width; --total) {
        const auto widest = std::max_element(widths.begin(), widths.end());
        *widest = std::max<std::size_t>(*widest, 2) - 1;
    }
    return widths;
}
