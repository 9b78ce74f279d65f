#include "contacts/contact_xml_input.h"

#include <gtest/gtest.h>

#include <utility>
#include <vector>

#include "tests/unit/recorded_log.h"
#include "tests/unit/text_printer.h"

namespace {

using Entries = std::vector<std::pair<std::int32_t, CString>>;

/// A record that was parsed from a document with some elements below the root.
class ContactXmlInput : public testing::Test {
  protected:
    void SetUp() override { TakeLog(); }

    void Parse(const CString& xml) { EXPECT_EQ(ParseContactXml(xml, m_contact), 1); }
    void ParseElements(const CString& elements) {
        Parse(CString(L"<?xml version='1.0' encoding='utf-8'?><Contact>") + elements + L"</Contact>");
    }
    /// Ids and values of the entries, in order.
    [[nodiscard]] Entries List() const {
        Entries entries;
        for (const auto& entry : m_contact.m_arrFields) {
            entries.emplace_back(entry->m_nFieldId, entry->m_strValue);
        }
        return entries;
    }
    /// The paths of the photo on the entries, in order.
    [[nodiscard]] std::vector<CString> PhotoPaths() const {
        std::vector<CString> paths;
        for (const auto& entry : m_contact.m_arrFields) {
            paths.push_back(entry->m_strPicPath);
        }
        return paths;
    }
    [[nodiscard]] tagContactFields Flat() const {
        tagContactFields fields;
        fields.CopyFrom(m_contact);
        return fields;
    }

    CContactEx m_contact;
};

TEST_F(ContactXmlInput, TextThatIsNotXmlLeavesTheRecordEmpty) {
    for (const wchar_t* const text :
         {L"", L"not XML", L"<Contact><lFlag>8</lFlag>", L"<Contact></contact>"}) {
        Parse(text);
        EXPECT_EQ(m_contact.m_lFlag, 0);
        EXPECT_EQ(m_contact.m_strPIMID, L"");
        EXPECT_TRUE(m_contact.m_arrFields.IsEmpty());
    }
    EXPECT_EQ(TakeLog(), LogLines());
}

TEST_F(ContactXmlInput, IdentityAndFlagAreRead) {
    ParseElements(L"<lFlag>4</lFlag><PIMID>00AB</PIMID><CsFolder>\\\\Contacts\\Sub</CsFolder>");
    EXPECT_EQ(m_contact.m_lFlag, 4);
    EXPECT_EQ(m_contact.m_strPIMID, L"00AB");
    EXPECT_EQ(m_contact.m_strCsFolder, L"\\\\Contacts\\Sub");
    EXPECT_TRUE(m_contact.m_arrFields.IsEmpty());
}

TEST_F(ContactXmlInput, EmptyIdentityLeavesWhatTheRecordHolds) {
    m_contact.m_lFlag = 4;
    m_contact.m_strPIMID = L"before";
    m_contact.m_strCsFolder = L"before";
    ParseElements(L"<lFlag/><PIMID/><CsFolder></CsFolder>");
    EXPECT_EQ(m_contact.m_strPIMID, L"before");
    EXPECT_EQ(m_contact.m_strCsFolder, L"before");
    // A flag that is there without a number is 0.
    EXPECT_EQ(m_contact.m_lFlag, 0);
}

TEST_F(ContactXmlInput, FlagIsTheNumberAtTheBeginningOfItsText) {
    const std::pair<const wchar_t*, std::int32_t> flags[] = {
        {L"8", 8},    {L"8x", 8},  {L" 32 ", 32},
        {L"x8", 0},   {L"0x8", 0}, {L"-4", -4},
        {L"+12", 12}, {L"4.9", 4}, {L"4294967304", 2147483647}};
    for (const auto& [text, flag] : flags) {
        m_contact.Reset();
        ParseElements(CString(L"<lFlag>") + text + L"</lFlag>");
        EXPECT_EQ(m_contact.m_lFlag, flag) << testing::PrintToString(CString(text));
    }
}

TEST_F(ContactXmlInput, NameOfTheOutputGrammarIsNotRead) {
    ParseElements(L"<Mobile1>555</Mobile1>");
    EXPECT_TRUE(m_contact.m_arrFields.IsEmpty());
    EXPECT_EQ(TakeLog(), LogLines());
    ParseElements(L"<Mobile>555</Mobile>");
    EXPECT_EQ(List(), (Entries{{104, L"555"}}));
}

/// Every element with the id of its field, in the order in which the entries come.
constexpr std::pair<const wchar_t*, std::int32_t> kElements[] = {
    {L"FullName", 5},
    {L"FirstName", 1},
    {L"LastName", 2},
    {L"MiddleName", 3},
    {L"PrefixName", 4001},
    {L"SuffixName", 4011},
    {L"OtherFax", 110},
    {L"HomeNumber1", 102},
    {L"CallBackNumber", 113},
    {L"RadioNumber", 119},
    {L"CarNumber", 114},
    {L"TtyTddNumber", 121},
    {L"TelexNumber", 120},
    {L"IsdnNumber", 115},
    {L"AssistantNumber", 117},
    {L"PrimaryNumber", 118},
    {L"CompanyNumber", 116},
    {L"OtherNumber", 108},
    {L"BusinessNumber1", 100},
    {L"BusinessFax", 112},
    {L"HomeFax", 111},
    {L"Mobile", 104},
    {L"Pager", 106},
    {L"HomeNumber2", 103},
    {L"BusinessNumber2", 101},
    {L"Email1", 1000},
    {L"Email2", 1001},
    {L"Email3", 1002},
    {L"Web1", 1500},
    {L"Web2", 1501},
    {L"HomeCountry", 2008},
    {L"HomeState", 2005},
    {L"HomeCity", 2004},
    {L"HomeStreet1", 2002},
    {L"HomeZip", 2006},
    {L"HomePobox", 2019},
    {L"BusinessCountry", 2016},
    {L"BusinessState", 2013},
    {L"BusinessCity", 2012},
    {L"BusinessStreet1", 2010},
    {L"BusinessZip", 2014},
    {L"BusinessPobox", 2021},
    {L"OtherCountry", 2038},
    {L"OtherState", 2035},
    {L"OtherCity", 2034},
    {L"OtherStreet1", 2032},
    {L"OtherZip", 2036},
    {L"OtherPobox", 2030},
    {L"CompanyX", 4004},
    {L"JobTitle", 4015},
    {L"NickName", 4005},
    {L"BusinessPobox", 2021},
    {L"Categories", 3018},
    {L"Body", 3002},
    {L"IMAddress", 4022},
    {L"AIM", 4023},
    {L"GoogleTalk", 4028},
    {L"LIVE", 4024},
    {L"YAHOO", 4025},
    {L"SKYPE", 4026},
    {L"QQ", 4027},
    {L"JABBER", 4030},
    {L"ICQ", 4029},
    {L"Birthday", 4003},
    {L"Anniversary", 4019},
    {L"SP-YOMIFIRSTNAME", 4037},
    {L"SP-YOMILASTNAME", 4038},
};

TEST_F(ContactXmlInput, EveryElementBecomesAnEntryInTheFixedOrder) {
    // In the document they stand the other way round, and the second post office box is not the first.
    CString elements;
    Entries expected;
    for (const auto& [name, id] : kElements) {
        const CString value = CString(L"value of ") + name;
        elements = CString(L"<") + name + L">" + value + L"</" + name + L">" + elements;
        expected.emplace_back(id, value);
    }
    ParseElements(elements);
    EXPECT_EQ(List(), expected);
}

TEST_F(ContactXmlInput, TelephoneNumbersAreLoggedInOrderWithoutALineEnd) {
    CString elements;
    for (const auto& [name, id] : kElements) {
        elements += CString(L"<") + name + L">" + CString::FromNumber(id) + L"</" + name + L">";
    }
    ParseElements(elements);
    EXPECT_EQ(TakeLog(), (LogLines{{1, L"--------------1102"},
                                   {1, L"---------------2113"},
                                   {1, L"---------------3119"},
                                   {1, L"---------------4114"},
                                   {1, L"---------------5121"},
                                   {1, L"---------------6120"},
                                   {1, L"---------------7115"},
                                   {1, L"---------------8117"},
                                   {1, L"---------------9118"},
                                   {1, L"---------------10116"},
                                   {1, L"---------------11108"},
                                   {1, L"---------------12100"},
                                   {1, L"---------------13112"},
                                   {1, L"---------------homefax111"},
                                   {1, L"---------------14104"},
                                   {1, L"---------------15106"},
                                   {1, L"---------------16103"},
                                   {1, L"---------------17101"}}));
}

TEST_F(ContactXmlInput, EmptyNumberIsLoggedAndMakesNoEntry) {
    ParseElements(L"<HomeNumber1/><Mobile>  </Mobile><FirstName/>");
    EXPECT_TRUE(m_contact.m_arrFields.IsEmpty());
    EXPECT_EQ(TakeLog(), (LogLines{{1, L"--------------1"}, {1, L"---------------14"}}));
}

TEST_F(ContactXmlInput, NumberThatLooksLikeAFormatIsLoggedAsItIs) {
    ParseElements(L"<Mobile>%s%n%1000000d</Mobile>");
    EXPECT_EQ(TakeLog(), (LogLines{{1, L"---------------14%s%n%1000000d"}}));
}

TEST_F(ContactXmlInput, FullNameAloneHoldsThePhoto) {
    ParseElements(L"<PICPath>C:\\a.jpg</PICPath><FullName>John Doe</FullName>");
    EXPECT_EQ(List(), (Entries{{5, L"John Doe"}}));
    EXPECT_EQ(PhotoPaths(), (std::vector<CString>{L"C:\\a.jpg"}));
}

TEST_F(ContactXmlInput, PhotoAloneMakesAnEntryWithoutAValue) {
    ParseElements(L"<PICPath>C:\\a.jpg</PICPath><Mobile>555</Mobile>");
    EXPECT_EQ(List(), (Entries{{104, L"555"}, {5, L""}}));
    EXPECT_EQ(PhotoPaths(), (std::vector<CString>{L"", L"C:\\a.jpg"}));
    EXPECT_EQ(Flat().m_strPicPath, L"C:\\a.jpg");
    EXPECT_EQ(Flat().m_strFullName, L"");
}

TEST_F(ContactXmlInput, FirstNameHoldsThePhotoBeforeTheFullName) {
    ParseElements(L"<FirstName>John</FirstName><FullName>John Doe</FullName><PICPath>C:\\a.jpg</PICPath>");
    EXPECT_EQ(List(), (Entries{{5, L"John Doe"}, {1, L"John"}}));
    EXPECT_EQ(PhotoPaths(), (std::vector<CString>{L"", L"C:\\a.jpg"}));
    EXPECT_EQ(Flat().m_strPicPath, L"C:\\a.jpg");
}

TEST_F(ContactXmlInput, LastNameHoldsThePhotoBeforeTheMiddleName) {
    ParseElements(L"<MiddleName>M</MiddleName><LastName>L</LastName><PICPath>C:\\a.jpg</PICPath>");
    EXPECT_EQ(List(), (Entries{{2, L"L"}, {3, L"M"}}));
    EXPECT_EQ(PhotoPaths(), (std::vector<CString>{L"C:\\a.jpg", L""}));
}

TEST_F(ContactXmlInput, EmptyPhotoStillLooksForItsEntry) {
    ParseElements(L"<PICPath/>");
    EXPECT_EQ(List(), (Entries{{5, L""}}));
    EXPECT_EQ(PhotoPaths(), (std::vector<CString>{L""}));
}

TEST_F(ContactXmlInput, EmptyPhotoEmptiesThePath) {
    ParseElements(L"<FirstName>John</FirstName><PICPath>C:\\a.jpg</PICPath>");
    ParseElements(L"<PICPath/>");
    EXPECT_EQ(PhotoPaths(), (std::vector<CString>{L""}));
}

TEST_F(ContactXmlInput, PostOfficeBoxOfTheBusinessGivesTwoEntriesAndOneText) {
    ParseElements(L"<BusinessPobox>7</BusinessPobox>");
    EXPECT_EQ(List(), (Entries{{2021, L"7"}, {2021, L"7"}}));
    EXPECT_EQ(Flat().m_BusinessAddress.m_strPobox, L"7");
}

TEST_F(ContactXmlInput, OfSeveralMessagingAddressesTheLastInOrderCounts) {
    const wchar_t* const services[] = {L"IMAddress", L"AIM", L"GoogleTalk", L"LIVE", L"YAHOO",
                                       L"SKYPE",     L"QQ",  L"JABBER",     L"ICQ"};
    const wchar_t* const prefixes[] = {L"",       L"AIM:", L"GTALK:",  L"WINDOWSLIVE:", L"YAHOO:",
                                       L"SKYPE:", L"QQ:",  L"JABBER:", L"ICQ:"};
    CString elements;
    for (std::size_t i = 0; i < std::size(services); ++i) {
        elements = CString(L"<") + services[i] + L">joe</" + services[i] + L">" + elements;
        m_contact.Reset();
        ParseElements(elements);
        EXPECT_EQ(Flat().m_strIMAddress, CString(prefixes[i]) + L"joe");
    }
}

TEST_F(ContactXmlInput, IcqBeatsAim) {
    ParseElements(L"<ICQ>123</ICQ><AIM>joe</AIM>");
    EXPECT_EQ(Flat().m_strIMAddress, L"ICQ:123");
}

TEST_F(ContactXmlInput, AttributesAreNotRead) {
    ParseElements(
        L"<IMAddress IMType='4029'>123</IMAddress><FirstName lFlag='8' PIMID='00'>John</FirstName>");
    EXPECT_EQ(List(), (Entries{{1, L"John"}, {4022, L"123"}}));
    EXPECT_EQ(Flat().m_strIMAddress, L"123");
    EXPECT_EQ(m_contact.m_lFlag, 0);
}

TEST_F(ContactXmlInput, OtherElementsAndOtherDepthsAreNotRead) {
    ParseElements(
        L"<Group><FirstName>x</FirstName></Group><firstname>x</firstname><Unknown>x</Unknown>"
        L"<n:FirstName xmlns:n='urn:x'>x</n:FirstName>");
    EXPECT_TRUE(m_contact.m_arrFields.IsEmpty());
}

TEST_F(ContactXmlInput, TextOfAnElementIsThatOfItsDescendantsToo) {
    ParseElements(L"<Body>one<b> two</b><![CDATA[ <three>]]><!-- not this --> &amp; &#x34;</Body>");
    EXPECT_EQ(List(), (Entries{{3002, L"one two <three> & 4"}}));
}

}  // namespace
