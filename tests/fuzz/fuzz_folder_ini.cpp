// The file of a folder, from any text: each value is the one that a plain reader finds, whatever the case of
// the names that ask for it.

#include <optional>
#include <vector>

#include "localstore/folder_ini.h"
#include "tests/fuzz/fuzz_input.h"

namespace {

using localstore::Text;

struct Line {
    Text section;
    Text key;
    Text value;
};

bool IsBlank(wide unit) {
    return unit == WIDE(' ') || unit == WIDE('\t') || unit == WIDE('\r');
}

Text WithoutBlanks(const Text& text) {
    std::size_t begin = 0;
    std::size_t end = text.size();
    while (begin < end && IsBlank(text[begin])) {
        ++begin;
    }
    while (end > begin && IsBlank(text[end - 1])) {
        --end;
    }
    return text.substr(begin, end - begin);
}

Text Lower(Text text) {
    for (wide& unit : text) {
        unit = unit >= WIDE('A') && unit <= WIDE('Z') ? static_cast<wide>(unit + 32) : unit;
    }
    return text;
}

Text Upper(Text text) {
    for (wide& unit : text) {
        unit = unit >= WIDE('a') && unit <= WIDE('z') ? static_cast<wide>(unit - 32) : unit;
    }
    return text;
}

/// Reads one line that is no comment: a section for those behind it, or a key with its value.
void ReadLine(const Text& line, Text& section, std::vector<Line>& lines) {
    if (line[0] == WIDE('[') && line[line.size() - 1] == WIDE(']')) {
        section = Lower(WithoutBlanks(line.substr(1, line.size() - 2)));
        return;
    }
    Text key;
    for (std::size_t i = 0; i < line.size(); ++i) {
        if (line[i] == WIDE('=')) {
            lines.push_back({section, Lower(WithoutBlanks(key)), WithoutBlanks(line.substr(i + 1))});
            return;
        }
        key += line[i];
    }
}

std::vector<Line> PlainlyRead(const CString& text) {
    std::vector<Line> lines;
    Text section;
    Text line;
    for (std::size_t i = 0; i <= text.size(); ++i) {
        if (i < text.size() && text[i] != WIDE('\n')) {
            line += text[i];
            continue;
        }
        line = WithoutBlanks(line);
        if (!line.empty() && line[0] != WIDE(';') && line[0] != WIDE('#')) {
            ReadLine(line, section, lines);
        }
        line.clear();
    }
    return lines;
}

const Line& FirstOf(const std::vector<Line>& lines, const Line& like) {
    for (const Line& line : lines) {
        if (line.section == like.section && line.key == like.key) {
            return line;
        }
    }
    return like;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    // Bytes as units: what matters in such a file is ASCII, and a byte more is a unit more.
    CString text;
    text.assign(data, data + size);
    const localstore::FolderIni ini(text);
    const std::vector<Line> lines = PlainlyRead(text);
    for (const Line& line : lines) {
        const Text& value = FirstOf(lines, line).value;
        Require(ini.Find(line.section, line.key) == value);
        Require(ini.Find(Upper(line.section), Upper(line.key)) == value);
        const Text lower = Lower(value);
        const bool flag = lower == WIDE("1") || lower == WIDE("true") || lower == WIDE("yes");
        Require(ini.FindFlag(line.section, line.key) == flag);
        // No key holds what ends it.
        Require(!ini.Find(line.section, line.key + WIDE("=")));
    }
    if (lines.empty()) {
        Require(!ini.Find({}, {}) && !ini.FindFlag(WIDE("folder"), WIDE("name")));
    }
    return 0;
}
