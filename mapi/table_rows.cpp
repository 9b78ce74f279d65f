#include "mapi/table_rows.h"

#include <mapitags.h>

SBinary EntryIdOfColumn(const SRow& row, unsigned column) {
    if (column >= row.cValues || row.lpProps[column].ulPropTag != PR_ENTRYID) {
        return {0, nullptr};
    }
    return row.lpProps[column].Value.bin;
}

CString TextOfColumn(const SRow& row, unsigned column) {
    if (column >= row.cValues || PROP_TYPE(row.lpProps[column].ulPropTag) != PT_UNICODE) {
        return {};
    }
    return {row.lpProps[column].Value.lpszW};
}
