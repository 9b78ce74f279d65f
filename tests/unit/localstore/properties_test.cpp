#include "store_fixture.h"

using namespace localstore_test;

class Properties : public StoreTest {
  protected:
    void SetUp() override {
        StoreTest::SetUp();
        m_contacts = OpenContacts();
        ASSERT_EQ(m_contacts->CreateMessage(nullptr, 0, &m_message), S_OK);
    }
    void TearDown() override {
        m_message.Reset();
        m_contacts.Reset();
        StoreTest::TearDown();
    }
    /// The message as it comes from the disk.
    [[nodiscard]] ComPtr<IMessage> Saved() const {
        EXPECT_EQ(m_message->SaveChanges(FORCE_SAVE), S_OK);
        localstore::recorder::SetRoot(Root());
        return OpenMessage(m_contacts.Get(), IdOf(m_message.Get()));
    }

    ComPtr<IMAPIFolder> m_contacts;
    ComPtr<IMessage> m_message;
};

TEST_F(Properties, AnAbsentOneIsAnErrorAndTheResultAWarning) {
    SizedSPropTagArray(2, tags) = {2, {PR_SURNAME_W, PR_OBJECT_TYPE}};
    ULONG count = 0;
    MapiBuffer<SPropValue> values;
    EXPECT_EQ(
        m_message->GetProps(reinterpret_cast<LPSPropTagArray>(&tags), MAPI_UNICODE, &count, values.Put()),
        MAPI_W_ERRORS_RETURNED);
    ASSERT_EQ(count, 2U);
    EXPECT_EQ(values.Get()[0].ulPropTag, CHANGE_PROP_TYPE(PR_SURNAME_W, PT_ERROR));
    EXPECT_EQ(values.Get()[0].Value.err, MAPI_E_NOT_FOUND);
    EXPECT_EQ(values.Get()[1].Value.l, static_cast<LONG>(MAPI_MESSAGE));
}

TEST_F(Properties, StringsComeInTheWidthAskedFor) {
    ASSERT_EQ(Set(m_message.Get(), {StringValue(PR_SURNAME_W, L"M\x00FCller")}), S_OK);
    const OneValue wide(m_message.Get(), PR_SURNAME_W, 0);
    EXPECT_EQ(wide.Result(), S_OK);
    EXPECT_STREQ(wide.Value().Value.lpszW, L"M\x00FCller");
    const OneValue narrow(m_message.Get(), PR_SURNAME_A);
    EXPECT_EQ(narrow.Result(), S_OK);
    ASSERT_EQ(narrow.Value().ulPropTag, PR_SURNAME_A);
    wchar_t back[32] = {};
    MultiByteToWideChar(CP_ACP, 0, narrow.Value().Value.lpszA, -1, back, 32);
    EXPECT_STREQ(back, L"M\x00FCller");
}

TEST_F(Properties, AnEmptyStringHasItsTerminatorInBothWidths) {
    ASSERT_EQ(Set(m_message.Get(), {StringValue(PR_SURNAME_W, L"")}), S_OK);
    const OneValue wide(m_message.Get(), PR_SURNAME_W);
    ASSERT_EQ(wide.Value().ulPropTag, PR_SURNAME_W);
    EXPECT_STREQ(wide.Value().Value.lpszW, L"");
    const OneValue narrow(m_message.Get(), PR_SURNAME_A);
    ASSERT_EQ(narrow.Value().ulPropTag, PR_SURNAME_A);
    EXPECT_STREQ(narrow.Value().Value.lpszA, "");
}

TEST_F(Properties, AnUnspecifiedStringFollowsTheFlag) {
    ASSERT_EQ(Set(m_message.Get(), {StringValue(PR_SURNAME_W, L"Doe")}), S_OK);
    const ULONG unspecified = CHANGE_PROP_TYPE(PR_SURNAME_W, PT_UNSPECIFIED);
    EXPECT_EQ(OneValue(m_message.Get(), unspecified).Value().ulPropTag, PR_SURNAME_W);
    EXPECT_EQ(OneValue(m_message.Get(), unspecified, 0).Value().ulPropTag, PR_SURNAME_A);
    EXPECT_EQ(OneValue(m_message.Get(), CHANGE_PROP_TYPE(PR_OBJECT_TYPE, PT_UNSPECIFIED)).Value().ulPropTag,
              PR_OBJECT_TYPE);
}

TEST_F(Properties, NarrowStringsAreTakenInTheSystemsCodePage) {
    ASSERT_EQ(Set(m_message.Get(), {NarrowValue(PR_SURNAME_A, "Doe")}), S_OK);
    EXPECT_EQ(TextOf(m_message.Get(), PR_SURNAME_W), L"Doe");
}

TEST_F(Properties, AnotherTypeIsNotFound) {
    ASSERT_EQ(Set(m_message.Get(), {StringValue(PR_SURNAME_W, L"Doe")}), S_OK);
    EXPECT_EQ(OneValue(m_message.Get(), CHANGE_PROP_TYPE(PR_SURNAME_W, PT_LONG)).Error(), MAPI_E_NOT_FOUND);
    EXPECT_EQ(OneValue(m_message.Get(), CHANGE_PROP_TYPE(PR_SURNAME_W, PT_MV_UNICODE)).Error(),
              MAPI_E_NOT_FOUND);
}

TEST_F(Properties, EveryTypeSurvivesTheDisk) {
    std::vector<BYTE> bytes = {0, 1, 2, 0xFF, 0};
    std::vector<BYTE> none;
    GUID guid = {1, 2, 3, {4, 5, 6, 7, 8, 9, 10, 11}};
    SPropValue values[10] = {};
    values[0].ulPropTag = 0x66000002;
    values[0].Value.i = -3;
    values[1] = LongValue(0x66010003, -70'000);
    values[2].ulPropTag = 0x66020004;
    values[2].Value.flt = 1.5F;
    values[3].ulPropTag = 0x66030005;
    values[3].Value.dbl = -2.25;
    values[4].ulPropTag = 0x66040014;
    values[4].Value.li.QuadPart = -5'000'000'000;
    values[5] = BoolValue(0x6605000B, true);
    values[6] = TimeValue(0x66060040, 133'028'350'894'300'000);
    values[7] = BinaryValue(0x66070102, bytes);
    values[8] = BinaryValue(0x66080102, none);
    values[9].ulPropTag = 0x66090048;
    values[9].Value.lpguid = &guid;
    ASSERT_EQ(m_message->SetProps(10, values, nullptr), S_OK);
    const ComPtr<IMessage> saved = Saved();
    EXPECT_EQ(OneValue(saved.Get(), 0x66000002).Value().Value.i, -3);
    EXPECT_EQ(OneValue(saved.Get(), 0x66010003).Value().Value.l, -70'000);
    EXPECT_EQ(OneValue(saved.Get(), 0x66020004).Value().Value.flt, 1.5F);
    EXPECT_EQ(OneValue(saved.Get(), 0x66030005).Value().Value.dbl, -2.25);
    EXPECT_EQ(OneValue(saved.Get(), 0x66040014).Value().Value.li.QuadPart, -5'000'000'000);
    EXPECT_EQ(OneValue(saved.Get(), 0x6605000B).Value().Value.b, TRUE);
    EXPECT_EQ(OneValue(saved.Get(), 0x66060040).Time(), 133'028'350'894'300'000U);
    EXPECT_EQ(OneValue(saved.Get(), 0x66070102).Bytes(), bytes);
    const OneValue empty(saved.Get(), 0x66080102);
    EXPECT_EQ(empty.Error(), S_OK);
    EXPECT_EQ(empty.Value().Value.bin.cb, 0U);
    EXPECT_TRUE(IsEqualGUID(*OneValue(saved.Get(), 0x66090048).Value().Value.lpguid, guid));
}

TEST_F(Properties, MultipleValuesSurviveTheDisk) {
    LPWSTR texts[] = {const_cast<LPWSTR>(L"a"), const_cast<LPWSTR>(L""), const_cast<LPWSTR>(L"\x5C71")};
    LONG numbers[] = {1, -2};
    BYTE seven = 7;
    SBinary binaries[] = {{1, &seven}, {0, nullptr}};
    SPropValue values[3] = {};
    values[0].ulPropTag = 0x6610101F;
    values[0].Value.MVszW = {3, texts};
    values[1].ulPropTag = 0x66111003;
    values[1].Value.MVl = {2, numbers};
    values[2].ulPropTag = 0x66121102;
    values[2].Value.MVbin = {2, binaries};
    ASSERT_EQ(m_message->SetProps(3, values, nullptr), S_OK);
    const ComPtr<IMessage> saved = Saved();
    const OneValue words(saved.Get(), 0x6610101F);
    ASSERT_EQ(words.Value().Value.MVszW.cValues, 3U);
    EXPECT_STREQ(words.Value().Value.MVszW.lppszW[0], L"a");
    EXPECT_STREQ(words.Value().Value.MVszW.lppszW[1], L"");
    EXPECT_STREQ(words.Value().Value.MVszW.lppszW[2], L"\x5C71");
    const OneValue narrow(saved.Get(), 0x6610101E);
    ASSERT_EQ(narrow.Value().Value.MVszA.cValues, 3U);
    EXPECT_STREQ(narrow.Value().Value.MVszA.lppszA[0], "a");
    const OneValue counts(saved.Get(), 0x66111003);
    ASSERT_EQ(counts.Value().Value.MVl.cValues, 2U);
    EXPECT_EQ(counts.Value().Value.MVl.lpl[1], -2);
    const OneValue data(saved.Get(), 0x66121102);
    ASSERT_EQ(data.Value().Value.MVbin.cValues, 2U);
    EXPECT_EQ(data.Value().Value.MVbin.lpbin[0].lpb[0], 7);
    EXPECT_EQ(data.Value().Value.MVbin.lpbin[1].cb, 0U);
}

TEST_F(Properties, DeletePropsTakesNoNoticeOfTheType) {
    std::vector<BYTE> bytes = {1};
    ASSERT_EQ(Set(m_message.Get(), {BinaryValue(0x66200102, bytes)}), S_OK);
    EXPECT_EQ(Delete(m_message.Get(), {0x66200040}), S_OK);
    EXPECT_EQ(OneValue(m_message.Get(), 0x66200102).Error(), MAPI_E_NOT_FOUND);
}

TEST_F(Properties, ProblemsNameTheValueThatCouldNotBeSet) {
    SPropValue values[] = {StringValue(PR_SURNAME_W, L"Doe"), LongValue(PR_OBJECT_TYPE, 1),
                           StringValue(PR_GIVEN_NAME_W, nullptr), LongValue(0x6630000A, 5)};
    MapiBuffer<SPropProblemArray> problems;
    EXPECT_EQ(m_message->SetProps(4, values, problems.Put()), S_OK);
    ASSERT_TRUE(problems);
    ASSERT_EQ(problems->cProblem, 2U);
    const SPropProblem* const problem = problems->aProblem;
    EXPECT_EQ(problem[0].ulIndex, 1U);
    EXPECT_EQ(problem[0].scode, MAPI_E_COMPUTED);
    EXPECT_EQ(problem[1].ulIndex, 2U);
    EXPECT_EQ(problem[1].scode, MAPI_E_INVALID_PARAMETER);
    EXPECT_EQ(TextOf(m_message.Get(), PR_SURNAME_W), L"Doe");

    SizedSPropTagArray(2, tags) = {2, {PR_SURNAME_W, PR_GENERATION_W}};
    EXPECT_EQ(m_message->DeleteProps(reinterpret_cast<LPSPropTagArray>(&tags), problems.Put()), S_OK);
    ASSERT_EQ(problems->cProblem, 1U);
    EXPECT_EQ(problems->aProblem[0].ulPropTag, PR_GENERATION_W);
    EXPECT_EQ(problems->aProblem[0].scode, MAPI_E_NOT_FOUND);
    EXPECT_EQ(m_message->SetProps(1, values, problems.Put()), S_OK);
    EXPECT_FALSE(problems);
}

TEST_F(Properties, WithoutAListAllAreRead) {
    ASSERT_EQ(Set(m_message.Get(), {StringValue(PR_SURNAME_W, L"Doe")}), S_OK);
    const ULONG named = NamedTag(m_message.Get(), 0x00062004, 0x8005, PT_UNICODE);
    ASSERT_EQ(Set(m_message.Get(), {StringValue(named, L"name")}), S_OK);
    ULONG count = 0;
    MapiBuffer<SPropValue> values;
    EXPECT_EQ(m_message->GetProps(nullptr, MAPI_UNICODE, &count, values.Put()), S_OK);
    MapiBuffer<SPropTagArray> tags;
    EXPECT_EQ(m_message->GetPropList(MAPI_UNICODE, tags.Put()), S_OK);
    ASSERT_EQ(tags->cValues, count);
    int found = 0;
    for (ULONG i = 0; i < count; ++i) {
        EXPECT_EQ(values.Get()[i].ulPropTag, tags->aulPropTag[i]);
        const ULONG tag = tags->aulPropTag[i];
        found += tag == PR_SURNAME_W || tag == named || tag == PR_ENTRYID ? 1 : 0;
    }
    EXPECT_EQ(found, 3);
}

TEST_F(Properties, ALongValueNeedsAStream) {
    std::vector<BYTE> bytes(32'768, 1);
    ASSERT_EQ(Set(m_message.Get(), {BinaryValue(0x66400102, bytes)}), S_OK);
    EXPECT_EQ(OneValue(m_message.Get(), 0x66400102).Bytes(), bytes);
    bytes.push_back(2);
    ASSERT_EQ(Set(m_message.Get(), {BinaryValue(0x66400102, bytes)}), S_OK);
    EXPECT_EQ(OneValue(m_message.Get(), 0x66400102).Error(), MAPI_E_NOT_ENOUGH_MEMORY);
    EXPECT_EQ(ReadStream(m_message.Get(), 0x66400102), bytes);
}

TEST_F(Properties, ASubjectBringsItsPrefixAndNormalizedForm) {
    const struct {
        const wchar_t* subject;
        const wchar_t* prefix;
        const wchar_t* normalized;
    } cases[] = {
        {L"Lunch", L"", L"Lunch"}, {L"RE: Lunch", L"RE: ", L"Lunch"}, {L"Fwd: Lunch", L"Fwd: ", L"Lunch"},
        {L"R2: x", L"", L"R2: x"}, {L"Long: x", L"", L"Long: x"},     {L": x", L"", L": x"},
        {L"RE:x", L"", L"RE:x"},
    };
    for (const auto& one : cases) {
        ASSERT_EQ(Set(m_message.Get(), {StringValue(PR_SUBJECT_W, one.subject)}), S_OK);
        EXPECT_EQ(TextOf(m_message.Get(), PR_SUBJECT_PREFIX_W), one.prefix) << one.subject;
        EXPECT_EQ(TextOf(m_message.Get(), PR_NORMALIZED_SUBJECT_W), one.normalized) << one.subject;
    }
    ASSERT_EQ(Delete(m_message.Get(), {PR_SUBJECT_W}), S_OK);
    EXPECT_EQ(OneValue(m_message.Get(), PR_NORMALIZED_SUBJECT_W).Error(), MAPI_E_NOT_FOUND);
}

TEST_F(Properties, ANewBodyMakesTheOtherFormsInvalid) {
    std::vector<BYTE> rtf = {1, 2, 3};
    const SPropValue other = BinaryValue(PR_RTF_COMPRESSED, rtf);
    ASSERT_EQ(Set(m_message.Get(), {StringValue(PR_BODY_W, L"text"), other}), S_OK);
    ASSERT_EQ(Set(m_message.Get(), {StringValue(PR_BODY_W, L"text")}), S_OK);
    EXPECT_EQ(OneValue(m_message.Get(), PR_RTF_COMPRESSED).Bytes(), rtf);
    ASSERT_EQ(Set(m_message.Get(), {StringValue(PR_BODY_W, L"new text")}), S_OK);
    EXPECT_EQ(OneValue(m_message.Get(), PR_RTF_COMPRESSED).Error(), MAPI_E_NOT_FOUND);
    ASSERT_EQ(Set(m_message.Get(), {other}), S_OK);
    ASSERT_EQ(Delete(m_message.Get(), {PR_BODY_W}), S_OK);
    EXPECT_EQ(OneValue(m_message.Get(), PR_RTF_COMPRESSED).Error(), MAPI_E_NOT_FOUND);
}

TEST_F(Properties, AMessageHasWhatEveryMessageNeeds) {
    const ComPtr<IMessage> saved = Saved();
    EXPECT_EQ(TextOf(saved.Get(), PR_MESSAGE_CLASS_W), L"IPM.Note");
    EXPECT_EQ(OneValue(saved.Get(), PR_SEARCH_KEY).Bytes().size(), 16U);
    EXPECT_EQ(OneValue(saved.Get(), PR_HASATTACH).Value().Value.b, FALSE);
    EXPECT_GT(OneValue(saved.Get(), PR_MESSAGE_SIZE).Value().Value.l, 512);
    EXPECT_EQ(OneValue(saved.Get(), PR_PARENT_ENTRYID).Bytes(), IdOf(m_contacts.Get()));
    EXPECT_EQ(OneValue(saved.Get(), PR_STORE_ENTRYID).Bytes(), IdOf(OpenStore(LogOn().Get()).Get()));
    EXPECT_EQ(OneValue(saved.Get(), PR_RECORD_KEY).Bytes(), IdOf(saved.Get()));
    EXPECT_NE(OneValue(saved.Get(), 0x340D0003).Value().Value.l & 0x00040000, 0);
}

TEST_F(Properties, UnknownFlagsAndNullsAreRefused) {
    ULONG count = 0;
    MapiBuffer<SPropValue> values;
    EXPECT_EQ(m_message->GetProps(nullptr, 4, &count, values.Put()), MAPI_E_UNKNOWN_FLAGS);
    EXPECT_EQ(m_message->GetProps(nullptr, 0, nullptr, values.Put()), MAPI_E_INVALID_PARAMETER);
    EXPECT_EQ(m_message->SetProps(1, nullptr, nullptr), MAPI_E_INVALID_PARAMETER);
    EXPECT_EQ(m_message->DeleteProps(nullptr, nullptr), MAPI_E_INVALID_PARAMETER);
    EXPECT_EQ(m_message->SaveChanges(0x100), MAPI_E_UNKNOWN_FLAGS);
}

TEST_F(Properties, HrGetOnePropGivesAFailureForAnAbsentOne) {
    MapiBuffer<SPropValue> value;
    EXPECT_EQ(pfnHrGetOneProp(m_message.Get(), PR_SURNAME_W, value.Put()), MAPI_E_NOT_FOUND);
    EXPECT_FALSE(value);
    ASSERT_EQ(Set(m_message.Get(), {StringValue(PR_SURNAME_W, L"Doe")}), S_OK);
    EXPECT_EQ(pfnHrGetOneProp(m_message.Get(), PR_SURNAME_W, value.Put()), S_OK);
    EXPECT_STREQ(value->Value.lpszW, L"Doe");
}

TEST_F(Properties, AreReadAndSetAtMost65536AtATime) {
    for (const auto& [count, isTaken] : {std::pair(65'536U, true), std::pair(65'537U, false)}) {
        std::vector<ULONG> tags(1 + count, PR_SUBJECT_W);
        tags[0] = count;
        ULONG read = 0;
        MapiBuffer<SPropValue> values;
        EXPECT_EQ(m_message->GetProps(reinterpret_cast<LPSPropTagArray>(tags.data()), MAPI_UNICODE, &read,
                                      values.Put()) == MAPI_E_INVALID_PARAMETER,
                  !isTaken);
        EXPECT_EQ(read, isTaken ? count : 0U);
        std::vector<SPropValue> list(count, LongValue(0x65000003, 1));
        EXPECT_EQ(m_message->SetProps(count, list.data(), nullptr),
                  isTaken ? S_OK : MAPI_E_INVALID_PARAMETER);
    }
}
