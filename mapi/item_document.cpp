#include "mapi/item_document.h"

#include <mapitags.h>

#include "mapi/hex_text.h"
#include "mapi/property_tags.h"
#include "support/log.h"
#include "timezone/conversions.h"

namespace {

constexpr int kElementDepth = 1;

}  // namespace

void BeginItemDocument(CXMLParser& document, const wchar_t* root) {
    if (!document.InitDocument()) {
        Log(kLogFailure, L"Xml to calnedaex - failed\r\n");
        document.ReleaseDocument();
        throw NoDocument();
    }
    document.CreateHeader();
    document.CreateRootElement(root);
}

void AppendElement(CXMLParser& document, const wchar_t* name, const CString& text) {
    document.CreateChildElement(name, text.c_str(), nullptr, true, kElementDepth);
}

CString DateAndTimeText(const COleDateTime& local) {
    return local.Format(L"%m/%d/%Y %H:%M:%S");
}

CString DateAndTimeText(const FILETIME& utc) {
    COleDateTime local;
    FileTimeToLocalDateTime(utc, local);
    return DateAndTimeText(local);
}

bool TakeCommonRowValue(CXMLParser& document, CString& id, const SPropValue& value) {
    switch (value.ulPropTag) {
        case PR_ENTRYID:
        case PR_LONGTERM_ENTRYID_FROM_TABLE:
            id = BinaryToHexString(value.Value.bin.lpb, value.Value.bin.cb);
            return true;
        case PR_CREATION_TIME:
            AppendElement(document, L"CreateTime", DateAndTimeText(value.Value.ft));
            return true;
        case PR_LAST_MODIFICATION_TIME:
            AppendElement(document, L"lastModifiedTime", DateAndTimeText(value.Value.ft));
            return true;
        default:
            return false;
    }
}

void SendItem(const CString& xml, void (*sendBack)(const CString& xml), const wchar_t* failureLine) {
    try {
        sendBack(xml);
    } catch (...) {
        Log(kLogFailure, failureLine);
    }
}

bool ReadElement(CXMLParser& document, const wchar_t* root, const wchar_t* name, CString& text) {
    CString path(L"/");
    path.append(root).append(L"/").append(name);
    const ComPtr<IXMLDOMNode> node = document.SelectSingleNode(path.c_str());
    if (!node) {
        return false;
    }
    text = document.GetNodeText(node.Get());
    return true;
}
