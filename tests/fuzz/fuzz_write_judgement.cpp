// What a folder's states and the outputs of writes prove: a second, plain reader finds the same items and
// times, and each judgement is one that the two states allow.

#include <algorithm>
#include <charconv>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "desktop/write_judgement.h"
#include "tests/fuzz/fuzz_input.h"

namespace {

using Items = std::map<std::string, MapSeconds>;

/// Cuts off what stands in front of the first of the units, and the unit.
std::string TakeUntil(std::string& text, char unit) {
    const std::size_t end = std::min(text.find(unit), text.size());
    std::string piece = text.substr(0, end);
    text.erase(0, end + 1);
    return piece;
}

/// The number at the front of a text, 0 without one or with one that 64 bits do not hold.
MapSeconds NumberOf(const std::string& text) {
    const bool negative = !text.empty() && text[0] == '-';
    constexpr unsigned __int128 kBound = static_cast<unsigned __int128>(1) << 63U;
    unsigned __int128 number = 0;
    for (std::size_t i = negative ? 1 : 0; i < text.size() && text[i] >= '0' && text[i] <= '9'; ++i) {
        number = std::min(number * 10 + static_cast<unsigned>(text[i] - '0'), kBound + 1);
    }
    if (number > kBound || (number == kBound && !negative)) {
        return 0;
    }
    const auto bits = static_cast<std::uint64_t>(number);
    return static_cast<MapSeconds>(negative ? 0 - bits : bits);
}

Items ReadPlainly(std::string map) {
    Items items;
    while (!map.empty()) {
        std::string line = TakeUntil(map, '\n');
        if (line.find('\t') == std::string::npos) {
            continue;
        }
        const std::string id = TakeUntil(line, '\t');
        TakeUntil(line, '\t');
        items[id] = NumberOf(line);
    }
    return items;
}

bool IsLeapYear(int year) {
    return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0);
}

/// The days from the first of January of the year 0 to the first of a month.
int DaysBefore(int year, int month) {
    constexpr int kDays[] = {0, 31, 59, 90, 120, 151, 181, 212, 243, 273, 304, 334};
    const int past = year - 1;
    const int leapDays = year == 0 ? 0 : past / 4 - past / 100 + past / 400 + 1;
    return year * 365 + leapDays + kDays[month - 1] + (month > 2 && IsLeapYear(year) ? 1 : 0);
}

int DaysOfMonth(int year, int month) {
    if (month == 2) {
        return IsLeapYear(year) ? 29 : 28;
    }
    return month == 4 || month == 6 || month == 9 || month == 11 ? 30 : 31;
}

/// The seconds of "12/31/2024 23:59:59"; none for any other text and for the start of the count.
std::optional<MapSeconds> PlainSeconds(const CString& text) {
    constexpr WideView pattern = WIDE("dd/dd/dddd dd:dd:dd");
    int numbers[6] = {};
    std::size_t number = 0;
    if (text.size() != pattern.size()) {
        return std::nullopt;
    }
    for (std::size_t i = 0; i < pattern.size(); ++i) {
        if (pattern[i] != WIDE('d')) {
            ++number;
        }
        const bool isDigit = text[i] >= WIDE('0') && text[i] <= WIDE('9');
        if (pattern[i] == WIDE('d') ? !isDigit : text[i] != pattern[i]) {
            return std::nullopt;
        }
        if (isDigit) {
            numbers[number] = numbers[number] * 10 + (text[i] - WIDE('0'));
        }
    }
    const auto [month, day, year, hour, minute, second] = numbers;
    if (month < 1 || month > 12 || day < 1 || day > DaysOfMonth(year, month)) {
        return std::nullopt;
    }
    const int days = DaysBefore(year, month) + day - (DaysBefore(1899, 12) + 30);
    const MapSeconds seconds = days * 86400LL + hour * 3600LL + minute * 60LL + second;
    return seconds == 0 ? std::nullopt : std::optional(seconds);
}

std::string Key(const CString& id) {
    std::string key;
    for (const wide unit : id) {
        key += static_cast<char>(unit >= WIDE('a') && unit <= WIDE('f') ? unit - 32 : unit);
    }
    return key;
}

std::optional<MapSeconds> TimeIn(const Items& items, const std::string& id) {
    const auto item = items.find(id);
    return item == items.end() ? std::nullopt : std::optional(item->second);
}

struct Case {
    Items before;
    Items after;
    std::vector<WriteFacts> writes;
};

WriteOutcome PlainChange(const WriteFacts& write, const Case& given) {
    const auto before = TimeIn(given.before, Key(write.id));
    const auto after = TimeIn(given.after, Key(write.id));
    const auto time = PlainSeconds(write.time);
    if (!after) {
        return WriteOutcome::kUnproven;
    }
    if (after == before) {
        return WriteOutcome::kRefused;
    }
    return time && *time != *after ? WriteOutcome::kUnproven : WriteOutcome::kDone;
}

WriteOutcome PlainDeletion(const WriteFacts& write, const Case& given) {
    if (given.after.contains(Key(write.id))) {
        return WriteOutcome::kRefused;
    }
    return given.before.contains(Key(write.id)) ? WriteOutcome::kDone : WriteOutcome::kUnproven;
}

/// Of the adds whose identifiers are not in the folder, as many of one time are done as items of that time
/// came that no write names; and none that gives back the identifier of an item that was there.
void RequireAdds(const Case& given, const std::vector<WriteOutcome>& outcomes) {
    std::set<std::string> named;
    for (const WriteFacts& write : given.writes) {
        named.insert(Key(write.id));
    }
    std::map<MapSeconds, std::size_t> came;
    for (const auto& [id, time] : given.after) {
        if (!given.before.contains(id) && !named.contains(id)) {
            ++came[time];
        }
    }
    for (std::size_t i = 0; i < outcomes.size(); ++i) {
        const WriteFacts& write = given.writes[i];
        if (write.kind != WriteKind::kAdd) {
            continue;
        }
        const std::string id = Key(write.id);
        const auto time = PlainSeconds(write.time);
        const bool isOwn = given.after.contains(id);
        const bool wasThere = given.before.contains(id);
        const bool claims = !wasThere && !isOwn && time && came[*time] != 0;
        Require((outcomes[i] == WriteOutcome::kDone) == (!wasThere && (isOwn || claims)));
        if (claims) {
            --came[*time];
        }
        const bool left =
            std::any_of(came.begin(), came.end(), [](const auto& one) { return one.second != 0; });
        if (outcomes[i] != WriteOutcome::kDone) {
            const bool unproven = !wasThere && id.empty() && left;
            Require(outcomes[i] == (unproven ? WriteOutcome::kUnproven : WriteOutcome::kRefused));
        }
    }
}

void RequireJudgements(const Case& given, const std::vector<WriteOutcome>& outcomes) {
    Require(outcomes.size() == given.writes.size());
    for (std::size_t i = 0; i < outcomes.size(); ++i) {
        const WriteFacts& write = given.writes[i];
        if (write.kind == WriteKind::kNothing) {
            Require(outcomes[i] == WriteOutcome::kRefused);
        } else if (write.kind == WriteKind::kChange) {
            Require(outcomes[i] == PlainChange(write, given));
        } else if (write.kind == WriteKind::kDelete) {
            Require(outcomes[i] == PlainDeletion(write, given));
        }
    }
    RequireAdds(given, outcomes);
}

/// A line: the flag as a digit, the identifier, a tab, the time.
WriteFacts WriteOf(std::string line) {
    WriteFacts write;
    const int flag = line.empty() ? 0 : (static_cast<std::uint8_t>(line[0]) - '0') * 4;
    const bool adds = (flag & 8) != 0;
    const bool changes = (flag & 4) != 0;
    const bool deletes = (flag & 32) != 0;
    write.kind = WriteKindOf(flag);
    Require(write.kind == (adds      ? WriteKind::kAdd
                           : changes ? WriteKind::kChange
                           : deletes ? WriteKind::kDelete
                                     : WriteKind::kNothing));
    line.erase(0, 1);
    const std::string id = TakeUntil(line, '\t');
    for (const char unit : id) {
        // An identifier is hexadecimal.
        write.id += static_cast<wide>(unit & 0x7F);
    }
    for (const char unit : line) {
        write.time += static_cast<wide>(static_cast<std::uint8_t>(unit));
    }
    return write;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    // Bytes of zero part the two states and the writes.
    std::string rest(reinterpret_cast<const char*>(data), size);
    const std::string before = TakeUntil(rest, '\0');
    const std::string after = TakeUntil(rest, '\0');
    Case given{ReadPlainly(before), ReadPlainly(after), {}};
    const FolderState first(before);
    const FolderState second(after);
    Require(Items(first.Items().begin(), first.Items().end()) == given.before);
    Require(Items(second.Items().begin(), second.Items().end()) == given.after);
    while (!rest.empty()) {
        given.writes.push_back(WriteOf(TakeUntil(rest, '\n')));
        Require(SecondsOfTimeText(given.writes.back().time) == PlainSeconds(given.writes.back().time));
    }
    RequireJudgements(given, JudgeWrites(given.writes, &first, &second));
    for (const WriteOutcome outcome : JudgeWrites(given.writes, nullptr, &second)) {
        Require(outcome != WriteOutcome::kDone);
    }
    return 0;
}
