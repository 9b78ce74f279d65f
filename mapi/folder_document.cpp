// The folder document: the folder trees of all stores of the session.

#include <mapitags.h>

#include "mapi/document_output.h"
#include "mapi/folder_tables.h"
#include "mapi/folder_types.h"
#include "mapi/hex_text.h"
#include "mapi/mapi_object.h"
#include "mapi/operation_log.h"
#include "mapi/store_table.h"
#include "support/errors.h"
#include "support/log.h"
#include "support/settings.h"

namespace NAMESPACE_MAPI {

namespace {

constexpr int kStoreDepth = 1;

ComPtr<IXMLDOMElement> AppendNode(CXMLParser& document, IXMLDOMNode* parent, int depth) {
    return document.CreateChildElement(L"node", L"", parent, true, depth);
}

void SetClass(CXMLParser& document, IXMLDOMNode* node, const CString& containerClass) {
    document.SetAttribute(L"class", containerClass.c_str(), node);
    document.SetAttribute(L"type", CString::FromNumber(FolderClassToType(containerClass)).c_str(), node);
}

void AppendNameAndId(CXMLParser& document, IXMLDOMNode* node, int depth, const CString& name,
                     const CString& id) {
    document.CreateChildElement(L"fname", name.c_str(), node, true, depth);
    document.CreateChildElement(L"id", id.c_str(), node, true, depth);
}

CString HexId(const SBinary& id) {
    return BinaryToHexString(id.lpb, id.cb);
}

/// The class of a folder in a hierarchy row; a folder without one counts as a mail folder.
CString ContainerClass(const SRow& row) {
    const SPropValue* const error =
        ValueOfColumn(row, kSubFolderClass, PROP_TAG(PT_ERROR, PROP_ID(PR_CONTAINER_CLASS_W)));
    if (error != nullptr && error->Value.err == MAPI_E_NOT_FOUND) {
        return {L"IPF.Note"};
    }
    return TextOfColumn(row, kSubFolderClass, PR_CONTAINER_CLASS_W);
}

}  // namespace

int CMAPIObject::GetAppFolder(wchar_t* lpszFolders) {
    Log(kLogTrace, L"CMAPIObject::GetAppFolder : Begin\r\n");
    CXMLParser document;
    int result = 1;
    try {
        WriteFolderDocument(document, lpszFolders);
        result = 0;
    } catch (...) {
        result = 1;
    }
    document.ReleaseDocument();
    Log(kLogTrace, L"CMAPIObject::GetAppFolder : Finish(%d)\r\n", result);
    return result;
}

void CMAPIObject::WriteFolderDocument(CXMLParser& document, wchar_t* lpszFolders) {
    const ComPtr<IMAPISession> session = m_lpMAPISession;
    if (!session) {
        Log(kLogFailure, L"CMAPIObject::GetAppFolder : NULL m_lpMAPISession\r\n");
        AfxThrowUserException();
    }
    if (lpszFolders == nullptr) {
        Log(kLogFailure, L"CMAPIObject::GetAppFolder : NULL lpszFolders\r\n");
        AfxThrowUserException();
    }
    BeginOutlookDocument(document, L"folders", L"GetAppFolder");
    {
        const TableRows stores = QueryStores(session.Get(), nullptr, L"GetAppFolder");
        if (!stores.table) {
            return;
        }
        for (ULONG i = 0; i < stores.Count(); ++i) {
            const SRow& row = stores.Row(i);
            if (row.lpProps != nullptr &&
                GetAppFolderFromStore(session.Get(), &row, document, nullptr, kStoreDepth) == 0) {
                AfxThrowUserException();
            }
        }
    }
    EndElement(document, nullptr, 0);
    SaveOutlookDocument(document, g_strOutlookXml, lpszFolders,
                        L"CMAPIObject::GetAppFolder : Failed to Save Folders\r\n");
}

int CMAPIObject::GetAppFolderFromStore(IMAPISession* session, const SRow* row, CXMLParser& document,
                                       IXMLDOMNode* parent, int depth) {
    LogLine(kLogTrace, L"GetAppFolderFromStore", L"Begin");
    bool succeeded = false;
    try {
        if (row == nullptr) {
            LogLine(kLogFailure, L"GetAppFolderFromStore", L"NULL lpPropValue");
            AfxThrowUserException();
        }
        const ComPtr<IXMLDOMElement> node = AppendNode(document, parent, depth);
        if (!node) {
            LogLine(kLogFailure, L"GetAppFolderFromStore", L"Failed to create node");
            AfxThrowUserException();
        }
        SetClass(document, node.Get(), L"IPF.Post");
        document.SetAttribute(L"default", BooleanText(FlagOfColumn(*row, kStoreIsDefault, PR_DEFAULT_STORE)),
                              node.Get());
        AppendNameAndId(document, node.Get(), depth + 1, TextOfColumn(*row, kStoreName, PR_DISPLAY_NAME_W),
                        HexId(EntryIdOfColumn(*row, kStoreEntryId)));
        succeeded = AppendStoreFolders(session, *row, document, node.Get(), depth + 1);
        EndElement(document, node.Get(), depth);
    } catch (...) {
        succeeded = false;
    }
    LogFinish(L"GetAppFolderFromStore", succeeded);
    return succeeded ? 1 : 0;
}

bool CMAPIObject::AppendStoreFolders(IMAPISession* session, const SRow& row, CXMLParser& document,
                                     IXMLDOMNode* node, int depth) {
    const ComPtr<IMsgStore> store = OpenStore(session, row, L"GetAppFolderFromStore");
    if (!store) {
        return true;
    }
    MapiBuffer<SPropValue> top;
    if (pfnHrGetOneProp(store.Get(), PR_IPM_SUBTREE_ENTRYID, top.Put()) != S_OK || !top) {
        return true;
    }
    return GetAppFolderFromFolder(store.Get(), top->Value.bin, document, node, depth) != 0;
}

int CMAPIObject::GetAppFolderFromFolder(IMsgStore* store, const SBinary& entryId, CXMLParser& document,
                                        IXMLDOMNode* parent, int depth) {
    LogLine(kLogTrace, L"GetAppFolderFromFolder", L"Begin");
    bool succeeded = false;
    try {
        succeeded = AppendSubFolders(store, entryId, document, parent, depth);
    } catch (...) {
        succeeded = false;
    }
    LogFinish(L"GetAppFolderFromFolder", succeeded);
    return succeeded ? 1 : 0;
}

bool CMAPIObject::AppendSubFolders(IMsgStore* store, const SBinary& entryId, CXMLParser& document,
                                   IXMLDOMNode* parent, int depth) {
    if (store == nullptr || entryId.lpb == nullptr) {
        LogLine(kLogFailure, L"GetAppFolderFromFolder", L"Interrupted or INVALID Parameter");
        AfxThrowUserException();
    }
    const ComPtr<IMAPIFolder> folder = OpenFolder(store, L"lpMsgStore", entryId, L"GetAppFolderFromFolder");
    if (!folder) {
        LogLine(kLogFailure, L"GetAppFolderFromFolder", L"OpenEntry Failed or NULL lpContainer");
        AfxThrowUserException();
    }
    const TableRows rows = QuerySubFolders(folder.Get(), nullptr, L"GetAppFolderFromFolder");
    for (ULONG i = 0; i < rows.Count(); ++i) {
        if (rows.Row(i).lpProps != nullptr && !AppendFolder(store, rows.Row(i), document, parent, depth)) {
            return false;
        }
    }
    return true;
}

bool CMAPIObject::AppendFolder(IMsgStore* store, const SRow& row, CXMLParser& document, IXMLDOMNode* parent,
                               int depth) {
    const ComPtr<IXMLDOMElement> node = AppendNode(document, parent, depth);
    if (!node) {
        return false;
    }
    const CString containerClass = ContainerClass(row);
    SetClass(document, node.Get(), containerClass);
    const SBinary entryId = EntryIdOfColumn(row, kSubFolderEntryId);
    const CString id = HexId(entryId);
    AppendNameAndId(document, node.Get(), depth + 1, TextOfColumn(row, kSubFolderName, PR_DISPLAY_NAME_W),
                    id);
    const auto type = static_cast<std::size_t>(FolderClassToType(containerClass));
    const bool isDefault = !id.empty() && m_arrDefaultFolderIds[type] == id;
    document.SetAttribute(L"default", BooleanText(isDefault), node.Get());
    // A failure below shows in the log alone: the tree above it stays.
    GetAppFolderFromFolder(store, entryId, document, node.Get(), depth + 1);
    EndElement(document, node.Get(), depth);
    return true;
}

}  // namespace NAMESPACE_MAPI
