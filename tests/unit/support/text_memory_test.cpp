// Texts where memory is scarce: those of the records come from the heap of the process, which has none left.

#include <gtest/gtest.h>

#include "contacts/contact_name.h"
#include "mapi/hex_text.h"
#include "support/record_entries.h"
#include "tests/unit/localstore/scarce_memory.h"
#include "tests/unit/text_printer.h"

namespace {

using localstore_test::ScarceMemory;

/// As much as no text holds without an allocation.
const CString& LongText() {
    static const CString kText(WideString(100, WIDE('a')));
    return kText;
}

struct Field {
    std::int32_t m_nFieldId = 0;
    CString m_strValue;
};

TEST(TextMemory, ATextThatCannotBeHadRaises) {
    static_cast<void>(LongText());
    const ScarceMemory scarce(1, true);
    EXPECT_THROW(static_cast<void>(JoinName(LongText(), {}, {})), std::bad_alloc);
}

TEST(TextMemory, BytesOfHexadecimalTextThatCannotBeHadAreNone) {
    static_cast<void>(LongText());
    const ScarceMemory scarce(1, true);
    EXPECT_TRUE(HexStringToBinary(LongText()).empty());
}

TEST(TextMemory, AFieldThatCannotBeHadIsNotAdded) {
    Field field;
    field.m_nFieldId = 1;
    field.m_strValue = LongText();
    RecordEntries<Field> entries;
    // The entry, its text and the array that holds it.
    for (std::size_t n = 1; n <= 3; ++n) {
        const ScarceMemory scarce(n, false);
        EXPECT_EQ(AddEntryCopy(entries, field), 0) << n;
        EXPECT_TRUE(scarce.HasFailed()) << n;
        EXPECT_TRUE(entries.IsEmpty()) << n;
    }
    EXPECT_EQ(AddEntryCopy(entries, field), 1);
    ASSERT_EQ(entries.GetSize(), 1U);
    EXPECT_EQ(entries[0]->m_strValue, LongText());
}

}  // namespace
