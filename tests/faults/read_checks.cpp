#include "tests/faults/read_checks.h"

#include <algorithm>
#include <set>

#include "mapi/change_flags.h"
#include "support/xml_parser.h"
#include "tests/faults/preparations.h"
#include "tests/unit/text_printer.h"

namespace {

/// The words of one kind of item in the log and in its documents.
struct ReadKind {
    const wchar_t* root;
    const wchar_t* count;
    const wchar_t* walk;
    const wchar_t* changes;
    const wchar_t* sendFailed;
};
constexpr ReadKind kContacts{L"Contact", L"GetContactCountFromFolder", L"ReadContactFromFolder",
                             L"ReadContactFromLog", L"MAPISendBackOneContact Excetipion"};
constexpr ReadKind kCalendars{L"Calendar", L"GetCalendarEventCountFromFolder", L"ReadCalendarEventFromFolder",
                              L"ReadCalendarEventFromLog", L"MAPISendBackOneCalenda Excetipion"};

/// What the log says of a walk through the top folder and the one below it.
struct Walk {
    int found = 0;  ///< items of the folders whose contents were had
    bool hasSubFolders = false;
};

/// A walk as its lines tell it: each folder is opened, its contents are had, then its sub-folders.
Walk WalkOf(const LogLines& log, const wchar_t* operation) {
    constexpr int kItemsOf[] = {StoreState::kItemsOnTop, StoreState::kItems - StoreState::kItemsOnTop};
    const CString start = CString::Format(L"CMAPIObject::%s - ", operation);
    Walk walk;
    int folder = -1;
    bool isAtContents = false;
    bool hasContents = false;
    for (const LogLine& line : log) {
        if (!line.text.starts_with(start)) {
            continue;
        }
        if (line.text.find(L"->OpenEntry(") != CString::npos) {
            ++folder;
        } else if (line.text.find(L"->GetContentsTable(") != CString::npos) {
            // The line of its opening may be lacking.
            folder = std::max(folder, hasContents ? 1 : 0);
            isAtContents = true;
        } else if (line.text.find(L"->GetHierarchyTable(") != CString::npos) {
            isAtContents = false;
        } else if (line.text.find(L"pfnHrQueryAllRows(0X00000000)") != CString::npos) {
            if (isAtContents && (folder == 0 || folder == 1)) {
                walk.found += kItemsOf[folder];
                hasContents = true;
            }
            walk.hasSubFolders |= !isAtContents && folder == 0;
            isAtContents = false;
        }
    }
    return walk;
}

/// A count is silent about a folder that cannot be had. A store that lies hides rows, and where memory failed
/// lines may be lacking.
void ExpectFound(int count, const wchar_t* operation, const Outcome& outcome) {
    const int found = WalkOf(outcome.log, operation).found;
    EXPECT_LE(count, outcome.memoryFailed ? StoreState::kItems : found);
    if (!outcome.storeLied) {
        EXPECT_GE(count, found);
    }
    if (outcome.complete) {
        EXPECT_EQ(count, StoreState::kItems);
    }
}

std::size_t LinesWith(const LogLines& log, const CString& start) {
    return static_cast<std::size_t>(
        std::ranges::count_if(log, [&](const LogLine& line) { return line.text.starts_with(start); }));
}

/// The text of an element below the root, empty if there is none.
CString TextIn(CXMLParser& document, const ReadKind& kind, const wchar_t* name) {
    const ComPtr<IXMLDOMNode> node =
        document.SelectSingleNode(CString::Format(L"/%s/%s", kind.root, name).c_str());
    return node ? document.GetNodeText(node.Get()) : CString();
}

/// Expects documents that can be parsed, each of an item of its own; all of them if nothing failed. For the
/// map one item is new, one changed and one deleted, which are as many as there are. Where memory or the
/// document service fails a document may lack elements, the root too. A deletion is one of the item that is
/// gone.
void ExpectDocuments(const std::vector<CString>& documents, const ReadKind& kind, const Outcome& outcome) {
    std::set<CString> ids;
    for (const CString& document : documents) {
        CXMLParser parser;
        EXPECT_TRUE(parser.InitDocument());
        parser.LoadText(document.View());
        EXPECT_TRUE(outcome.documentsFailed ||
                    parser.SelectSingleNode(CString::Format(L"/%s", kind.root).c_str()))
            << testing::PrintToString(document);
        const CString id = TextIn(parser, kind, L"PIMID");
        // What arrives with an identifier arrives once.
        if (!id.empty()) {
            EXPECT_TRUE(ids.insert(id).second) << testing::PrintToString(id);
        }
        if (TextIn(parser, kind, L"lFlag") == CString::FromNumber(kChangeDelete)) {
            EXPECT_TRUE(id == kGoneId || (outcome.documentsFailed && id.empty()))
                << testing::PrintToString(id);
        }
    }
    EXPECT_LE(documents.size(), kAllItems);
    if (outcome.complete) {
        EXPECT_EQ(ids.size(), kAllItems);
    }
}

/// Expects of a full read that says it succeeded one document for each item.
void ExpectAllSent(std::size_t documents, const ReadKind& kind, const Outcome& outcome) {
    ExpectFound(g_MAPIObject.m_nItemTotal, kind.count, outcome);
    if (outcome.result != 0) {
        return;
    }
    // Where nothing is counted nothing is looked for.
    if (g_MAPIObject.m_nItemTotal == 0) {
        EXPECT_EQ(documents, 0U);
        return;
    }
    // What the receiver does not take is noted, and the read goes on.
    const std::size_t found = documents + LinesWith(outcome.log, kind.sendFailed);
    // A folder whose sub-folders cannot be listed counts as one that has none. That they could not is not
    // seen where the store lies, and may be missing in the log where memory failed.
    const bool mayLackThem = outcome.storeLied || outcome.memoryFailed;
    if (WalkOf(outcome.log, kind.walk).hasSubFolders || (mayLackThem && found == kAllItems)) {
        EXPECT_TRUE(found == kAllItems || (outcome.storeLied && found == StoreState::kItemsOnTop)) << found;
    } else {
        EXPECT_EQ(found, StoreState::kItemsOnTop);
    }
}

/// Expects the old map, by which all changes are found again, or a whole new one, which is written in front
/// of the documents: each change was then taken up, and of those without a document the message did not open.
void ExpectNoneLost(const StoreState& state, const CString& map, std::size_t documents, const ReadKind& kind,
                    const Outcome& outcome) {
    EXPECT_TRUE(outcome.result == 0 || outcome.result == 1);
    EXPECT_TRUE(state.KeepsMessages());
    EXPECT_TRUE(state.MapIsWhole(map));
    if (outcome.result != 0 || state.MapIsOld(map)) {
        return;
    }
    const auto takenUp = [&](const wchar_t* change) {
        return LinesWith(outcome.log, CString::Format(L"CMAPIObject::%s - %s(", kind.changes, change));
    };
    if (!outcome.memoryFailed) {
        EXPECT_EQ(takenUp(L"New"), 1U);
        EXPECT_EQ(takenUp(L"Update"), 1U);
        EXPECT_EQ(takenUp(L"Delete"), 1U);
    }
    // A deletion opens nothing, and one failure keeps one message from opening.
    EXPECT_GE(documents + LinesWith(outcome.log, kind.sendFailed), outcome.forever ? 1U : kAllItems - 1);
}

void ExpectCount(StoreState& state, const Outcome& outcome, const ReadKind& kind) {
    ExpectFound(outcome.result, kind.count, outcome);
    EXPECT_TRUE(state.IsAsInTheBeginning());
}

void ExpectRead(StoreState& state, const Outcome& outcome, const ReadKind& kind,
                const std::vector<CString>& documents) {
    EXPECT_TRUE(outcome.result == 0 || outcome.result == 1);
    EXPECT_TRUE(state.IsAsInTheBeginning());
    ExpectDocuments(documents, kind, outcome);
    ExpectAllSent(documents.size(), kind, outcome);
}

}  // namespace

void ExpectContactCount(StoreState& state, const Outcome& outcome) {
    ExpectCount(state, outcome, kContacts);
}

void ExpectCalendarCount(StoreState& state, const Outcome& outcome) {
    ExpectCount(state, outcome, kCalendars);
}

void ExpectContactsRead(StoreState& state, const Outcome& outcome) {
    ExpectRead(state, outcome, kContacts, TakeSent());
}

void ExpectCalendarsRead(StoreState& state, const Outcome& outcome) {
    ExpectRead(state, outcome, kCalendars, TakeSentCalendars());
}

void ExpectContactChangesRead(StoreState& state, const Outcome& outcome) {
    const std::vector<CString> documents = TakeSent();
    ExpectDocuments(documents, kContacts, outcome);
    ExpectNoneLost(state, state.contactMap, documents.size(), kContacts, outcome);
}

void ExpectCalendarChangesRead(StoreState& state, const Outcome& outcome) {
    const std::vector<CString> documents = TakeSentCalendars();
    ExpectDocuments(documents, kCalendars, outcome);
    ExpectNoneLost(state, state.calendarMap, documents.size(), kCalendars, outcome);
}
