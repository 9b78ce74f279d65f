#pragma once

#include <cstddef>
#include <vector>

#include "support/text.h"

/// Rows of cells that come out as lines.
class TextTable {
  public:
    using Row = std::vector<CString>;

    explicit TextTable(Row headings) : m_headings(std::move(headings)) {}

    /// Adds a row with as many cells as there are headings.
    void Add(const Row& row);
    [[nodiscard]] std::size_t Size() const { return m_rows.size(); }

    /// The headings and the rows in aligned columns, each line with a line feed. Lines are no longer than
    /// `width` columns: the widest columns are cut until they fit. With a width of 0 nothing is cut.
    [[nodiscard]] CString Aligned(std::size_t width) const;

    /// The headings and the rows for another program: a tab between the cells, a line feed behind each line.
    [[nodiscard]] CString TabSeparated() const;

  private:
    [[nodiscard]] std::vector<std::size_t> ColumnWidths(std::size_t width) const;

    Row m_headings;
    std::vector<Row> m_rows;
};
