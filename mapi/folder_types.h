#pragma once

// The numbering of folder classes, which indexes the default folders and stands in the folder document.

#include <array>
#include <cstddef>
#include <cstdint>

#include "support/wide.h"

/// A folder class and the property under which a store names its default folder of the class.
struct FolderType {
    WideView containerClass;
    std::uint32_t defaultFolderTag;
};

/// By folder type number. "IPF.Note" goes with the Drafts folder on purpose: only that is ever the default of
/// its type.
constexpr std::array<FolderType, 6> kFolderTypes{{
    {WIDE("IPF.Note"), 0x36D70102},         // PR_IPM_DRAFTS_ENTRYID
    {WIDE("IPF.Appointment"), 0x36D00102},  // PR_IPM_APPOINTMENT_ENTRYID
    {WIDE("IPF.Contact"), 0x36D10102},      // PR_IPM_CONTACT_ENTRYID
    {WIDE("IPF.Task"), 0x36D40102},         // PR_IPM_TASK_ENTRYID
    {WIDE("IPF.Journal"), 0x36D20102},      // PR_IPM_JOURNAL_ENTRYID
    {WIDE("IPF.StickyNote"), 0x36D30102},   // PR_IPM_NOTE_ENTRYID
}};

constexpr std::size_t kCalendarFolderType = 1;
constexpr std::size_t kContactFolderType = 2;

/// The number of every class that has none of its own, a class with a suffix included.
constexpr int kOtherFolderType = 6;

/// The slots of an array that is indexed by folder type number.
constexpr std::size_t kFolderTypeSlots = kFolderTypes.size() + 1;

/// The folder type number of a class, 0 to 6. Classes are compared exactly, letter case included.
constexpr int FolderClassToType(WideView containerClass) noexcept {
    for (std::size_t type = 0; type < kFolderTypes.size(); ++type) {
        if (kFolderTypes[type].containerClass == containerClass) {
            return static_cast<int>(type);
        }
    }
    return kOtherFolderType;
}
