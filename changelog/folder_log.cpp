#include "changelog/folder_log.h"

#include <mapitags.h>

#include "changelog/get_change_log.h"
#include "mapi/hex_text.h"
#include "mapi/property_tags.h"
#include "timezone/conversions.h"

namespace {

constexpr SizedSPropTagArray(3, kColumns) = {
    3, {PR_ENTRYID, PR_LONGTERM_ENTRYID_FROM_TABLE, PR_LAST_MODIFICATION_TIME}};

}  // namespace

void FillLogItem(tagLogItem& item, const SPropValue* values, ULONG count) {
    CString shortTermId;
    CString longTermId;
    for (ULONG i = 0; i < count; ++i) {
        const SPropValue& value = values[i];
        switch (value.ulPropTag) {
            case PR_ENTRYID:
                shortTermId = BinaryToHexString(value.Value.bin.lpb, value.Value.bin.cb);
                break;
            case PR_LONGTERM_ENTRYID_FROM_TABLE:
                longTermId = BinaryToHexString(value.Value.bin.lpb, value.Value.bin.cb);
                break;
            case PR_LAST_MODIFICATION_TIME:
                FileTimeToLocalDateTime(value.Value.ft, item.m_dtModified);
                break;
            default:
                break;
        }
    }
    item.m_strId = longTermId.empty() ? shortTermId : longTermId;
}

int ReadFolderLog(const FolderLog& log, IMAPIFolder* chosen, const SBinary& entryId, LogItems& items) {
    const auto append = [&](const SRow& row, const CString& /*path*/) {
        if (row.cValues == kColumns.cValues) {
            tagLogItem item;
            FillLogItem(item, row.lpProps, row.cValues);
            items.Add(std::move(item));
        }
    };
    const FolderRead read{log.kind,
                          log.operation,
                          L"Begin",
                          reinterpret_cast<const SPropTagArray*>(&kColumns),
                          log.stop,
                          append,
                          WithoutSubFolders::Fails};
    return ReadFolderItems(read, chosen, entryId, {});
}

int FindChanges(LogItems& items, const wchar_t* kind, const CString& mapFile) {
    const GetChangeLogArgs arguments{kind, L"pim", mapFile};
    return GetChangeLog(&items, &arguments);
}
