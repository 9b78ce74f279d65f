#include "desktop/contact_pairs.h"

#include <iterator>

namespace {

constexpr ContactPair kPairs[] = {
    {WIDE("FirstName"), WIDE("FirstName")},
    {WIDE("MiddleName"), WIDE("MiddleName")},
    {WIDE("LastName"), WIDE("LastName")},
    {WIDE("SuffixName"), WIDE("PrefixName")},
    {WIDE("PrefixName"), WIDE("SuffixName")},
    {WIDE("NickName"), WIDE("NickName")},
    {WIDE("SP-YOMIFIRSTNAME"), WIDE("SP-YOMIFIRSTNAME")},
    {WIDE("SP-YOMILASTNAME"), WIDE("SP-YOMILASTNAME")},
    {WIDE("CompanyX"), WIDE("CompanyX")},
    {WIDE("JobTitle"), WIDE("JobTitle")},
    {WIDE("BusinessNumber"), WIDE("BusinessNumber1")},
    {WIDE("BusinessNumber2"), WIDE("BusinessNumber2")},
    {WIDE("HomeNumber1"), WIDE("HomeNumber1")},
    {WIDE("HomeNumber2"), WIDE("HomeNumber2")},
    {WIDE("Mobile1"), WIDE("Mobile")},
    {WIDE("Pager1"), WIDE("Pager")},
    {WIDE("OtherNumber"), WIDE("OtherNumber")},
    {WIDE("OtherFax"), WIDE("OtherFax")},
    {WIDE("HomeFax"), WIDE("HomeFax")},
    {WIDE("BusinessFax"), WIDE("BusinessFax")},
    {WIDE("CallBackNumber"), WIDE("CallBackNumber")},
    {WIDE("CarNumber"), WIDE("CarNumber")},
    {WIDE("IsdnNumber"), WIDE("IsdnNumber")},
    {WIDE("CompanyNumber"), WIDE("CompanyNumber")},
    {WIDE("AssistantNumber"), WIDE("AssistantNumber")},
    {WIDE("PrimaryNumber"), WIDE("PrimaryNumber")},
    {WIDE("RadioNumber"), WIDE("RadioNumber")},
    {WIDE("TelexNumber"), WIDE("TelexNumber")},
    {WIDE("TtyTddNumber"), WIDE("TtyTddNumber")},
    {WIDE("SP-EMAIL1"), WIDE("Email1")},
    {WIDE("SP-EMAIL2"), WIDE("Email2")},
    {WIDE("SP-EMAIL3"), WIDE("Email3")},
    {WIDE("Web1"), WIDE("Web1")},
    {WIDE("Web2"), WIDE("Web2")},
    {WIDE("HomeStreet1"), WIDE("HomeStreet1")},
    {WIDE("HomeCity"), WIDE("HomeCity")},
    {WIDE("HomeState"), WIDE("HomeState")},
    {WIDE("HomeZip"), WIDE("HomeZip")},
    {WIDE("HomeCountry"), WIDE("HomeCountry")},
    {WIDE("HomePobox"), WIDE("HomePobox")},
    {WIDE("SP-BUSINESSSTREET1"), WIDE("BusinessStreet1")},
    {WIDE("SP-BUSINESSCITY"), WIDE("BusinessCity")},
    {WIDE("SP-BUSINESSSTATE"), WIDE("BusinessState")},
    {WIDE("SP-BUSINESSZIP"), WIDE("BusinessZip")},
    {WIDE("SP-BUSINESSCOUNTRY"), WIDE("BusinessCountry")},
    {WIDE("SP-BUSINESSPOBOX"), WIDE("BusinessPobox")},
    {WIDE("OtherStreet1"), WIDE("OtherStreet1")},
    {WIDE("OtherCity"), WIDE("OtherCity")},
    {WIDE("OtherState"), WIDE("OtherState")},
    {WIDE("OtherZip"), WIDE("OtherZip")},
    {WIDE("OtherCountry"), WIDE("OtherCountry")},
    {WIDE("OtherPobox"), WIDE("OtherPobox")},
    {WIDE("Birthday"), WIDE("Birthday")},
    {WIDE("Anniversary"), WIDE("Anniversary")},
    {WIDE("SP-CATEGORIES"), WIDE("Categories")},
    {WIDE("SP-BODY"), WIDE("Body")},
};

/// The services by number, from the first one that has a name.
constexpr std::int32_t kFirstService = 4023;
constexpr const wide* kServices[] = {
    WIDE("AIM"), WIDE("LIVE"),       WIDE("YAHOO"), WIDE("SKYPE"),
    WIDE("QQ"),  WIDE("GoogleTalk"), WIDE("ICQ"),   WIDE("JABBER"),
};

}  // namespace

const std::span<const ContactPair> kContactPairs = kPairs;

const wide* InstantMessagingElement(std::int32_t service) {
    const bool known =
        service >= kFirstService && service < kFirstService + static_cast<std::int32_t>(std::size(kServices));
    return known ? kServices[service - kFirstService] : WIDE("IMAddress");
}
