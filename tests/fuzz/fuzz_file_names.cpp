// File names made of any text: every file system takes them, none is that of a device, and a name that is
// good stays as it is.

#include <string>

#include "desktop/item_file_name.h"
#include "libraries/fennic/log_name.h"
#include "localstore/file_names.h"
#include "tests/fuzz/fuzz_input.h"

namespace {

constexpr std::size_t kLongestTitle = 80;
constexpr WideView kLogEnding = WIDE(".log");

bool IsOneOf(wide unit, WideView units) {
    return units.find(unit) != WideView::npos;
}

/// The names that the platform keeps for devices: what stands in front of the first full stop counts, without
/// the blanks behind it.
bool NamesADevice(WideView name) {
    CString stem;
    for (const wide unit : name.substr(0, name.find(WIDE('.')))) {
        stem += unit >= WIDE('a') && unit <= WIDE('z') ? static_cast<wide>(unit - 32) : unit;
    }
    while (stem.ends_with(WIDE(' '))) {
        stem.pop_back();
    }
    for (const WideView device : {WIDE("CON"), WIDE("PRN"), WIDE("AUX"), WIDE("NUL")}) {
        if (stem.View() == device) {
            return true;
        }
    }
    return stem.size() == 4 && (stem.starts_with(WIDE("COM")) || stem.starts_with(WIDE("LPT"))) &&
           IsOneOf(stem[3], WIDE("0123456789\u00B9\u00B2\u00B3"));
}

void RequireFileName(WideView name) {
    Require(!name.empty() && name.front() != WIDE(' ') && !NamesADevice(name));
    Require(!IsOneOf(name.back(), WIDE(". ")));
    for (const wide unit : name) {
        Require(unit >= 0x20 && (unit < 0xD800 || unit > 0xDFFF));
        Require(!IsOneOf(unit, WIDE("<>:\"/\\|?*")));
    }
}

void RequireMessageNameByItsEnd(const CString& name) {
    CString end(name.substr(name.size() - std::min<std::size_t>(name.size(), 4)));
    const bool expected = name.size() > 4 && end.EqualsNoCase(WIDE(".msg"));
    Require(localstore::IsMessageFileName(name) == expected);
    Require(localstore::IsMessageFileName(name + WIDE("x.MsG")));
}

/// The hash of an identifier, 64-bit FNV-1a as its authors publish it, with the multiplication by the prime
/// 2^40 + 2^8 + 0xB3 taken apart.
CString HashDigits(const CString& identifier) {
    std::uint64_t hash = 14695981039346656037U;
    for (const wide unit : identifier) {
        hash ^= unit;
        hash = (hash << 40U) + (hash << 8U) + hash * 0xB3U;
    }
    CString digits;
    for (std::size_t i = 0; i < 16; ++i) {
        digits.insert(0, 1, WIDE("0123456789abcdef")[hash % 16]);
        hash /= 16;
    }
    return digits;
}

/// The file of an item is named after its identifier alone, and no two files of a read have one name.
void RequireItemNames(const CString& identifier) {
    const CString other = identifier + WIDE("0");
    ItemFileNames names(WIDE("contact"));
    const CString stem = WIDE("contact-") + HashDigits(identifier);
    Require(names.Next(identifier) == stem + WIDE(".xml"));
    Require(names.Next(other) == WIDE("contact-") + HashDigits(other) + WIDE(".xml"));
    Require(names.Next(identifier) == stem + WIDE("-2.xml"));
    Require(names.Next(identifier) == stem + WIDE("-3.xml"));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const CString text = TextOf(data, size);

    const localstore::Text title = localstore::FileNameOfTitle(text);
    RequireFileName(title);
    Require(title.front() != WIDE('.') && title.size() <= kLongestTitle);
    Require(localstore::FileNameOfTitle(title) == title);

    const CString log = LogFileName(text);
    Require(log.ends_with(kLogEnding));
    const WideView module = log.View().substr(0, log.size() - kLogEnding.size());
    Require(!module.empty() && !NamesADevice(log));
    Require(LogFileName(module) == log || module.size() > 100);

    RequireMessageNameByItsEnd(text);
    RequireItemNames(text);
    return 0;
}
