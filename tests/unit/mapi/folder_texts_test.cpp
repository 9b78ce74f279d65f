#include <gtest/gtest.h>

#include "mapi/folder_selection_text.h"
#include "mapi/folder_types.h"
#include "tests/unit/text_printer.h"

namespace {

TEST(FolderClassToType, NumbersTheSixClasses) {
    EXPECT_EQ(FolderClassToType(WIDE("IPF.Note")), 0);
    EXPECT_EQ(FolderClassToType(WIDE("IPF.Appointment")), 1);
    EXPECT_EQ(FolderClassToType(WIDE("IPF.Contact")), 2);
    EXPECT_EQ(FolderClassToType(WIDE("IPF.Task")), 3);
    EXPECT_EQ(FolderClassToType(WIDE("IPF.Journal")), 4);
    EXPECT_EQ(FolderClassToType(WIDE("IPF.StickyNote")), 5);
}

TEST(FolderClassToType, AnyOtherClassIsSix) {
    EXPECT_EQ(FolderClassToType(WIDE("IPF.Post")), 6);
    EXPECT_EQ(FolderClassToType(WIDE("IPF.Contact.MOC.QuickContacts")), 6);
    EXPECT_EQ(FolderClassToType(WIDE("ipf.contact")), 6);
    EXPECT_EQ(FolderClassToType(WIDE("")), 6);
}

TEST(FolderTypes, GoWithTheDefaultFolderPropertiesOfAStore) {
    const std::uint32_t tags[] = {0x36D70102, 0x36D00102, 0x36D10102, 0x36D40102, 0x36D20102, 0x36D30102};
    for (std::size_t type = 0; type < kFolderTypes.size(); ++type) {
        EXPECT_EQ(kFolderTypes[type].defaultFolderTag, tags[type]);
    }
}

TEST(ExtractEventFolderId, KeepsTheWrapperOfTheSelection) {
    EXPECT_EQ(ExtractEventFolderId(WIDE("<id><event>AB</event></id>")), WIDE("<id>AB</id>"));
    EXPECT_EQ(ExtractEventFolderId(WIDE("<event>AB</event>")), WIDE("AB"));
}

TEST(ExtractEventFolderId, HalfAWrapperIsNone) {
    EXPECT_EQ(ExtractEventFolderId(WIDE("<id><event>AB</event>")), WIDE("AB"));
    EXPECT_EQ(ExtractEventFolderId(WIDE("<event>AB</event></id>")), WIDE("AB"));
}

TEST(ExtractEventFolderId, IsEmptyWithoutAnEventPart) {
    EXPECT_EQ(ExtractEventFolderId(WIDE("<id>AB</id>")), WIDE(""));
    EXPECT_EQ(ExtractEventFolderId(WIDE("")), WIDE(""));
    EXPECT_EQ(ExtractEventFolderId(WIDE("<id><event>AB</id>")), WIDE(""));
}

TEST(ExtractEventFolderId, IsEmptyForAnEmptyEventPart) {
    EXPECT_EQ(ExtractEventFolderId(WIDE("<event></event>")), WIDE(""));
    EXPECT_EQ(ExtractEventFolderId(WIDE("<id><event></event></id>")), WIDE(""));
}

TEST(ExtractEventFolderId, IsEmptyWhenTheClosingTagComesFirst) {
    EXPECT_EQ(ExtractEventFolderId(WIDE("</event>AB<event>")), WIDE(""));
}

TEST(ExtractEventFolderId, TrimsTheSelection) {
    EXPECT_EQ(ExtractEventFolderId(WIDE(" \t\r\n<id><event>AB</event></id> ")), WIDE("<id>AB</id>"));
}

TEST(ExtractEventFolderId, TakesTheFirstOfTwoEventParts) {
    EXPECT_EQ(ExtractEventFolderId(WIDE("<id><event>AB</event><event>CD</event></id>")), WIDE("<id>AB</id>"));
}

}  // namespace
