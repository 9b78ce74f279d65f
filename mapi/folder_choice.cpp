// The choice of the folders that all later reads, writes and counts work on.

#include "mapi/folder_selection_text.h"
#include "mapi/folder_types.h"
#include "mapi/hex_text.h"
#include "mapi/mapi_object.h"
#include "mapi/operation_log.h"
#include "mapi/store_entries.h"
#include "mapi/store_table.h"
#include "support/errors.h"
#include "support/log.h"

namespace NAMESPACE_MAPI {

namespace {

constexpr WideView kOpenId = L"<id>";
constexpr WideView kCloseId = L"</id>";

/// What stands between the tags of a selection; empty without them and for the selection of a default folder.
CString IdOfSelection(const CString& selection) {
    if (!selection.starts_with(kOpenId) || !selection.ends_with(kCloseId) ||
        selection.size() < kOpenId.size() + kCloseId.size()) {
        return {};
    }
    return selection.substr(kOpenId.size(), selection.size() - kOpenId.size() - kCloseId.size());
}

}  // namespace

int CMAPIObject::SetContactFolder(const wchar_t* selection) {
    LogLine(kLogTrace, L"SetContactFolder", L"Begin");
    int result = 1;
    try {
        if (selection == nullptr) {
            Log(kLogFailure, L"CMAPIObject::SetContactFolder : NULL Parameter\r\n");
            AfxThrowUserException();
        }
        ComPtr<IMAPIFolder> folder =
            GetOutlookFolder(CString(selection), kFolderTypes[kContactFolderType].defaultFolderTag);
        if (!folder) {
            LogLine(kLogFailure, L"SetContactFolder", L"Failed to get contact folder");
            AfxThrowUserException();
        }
        m_lpContactFolder = std::move(folder);
        result = 0;
    } catch (...) {
        result = 1;
    }
    Log(kLogTrace, L"CMAPIObject::SetContactFolder - Finish(%d)\r\n", result);
    return result;
}

int CMAPIObject::SetCalendarFolder(const wchar_t* selection) {
    // The operation begins with this word.
    LogLine(kLogTrace, L"SetCalendarFolder", L"Finish");
    int result = 1;
    try {
        if (selection == nullptr) {
            LogLine(kLogFailure, L"SetCalendarFolder", L"NULL Parameter");
            AfxThrowUserException();
        }
        ComPtr<IMAPIFolder> folder = GetOutlookFolder(ExtractEventFolderId(CString(selection)),
                                                      kFolderTypes[kCalendarFolderType].defaultFolderTag);
        if (!folder) {
            LogLine(kLogFailure, L"SetCalendarFolder", L"Failed to get event folder");
            AfxThrowUserException();
        }
        m_lpEventFolder = std::move(folder);
        result = 0;
    } catch (...) {
        result = 1;
    }
    Log(kLogTrace, L"CMAPIObject::SetCalendarFolder - Finish(%d)\r\n", result);
    return result;
}

ComPtr<IMAPIFolder> CMAPIObject::GetOutlookFolder(const CString& selection, ULONG defaultTag) {
    LogLine(kLogTrace, L"GetOutlookFolder", L"Begin");
    CString text = selection;
    text.Trim();
    ComPtr<IMAPIFolder> folder;
    if (text.empty() || text == L"<id></id>") {
        const ComPtr<IMsgStore> store = m_lpMsgStore;
        folder = GetDefaultFolder(store.Get(), defaultTag);
    } else if (const CString id = IdOfSelection(text); !id.empty()) {
        folder = GetOutlookFolderFromEntryID(id);
    }
    LogLine(kLogTrace, L"GetOutlookFolder", L"Finish");
    return folder;
}

ComPtr<IMAPIFolder> CMAPIObject::GetOutlookFolderFromEntryID(const CString& hexId) {
    LogLine(kLogTrace, L"GetOutlookFolderFromEntryID", L"Begin");
    ComPtr<IMAPIFolder> folder;
    try {
        if (hexId.empty()) {
            LogLine(kLogFailure, L"GetOutlookFolderFromEntryID", L"NULL Parameter");
            AfxThrowUserException();
        }
        LogLine(kLogTrace, L"GetOutlookFolderFromEntryID", hexId.c_str());
        folder = SearchStores(hexId);
    } catch (...) {
        // What was found so far is the result; the lines written on the way tell the reason.
    }
    LogLine(kLogTrace, L"GetOutlookFolderFromEntryID", L"Finish");
    return folder;
}

ComPtr<IMAPIFolder> CMAPIObject::SearchStores(const CString& hexId) const {
    const auto id = HexStringToBinary(hexId);
    const ComPtr<IMAPISession> session = m_lpMAPISession;
    if (!session) {
        AfxThrowUserException();
    }
    const TableRows stores = QueryStores(session.Get(), nullptr, L"GetOutlookFolderFromEntryID");
    for (ULONG i = 0; i < stores.Count(); ++i) {
        if (stores.Row(i).lpProps == nullptr) {
            continue;
        }
        const ComPtr<IMsgStore> store =
            OpenStore(session.Get(), stores.Row(i), L"GetOutlookFolderFromEntryID");
        ComPtr<IMAPIFolder> folder =
            OpenStoreFolder(store.Get(), static_cast<ULONG>(id.size()),
                            reinterpret_cast<const ENTRYID*>(id.empty() ? nullptr : id.data()));
        if (folder) {
            return folder;
        }
    }
    return nullptr;
}

}  // namespace NAMESPACE_MAPI
