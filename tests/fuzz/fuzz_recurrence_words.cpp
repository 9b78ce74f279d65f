// What a document of any content says of a series, in words: the words are put together a second time, from
// tables by number, and exceptions are counted by a search from the front.

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "desktop/recurrence_words.h"
#include "support/number_text.h"
#include "tests/fuzz/fuzz_input.h"

namespace {

/// Cuts a number of two bytes with its sign off the front.
std::int32_t TakeNumber(CString& text) {
    if (text.empty()) {
        return 0;
    }
    const auto number = static_cast<std::int16_t>(text.front());
    text.erase(0, 1);
    return number;
}

/// Cuts off what stands in front of the first line feed.
CString TakeLine(CString& text) {
    const std::size_t end = std::min(text.find(WIDE('\n')), text.size());
    CString line(text.substr(0, end));
    text.erase(0, end + 1);
    return line;
}

RecurrenceFields FieldsOf(CString text) {
    RecurrenceFields fields;
    fields.isOtherCalendar = TakeNumber(text) == 1;
    for (std::int32_t* const number :
         {&fields.instance, &fields.weekMask, &fields.weekDay, &fields.day, &fields.month}) {
        *number = TakeNumber(text);
    }
    for (CString* const part : {&fields.type, &fields.interval, &fields.end}) {
        *part = TakeLine(text);
    }
    fields.exceptions = text;
    return fields;
}

std::string Days(std::int32_t mask) {
    const char* const names[] = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
    std::string days;
    for (std::int32_t day = 0, bit = 1; day < 7; ++day, bit *= 2) {
        if ((mask & bit) == bit) {
            days += std::string(days.empty() ? "" : ", ") + names[day];
        }
    }
    return days;
}

std::string Every(std::int32_t interval, const std::string& unit) {
    return interval == 1 ? "every " + unit : "every " + std::to_string(interval) + " " + unit + "s";
}

std::string Place(const RecurrenceFields& fields) {
    if (fields.instance == 0) {
        return " on day " + std::to_string(fields.day);
    }
    const std::vector<std::string> nth = {"last", "first", "second", "third", "fourth"};
    const bool counted = fields.weekDay > 0 && fields.weekDay < 5;
    const std::string& which = nth[counted ? static_cast<std::size_t>(fields.weekDay) : 0];
    std::string days = Days(fields.weekMask);
    if (fields.weekMask == 127) {
        days = "day";
    } else if (fields.weekMask == 62) {
        days = "weekday";
    } else if (fields.weekMask == 65) {
        days = "weekend day";
    }
    return " on the " + which + " " + days;
}

std::string Kind(const RecurrenceFields& fields) {
    const std::vector<std::string> months = {"a month", "January",  "February", "March",  "April",
                                             "May",     "June",     "July",     "August", "September",
                                             "October", "November", "December"};
    const std::int32_t interval = ReadNumber(fields.interval);
    const std::int32_t type = ReadNumber(fields.type);
    if (type == 1) {
        return Every(interval, "day");
    }
    if (type == 2) {
        if (interval == 0 && fields.weekMask == 62) {
            return "every weekday";
        }
        const std::string days = Days(fields.weekMask);
        return Every(interval == 0 ? 1 : interval, "week") + (days.empty() ? "" : " on " + days);
    }
    if (type == 3) {
        return Every(interval, "month") + Place(fields);
    }
    if (type == 4) {
        const bool known = fields.month > 0 && fields.month < 13;
        return Every(interval, "year") + Place(fields) + " of " +
               months[known ? static_cast<std::size_t>(fields.month) : 0];
    }
    return "a series of an unknown kind";
}

/// How often the mark of an exception stands in a text. It cannot lie in itself.
std::size_t CountOf(const CString& text, const CString& mark) {
    std::size_t count = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        count += text.compare(i, mark.size(), mark) == 0 ? 1U : 0U;
    }
    return count;
}

std::string Exceptions(const CString& text) {
    const std::size_t deleted = CountOf(text, WIDE("<deletion "));
    const std::size_t changed = CountOf(text, WIDE("<modification "));
    std::string words = deleted == 0 ? "" : std::to_string(deleted) + " deleted";
    if (changed != 0) {
        words += (deleted == 0 ? "" : ", ") + std::to_string(changed) + " changed";
    }
    return words;
}

/// What words a series begins with: the first that is true.
std::string Beginning(const RecurrenceFields& fields) {
    const std::pair<bool, std::string> cases[] = {
        {fields.type.empty(), ""},
        {fields.isOtherCalendar, "a series of another calendar"},
        {fields.interval.empty(), "a series"},
        {true, Kind(fields)},
    };
    return std::ranges::find(cases, true, &std::pair<bool, std::string>::first)->second;
}

CString Expected(const RecurrenceFields& fields) {
    const bool isTold = !fields.type.empty() && !fields.isOtherCalendar && !fields.interval.empty();
    const std::string exceptions = Exceptions(fields.exceptions);
    CString words = TextOfAscii(Beginning(fields));
    words += isTold && !fields.end.empty() ? WIDE(" until ") + fields.end : CString();
    words += TextOfAscii(isTold && !exceptions.empty() ? ", " + exceptions : "");
    return words;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const RecurrenceFields fields = FieldsOf(TextOf(data, size));
    Require(RecurrenceWords(fields) == Expected(fields));
    Require(ExceptionWords(fields.exceptions) == TextOfAscii(Exceptions(fields.exceptions)));
    return 0;
}
