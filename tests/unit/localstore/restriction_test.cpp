#include "store_fixture.h"

using namespace localstore_test;

namespace {

constexpr ULONG kNumber = 0x65010003;
constexpr ULONG kShort = 0x65020002;
constexpr ULONG kFloat = 0x65030005;
constexpr ULONG kBig = 0x65040014;
constexpr ULONG kBytes = 0x65050102;

SRestriction PropertyIs(ULONG relation, SPropValue* value) {
    SRestriction restriction{};
    restriction.rt = RES_PROPERTY;
    restriction.res.resProperty = {relation, value->ulPropTag, value};
    return restriction;
}

SRestriction ContentIs(ULONG level, SPropValue* value) {
    SRestriction restriction{};
    restriction.rt = RES_CONTENT;
    restriction.res.resContent = {level, value->ulPropTag, value};
    return restriction;
}

SRestriction Exists(ULONG tag) {
    SRestriction restriction{};
    restriction.rt = RES_EXIST;
    restriction.res.resExist = {0, tag, 0};
    return restriction;
}

SRestriction Group(ULONG type, std::vector<SRestriction>& parts) {
    SRestriction restriction{};
    restriction.rt = type;
    restriction.res.resAnd = {static_cast<ULONG>(parts.size()), parts.data()};
    return restriction;
}

SRestriction Not(SRestriction* inner) {
    SRestriction restriction{};
    restriction.rt = RES_NOT;
    restriction.res.resNot = {0, inner};
    return restriction;
}

}  // namespace

class Restrictions : public StoreTest {
  protected:
    void SetUp() override {
        StoreTest::SetUp();
        m_contacts = OpenContacts();
        Add(L"apple", -1, L"IPM.Contact");
        Add(L"Banana", 2, L"IPM.Contact.Custom");
        Add(L"cherry", 3, L"IPM.Note");
    }
    void TearDown() override {
        m_contacts.Reset();
        StoreTest::TearDown();
    }

    void Add(const wchar_t* subject, SHORT number, const wchar_t* messageClass) const {
        ComPtr<IMessage> message;
        ASSERT_EQ(m_contacts->CreateMessage(nullptr, 0, &message), S_OK);
        SPropValue small{};
        small.ulPropTag = kShort;
        small.Value.i = number;
        SPropValue real{};
        real.ulPropTag = kFloat;
        real.Value.dbl = number / 2.0;
        SPropValue big{};
        big.ulPropTag = kBig;
        big.Value.li.QuadPart = number * (LONGLONG{1} << 40U);
        std::vector<BYTE> bytes = {1, static_cast<BYTE>(number + 100)};
        ASSERT_EQ(Set(message.Get(),
                      {StringValue(PR_SUBJECT_W, subject), LongValue(kNumber, number), small, real, big,
                       BinaryValue(kBytes, bytes), StringValue(PR_MESSAGE_CLASS_W, messageClass)}),
                  S_OK);
        if (number == 3) {
            ASSERT_EQ(Set(message.Get(), {BoolValue(PR_HASATTACH, true)}), S_OK);
        }
        ASSERT_EQ(message->SaveChanges(0), S_OK);
    }

    /// The first letters of the subjects of the rows that a restriction lets through.
    [[nodiscard]] std::wstring Rows(SRestriction restriction) const {
        std::wstring letters;
        for (const std::wstring& text :
             FirstTexts(ContentsOf(m_contacts.Get(), {PR_SUBJECT_W}, &restriction))) {
            letters += text.front();
        }
        return letters;
    }
    [[nodiscard]] HRESULT Result(SRestriction* restriction) const {
        ComPtr<IMAPITable> table;
        EXPECT_EQ(m_contacts->GetContentsTable(0, &table), S_OK);
        return table->Restrict(restriction, 0);
    }

    ComPtr<IMAPIFolder> m_contacts;
};

TEST_F(Restrictions, AllRelationsCompareNumbersBySign) {
    SPropValue two = LongValue(kNumber, 2);
    EXPECT_EQ(Rows(PropertyIs(RELOP_LT, &two)), L"a");
    EXPECT_EQ(Rows(PropertyIs(RELOP_LE, &two)), L"Ba");
    EXPECT_EQ(Rows(PropertyIs(RELOP_GT, &two)), L"c");
    EXPECT_EQ(Rows(PropertyIs(RELOP_GE, &two)), L"Bc");
    EXPECT_EQ(Rows(PropertyIs(RELOP_EQ, &two)), L"B");
    EXPECT_EQ(Rows(PropertyIs(RELOP_NE, &two)), L"ac");
}

TEST_F(Restrictions, CompareEveryKindOfNumber) {
    SPropValue small{};
    small.ulPropTag = kShort;
    small.Value.i = 0;
    EXPECT_EQ(Rows(PropertyIs(RELOP_LT, &small)), L"a");
    SPropValue real{};
    real.ulPropTag = kFloat;
    real.Value.dbl = 1.0;
    EXPECT_EQ(Rows(PropertyIs(RELOP_EQ, &real)), L"B");
    SPropValue big{};
    big.ulPropTag = kBig;
    big.Value.li.QuadPart = 2LL << 40U;
    EXPECT_EQ(Rows(PropertyIs(RELOP_GT, &big)), L"c");
    SPropValue past = TimeValue(PR_LAST_MODIFICATION_TIME, 1);
    EXPECT_EQ(Rows(PropertyIs(RELOP_GT, &past)), L"Bac");
}

TEST_F(Restrictions, CompareBinaries) {
    std::vector<BYTE> bytes = {1, 102};
    SPropValue value = BinaryValue(kBytes, bytes);
    EXPECT_EQ(Rows(PropertyIs(RELOP_EQ, &value)), L"B");
    EXPECT_EQ(Rows(PropertyIs(RELOP_GE, &value)), L"Bc");
}

TEST_F(Restrictions, CompareStringsExactly) {
    SPropValue contact = StringValue(PR_MESSAGE_CLASS_W, L"IPM.Contact");
    EXPECT_EQ(Rows(PropertyIs(RELOP_EQ, &contact)), L"a");
    SPropValue lower = StringValue(PR_MESSAGE_CLASS_W, L"ipm.contact");
    EXPECT_EQ(Rows(PropertyIs(RELOP_EQ, &lower)), L"");
    SPropValue narrow = NarrowValue(PR_MESSAGE_CLASS_A, "IPM.Contact");
    EXPECT_EQ(Rows(PropertyIs(RELOP_EQ, &narrow)), L"a");
}

TEST_F(Restrictions, OrderStringsUnitByUnit) {
    const auto rows = [this](ULONG relation, const wchar_t* text) {
        SPropValue value = StringValue(PR_MESSAGE_CLASS_W, text);
        return Rows(PropertyIs(relation, &value));
    };
    EXPECT_EQ(rows(RELOP_LT, L"IPM.Contact.Custom"), L"a");
    EXPECT_EQ(rows(RELOP_GE, L"IPM.Contact.Custom"), L"Bc");
    EXPECT_EQ(rows(RELOP_GT, L"IPM"), L"Bac");
    EXPECT_EQ(rows(RELOP_GT, L""), L"Bac");
    // The largest unit is larger than a point.
    EXPECT_EQ(rows(RELOP_LT, L"IPM.Contact\xFFFF"), L"Ba");
    EXPECT_EQ(rows(RELOP_NE, L"IPM.Note"), L"Ba");
}

TEST_F(Restrictions, EveryValueButZeroIsTrue) {
    SPropValue value = BoolValue(PR_HASATTACH, true);
    value.Value.b = 0x100;
    EXPECT_EQ(Rows(PropertyIs(RELOP_EQ, &value)), L"c");
    value.Value.b = FALSE;
    EXPECT_EQ(Rows(PropertyIs(RELOP_EQ, &value)), L"Ba");
}

TEST_F(Restrictions, ContentComparesWholeStringsPartsAndPrefixes) {
    SPropValue value = StringValue(PR_SUBJECT_W, L"an");
    EXPECT_EQ(Rows(ContentIs(FL_SUBSTRING, &value)), L"B");
    EXPECT_EQ(Rows(ContentIs(FL_PREFIX, &value)), L"");
    EXPECT_EQ(Rows(ContentIs(FL_FULLSTRING, &value)), L"");
    value = StringValue(PR_SUBJECT_W, L"banana");
    EXPECT_EQ(Rows(ContentIs(FL_FULLSTRING, &value)), L"");
    EXPECT_EQ(Rows(ContentIs(FL_FULLSTRING | FL_IGNORECASE, &value)), L"B");
    value = StringValue(PR_SUBJECT_W, L"A");
    EXPECT_EQ(Rows(ContentIs(FL_PREFIX | FL_IGNORECASE, &value)), L"a");
    std::vector<BYTE> one = {1};
    SPropValue binary = BinaryValue(kBytes, one);
    EXPECT_EQ(Rows(ContentIs(FL_PREFIX, &binary)), L"Bac");
}

TEST_F(Restrictions, AnAbsentPropertyMatchesNothingButNot) {
    SPropValue value = LongValue(0x65FF0003, 1);
    for (const ULONG relation : {RELOP_LT, RELOP_LE, RELOP_GT, RELOP_GE, RELOP_EQ, RELOP_NE}) {
        EXPECT_EQ(Rows(PropertyIs(relation, &value)), L"") << relation;
    }
    SRestriction inner = Exists(0x65FF0003);
    EXPECT_EQ(Rows(inner), L"");
    EXPECT_EQ(Rows(Not(&inner)), L"Bac");
    EXPECT_EQ(Rows(Exists(kNumber)), L"Bac");
}

TEST_F(Restrictions, AndOrAndNotCombine) {
    SPropValue two = LongValue(kNumber, 2);
    SPropValue zero = LongValue(kNumber, 0);
    std::vector<SRestriction> parts = {PropertyIs(RELOP_GT, &zero), PropertyIs(RELOP_LE, &two)};
    EXPECT_EQ(Rows(Group(RES_AND, parts)), L"B");
    EXPECT_EQ(Rows(Group(RES_OR, parts)), L"Bac");
    SRestriction both = Group(RES_AND, parts);
    EXPECT_EQ(Rows(Not(&both)), L"ac");
    std::vector<SRestriction> none;
    EXPECT_EQ(Rows(Group(RES_AND, none)), L"Bac");
    EXPECT_EQ(Rows(Group(RES_OR, none)), L"");
}

TEST_F(Restrictions, OtherKindsAreTooComplex) {
    SPropValue value = LongValue(kNumber, 2);
    SRestriction regular = PropertyIs(RELOP_RE, &value);
    EXPECT_EQ(Result(&regular), MAPI_E_TOO_COMPLEX);
    SRestriction bits{};
    bits.rt = RES_BITMASK;
    EXPECT_EQ(Result(&bits), MAPI_E_TOO_COMPLEX);
    SRestriction fuzzy = ContentIs(3, &value);
    EXPECT_EQ(Result(&fuzzy), MAPI_E_TOO_COMPLEX);
}

TEST_F(Restrictions, OfMoreThan64LevelsAreTooComplex) {
    for (const auto& [levels, result] :
         {std::pair(63U, S_OK), std::pair(64U, S_OK), std::pair(65U, MAPI_E_TOO_COMPLEX),
          std::pair(1000U, MAPI_E_TOO_COMPLEX)}) {
        std::vector<SRestriction> chain(levels);
        for (std::size_t i = 0; i + 1 < chain.size(); ++i) {
            chain[i] = Not(&chain[i + 1]);
        }
        chain.back() = Exists(kNumber);
        EXPECT_EQ(Result(chain.data()), result) << levels;
    }
}

TEST_F(Restrictions, NullPointersAreInvalid) {
    SRestriction noValue{};
    noValue.rt = RES_PROPERTY;
    noValue.res.resProperty = {RELOP_EQ, PR_SUBJECT_W, nullptr};
    EXPECT_EQ(Result(&noValue), MAPI_E_INVALID_PARAMETER);
    SRestriction noParts{};
    noParts.rt = RES_AND;
    noParts.res.resAnd = {2, nullptr};
    EXPECT_EQ(Result(&noParts), MAPI_E_INVALID_PARAMETER);
    SRestriction notNothing = Not(nullptr);
    EXPECT_EQ(Result(&notNothing), MAPI_E_INVALID_PARAMETER);
}
