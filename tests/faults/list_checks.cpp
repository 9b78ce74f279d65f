#include "tests/faults/list_checks.h"

#include <algorithm>
#include <sstream>

#include "support/settings.h"
#include "support/xml_parser.h"
#include "tests/faults/folder_list.h"
#include "tests/unit/text_printer.h"

namespace {

constexpr const char* kOldList = "<an-older-list/>";

std::vector<std::string> LinesOf(const std::string& text) {
    std::istringstream stream(text);
    std::vector<std::string> lines;
    for (std::string line; std::getline(stream, line);) {
        lines.push_back(line);
    }
    return lines;
}

/// True if a list is a whole one without some of its elements, which are lines each.
bool IsShortened(const std::string& list, const std::string& whole) {
    const std::vector<std::string> left = LinesOf(list);
    const std::vector<std::string> all = LinesOf(whole);
    auto next = all.begin();
    return std::ranges::all_of(left, [&](const std::string& line) {
        next = std::find(next, all.end(), line);
        if (next == all.end()) {
            return false;
        }
        ++next;
        return true;
    });
}

bool HasRoot(const std::string& list, const wchar_t* root) {
    CXMLParser parser;
    EXPECT_TRUE(parser.InitDocument());
    // The texts of the test are of ASCII alone.
    parser.LoadText(std::wstring(list.begin(), list.end()));
    return parser.SelectSingleNode(root) != nullptr;
}

/// True if the log tells of a call that failed, in front of its line end.
bool TellsOfFailedCall(const LogLines& log) {
    return std::ranges::any_of(log, [](const LogLine& line) {
        const std::size_t result = line.text.find(L"(0X");
        return result != CString::npos && !line.text.substr(result).starts_with(L"(0X00000000)");
    });
}

void ExpectWhole(StoreState& state, const std::string& list, const std::vector<const char*>& names) {
    if (state.wholeList.empty()) {
        state.wholeList = list;
        for (const char* const name : names) {
            EXPECT_NE(list.find(name), std::string::npos) << name << " in " << list;
        }
    }
    EXPECT_EQ(list, state.wholeList);
}

/// What is particular to one list.
struct ListRules {
    CString file;
    const wchar_t* root;
    /// The call that has the rows of the list, as the log tells of it when it succeeds.
    const wchar_t* rowsHad;
    /// Without the rows a run succeeds, and either leaves the old list or writes one without elements.
    bool isWrittenWithoutRows;
    std::vector<const char*> names;
    /// Looks at what was written behind a failure.
    void (*expect)(const std::string& list, const std::string& whole, const Outcome& outcome) = nullptr;
};

/// Behind a failure of the document service or of memory an element of a folder has what it came to.
void ExpectFolders(const std::string& list, const std::string& whole, const Outcome& outcome) {
    if (!outcome.documentsFailed) {
        EXPECT_EQ(LinesOf(list), FolderListByLog(LinesOf(whole), outcome));
    } else if (!outcome.serviceLied) {
        ExpectElementsOfWalkedFolders(list, outcome.log);
    }
}

bool TellsOf(const LogLines& log, const wchar_t* call) {
    return std::ranges::any_of(log,
                               [&](const LogLine& line) { return line.text.find(call) != CString::npos; });
}

void ExpectWritten(const StoreState& state, const std::string& list, const ListRules& rules,
                   const Outcome& outcome) {
    // Without an answer to a call of the service there may be no root.
    EXPECT_TRUE(outcome.serviceLied || HasRoot(list, rules.root)) << list;
    // The document service fails without a word for a single element or attribute, and where memory fails in
    // a folder its element stays as far as it came.
    if (!outcome.documentsFailed) {
        EXPECT_TRUE(IsShortened(list, state.wholeList)) << list;
    }
    // What could not be had is lacking.
    if (!outcome.documentsFailed && !outcome.storeFailed && TellsOf(outcome.log, rules.rowsHad) &&
        !TellsOfFailedCall(outcome.log)) {
        EXPECT_EQ(list, state.wholeList);
    }
    if (rules.expect != nullptr) {
        rules.expect(list, state.wholeList, outcome);
    }
}

void ExpectList(StoreState& state, const Outcome& outcome, const ListRules& rules) {
    EXPECT_TRUE(outcome.result == 0 || outcome.result == 1);
    EXPECT_TRUE(state.IsAsInTheBeginning());
    const std::string list = BytesOf(rules.file.c_str());
    if (outcome.complete) {
        ExpectWhole(state, list, rules.names);
    } else if (outcome.result != 0) {
        EXPECT_EQ(list, kOldList);
    } else if (list == kOldList) {
        const bool hadRows = !outcome.storeLied && TellsOf(outcome.log, rules.rowsHad);
        // Or the service said that it had saved.
        EXPECT_TRUE(outcome.serviceLied || (!rules.isWrittenWithoutRows && !hadRows));
    } else {
        ExpectWritten(state, list, rules, outcome);
    }
}

}  // namespace

void WriteOldList(const CString& file) {
    WriteBytes(file.c_str(), kOldList);
}

void ExpectProfileList(StoreState& state, const Outcome& outcome) {
    ExpectList(state, outcome,
               {g_strProfileXml,
                L"/profiles",
                L"CMAPIObject::GetAppProfile - pfnHrQueryAllRows(0X00000000)",
                true,
                {"<pname>Work</pname>"}});
}

void ExpectFolderList(StoreState& state, const Outcome& outcome) {
    ExpectList(state, outcome,
               {g_strOutlookXml,
                L"/folders",
                L"CMAPIObject::GetAppFolder - m_lpMAPISession->GetMsgStoresTable(0X00000000)",
                false,
                {"<fname>Mail</fname>", "<fname>Contacts</fname>", "<fname>Calendar</fname>",
                 "<fname>Below</fname>", "<fname>Inbox</fname>"},
                ExpectFolders});
}
