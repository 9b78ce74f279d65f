#pragma once

// The way of the items that a comparison marked: new and changed ones leave in full, deleted ones as what the
// list knows of them, and the others not at all.

#include <functional>

#include "changelog/log_item.h"
#include "support/owners.h"

/// A read of marked items, and what differs between the kinds. What does not fit into the functions goes in
/// by reference: memory for a copy could be missing before the operation has begun.
struct MarkedItemRead {
    const wchar_t* operation;
    const int* stop;  ///< looked at before each item; null for a read that runs to its end
    int& total;       ///< receives the number of items in the list
    std::function<void(const tagLogItem& item)> sendWhole;
    std::function<void(const tagLogItem& item, int index)> sendDeletion;
};

/// Sends the marked items in the order of the list. Returns 1, or 0 if the read was stopped or an exception
/// ended it.
int SendMarkedItems(const MarkedItemRead& read, const LogItems& items);

/// Logs that an item is new or updated, and opens its message; null if it is gone meanwhile.
ComPtr<IMessage> OpenMarkedItem(const wchar_t* operation, IMAPIFolder* chosen, const tagLogItem& item);

/// Logs that an item was deleted.
void LogDeletion(const wchar_t* operation, const tagLogItem& item);

/// Reads the columns of a full read from an open message, absent ones as error values. Without any it logs
/// and raises an exception.
MapiBuffer<SPropValue> ReadColumns(const wchar_t* operation, IMessage* message, const SPropTagArray* columns,
                                   ULONG& count);
