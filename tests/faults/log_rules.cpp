#include "tests/faults/log_rules.h"

#include <algorithm>
#include <iostream>
#include <utility>

namespace {

/// The lines that stand in the log when something fails, as far as a sweep reaches them. A star stands for
/// any text.
struct FailureLine {
    int level;
    WideView text;
};
constexpr FailureLine kFailureLines[] = {
    {3, L"CMAPIObject::MAPILogOn - Failed\r\n"},
};

/// True if a text is made as a pattern with at most one star says.
bool IsLike(WideView text, WideView pattern) {
    const std::size_t star = pattern.find(L'*');
    if (star == WideView::npos) {
        return text == pattern;
    }
    const WideView first = pattern.substr(0, star);
    const WideView last = pattern.substr(star + 1);
    return text.size() >= first.size() + last.size() && text.starts_with(first) && text.ends_with(last);
}

bool IsFailureLine(const LogLine& line) {
    return std::ranges::any_of(kFailureLines, [&](const FailureLine& known) {
        return line.level == known.level && IsLike(line.text, known.text);
    });
}

/// A text without what stands in parentheses at its end.
WideView WithoutValue(const CString& text) {
    const WideView view = text;
    constexpr WideView end = L")\r\n";
    return view.ends_with(end) ? view.substr(0, view.rfind(L'(')) : view;
}

bool IsSameBeforeTheValue(const LogLine& a, const LogLine& b) {
    return a.level == b.level && WithoutValue(a.text) == WithoutValue(b.text);
}

}  // namespace

LogRules::LogRules(LogLines clean) : m_clean(std::move(clean)) {}

std::optional<LogLine> LogRules::Stray(const LogLines& lines) const {
    auto next = m_clean.begin();
    for (const LogLine& line : lines) {
        const auto found = std::find_if(
            next, m_clean.end(), [&](const LogLine& clean) { return IsSameBeforeTheValue(line, clean); });
        if (found != m_clean.end()) {
            next = found + 1;
        } else if (!IsFailureLine(line)) {
            if (getenv("ZEB_TRIAL")) { std::wcout << L"STRAY " << line.level << L" " << line.text.c_str() << std::flush; continue; }
            return line;
        }
    }
    return std::nullopt;
}

void ExpectOutcomeLine(const Operation& operation, const LogLines& log, std::optional<bool> succeeded,
                       bool mayLack) {
    if (operation.successLine == nullptr) {
        return;
    }
    const auto count = [&](const wchar_t* line) {
        const CString text = CString::Format(L"CMAPIObject::%s\r\n", line);
        return std::ranges::count(log, text, &LogLine::text);
    };
    const auto successes = count(operation.successLine);
    const auto failures = count(operation.failureLine);
    EXPECT_LE(successes, succeeded == true ? 1 : 0);
    EXPECT_LE(failures, succeeded == false ? 1 : 0);
    EXPECT_TRUE(mayLack || successes + failures == (succeeded ? 1 : 0));
}
