#include "mapi/folder_selection_text.h"

CString ExtractEventFolderId(const CString& selection) {
    constexpr WideView kOpen = WIDE("<event>");
    constexpr WideView kClose = WIDE("</event>");
    constexpr WideView kOpenId = WIDE("<id>");
    constexpr WideView kCloseId = WIDE("</id>");

    CString text = selection;
    text.Trim();
    const std::size_t open = text.find(kOpen);
    const std::size_t close = text.find(kClose);
    if (open == CString::npos || close == CString::npos || close <= open + kOpen.size()) {
        return {};
    }
    const std::size_t start = open + kOpen.size();
    const CString inner = text.substr(start, close - start);
    const bool wrapped = text.starts_with(kOpenId) && text.ends_with(kCloseId);
    return wrapped ? CString(WideString(kOpenId) + inner + WideString(kCloseId)) : inner;
}
