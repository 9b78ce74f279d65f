// Tables of any texts: nothing in a cell commands the terminal, a cell takes the columns that it is to take,
// and a table has its lines and cells whatever stands in them. Widths are looked up by a walk through the
// whole table of characters.

#include <algorithm>
#include <vector>

#include "desktop/character_widths.h"
#include "desktop/folder_list.h"
#include "desktop/progress_text.h"
#include "desktop/text_cell.h"
#include "desktop/text_table.h"
#include "tests/fuzz/fuzz_input.h"

namespace {

constexpr std::size_t kColumns = 3;
constexpr std::size_t kGap = 2;

bool IsLow(wide unit) {
    return unit >= 0xDC00 && unit <= 0xDFFF;
}

/// The characters of a text; each lone surrogate is U+FFFD.
std::vector<std::uint32_t> CharactersOf(WideView text) {
    std::vector<std::uint32_t> characters;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const std::uint32_t unit = text[i];
        if (unit < 0xD800 || unit > 0xDFFF) {
            characters.push_back(unit);
        } else if (unit < 0xDC00 && i + 1 < text.size() && IsLow(text[i + 1])) {
            ++i;
            characters.push_back(0x10000 + (unit - 0xD800) * 0x400 + (text[i] - 0xDC00U));
        } else {
            characters.push_back(0xFFFD);
        }
    }
    return characters;
}

template<std::size_t count>
bool IsListed(const CodePointRange (&ranges)[count], std::uint32_t character) {
    return std::any_of(std::begin(ranges), std::end(ranges), [character](const CodePointRange& range) {
        return character >= range.first && character <= range.last;
    });
}

std::size_t PlainWidth(WideView text) {
    std::size_t width = 0;
    for (const std::uint32_t character : CharactersOf(text)) {
        if (!IsListed(kZeroWidth, character)) {
            width += IsListed(kDoubleWidth, character) ? 2 : 1;
        }
    }
    return width;
}

/// The characters that a terminal may get, one by one.
std::vector<std::uint32_t> PrintableCharacters(WideView text) {
    std::vector<std::uint32_t> printable;
    for (const std::uint32_t character : CharactersOf(text)) {
        const bool turns =
            (character >= 0x202A && character <= 0x202E) || (character >= 0x2066 && character <= 0x2069);
        const bool controls = character < 32 || (character > 126 && character < 160) || character == 0x2028 ||
                              character == 0x2029;
        if (!turns) {
            printable.push_back(controls ? 32 : character);
        }
    }
    return printable;
}

void RequireCell(WideView text, std::size_t width) {
    const CString printable = PrintableText(text);
    Require(CharactersOf(printable) == PrintableCharacters(text));
    const std::size_t whole = PlainWidth(printable);
    Require(DisplayWidth(printable) == whole);

    CString fitted = FitText(printable, width);
    Require(PlainWidth(fitted) == width || (width == 0 && whole == 0));
    fitted.erase(fitted.find_last_not_of(WIDE(' ')) + 1);
    if (whole <= width) {
        Require(printable.starts_with(fitted.View()));
        Require(printable.find_first_not_of(WIDE(' '), fitted.size()) == CString::npos);
    } else if (width != 0) {
        Require(fitted.back() == 0x2026);
        fitted.pop_back();
        Require(printable.starts_with(fitted.View()) && !IsLow(printable[fitted.size()]));
        // Not even the next character would have had room, with the sign for the cut behind it.
        const std::size_t next = fitted.size() + (printable[fitted.size()] / 0x400U == 0x36 ? 2 : 1);
        Require(PlainWidth(printable.View().substr(0, next)) + 1 > width);
    }
}

std::vector<CString> CutAt(WideView text, wide separator) {
    std::vector<CString> parts(1);
    for (const wide unit : text) {
        if (unit == separator) {
            parts.emplace_back();
        } else {
            parts.back() += unit;
        }
    }
    return parts;
}

/// The texts as rows of a table; what is missing in the last row is empty.
std::vector<TextTable::Row> RowsOf(const std::vector<CString>& texts) {
    std::vector<TextTable::Row> rows;
    for (std::size_t i = 0; i < texts.size(); ++i) {
        if (i % kColumns == 0) {
            rows.emplace_back(kColumns);
        }
        rows.back()[i % kColumns] = texts[i];
    }
    return rows;
}

void RequireTable(const std::vector<TextTable::Row>& rows, std::size_t width) {
    TextTable table({WIDE("A"), WIDE("BB"), WIDE("CCC")});
    for (const TextTable::Row& row : rows) {
        table.Add(row);
    }
    const std::vector<CString> cut = CutAt(table.Aligned(width), WIDE('\n'));
    Require(cut.size() == rows.size() + 2 && cut.back().empty());
    // A column keeps the sign for a cut at least.
    const std::size_t most = std::max(width, kColumns + kGap * (kColumns - 1));
    for (const CString& line : cut) {
        Require(width == 0 || PlainWidth(line) <= most);
        Require(!line.ends_with(WIDE(' ')));
    }
    const std::vector<CString> lines = CutAt(table.TabSeparated(), WIDE('\n'));
    Require(lines.size() == rows.size() + 2 && lines.front() == WIDE("A\tBB\tCCC") && lines.back().empty());
    for (std::size_t row = 0; row < rows.size(); ++row) {
        const std::vector<CString> cells = CutAt(lines[row + 1], WIDE('\t'));
        Require(cells.size() == kColumns);
        for (std::size_t column = 0; column < kColumns; ++column) {
            Require(CharactersOf(cells[column]) == PrintableCharacters(rows[row][column]));
        }
    }
}

/// The lists of profiles and folders have a line for each, and one for each folder's identifier.
void RequireLists(const std::vector<TextTable::Row>& rows, std::size_t width) {
    std::vector<ProfileEntry> profiles;
    std::vector<FolderEntry> folders;
    std::size_t below = 0;
    for (const TextTable::Row& row : rows) {
        profiles.push_back({row[0], row[1].empty()});
        // No identifier but in hexadecimal comes from a store.
        folders.push_back({row[1].size() % 5, row[0], row[2], WIDE("00AB"), row[2].empty()});
        below += folders.back().depth == 0 ? 0U : 1U;
    }
    Require(CutAt(ProfileListText(profiles, width), WIDE('\n')).size() == rows.size() + 2);
    const std::vector<CString> lines = CutAt(FolderListText(folders, width), WIDE('\n'));
    Require(lines.size() == rows.size() + 2 + (below == 0 ? 0 : below + 2));
    Require(std::count_if(lines.begin(), lines.end(), [](const CString& line) {
                return line.ends_with(WIDE("  00AB"));
            }) >= static_cast<std::ptrdiff_t>(below));
}

void RequireProgress(std::size_t done, std::size_t expected) {
    const CString text = ProgressText(done, expected);
    const auto filled = static_cast<std::size_t>(std::count(text.begin(), text.end(), WIDE('#')));
    const auto open = static_cast<std::size_t>(std::count(text.begin(), text.end(), WIDE('.')));
    Require(expected == 0 ? filled + open == 0 : filled + open == 40);
    // A part is marked when it is all done.
    for (std::size_t part = 1; part <= 40 && expected != 0; ++part) {
        Require((part <= filled) == (done >= expected || done * 40 >= part * expected));
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    CString text = TextOf(data, size);
    const std::size_t width = text.empty() ? 0 : text.front() % 90U;
    text.erase(0, 1);
    const std::vector<CString> cells = CutAt(text, WIDE('\n'));
    for (const CString& cell : cells) {
        RequireCell(cell, width);
    }
    const std::vector<TextTable::Row> rows = RowsOf(cells);
    RequireTable(rows, width);
    RequireLists(rows, width);
    RequireProgress(size, width);
    RequireProgress(width, size);
    return 0;
}
