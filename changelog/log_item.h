#pragma once

// What the agent and the change-log library tell each other: the items of a folder, and where to find what
// was known of them before.

#include <cstdint>

#include "support/containers.h"
#include "timezone/ole_date_time.h"

/// What happened to an item since the last read: bits of m_lLogFlag and of the flag that documents carry.
constexpr std::int32_t kItemChanged = 4;
constexpr std::int32_t kItemNew = 8;
constexpr std::int32_t kItemDeleted = 32;

/// One item of a folder as it is now, or one that is gone.
struct tagLogItem {
    std::int32_t m_lLogFlag = 0;   ///< 0 for an item that did not change
    std::int32_t m_lReserved = 0;  ///< copied with the item, and without a meaning
    CString m_strId;               ///< entry identifier as upper-case hexadecimal text
    COleDateTime m_dtModified;     ///< the last change, in local time
};

/// The items of a folder and its sub-folders. Both sides change the list, so its memory and that of its texts
/// comes from the heap of the process.
using LogItems = CArray<tagLogItem, const tagLogItem&>;

/// What is compared with what.
struct GetChangeLogArgs {
    CString m_strKind;     ///< "contact" or "calendar"
    CString m_strDomain;   ///< "pim"
    CString m_strMapFile;  ///< path of the file that holds what is known
};
