#include "tests/faults/folder_list.h"

#include <algorithm>
#include <string_view>

namespace {

constexpr WideView kStore = L"CMAPIObject::GetAppFolderFromStore - ";
constexpr WideView kFolder = L"CMAPIObject::GetAppFolderFromFolder - ";
constexpr WideView kNothingFailed = L"(0X00000000)\r\n";

bool IsTag(const std::string& line, std::string_view tag) {
    const std::size_t start = line.find_first_not_of('\t');
    return start != std::string::npos && std::string_view(line).substr(start).starts_with(tag);
}

/// Takes the lines of a walk through all stores, folder by folder, with those of the whole list.
class FolderWalk {
  public:
    FolderWalk(const std::vector<std::string>& whole, const Outcome& outcome)
        : m_whole(whole), m_outcome(&outcome) {
        for (const LogLine& line : outcome.log) {
            const WideView text = line.text;
            if (line.level == 1 && (text.starts_with(kStore) || text.starts_with(kFolder))) {
                m_log.push_back(text);
            }
        }
    }
    std::vector<std::string> List() {
        while (m_next < m_whole.size()) {
            if (IsTag(m_whole[m_next], "<node")) {
                TakeStore();
            } else {
                Copy(true);
            }
        }
        EXPECT_EQ(m_line, m_log.size()) << "the walk went on";
        return m_list;
    }

  private:
    void Copy(bool isListed) {
        if (isListed) {
            m_list.push_back(m_whole[m_next]);
        }
        ++m_next;
    }
    [[nodiscard]] bool IsAt(WideView operation, WideView words) const {
        return m_line < m_log.size() && m_log[m_line].starts_with(operation) &&
               m_log[m_line].substr(operation.size()).starts_with(words);
    }
    bool Take(WideView operation, WideView words) {
        const bool isThere = IsAt(operation, words);
        m_line += isThere ? 1 : 0;
        return isThere;
    }
    /// The element with its name and its identifier.
    void CopyElement(bool isListed) {
        Copy(isListed);
        while (!IsTag(m_whole[m_next], "<node") && !IsTag(m_whole[m_next], "</node>")) {
            Copy(isListed);
        }
    }
    /// Stores come with the rows of their table.
    void TakeStore() {
        const bool isListed = Take(kStore, L"Begin");
        EXPECT_TRUE(isListed || MayBeHidden("HrQueryAllRows") || TellsOfFailure(m_outcome->log));
        CopyElement(isListed);
        const bool hasOpened = isListed && TakeCall(kStore);
        // No line tells whether the store has an upper folder.
        EXPECT_TRUE(!hasOpened || IsAt(kFolder, L"Begin") || MayBeHidden("HrGetOneProp") ||
                    MayBeHidden("OpenMsgStore"));
        TakeFolder(isListed && IsAt(kFolder, L"Begin"));
        EXPECT_TRUE(!isListed || Take(kStore, L"Finish(Succeeded)"));
        Copy(isListed);
    }
    /// What lies below an element, if it is walked through.
    void TakeFolder(bool isWalked) {
        EXPECT_TRUE(!isWalked || Take(kFolder, L"Begin"));
        bool hasRows = isWalked;
        while (hasRows && !IsAt(kFolder, L"Begin") && !IsAt(kFolder, L"Finish")) {
            hasRows = TakeCall(kFolder);
        }
        const bool hasSubFolders = IsTag(m_whole[m_next], "<node");
        const bool isHidden = hasRows && hasSubFolders && !IsAt(kFolder, L"Begin");
        EXPECT_TRUE(!isHidden || MayBeHidden("HrQueryAllRows") || MayBeHidden("OpenEntry") ||
                    MayBeHidden("GetHierarchyTable"));
        while (IsTag(m_whole[m_next], "<node")) {
            const bool isListed = hasRows && !isHidden;
            CopyElement(isListed);
            TakeFolder(isListed);
            Copy(isListed);
        }
        EXPECT_TRUE(!isWalked || Take(kFolder, L"Finish"));
    }
    /// Takes a line that tells the result of a call; true if the call did not fail.
    bool TakeCall(WideView operation) {
        if (m_line == m_log.size() || !m_log[m_line].starts_with(operation) ||
            m_log[m_line].find(L"(0X") == WideView::npos) {
            ADD_FAILURE() << "no call at line " << m_line;
            return false;
        }
        return m_log[m_line++].ends_with(kNothingFailed);
    }
    static bool TellsOfFailure(const LogLines& log) {
        return std::ranges::any_of(log, [](const LogLine& line) {
            return line.text.find(L"(0X") != CString::npos && !line.text.ends_with(kNothingFailed);
        });
    }
    /// True if a call of which the log is silent, or which it takes for one that succeeded, may be what
    /// failed.
    [[nodiscard]] bool MayBeHidden(const char* call) const {
        return m_outcome->fileFailed || (m_outcome->storeFailed && m_outcome->forever) ||
               m_outcome->failedCall.find(call) != std::string::npos;
    }

    const std::vector<std::string>& m_whole;
    const Outcome* m_outcome;
    std::vector<WideView> m_log;
    std::vector<std::string> m_list;
    std::size_t m_next = 0;
    std::size_t m_line = 0;
};

}  // namespace

std::vector<std::string> FolderListByLog(const std::vector<std::string>& whole, const Outcome& outcome) {
    return FolderWalk(whole, outcome).List();
}

void ExpectElementsOfWalkedFolders(const std::string& list, const LogLines& log) {
    std::ptrdiff_t elements = 0;
    for (std::size_t at = list.find("<node"); at != std::string::npos; at = list.find("<node", at + 1)) {
        ++elements;
    }
    EXPECT_GE(elements, std::ranges::count(log, CString(kFolder) + L"Begin\r\n", &LogLine::text));
}
