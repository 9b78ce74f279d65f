#include "contacts/contact_record.h"

#include <gtest/gtest.h>

#include <map>

#include "contacts/contact_fields.h"
#include "tests/unit/text_printer.h"

namespace {

/// All texts of a flat record that are not empty, by field id.
std::map<std::int32_t, CString> Texts(tagContactFields& fields) {
    std::map<std::int32_t, CString> texts;
    for (const ContactField& field : kContactFields) {
        if (field.member != nullptr && !field.member(fields).empty()) {
            texts[field.id] = field.member(fields);
        }
    }
    return texts;
}

TEST(ContactRecord, AddFieldWithAnEmptyValueAddsNothing) {
    CContactEx contact;
    EXPECT_EQ(contact.AddField(1, L""), 0);
    EXPECT_TRUE(contact.m_arrFields.IsEmpty());
}

TEST(ContactRecord, AddFieldAppendsInOrderAndKeepsDuplicates) {
    CContactEx contact;
    EXPECT_EQ(contact.AddField(2, L"b"), 1);
    EXPECT_EQ(contact.AddField(1, L"a"), 1);
    EXPECT_EQ(contact.AddField(2, L"c"), 1);
    ASSERT_EQ(contact.m_arrFields.GetSize(), 3U);
    EXPECT_EQ(contact.m_arrFields[0]->m_nFieldId, 2);
    EXPECT_EQ(contact.m_arrFields[1]->m_strValue, L"a");
    EXPECT_EQ(contact.m_arrFields[2]->m_strValue, L"c");
}

TEST(ContactRecord, AddFieldCopyCopiesEveryMemberDeeply) {
    CContactInfoEx source;
    source.m_nFieldId = 5;
    source.m_strValue = L"value";
    source.m_strPicPath = L"C:\\a.jpg";
    source.m_mapReserved7[3] = L"three";
    CContactEx contact;
    EXPECT_EQ(contact.AddFieldCopy(source), 1);
    source.Reset();
    EXPECT_TRUE(source.m_strValue.empty());
    EXPECT_TRUE(source.m_mapReserved7.empty());
    EXPECT_EQ(contact.m_arrFields[0]->m_strPicPath, L"C:\\a.jpg");
    EXPECT_EQ(contact.m_arrFields[0]->m_mapReserved7.at(3), L"three");
}

TEST(ContactRecord, IndexOutsideTheListRaises) {
    CContactEx contact;
    contact.AddField(1, L"a");
    EXPECT_THROW((void)contact.m_arrFields[1], CInvalidArgException);
}

TEST(ContactRecord, DefaultsOfAnEntry) {
    const CContactInfoEx entry;
    EXPECT_EQ(entry.m_nTypeCode, 100);
    EXPECT_EQ(entry.m_nFieldId, 0);
    EXPECT_EQ(entry.m_arrReserved2, (std::array<std::int32_t, 3>{-1, -1, -1}));
    EXPECT_EQ(entry.m_nReserved4, -1);
    EXPECT_EQ(entry.m_nReserved5, 0);
    EXPECT_EQ(entry.m_nReserved9, -1);
}

TEST(ContactRecord, ResetEmptiesTheListAndTakesTheCurrentLocalTime) {
    CContactEx contact;
    contact.AddField(1, L"a");
    contact.m_lFlag = 8;
    contact.m_strPIMID = L"00AB";
    contact.m_strCsFolder = L"Contacts";
    contact.m_dtLastModified = COleDateTime();
    const COleDateTime before = COleDateTime::GetCurrentTime();
    contact.Reset();
    EXPECT_TRUE(contact.m_arrFields.IsEmpty());
    EXPECT_EQ(contact.m_lFlag, 0);
    EXPECT_EQ(contact.m_strPIMID, L"");
    EXPECT_EQ(contact.m_strCsFolder, L"");
    EXPECT_EQ(contact.m_dtLastModified.m_status, 0);
    EXPECT_EQ(contact.m_dtStamp.m_status, 0);
    EXPECT_TRUE(contact.m_dtLastModified >= before);
    EXPECT_TRUE(COleDateTime::GetCurrentTime() >= contact.m_dtLastModified);
}

TEST(FlatContact, PrimaryNumberIsDropped) {
    CContactEx contact;
    contact.AddField(118, L"555");
    contact.m_lFlag = 4;
    contact.m_strPIMID = L"00AB";
    contact.m_strCsFolder = L"Contacts";
    contact.m_dtStamp.m_dt = 40000.5;
    contact.m_dtLastModified.m_dt = 41000.25;
    tagContactFields fields;
    fields.CopyFrom(contact);
    EXPECT_TRUE(Texts(fields).empty());
    EXPECT_EQ(fields.m_strPrimaryNumber, L"");
    EXPECT_EQ(fields.m_lFlag, 4);
    EXPECT_EQ(fields.m_strPIMID, L"00AB");
    EXPECT_EQ(fields.m_strCsFolder, L"Contacts");
    EXPECT_EQ(fields.m_dtStamp.m_dt, 40000.5);
    EXPECT_EQ(fields.m_dtLastModified.m_dt, 41000.25);
}

TEST(FlatContact, LastMessagingAddressWinsWithItsPrefix) {
    CContactEx contact;
    contact.AddField(4023, L"joe");
    contact.AddField(4025, L"jim");
    tagContactFields fields;
    fields.CopyFrom(contact);
    EXPECT_EQ(fields.m_strIMAddress, L"YAHOO:jim");
}

TEST(FlatContact, MessagingPrefixes) {
    const std::pair<std::int32_t, const wchar_t*> services[] = {
        {4022, L"x"},    {4023, L"AIM:x"},   {4024, L"WINDOWSLIVE:x"}, {4025, L"YAHOO:x"}, {4026, L"SKYPE:x"},
        {4027, L"QQ:x"}, {4028, L"GTALK:x"}, {4029, L"ICQ:x"},         {4030, L"JABBER:x"}};
    for (const auto& [fieldId, text] : services) {
        CContactEx contact;
        contact.AddField(fieldId, L"x");
        tagContactFields fields;
        fields.CopyFrom(contact);
        EXPECT_EQ(fields.m_strIMAddress, text);
    }
}

TEST(FlatContact, PhotoComesFromTheFirstNameFieldThatExists) {
    CContactInfoEx lastName;
    lastName.m_nFieldId = 2;
    lastName.m_strValue = L"Doe";
    CContactInfoEx fullName;
    fullName.m_nFieldId = 5;
    fullName.m_strValue = L"John Doe";
    fullName.m_strPicPath = L"C:\\a.jpg";
    CContactEx contact;
    contact.AddFieldCopy(lastName);
    contact.AddFieldCopy(fullName);
    tagContactFields fields;
    fields.CopyFrom(contact);
    EXPECT_EQ(fields.m_strPicPath, L"");
}

TEST(FlatContact, PhotoOfTheOrderFirstLastMiddleFull) {
    for (const std::int32_t fieldId : {1, 2, 3, 5}) {
        CContactInfoEx entry;
        entry.m_nFieldId = fieldId;
        entry.m_strValue = L"name";
        entry.m_strPicPath = L"C:\\a.jpg";
        CContactEx contact;
        contact.AddField(1000, L"a@example.com");
        contact.AddFieldCopy(entry);
        tagContactFields fields;
        fields.CopyFrom(contact);
        EXPECT_EQ(fields.m_strPicPath, L"C:\\a.jpg");
    }
}

TEST(FlatContact, LaterOfTwoEntriesOfOneIdWins) {
    CContactEx contact;
    contact.AddField(2021, L"PO 1");
    contact.AddField(2021, L"PO 2");
    tagContactFields fields;
    fields.CopyFrom(contact);
    EXPECT_EQ(fields.m_BusinessAddress.m_strPobox, L"PO 2");
}

TEST(FlatContact, UnknownIdsAreIgnored) {
    CContactEx contact;
    contact.AddField(4, L"a");
    contact.AddField(99999, L"b");
    tagContactFields fields;
    fields.CopyFrom(contact);
    EXPECT_TRUE(Texts(fields).empty());
}

TEST(FlatContact, CopyFromForgetsWhatWasThere) {
    CContactEx contact;
    contact.AddField(1, L"John");
    tagContactFields fields;
    fields.CopyFrom(contact);
    contact.Reset();
    fields.CopyFrom(contact);
    EXPECT_TRUE(Texts(fields).empty());
}

TEST(ContactFields, EachFieldFillsAMemberOfItsOwnButTheMessagingAddresses) {
    for (const ContactField& field : kContactFields) {
        if (field.member == nullptr) {
            continue;
        }
        CContactEx contact;
        contact.AddField(field.id, L"x");
        tagContactFields fields;
        fields.CopyFrom(contact);
        const auto texts = Texts(fields);
        EXPECT_EQ(texts.size(), field.id >= 4022 && field.id <= 4030 ? 9U : 1U) << field.id;
        EXPECT_TRUE(texts.contains(field.id)) << field.id;
    }
}

TEST(ContactFields, EachNumberFillsTheMemberOfItsKind) {
    const std::pair<std::int32_t, CString tagContactFields::*> members[] = {
        {1, &tagContactFields::m_strFirstName},         {2, &tagContactFields::m_strLastName},
        {3, &tagContactFields::m_strMiddleName},        {5, &tagContactFields::m_strFullName},
        {100, &tagContactFields::m_strBusinessNumber1}, {101, &tagContactFields::m_strBusinessNumber2},
        {102, &tagContactFields::m_strHomeNumber1},     {103, &tagContactFields::m_strHomeNumber2},
        {104, &tagContactFields::m_strMobile},          {106, &tagContactFields::m_strPager},
        {108, &tagContactFields::m_strOtherNumber},     {110, &tagContactFields::m_strOtherFax},
        {111, &tagContactFields::m_strHomeFax},         {112, &tagContactFields::m_strBusinessFax},
        {113, &tagContactFields::m_strCallBackNumber},  {114, &tagContactFields::m_strCarNumber},
        {115, &tagContactFields::m_strIsdnNumber},      {116, &tagContactFields::m_strCompanyNumber},
        {117, &tagContactFields::m_strAssistantNumber}, {119, &tagContactFields::m_strRadioNumber},
        {120, &tagContactFields::m_strTelexNumber},     {121, &tagContactFields::m_strTtyTddNumber},
        {1000, &tagContactFields::m_strEmail1},         {1001, &tagContactFields::m_strEmail2},
        {1002, &tagContactFields::m_strEmail3},         {1500, &tagContactFields::m_strWeb1},
        {1501, &tagContactFields::m_strWeb2},           {3002, &tagContactFields::m_strBody},
        {3018, &tagContactFields::m_strCategories},     {4001, &tagContactFields::m_strPrefixName},
        {4003, &tagContactFields::m_strBirthday},       {4004, &tagContactFields::m_strCompany},
        {4005, &tagContactFields::m_strNickName},       {4011, &tagContactFields::m_strSuffixName},
        {4015, &tagContactFields::m_strJobTitle},       {4019, &tagContactFields::m_strAnniversary},
        {4037, &tagContactFields::m_strYomiFirstName},  {4038, &tagContactFields::m_strYomiLastName},
    };
    for (const auto& [fieldId, member] : members) {
        CContactEx contact;
        contact.AddField(fieldId, L"x");
        tagContactFields fields;
        fields.CopyFrom(contact);
        EXPECT_EQ(fields.*member, L"x") << fieldId;
    }
}

TEST(ContactFields, EachAddressFieldFillsTheMemberOfItsKind) {
    const std::tuple<std::int32_t, tagContactAddress tagContactFields::*, CString tagContactAddress::*>
        members[] = {
            {2002, &tagContactFields::m_HomeAddress, &tagContactAddress::m_strStreet1},
            {2004, &tagContactFields::m_HomeAddress, &tagContactAddress::m_strCity},
            {2005, &tagContactFields::m_HomeAddress, &tagContactAddress::m_strState},
            {2006, &tagContactFields::m_HomeAddress, &tagContactAddress::m_strZip},
            {2008, &tagContactFields::m_HomeAddress, &tagContactAddress::m_strCountry},
            {2019, &tagContactFields::m_HomeAddress, &tagContactAddress::m_strPobox},
            {2010, &tagContactFields::m_BusinessAddress, &tagContactAddress::m_strStreet1},
            {2012, &tagContactFields::m_BusinessAddress, &tagContactAddress::m_strCity},
            {2013, &tagContactFields::m_BusinessAddress, &tagContactAddress::m_strState},
            {2014, &tagContactFields::m_BusinessAddress, &tagContactAddress::m_strZip},
            {2016, &tagContactFields::m_BusinessAddress, &tagContactAddress::m_strCountry},
            {2021, &tagContactFields::m_BusinessAddress, &tagContactAddress::m_strPobox},
            {2032, &tagContactFields::m_OtherAddress, &tagContactAddress::m_strStreet1},
            {2034, &tagContactFields::m_OtherAddress, &tagContactAddress::m_strCity},
            {2035, &tagContactFields::m_OtherAddress, &tagContactAddress::m_strState},
            {2036, &tagContactFields::m_OtherAddress, &tagContactAddress::m_strZip},
            {2038, &tagContactFields::m_OtherAddress, &tagContactAddress::m_strCountry},
            {2030, &tagContactFields::m_OtherAddress, &tagContactAddress::m_strPobox},
        };
    for (const auto& [fieldId, address, member] : members) {
        CContactEx contact;
        contact.AddField(fieldId, L"x");
        tagContactFields fields;
        fields.CopyFrom(contact);
        EXPECT_EQ(fields.*address.*member, L"x") << fieldId;
    }
}

TEST(ContactFields, CompanyNameAndCompanyNumberAreTwoFields) {
    CContactEx contact;
    contact.AddField(116, L"555");
    contact.AddField(4004, L"Example");
    tagContactFields fields;
    fields.CopyFrom(contact);
    EXPECT_EQ(fields.m_strCompanyNumber, L"555");
    EXPECT_EQ(fields.m_strCompany, L"Example");
}

}  // namespace
