#include "contacts/contact_fields.h"

#include <algorithm>

namespace {

// A function that finds one member. The name of a member behind a dot cannot stand in parentheses.
// NOLINTNEXTLINE(bugprone-macro-parentheses)
#define MEMBER(name) [](tagContactFields& fields) -> CString& { return fields.name; }

constexpr ContactField kFields[] = {
    {1, WIDE("FirstName"), MEMBER(m_strFirstName), WIDE("FirstName"), 0x3A06001F, 0},
    {2, WIDE("LastName"), MEMBER(m_strLastName), WIDE("LastName"), 0x3A11001F, 0},
    {3, WIDE("MiddleName"), MEMBER(m_strMiddleName), WIDE("MiddleName"), 0x3A44001F, 0},
    {5, WIDE("FullName"), MEMBER(m_strFullName), nullptr, 0, 0},
    {100, WIDE("BusinessNumber1"), MEMBER(m_strBusinessNumber1), WIDE("BusinessNumber"), 0x3A08001F, 0},
    {101, WIDE("BusinessNumber2"), MEMBER(m_strBusinessNumber2), WIDE("BusinessNumber2"), 0x3A1B001F, 0},
    {102, WIDE("HomeNumber1"), MEMBER(m_strHomeNumber1), WIDE("HomeNumber1"), 0x3A09001F, 0},
    {103, WIDE("HomeNumber2"), MEMBER(m_strHomeNumber2), WIDE("HomeNumber2"), 0x3A2F001F, 0},
    {104, WIDE("Mobile"), MEMBER(m_strMobile), WIDE("Mobile1"), 0x3A1C001F, 0},
    {106, WIDE("Pager"), MEMBER(m_strPager), WIDE("Pager1"), 0x3A21001F, 0},
    {108, WIDE("OtherNumber"), MEMBER(m_strOtherNumber), WIDE("OtherNumber"), 0x3A1F001F, 0},
    {110, WIDE("OtherFax"), MEMBER(m_strOtherFax), WIDE("OtherFax"), 0x3A23001F, 0},
    {111, WIDE("HomeFax"), MEMBER(m_strHomeFax), WIDE("HomeFax"), 0x3A25001F, 0},
    {112, WIDE("BusinessFax"), MEMBER(m_strBusinessFax), WIDE("BusinessFax"), 0x3A24001F, 0},
    {113, WIDE("CallBackNumber"), MEMBER(m_strCallBackNumber), WIDE("CallBackNumber"), 0x3A02001F, 0},
    {114, WIDE("CarNumber"), MEMBER(m_strCarNumber), WIDE("CarNumber"), 0x3A1E001F, 0},
    {115, WIDE("IsdnNumber"), MEMBER(m_strIsdnNumber), WIDE("IsdnNumber"), 0x3A2D001F, 0},
    {116, WIDE("CompanyNumber"), MEMBER(m_strCompanyNumber), WIDE("CompanyNumber"), 0x3A57001F, 0},
    {117, WIDE("AssistantNumber"), MEMBER(m_strAssistantNumber), WIDE("AssistantNumber"), 0x3A2E001F, 0},
    {118, WIDE("PrimaryNumber"), nullptr, WIDE("PrimaryNumber"), 0x3A1A001F, 0},
    {119, WIDE("RadioNumber"), MEMBER(m_strRadioNumber), WIDE("RadioNumber"), 0x3A1D001F, 0},
    {120, WIDE("TelexNumber"), MEMBER(m_strTelexNumber), WIDE("TelexNumber"), 0x3A2C001F, 0},
    {121, WIDE("TtyTddNumber"), MEMBER(m_strTtyTddNumber), WIDE("TtyTddNumber"), 0x3A4B001F, 0},
    {1000, WIDE("Email1"), MEMBER(m_strEmail1), WIDE("SP-EMAIL1"), 0, 0x8083},
    {1001, WIDE("Email2"), MEMBER(m_strEmail2), WIDE("SP-EMAIL2"), 0, 0x8093},
    {1002, WIDE("Email3"), MEMBER(m_strEmail3), WIDE("SP-EMAIL3"), 0, 0x80A3},
    {1500, WIDE("Web1"), MEMBER(m_strWeb1), WIDE("Web1"), 0x3A50001F, 0},
    {1501, WIDE("Web2"), MEMBER(m_strWeb2), WIDE("Web2"), 0x3A51001F, 0},
    {2002, WIDE("HomeStreet1"), MEMBER(m_HomeAddress.m_strStreet1), WIDE("HomeStreet1"), 0x3A5D001F, 0},
    {2004, WIDE("HomeCity"), MEMBER(m_HomeAddress.m_strCity), WIDE("HomeCity"), 0x3A59001F, 0},
    {2005, WIDE("HomeState"), MEMBER(m_HomeAddress.m_strState), WIDE("HomeState"), 0x3A5C001F, 0},
    {2006, WIDE("HomeZip"), MEMBER(m_HomeAddress.m_strZip), WIDE("HomeZip"), 0x3A5B001F, 0},
    {2008, WIDE("HomeCountry"), MEMBER(m_HomeAddress.m_strCountry), WIDE("HomeCountry"), 0x3A5A001F, 0},
    {2019, WIDE("HomePobox"), MEMBER(m_HomeAddress.m_strPobox), WIDE("HomePobox"), 0x3A5E001F, 0},
    {2010, WIDE("BusinessStreet1"), MEMBER(m_BusinessAddress.m_strStreet1), WIDE("SP-BUSINESSSTREET1"), 0,
     0x8045},
    {2012, WIDE("BusinessCity"), MEMBER(m_BusinessAddress.m_strCity), WIDE("SP-BUSINESSCITY"), 0, 0x8046},
    {2013, WIDE("BusinessState"), MEMBER(m_BusinessAddress.m_strState), WIDE("SP-BUSINESSSTATE"), 0, 0x8047},
    {2014, WIDE("BusinessZip"), MEMBER(m_BusinessAddress.m_strZip), WIDE("SP-BUSINESSZIP"), 0, 0x8048},
    {2016, WIDE("BusinessCountry"), MEMBER(m_BusinessAddress.m_strCountry), WIDE("SP-BUSINESSCOUNTRY"), 0,
     0x8049},
    {2021, WIDE("BusinessPobox"), MEMBER(m_BusinessAddress.m_strPobox), WIDE("SP-BUSINESSPOBOX"), 0, 0x804A},
    {2030, WIDE("OtherPobox"), MEMBER(m_OtherAddress.m_strPobox), WIDE("OtherPobox"), 0x3A64001F, 0},
    {2032, WIDE("OtherStreet1"), MEMBER(m_OtherAddress.m_strStreet1), WIDE("OtherStreet1"), 0x3A63001F, 0},
    {2034, WIDE("OtherCity"), MEMBER(m_OtherAddress.m_strCity), WIDE("OtherCity"), 0x3A5F001F, 0},
    {2035, WIDE("OtherState"), MEMBER(m_OtherAddress.m_strState), WIDE("OtherState"), 0x3A62001F, 0},
    {2036, WIDE("OtherZip"), MEMBER(m_OtherAddress.m_strZip), WIDE("OtherZip"), 0x3A61001F, 0},
    {2038, WIDE("OtherCountry"), MEMBER(m_OtherAddress.m_strCountry), WIDE("OtherCountry"), 0x3A60001F, 0},
    {3002, WIDE("Body"), MEMBER(m_strBody), WIDE("SP-BODY"), 0x1000001F, 0},
    {3018, WIDE("Categories"), MEMBER(m_strCategories), WIDE("SP-CATEGORIES"), 0, 0},
    {4001, WIDE("PrefixName"), MEMBER(m_strPrefixName), WIDE("SuffixName"), 0x3A45001F, 0},
    {4011, WIDE("SuffixName"), MEMBER(m_strSuffixName), WIDE("PrefixName"), 0x3A05001F, 0},
    {4003, WIDE("Birthday"), MEMBER(m_strBirthday), WIDE("Birthday"), 0x3A420040, 0x80DE},
    {4019, WIDE("Anniversary"), MEMBER(m_strAnniversary), WIDE("Anniversary"), 0x3A410040, 0x80DF},
    {4004, WIDE("CompanyX"), MEMBER(m_strCompany), WIDE("CompanyX"), 0x3A16001F, 0},
    {4005, WIDE("NickName"), MEMBER(m_strNickName), WIDE("NickName"), 0x3A4F001F, 0},
    {4015, WIDE("JobTitle"), MEMBER(m_strJobTitle), WIDE("JobTitle"), 0x3A17001F, 0},
    {4022, WIDE("IMAddress"), MEMBER(m_strIMAddress), WIDE("SP-IMADRESS"), 0, 0x8062},
    {4023, WIDE("AIM"), MEMBER(m_strIMAddress), WIDE("SP-IMADRESS"), 0, 0x8062},
    {4024, WIDE("LIVE"), MEMBER(m_strIMAddress), WIDE("SP-IMADRESS"), 0, 0x8062},
    {4025, WIDE("YAHOO"), MEMBER(m_strIMAddress), WIDE("SP-IMADRESS"), 0, 0x8062},
    {4026, WIDE("SKYPE"), MEMBER(m_strIMAddress), WIDE("SP-IMADRESS"), 0, 0x8062},
    {4027, WIDE("QQ"), MEMBER(m_strIMAddress), WIDE("SP-IMADRESS"), 0, 0x8062},
    {4028, WIDE("GoogleTalk"), MEMBER(m_strIMAddress), WIDE("SP-IMADRESS"), 0, 0x8062},
    {4029, WIDE("ICQ"), MEMBER(m_strIMAddress), WIDE("SP-IMADRESS"), 0, 0x8062},
    {4030, WIDE("JABBER"), MEMBER(m_strIMAddress), WIDE("SP-IMADRESS"), 0, 0x8062},
    {4037, WIDE("SP-YOMIFIRSTNAME"), MEMBER(m_strYomiFirstName), WIDE("SP-YOMIFIRSTNAME"), 0, 0x802C},
    {4038, WIDE("SP-YOMILASTNAME"), MEMBER(m_strYomiLastName), WIDE("SP-YOMILASTNAME"), 0, 0x802D},
};

#undef MEMBER

constexpr ContactRowElement kRowElements[] = {
    {0x3A11001F, WIDE("LastName")},
    {0x3A44001F, WIDE("MiddleName")},
    {0x3A06001F, WIDE("FirstName")},
    {0x3A09001F, WIDE("HomeNumber1")},
    {0x3A25001F, WIDE("HomeFax")},
    {0x3A08001F, WIDE("BusinessNumber")},
    {0x3A24001F, WIDE("BusinessFax")},
    {0x3A1C001F, WIDE("Mobile1")},
    {0x3A21001F, WIDE("Pager1")},
    {0x3A2F001F, WIDE("HomeNumber2")},
    {0x3A1B001F, WIDE("BusinessNumber2")},
    {0x3A1F001F, WIDE("OtherNumber")},
    {0x3A23001F, WIDE("OtherFax")},
    {0x3A57001F, WIDE("CompanyNumber")},
    {0x3A1A001F, WIDE("PrimaryNumber")},
    {0x3A2E001F, WIDE("AssistantNumber")},
    {0x3A2D001F, WIDE("IsdnNumber")},
    {0x3A2C001F, WIDE("TelexNumber")},
    {0x3A4B001F, WIDE("TtyTddNumber")},
    {0x3A1E001F, WIDE("CarNumber")},
    {0x3A1D001F, WIDE("RadioNumber")},
    {0x3A02001F, WIDE("CallBackNumber")},
    {0x3A50001F, WIDE("Web1")},
    {0x3A51001F, WIDE("Web2")},
    {0x3A16001F, WIDE("CompanyX")},
    {0x3A17001F, WIDE("JobTitle")},
    {0x3A4F001F, WIDE("NickName")},
    {0x3A5A001F, WIDE("HomeCountry")},
    {0x3A5C001F, WIDE("HomeState")},
    {0x3A59001F, WIDE("HomeCity")},
    {0x3A5D001F, WIDE("HomeStreet1")},
    {0x3A5B001F, WIDE("HomeZip")},
    {0x3A5E001F, WIDE("HomePobox")},
    {0x3A60001F, WIDE("OtherCountry")},
    {0x3A62001F, WIDE("OtherState")},
    {0x3A5F001F, WIDE("OtherCity")},
    {0x3A63001F, WIDE("OtherStreet1")},
    {0x3A61001F, WIDE("OtherZip")},
    {0x3A64001F, WIDE("OtherPobox")},
    {0x3A05001F, WIDE("PrefixName")},
    {0x3A45001F, WIDE("SuffixName")},
    // A row that happens to bring a business address has elements for it; the fixed columns do not ask for
    // one.
    {0x3A26001F, WIDE("BusinessCountry")},
    {0x3A27001F, WIDE("BusinessCity")},
    {0x3A28001F, WIDE("BusinessState")},
    {0x3A29001F, WIDE("BusinessStreet1")},
    {0x3A2A001F, WIDE("BusinessZip")},
    {0x3A2B001F, WIDE("BusinessPobox")},
};

}  // namespace

const std::span<const ContactField> kContactFields = kFields;
const std::span<const ContactRowElement> kContactRowElements = kRowElements;

const ContactField* FindContactField(std::int32_t id) {
    const auto* const field = std::ranges::find(kFields, id, &ContactField::id);
    return field == std::end(kFields) ? nullptr : field;
}

const wide* FindContactRowElement(std::uint32_t tag) {
    const auto* const row = std::ranges::find(kRowElements, tag, &ContactRowElement::tag);
    return row == std::end(kRowElements) ? nullptr : row->element;
}
