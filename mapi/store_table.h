#pragma once

// The table of the session's message stores, which the logon, the folder document and the choice of a folder
// read.

#include "mapi/table_rows.h"

/// The columns of a row of the store table, in order.
enum StoreColumn : unsigned { kStoreIsDefault, kStoreEntryId, kStoreName };

/// The store table's rows, all or by a restriction. Without a table if it could not be had, and without rows
/// if the query failed. Both results are logged in the operation's name.
TableRows QueryStores(IMAPISession* session, SRestriction* restriction, const wchar_t* operation);

/// Opens the store of a row, with the best access there is, and logs the result. Null on failure.
ComPtr<IMsgStore> OpenStore(IMAPISession* session, const SRow& row, const wchar_t* operation);
