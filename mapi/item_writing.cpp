#include "mapi/item_writing.h"

#include "mapi/hex_text.h"
#include "mapi/named_properties.h"
#include "timezone/conversions.h"

// Behind the base headers.
#include <mapitags.h>

ComPtr<IMessage> CreateItem(IMAPIFolder* folder) {
    ComPtr<IMessage> message;
    if (folder == nullptr || folder->CreateMessage(nullptr, 0, message.GetAddressOf()) != S_OK) {
        return nullptr;
    }
    return message;
}

void ReadIdentifier(IMessage* message, CString& hexId) {
    hexId.clear();
    // Not even a warning keeps back the one thing that tells which message it became.
    SizedSPropTagArray(1, tags) = {1, {PR_ENTRYID}};
    ULONG count = 0;
    MapiBuffer<SPropValue> value;
    message->GetProps(reinterpret_cast<LPSPropTagArray>(&tags), 0, &count, value.Put());
    if (value && count != 0 && value->ulPropTag == PR_ENTRYID) {
        hexId = BinaryToHexString(value->Value.bin.lpb, value->Value.bin.cb);
    }
}

void ReadTimeOfChange(IMessage* message, COleDateTime& date) {
    date = COleDateTime();
    const MapiBuffer<SPropValue> value = GetProperty(message, PR_LAST_MODIFICATION_TIME, 0);
    if (value && value->ulPropTag == PR_LAST_MODIFICATION_TIME) {
        FileTimeToLocalDateTime(value->Value.ft, date);
    }
}

bool DeleteItem(IMAPIFolder* folder, const CString& hexId) {
    // A message may live in a sub-folder, and only its own folder can delete it.
    const ComPtr<IMAPIFolder> parent = OpenParentFolderByHexId(folder, hexId);
    if (!parent) {
        return false;
    }
    auto id = HexStringToBinary(hexId);
    SBinary entry{static_cast<ULONG>(id.size()), id.data()};
    ENTRYLIST entries{1, &entry};
    return parent->DeleteMessages(&entries, 0, nullptr, 0) == S_OK;
}
