#include "mapi/table_rows.h"

#include <mapitags.h>

HRESULT QueryAllRows(IMAPITable* table, const SPropTagArray* columns, SRestriction* restriction,
                     RowSet& rows) {
    const HRESULT result =
        pfnHrQueryAllRows(table, const_cast<LPSPropTagArray>(columns), restriction, nullptr, 0, rows.Put());
    if (result != S_OK) {
        rows.Reset();
    }
    return result;
}

const SPropValue* ValueOfColumn(const SRow& row, unsigned column, ULONG tag) {
    if (row.lpProps == nullptr || column >= row.cValues || row.lpProps[column].ulPropTag != tag) {
        return nullptr;
    }
    return &row.lpProps[column];
}

SBinary EntryIdOfColumn(const SRow& row, unsigned column) {
    const SPropValue* const value = ValueOfColumn(row, column, PR_ENTRYID);
    return value == nullptr ? SBinary{0, nullptr} : value->Value.bin;
}

bool FlagOfColumn(const SRow& row, unsigned column, ULONG tag) {
    const SPropValue* const value = ValueOfColumn(row, column, tag);
    return value != nullptr && value->Value.b != 0;
}

CString TextOfColumn(const SRow& row, unsigned column, ULONG tag) {
    const SPropValue* const value = ValueOfColumn(row, column, tag);
    return value == nullptr ? CString() : CString(value->Value.lpszW);
}
