// Command lines of any words: a second, plain reader takes them apart the same way, and refuses the same.

#include <map>
#include <vector>

#include "desktop/arguments.h"
#include "desktop/failure.h"
#include "tests/fuzz/fuzz_input.h"

namespace {

struct KnownOption {
    unsigned bit;
    /// Null for an option without a value.
    CString Arguments::*value;
};

const std::map<CString, KnownOption>& KnownOptions() {
    static const std::map<CString, KnownOption> options = {
        {WIDE("--help"), {1, nullptr}},
        {WIDE("-h"), {1, nullptr}},
        {WIDE("--profile"), {2, &Arguments::profile}},
        {WIDE("--agent"), {4, &Arguments::agent}},
        {WIDE("--quiet"), {8, nullptr}},
        {WIDE("-q"), {8, nullptr}},
        {WIDE("--out"), {16, &Arguments::out}},
        {WIDE("--xml"), {32, nullptr}},
        {WIDE("--tabs"), {64, nullptr}},
        {WIDE("--folder"), {128, &Arguments::folder}},
        {WIDE("--changed"), {256, &Arguments::changed}},
        {WIDE("--accept-deletions"), {512, nullptr}},
        {WIDE("--delete"), {1024, &Arguments::doomed}},
        {WIDE("--new"), {2048, nullptr}},
    };
    return options;
}

/// The words between line feeds, the first of which has to begin the input.
std::vector<CString> WordsOf(const std::uint8_t* data, std::size_t size) {
    std::vector<CString> words(size == 0 ? 0 : 1);
    for (std::size_t i = 0; i < size; ++i) {
        if (data[i] == '\n') {
            words.emplace_back();
        } else {
            words.back() += static_cast<wide>(data[i]);
        }
    }
    return words;
}

bool IsIdentifier(const CString& text) {
    std::size_t digits = 0;
    for (const wide unit : text) {
        digits += (unit >= WIDE('0') && unit <= WIDE('9')) || (unit >= WIDE('a') && unit <= WIDE('f')) ||
                  (unit >= WIDE('A') && unit <= WIDE('F'));
    }
    return digits == text.size() && digits != 0 && digits % 2 == 0;
}

/// What the words say; false if they are refused.
bool ReadPlainly(std::vector<CString> words, Arguments& said) {
    while (!words.empty()) {
        const CString word = words.front();
        words.erase(words.begin());
        if (word == WIDE("--")) {
            said.words.insert(said.words.end(), words.begin(), words.end());
            break;
        }
        if (word.size() < 2 || word[0] != WIDE('-')) {
            said.words.push_back(word);
            continue;
        }
        const std::size_t equals = word.find(WIDE('='));
        const bool joined = equals != CString::npos;
        const auto option = KnownOptions().find(CString(word.substr(0, equals)));
        if (option == KnownOptions().end()) {
            return false;
        }
        const auto [bit, value] = option->second;
        said.options |= bit;
        if (value == nullptr ? joined : !joined && words.empty()) {
            return false;
        }
        if (value != nullptr && joined) {
            said.*value = CString(word.substr(equals + 1));
        } else if (value != nullptr) {
            said.*value = words.front();
            words.erase(words.begin());
        }
    }
    const auto given = [&said](unsigned bit) { return (said.options & bit) != 0; };
    return !(given(16) && said.out.empty()) && !(given(256) && said.changed.empty()) &&
           !(given(128) && !IsIdentifier(said.folder)) && !(given(1024) && !IsIdentifier(said.doomed));
}

bool Same(const Arguments& left, const Arguments& right) {
    return left.options == right.options && left.profile == right.profile && left.agent == right.agent &&
           left.out == right.out && left.folder == right.folder && left.changed == right.changed &&
           left.doomed == right.doomed && left.words == right.words;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::vector<CString> words = WordsOf(data, size);
    Arguments expected;
    const bool taken = ReadPlainly(words, expected);
    try {
        Require(Same(ParseArguments(words), expected) && taken);
    } catch (const Failure& failure) {
        Require(!taken && failure.Code() == ExitCode::kUsage && !failure.Message().empty());
    }
    return 0;
}
