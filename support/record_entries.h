#pragma once

// The list of fields that a record of an item holds, contact or appointment: entries with a field id and a
// text, owned by the record, in order of insertion.

#include <cstdint>
#include <memory>
#include <new>

#include "support/containers.h"
#include "support/text.h"

template<class Entry>
using RecordEntries = CArray<std::unique_ptr<Entry>>;

/// Appends a deep copy of an entry; ids may repeat. Returns 1, or 0 if there is no memory.
template<class Entry>
int AddEntryCopy(RecordEntries<Entry>& entries, const Entry& source) {
    try {
        entries.Add(std::make_unique<Entry>(source));
        return 1;
    } catch (const std::bad_alloc&) {
        return 0;
    }
}

/// Appends a field. Returns 1, or 0 with nothing added for an empty value.
template<class Entry>
int AddEntry(RecordEntries<Entry>& entries, std::int32_t fieldId, const CString& value) {
    if (value.empty()) {
        return 0;
    }
    Entry entry;
    entry.m_nFieldId = fieldId;
    entry.m_strValue = value;
    return AddEntryCopy(entries, entry);
}
