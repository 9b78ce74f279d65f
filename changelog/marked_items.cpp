#include "changelog/marked_items.h"

#include "mapi/item_document.h"
#include "mapi/operation_log.h"
#include "mapi/store_entries.h"
#include "support/errors.h"
#include "support/log.h"

namespace {

constexpr std::int32_t kSentInFull = kItemNew | kItemChanged;

/// False if the read was stopped.
bool SendAll(const MarkedItemRead& read, const LogItems& items) {
    read.total = static_cast<int>(items.GetSize());
    int index = 0;
    for (const tagLogItem& item : items) {
        if (read.stop != nullptr && *read.stop != 0) {
            return false;
        }
        if ((item.m_lLogFlag & kSentInFull) != 0) {
            read.sendWhole(item);
        } else if ((item.m_lLogFlag & kItemDeleted) != 0) {
            read.sendDeletion(item, index);
        }
        ++index;
    }
    return true;
}

void LogItem(const wchar_t* operation, const wchar_t* change, const tagLogItem& item) {
    Log(kLogTrace, L"CMAPIObject::%s - %s(%s)\r\n", operation, change, item.m_strId.c_str());
}

}  // namespace

int SendMarkedItems(const MarkedItemRead& read, const LogItems& items) {
    LogLine(kLogTrace, read.operation, L"Begin");
    bool succeeded = false;
    try {
        succeeded = SendAll(read, items);
    } catch (const NoDocument&) {
        return 0;
    } catch (...) {
        succeeded = false;
    }
    LogFinish(read.operation, succeeded);
    return succeeded ? 1 : 0;
}

ComPtr<IMessage> OpenMarkedItem(const wchar_t* operation, IMAPIFolder* chosen, const tagLogItem& item) {
    LogItem(operation, (item.m_lLogFlag & kItemNew) != 0 ? L"New" : L"Update", item);
    return OpenMessageByHexId(chosen, item.m_strId);
}

void LogDeletion(const wchar_t* operation, const tagLogItem& item) {
    LogItem(operation, L"Delete", item);
}

MapiBuffer<SPropValue> ReadColumns(const wchar_t* operation, IMessage* message, const SPropTagArray* columns,
                                   ULONG& count) {
    MapiBuffer<SPropValue> values;
    // Absent properties make the result a warning; the values are there all the same.
    message->GetProps(const_cast<LPSPropTagArray>(columns), MAPI_UNICODE, &count, values.Put());
    if (!values) {
        LogLine(kLogFailure, operation, L"NULL lpPropValues");
        AfxThrowUserException();
    }
    return values;
}
