#include "localstore/named_properties.h"

#include "store_fixture.h"

using namespace localstore_test;

namespace {

constexpr ULONG kAddress = 0x00062004;
constexpr ULONG kAppointment = 0x00062002;

}  // namespace

class NamedPropertiesOfStores : public StoreTest {
  protected:
    void SetUp() override {
        StoreTest::SetUp();
        m_contacts = OpenContacts();
    }
    void TearDown() override {
        m_contacts.Reset();
        StoreTest::TearDown();
    }
    [[nodiscard]] ComPtr<IMessage> NewMessage() const {
        ComPtr<IMessage> message;
        EXPECT_EQ(m_contacts->CreateMessage(nullptr, 0, &message), S_OK);
        return message;
    }
    ComPtr<IMAPIFolder> m_contacts;
};

TEST_F(NamedPropertiesOfStores, AreTheSameOnAllObjectsOfAStore) {
    const ComPtr<IMessage> message = NewMessage();
    const ULONG tag = NamedTag(message.Get(), kAddress, 0x8005, PT_UNICODE);
    EXPECT_GE(PROP_ID(tag), 0x8000U);
    EXPECT_EQ(NamedTag(m_contacts.Get(), kAddress, 0x8005, PT_UNICODE), tag);
    EXPECT_EQ(NamedTag(NewMessage().Get(), kAddress, 0x8005, PT_UNICODE), tag);
    EXPECT_NE(NamedTag(message.Get(), kAppointment, 0x8005, PT_UNICODE), tag);
    EXPECT_NE(NamedTag(message.Get(), kAddress, 0x8006, PT_UNICODE), tag);
    const ULONG word = PublicTag(message.Get(), L"Keywords", PT_MV_UNICODE);
    EXPECT_EQ(PublicTag(m_contacts.Get(), L"Keywords", PT_MV_UNICODE), word);
    EXPECT_NE(PublicTag(m_contacts.Get(), L"keywords", PT_MV_UNICODE), word);
}

TEST_F(NamedPropertiesOfStores, HaveNoTypeOfTheirOwn) {
    EXPECT_EQ(PROP_TYPE(NamedTag(m_contacts.Get(), kAddress, 0x8005, PT_UNSPECIFIED)),
              static_cast<ULONG>(PT_UNSPECIFIED));
}

TEST_F(NamedPropertiesOfStores, AreMadeOnlyOnRequest) {
    EXPECT_EQ(PROP_TYPE(NamedTag(m_contacts.Get(), kAddress, 0x7A31, PT_UNICODE, 0)),
              static_cast<ULONG>(PT_ERROR));
    const ULONG made = NamedTag(m_contacts.Get(), kAddress, 0x7A31, PT_UNICODE);
    EXPECT_EQ(NamedTag(m_contacts.Get(), kAddress, 0x7A31, PT_UNICODE, 0), made);
}

TEST_F(NamedPropertiesOfStores, ThatAreUnknownGiveAWarning) {
    GUID set = {kAddress, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
    MAPINAMEID known{};
    known.lpguid = &set;
    known.ulKind = MNID_ID;
    known.Kind.lID = 0x8005;
    MAPINAMEID unknown = known;
    unknown.Kind.lID = 0x7A32;
    NamedTag(m_contacts.Get(), kAddress, 0x8005, PT_UNICODE);
    LPMAPINAMEID list[] = {&known, &unknown};
    MapiBuffer<SPropTagArray> tags;
    EXPECT_EQ(m_contacts->GetIDsFromNames(2, list, 0, tags.Put()), MAPI_W_ERRORS_RETURNED);
    EXPECT_EQ(PROP_TYPE(tags->aulPropTag[0]), static_cast<ULONG>(PT_UNSPECIFIED));
    EXPECT_EQ(PROP_TYPE(tags->aulPropTag[1]), static_cast<ULONG>(PT_ERROR));
}

TEST_F(NamedPropertiesOfStores, SurviveTheDiskUnderTheirName) {
    std::vector<BYTE> id;
    {
        const ComPtr<IMessage> message = NewMessage();
        const ULONG number = NamedTag(message.Get(), kAddress, 0x8083, PT_UNICODE);
        const ULONG word = PublicTag(message.Get(), L"Own word", PT_LONG);
        ASSERT_EQ(Set(message.Get(), {StringValue(number, L"a@b.example"), LongValue(word, 5)}), S_OK);
        ASSERT_EQ(message->SaveChanges(0), S_OK);
        id = IdOf(message.Get());
    }
    localstore::recorder::SetRoot(Root());
    const ComPtr<IMessage> message = OpenMessage(m_contacts.Get(), id);
    EXPECT_EQ(TextOf(message.Get(), NamedTag(message.Get(), kAddress, 0x8083, PT_UNICODE)), L"a@b.example");
    EXPECT_EQ(OneValue(message.Get(), PublicTag(message.Get(), L"Own word", PT_LONG)).Value().Value.l, 5);
    EXPECT_EQ(OneValue(message.Get(), NamedTag(message.Get(), kAddress, 0x8084, PT_UNICODE)).Error(),
              MAPI_E_NOT_FOUND);
}

TEST_F(NamedPropertiesOfStores, InFilesWithOtherIdentifiersAreFoundByName) {
    // The first message numbers its names in one order, the second in the other.
    const ComPtr<IMessage> first = NewMessage();
    const ULONG a = NamedTag(first.Get(), kAddress, 0x8101, PT_UNICODE);
    const ULONG b = NamedTag(first.Get(), kAddress, 0x8102, PT_UNICODE);
    ASSERT_EQ(Set(first.Get(), {StringValue(a, L"1a"), StringValue(b, L"1b")}), S_OK);
    const ComPtr<IMessage> second = NewMessage();
    ASSERT_EQ(Set(second.Get(), {StringValue(b, L"2b")}), S_OK);
    ASSERT_EQ(Set(second.Get(), {StringValue(a, L"2a")}), S_OK);
    ASSERT_EQ(first->SaveChanges(0), S_OK);
    ASSERT_EQ(second->SaveChanges(0), S_OK);
    EXPECT_EQ(TextOf(OpenMessage(m_contacts.Get(), IdOf(second.Get())).Get(), a), L"2a");
    const RowSet rows = ContentsOf(m_contacts.Get(), {a, b});
    ASSERT_EQ(rows->cRows, 2U);
    EXPECT_EQ(FirstTexts(rows), (std::vector<std::wstring>{L"2a", L"1a"}));
}

TEST_F(NamedPropertiesOfStores, AreListedByName) {
    const ComPtr<IMessage> message = NewMessage();
    const ULONG number = NamedTag(message.Get(), kAddress, 0x8062, PT_UNICODE);
    const ULONG word = PublicTag(message.Get(), L"Keywords", PT_UNICODE);
    SizedSPropTagArray(3, tags) = {3, {number, word, PR_SUBJECT_W}};
    auto* list = reinterpret_cast<LPSPropTagArray>(&tags);
    ULONG count = 0;
    MapiBuffer<LPMAPINAMEID> names;
    EXPECT_EQ(message->GetNamesFromIDs(&list, nullptr, 0, &count, names.Put()), MAPI_W_ERRORS_RETURNED);
    ASSERT_EQ(count, 3U);
    EXPECT_EQ(names.Get()[0]->Kind.lID, 0x8062);
    EXPECT_EQ(names.Get()[0]->lpguid->Data1, kAddress);
    EXPECT_STREQ(names.Get()[1]->Kind.lpwstrName, L"Keywords");
    EXPECT_EQ(names.Get()[2], nullptr);
}

TEST_F(NamedPropertiesOfStores, OfPsMapiAreTheirOwnIdentifiers) {
    EXPECT_EQ(NamedTag(m_contacts.Get(), 0x00020328, 0x0037, PT_UNICODE), PR_SUBJECT_W);
}

TEST_F(NamedPropertiesOfStores, NeedValidNames) {
    MapiBuffer<SPropTagArray> tags;
    LPMAPINAMEID none = nullptr;
    EXPECT_EQ(m_contacts->GetIDsFromNames(1, &none, MAPI_CREATE, tags.Put()), MAPI_E_INVALID_PARAMETER);
    MAPINAMEID name{};
    LPMAPINAMEID list = &name;
    EXPECT_EQ(m_contacts->GetIDsFromNames(1, &list, MAPI_CREATE, tags.Put()), MAPI_E_INVALID_PARAMETER);
    EXPECT_EQ(m_contacts->GetIDsFromNames(1, &list, 4, tags.Put()), MAPI_E_UNKNOWN_FLAGS);
}

TEST(NamedProperties, AreAtMost32766AndEachKeepsItsIdentifier) {
    localstore::NamedProperties names;
    localstore::PropertyName name;
    name.set[0] = 1;
    for (name.number = 0; name.number < 32'766; ++name.number) {
        ASSERT_EQ(names.IdOf(name, true), 0x8000 + name.number);
    }
    EXPECT_FALSE(names.IdOf(name, true));
    name.number = 32'765;
    EXPECT_EQ(names.IdOf(name, true), 0xFFFD);
    name.number = 0;
    EXPECT_EQ(names.IdOf(name, false), 0x8000);
}
