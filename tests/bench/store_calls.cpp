#include "store_calls.h"

#include <mapitags.h>

#include <stdexcept>
#include <vector>

namespace bench {

namespace {

constexpr ULONG kLongTermId = 0x66700102;

/// A restriction to the rows of which a property is exactly a value.
SRestriction Exactly(SPropValue& value) {
    SRestriction restriction{};
    restriction.rt = RES_PROPERTY;
    restriction.res.resProperty.relop = RELOP_EQ;
    restriction.res.resProperty.ulPropTag = value.ulPropTag;
    restriction.res.resProperty.lpProp = &value;
    return restriction;
}

RowSet QueryRows(IMAPITable* table, const SPropTagArray* columns, SPropValue& exactly) {
    SRestriction restriction = Exactly(exactly);
    RowSet rows;
    RequireResult(
        pfnHrQueryAllRows(table, const_cast<LPSPropTagArray>(columns), &restriction, nullptr, 0, rows.Put()),
        "HrQueryAllRows");
    return rows;
}

MapiBuffer<SPropValue> IdentityOf(IMAPIFolder* folder) {
    SizedSPropTagArray(2, tags) = {2, {PR_DISPLAY_NAME_W, PR_ENTRYID}};
    ULONG count = 0;
    MapiBuffer<SPropValue> identity;
    RequireResult(
        folder->GetProps(reinterpret_cast<LPSPropTagArray>(&tags), MAPI_UNICODE, &count, identity.Put()),
        "GetProps");
    return identity;
}

template<class Interface, class Container>
ComPtr<Interface> Open(Container* container, const SBinary& id, ULONG flags) {
    ULONG type = 0;
    ComPtr<Interface> object;
    RequireResult(container->OpenEntry(id.cb, reinterpret_cast<LPENTRYID>(id.lpb), nullptr, flags, &type,
                                       reinterpret_cast<LPUNKNOWN*>(object.GetAddressOf())),
                  "OpenEntry");
    return object;
}

/// A folder's rows, with the table and the folder, which live as long as they do.
struct Contents {
    ComPtr<IMAPIFolder> folder;
    ComPtr<IMAPITable> table;
    RowSet rows;
};

Contents QueryContents(const StoreLoop& loop, IMAPIFolder* chosen, const SPropTagArray* columns,
                       const SBinary& id) {
    Contents contents;
    contents.folder = Open<IMAPIFolder>(chosen, id, MAPI_BEST_ACCESS);
    RequireResult(
        contents.folder->GetContentsTable(MAPI_UNICODE | MAPI_DEFERRED_ERRORS, contents.table.GetAddressOf()),
        "GetContentsTable");
    SPropValue messageClass{};
    messageClass.ulPropTag = PR_MESSAGE_CLASS_W;
    messageClass.Value.lpszW = const_cast<LPWSTR>(loop.messageClass);
    contents.rows = QueryRows(contents.table.Get(), columns, messageClass);
    return contents;
}

void CountItems(const StoreLoop& loop, IMAPIFolder* folder) {
    static constexpr SizedSPropTagArray(1, kColumns) = {1, {PR_ENTRYID}};
    const MapiBuffer<SPropValue> identity = IdentityOf(folder);
    QueryContents(loop, folder, reinterpret_cast<const SPropTagArray*>(&kColumns),
                  identity.Get()[1].Value.bin);
}

/// The identifier by which a row names its message: the long-term one if it has that.
const SBinary& IdOfRow(const SRow& row) {
    return row.lpProps[row.lpProps[1].ulPropTag == kLongTermId ? 1 : 0].Value.bin;
}

}  // namespace

ULONG TagOf(IMAPIProp* object, ULONG set, LONG number, const wchar_t* word) {
    GUID guid = {set, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
    MAPINAMEID name{};
    name.lpguid = &guid;
    if (word == nullptr) {
        name.ulKind = MNID_ID;
        name.Kind.lID = number;
    } else {
        name.ulKind = MNID_STRING;
        name.Kind.lpwstrName = const_cast<LPWSTR>(word);
    }
    LPMAPINAMEID names = &name;
    MapiBuffer<SPropTagArray> tags;
    const HRESULT result = object->GetIDsFromNames(1, &names, MAPI_CREATE, tags.Put());
    return result == S_OK ? tags->aulPropTag[0] : 0;
}

MapiBuffer<SPropValue> ValueOf(IMAPIProp* object, ULONG tag) {
    SizedSPropTagArray(1, tags) = {1, {tag}};
    ULONG count = 0;
    MapiBuffer<SPropValue> value;
    if (object->GetProps(reinterpret_cast<LPSPropTagArray>(&tags), MAPI_UNICODE, &count, value.Put()) !=
        S_OK) {
        value.Reset();
    }
    return value;
}

MapiBuffer<SPropValue> NamedValueOf(IMAPIProp* object, ULONG set, LONG number) {
    return ValueOf(object, TagOf(object, set, number));
}

bool NamedFlagOf(IMAPIProp* object, ULONG set, LONG number) {
    const MapiBuffer<SPropValue> value = NamedValueOf(object, set, number);
    return value && value->Value.b != 0;
}

LONG NamedNumberOf(IMAPIProp* object, ULONG set, LONG number) {
    const MapiBuffer<SPropValue> value = NamedValueOf(object, set, number);
    return value ? value->Value.l : 0;
}

void ReadStream(IMAPIProp* object, ULONG tag, ULONG pieceBytes) {
    ComPtr<IStream> stream;
    if (object->OpenProperty(tag, &IID_IStream, 0, 0, reinterpret_cast<LPUNKNOWN*>(stream.GetAddressOf())) !=
        S_OK) {
        return;
    }
    std::vector<BYTE> piece(pieceBytes);
    ULONG read = 0;
    do {
        RequireResult(stream->Read(piece.data(), pieceBytes, &read), "Read");
    } while (read != 0);
}

ULONG VisitWholeFolder(const StoreLoop& loop, IMAPIFolder* folder, const MessageVisit& visit) {
    CountItems(loop, folder);
    const MapiBuffer<SPropValue> identity = IdentityOf(folder);
    const Contents contents = QueryContents(loop, folder, loop.columns, identity.Get()[1].Value.bin);
    for (ULONG i = 0; i < contents.rows->cRows; ++i) {
        visit(Open<IMessage>(folder, IdOfRow(contents.rows->aRow[i]), MAPI_BEST_ACCESS | MAPI_MODIFY), i);
    }
    return contents.rows->cRows;
}

ULONG ReadWholeFolder(const StoreLoop& loop, IMAPIFolder* folder) {
    return VisitWholeFolder(loop, folder, [&loop](const ComPtr<IMessage>& message, std::size_t /*number*/) {
        loop.readMessage(message.Get());
    });
}

ULONG ListWholeFolder(const StoreLoop& loop, IMAPIFolder* folder) {
    static constexpr SizedSPropTagArray(3, kColumns) = {3,
                                                        {PR_ENTRYID, kLongTermId, PR_LAST_MODIFICATION_TIME}};
    CountItems(loop, folder);
    const MapiBuffer<SPropValue> identity = IdentityOf(folder);
    const Contents contents = QueryContents(loop, folder, reinterpret_cast<const SPropTagArray*>(&kColumns),
                                            identity.Get()[1].Value.bin);
    return contents.rows->cRows;
}

Library LoadMapi(const wchar_t* library) {
    Library loaded(LoadLibraryW(library));
    if (!loaded || FillMAPIEntryPoints(loaded.Get()) == 0) {
        throw std::runtime_error("the MAPI library cannot be loaded");
    }
    MAPIINIT_0 init{MAPI_INIT_VERSION, 0};
    RequireResult(pfnMAPIInitialize(&init), "MAPIInitialize");
    return loaded;
}

OpenedFolder OpenDefaultFolder(const std::wstring& profile, ULONG tag) {
    OpenedFolder opened;
    RequireResult(pfnMAPILogonEx(0, reinterpret_cast<LPTSTR>(const_cast<wchar_t*>(profile.c_str())), nullptr,
                                 MAPI_UNICODE | MAPI_EXTENDED | MAPI_EXPLICIT_PROFILE | MAPI_NEW_SESSION,
                                 opened.session.GetAddressOf()),
                  "MAPILogonEx");
    static constexpr SizedSPropTagArray(1, kColumns) = {1, {PR_ENTRYID}};
    ComPtr<IMAPITable> stores;
    RequireResult(opened.session->GetMsgStoresTable(0, stores.GetAddressOf()), "GetMsgStoresTable");
    SPropValue isDefault{};
    isDefault.ulPropTag = PR_DEFAULT_STORE;
    isDefault.Value.b = TRUE;
    const RowSet rows = QueryRows(stores.Get(), reinterpret_cast<const SPropTagArray*>(&kColumns), isDefault);
    RequireResult(rows->cRows == 1 ? S_OK : MAPI_E_NOT_FOUND, "the look for the default store");
    const SBinary& storeId = rows->aRow[0].lpProps[0].Value.bin;
    RequireResult(opened.session->OpenMsgStore(0, storeId.cb, reinterpret_cast<LPENTRYID>(storeId.lpb),
                                               nullptr, MAPI_BEST_ACCESS, opened.store.GetAddressOf()),
                  "OpenMsgStore");
    const ComPtr<IMAPIFolder> root = Open<IMAPIFolder>(opened.store.Get(), SBinary{}, MAPI_BEST_ACCESS);
    MapiBuffer<SPropValue> id;
    RequireResult(pfnHrGetOneProp(root.Get(), tag, id.Put()), "HrGetOneProp");
    opened.folder = Open<IMAPIFolder>(opened.store.Get(), id->Value.bin, MAPI_BEST_ACCESS);
    return opened;
}

}  // namespace bench
