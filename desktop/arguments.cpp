#include "desktop/arguments.h"

#include <algorithm>
#include <iterator>

#include "desktop/failure.h"

namespace {

struct OptionRule {
    WideView name;
    Option option;
    /// Where the value goes; null for an option without one.
    CString Arguments::*value;
};

constexpr OptionRule kRules[] = {
    {WIDE("--help"), kOptionHelp, nullptr},
    {WIDE("-h"), kOptionHelp, nullptr},
    {WIDE("--profile"), kOptionProfile, &Arguments::profile},
    {WIDE("--agent"), kOptionAgent, &Arguments::agent},
    {WIDE("--quiet"), kOptionQuiet, nullptr},
    {WIDE("-q"), kOptionQuiet, nullptr},
    {WIDE("--out"), kOptionOut, &Arguments::out},
    {WIDE("--xml"), kOptionXml, nullptr},
    {WIDE("--tabs"), kOptionTabs, nullptr},
    {WIDE("--folder"), kOptionFolder, &Arguments::folder},
    {WIDE("--changed"), kOptionChanged, &Arguments::changed},
    {WIDE("--accept-deletions"), kOptionAcceptDeletions, nullptr},
    {WIDE("--delete"), kOptionDelete, &Arguments::doomed},
    {WIDE("--new"), kOptionNew, nullptr},
};

[[noreturn]] void ThrowUsage(const CString& message) {
    throw Failure(ExitCode::kUsage, message);
}

const OptionRule& FindRule(WideView name) {
    const auto* rule = std::find_if(std::begin(kRules), std::end(kRules),
                                    [name](const OptionRule& candidate) { return candidate.name == name; });
    if (rule == std::end(kRules)) {
        ThrowUsage(CString(WIDE("there is no option ")) + CString(name));
    }
    return *rule;
}

/// True for whole bytes in hexadecimal. Anything else the agent would decode to something else all the same,
/// and nothing at all stands for the root folder of a store.
bool IsIdentifier(WideView text) {
    return !text.empty() && text.size() % 2 == 0 &&
           text.find_first_not_of(WIDE("0123456789ABCDEFabcdef")) == WideView::npos;
}

/// Takes in the option at `position`, and its value if that is the next argument. Returns the position of the
/// last argument taken.
std::size_t TakeOption(const std::vector<CString>& arguments, std::size_t position, Arguments& result) {
    const WideView argument = arguments[position].View();
    const std::size_t equals = argument.find(WIDE('='));
    const OptionRule& rule = FindRule(argument.substr(0, equals));
    result.options |= rule.option;
    const bool joined = equals != WideView::npos;
    if (rule.value == nullptr) {
        if (joined) {
            ThrowUsage(CString(rule.name) + WIDE(" takes no value"));
        }
        return position;
    }
    if (!joined && position + 1 == arguments.size()) {
        ThrowUsage(CString(rule.name) + WIDE(" needs a value"));
    }
    result.*rule.value = joined ? CString(argument.substr(equals + 1)) : arguments[position + 1];
    return joined ? position : position + 1;
}

}  // namespace

Arguments ParseArguments(const std::vector<CString>& arguments) {
    Arguments result;
    bool onlyWords = false;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const CString& argument = arguments[i];
        if (onlyWords || argument.size() < 2 || argument.front() != WIDE('-')) {
            result.words.push_back(argument);
        } else if (argument == WIDE("--")) {
            onlyWords = true;
        } else {
            i = TakeOption(arguments, i, result);
        }
    }
    if (result.Has(kOptionOut) && result.out.empty()) {
        ThrowUsage(WIDE("--out needs the name of a folder"));
    }
    if (result.Has(kOptionChanged) && result.changed.empty()) {
        ThrowUsage(WIDE("--changed needs the name of a map file"));
    }
    if (result.Has(kOptionFolder) && !IsIdentifier(result.folder.View())) {
        ThrowUsage(WIDE("--folder needs an identifier as \"zebdesk folders\" shows it"));
    }
    if (result.Has(kOptionDelete) && !IsIdentifier(result.doomed.View())) {
        ThrowUsage(WIDE("--delete needs an identifier as the PIMID of a document shows it"));
    }
    return result;
}

CString OptionName(Option option) {
    const auto* rule =
        std::find_if(std::begin(kRules), std::end(kRules),
                     [option](const OptionRule& candidate) { return candidate.option == option; });
    return {rule->name};
}
