#include "store_fixture.h"

using namespace localstore_test;
using localstore::recorder::LiveBuffers;

class Buffers : public StoreTest {};

TEST_F(Buffers, ChildrenEndWithTheirParent) {
    void* parent = nullptr;
    ASSERT_EQ(pfnMAPIAllocateBuffer(100, &parent), S_OK);
    for (ULONG size : {0U, 1U, 1'000U, 1'000'000U}) {
        void* child = nullptr;
        ASSERT_EQ(pfnMAPIAllocateMore(size, parent, &child), S_OK);
        ASSERT_NE(child, nullptr);
        memset(child, 0x5A, size);
    }
    EXPECT_EQ(LiveBuffers(), 5);
    EXPECT_EQ(pfnMAPIFreeBuffer(parent), 0U);
    EXPECT_EQ(LiveBuffers(), 0);
}

TEST_F(Buffers, NullIsFreedWithoutComplaint) {
    EXPECT_EQ(pfnMAPIFreeBuffer(nullptr), 0U);
}

TEST_F(Buffers, AChildIsNotFreedAlone) {
    void* parent = nullptr;
    void* child = nullptr;
    ASSERT_EQ(pfnMAPIAllocateBuffer(1, &parent), S_OK);
    ASSERT_EQ(pfnMAPIAllocateMore(1, parent, &child), S_OK);
    EXPECT_NE(pfnMAPIFreeBuffer(child), 0U);
    EXPECT_EQ(LiveBuffers(), 2);
    void* grandchild = nullptr;
    EXPECT_EQ(pfnMAPIAllocateMore(1, child, &grandchild), MAPI_E_INVALID_PARAMETER);
    pfnMAPIFreeBuffer(parent);
}

TEST_F(Buffers, TooMuchIsRefused) {
    void* buffer = nullptr;
    EXPECT_EQ(pfnMAPIAllocateBuffer(0xFFFFFFFF, &buffer), MAPI_E_NOT_ENOUGH_MEMORY);
    EXPECT_EQ(buffer, nullptr);
    EXPECT_EQ(pfnMAPIAllocateBuffer(1, nullptr), MAPI_E_INVALID_PARAMETER);
    EXPECT_EQ(pfnMAPIAllocateMore(1, nullptr, &buffer), MAPI_E_INVALID_PARAMETER);
}

TEST_F(Buffers, FreeProwsFreesTheValuesOfEveryRow) {
    const ComPtr<IMAPIFolder> contacts = OpenContacts();
    for (const wchar_t* subject : {L"a", L"b", L"c"}) {
        AddContact(contacts.Get(), subject);
    }
    const long before = LiveBuffers();
    {
        const RowSet rows = ContentsOf(contacts.Get(), {PR_SUBJECT_W, PR_ENTRYID});
        ASSERT_EQ(rows->cRows, 3U);
        // The set, and for each row its values with a text and an identifier under them.
        EXPECT_EQ(LiveBuffers(), before + 1 + 3 * 3);
    }
    EXPECT_EQ(LiveBuffers(), before);
}

TEST_F(Buffers, FreeProwsOfNothingDoesNothing) {
    pfnFreeProws(nullptr);
}

TEST_F(Buffers, MAPIFreeBufferOnARowSetLeavesTheRows) {
    const ComPtr<IMAPIFolder> contacts = OpenContacts();
    AddContact(contacts.Get(), L"a");
    RowSet rows = ContentsOf(contacts.Get(), {PR_MESSAGE_SIZE});
    const MapiBuffer<SPropValue> left(rows->aRow[0].lpProps);
    const long before = LiveBuffers();
    pfnMAPIFreeBuffer(rows.Detach());
    EXPECT_EQ(LiveBuffers(), before - 1);
}
