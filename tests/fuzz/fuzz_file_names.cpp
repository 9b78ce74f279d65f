// File names made of any text: every file system takes them, none is that of a device, and a name that is
// good stays as it is.

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
    return 0;
}
