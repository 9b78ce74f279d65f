#pragma once

#include "support/owners.h"
#include "support/text.h"

/// A table with all its rows. The rows go before the table.
struct TableRows {
    ComPtr<IMAPITable> table;
    RowSet rows;

    [[nodiscard]] ULONG Count() const { return rows ? rows->cRows : 0; }
    [[nodiscard]] const SRow& Row(ULONG index) const { return rows->aRow[index]; }
};

/// The entry identifier in a column; a null identifier if the row does not have it.
SBinary EntryIdOfColumn(const SRow& row, unsigned column);

/// Reads all rows of a table, those of a restriction or, for null, all there are. Without rows unless the
/// result is 0.
HRESULT QueryAllRows(IMAPITable* table, const SPropTagArray* columns, SRestriction* restriction,
                     RowSet& rows);

/// The value of a column that holds a property of the given tag; null if the row does not have it.
const SPropValue* ValueOfColumn(const SRow& row, unsigned column, ULONG tag);

/// The yes or no in a column; no if the row does not have it.
bool FlagOfColumn(const SRow& row, unsigned column, ULONG tag);

/// The text in a column of type PT_UNICODE; empty if the row does not have it.
CString TextOfColumn(const SRow& row, unsigned column, ULONG tag);
