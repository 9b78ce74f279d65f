// Documents of somebody who means harm, or of a broken program.

#include <gtest/gtest.h>

#include "contacts/contact_xml_input.h"
#include "tests/unit/hostile_documents.h"
#include "tests/unit/recorded_log.h"
#include "tests/unit/temporary_folder.h"
#include "tests/unit/text_printer.h"

namespace {

class HostileContactXml : public testing::Test {
  protected:
    void TearDown() override { TakeLog(); }

    void Parse(const CString& xml) {
        m_contact.Reset();
        EXPECT_EQ(ParseContactXml(xml, m_contact), 1);
    }
    void ExpectNothingRead() const {
        EXPECT_EQ(m_contact.m_lFlag, 0);
        EXPECT_EQ(m_contact.m_strPIMID, L"");
        EXPECT_TRUE(m_contact.m_arrFields.IsEmpty());
    }
    [[nodiscard]] CString ValueOf(std::int32_t id) const {
        for (const auto& entry : m_contact.m_arrFields) {
            if (entry->m_nFieldId == id) {
                return entry->m_strValue;
            }
        }
        return {};
    }

    CContactEx m_contact;
};

TEST_F(HostileContactXml, WrongRootIsNotRead) {
    for (const wchar_t* const root : {L"contact", L"Contacts", L"Calendar", L"Contact.1"}) {
        Parse(CString(L"<") + root + L"><lFlag>8</lFlag><FirstName>x</FirstName></" + root + L">");
        ExpectNothingRead();
    }
    Parse(L"<x><Contact><lFlag>8</lFlag></Contact></x>");
    ExpectNothingRead();
}

TEST_F(HostileContactXml, ElementsNestedBeyondReasonAreReadOrNotAndEndNoProcess) {
    constexpr std::size_t kDepth = 100000;
    Parse(L"<Contact><lFlag>8</lFlag>" + Repeated(L"<a>", kDepth));
    ExpectNothingRead();
    Parse(L"<Contact><lFlag>8</lFlag><Body>" + Repeated(L"<a>", kDepth) + Repeated(L"</a>", kDepth) +
          L"</Body></Contact>");
    EXPECT_TRUE(m_contact.m_lFlag == 0 || m_contact.m_lFlag == 8);
    EXPECT_TRUE(m_contact.m_arrFields.IsEmpty());
}

TEST_F(HostileContactXml, DocumentThatDeclaresEntitiesIsNotRead) {
    Parse(L"<!DOCTYPE Contact [<!ENTITY e 'text'>]><Contact><lFlag>8</lFlag><Body>&e;</Body></Contact>");
    ExpectNothingRead();
    CString text(L"<!DOCTYPE Contact [<!ENTITY e0 'xxxxxxxxxx'>");
    for (int level = 1; level < 12; ++level) {
        text += CString::Format(L"<!ENTITY e%d '", level) +
                Repeated(CString::Format(L"&e%d;", level - 1), 10) + L"'>";
    }
    Parse(text + L"]><Contact><lFlag>8</lFlag><Body>&e11;</Body></Contact>");
    ExpectNothingRead();
}

TEST_F(HostileContactXml, ExternalEntityIsNotFetched) {
    const TemporaryFolder folder;
    folder.Write(L"secret.txt", "secret");
    folder.Write(L"secret.dtd", "<!ENTITY e 'secret'>");
    const CString entity = folder.File(L"secret.txt");
    const CString subset = folder.File(L"secret.dtd");
    Parse(CString::Format(L"<!DOCTYPE Contact [<!ENTITY e SYSTEM '%s'>]><Contact><Body>&e;</Body></Contact>",
                          entity.c_str()));
    ExpectNothingRead();
    Parse(CString::Format(
        L"<?xml version='1.0'?><!DOCTYPE Contact SYSTEM '%s'><Contact><Body>&e;</Body></Contact>",
        subset.c_str()));
    ExpectNothingRead();
}

TEST_F(HostileContactXml, OfTenThousandDuplicatesTheFirstCounts) {
    Parse(L"<Contact><FirstName>first</FirstName>" + Repeated(L"<FirstName>other</FirstName>", 10000) +
          Repeated(L"<PICPath>x</PICPath>", 10000) + L"<lFlag>8</lFlag></Contact>");
    EXPECT_EQ(m_contact.m_arrFields.GetSize(), 1U);
    EXPECT_EQ(ValueOf(1), L"first");
    EXPECT_EQ(m_contact.m_lFlag, 8);
}

TEST_F(HostileContactXml, IdentifierOfAnyLengthAndCharactersIsKeptAsItIs) {
    const CString strange(L"\"'%s%n\\..\\CON\x0085\x20AC\xD83D\xDE00 0x 00");
    Parse(L"<Contact><PIMID><![CDATA[" + strange + L"]]></PIMID></Contact>");
    EXPECT_EQ(m_contact.m_strPIMID, strange);
    for (const std::size_t length : {399U, 400U, 401U, 3000U, 1000001U}) {
        const CString id(WideString(length, L'F'));
        Parse(L"<Contact><PIMID>" + id + L"</PIMID></Contact>");
        EXPECT_TRUE(m_contact.m_strPIMID == id) << length;
    }
}

TEST_F(HostileContactXml, NullsAndOtherForbiddenCharactersMakeTheTextNoDocument) {
    for (const wchar_t* const text : {L"&#0;", L"&#x1F;", L"&#xFFFE;", L"&#xD800;", L"\x0001"}) {
        Parse(CString(L"<Contact><lFlag>8</lFlag><PIMID>") + text + L"</PIMID></Contact>");
        ExpectNothingRead();
    }
    // A null in the text ends it, or is no character: there is no end tag either way.
    CString text(L"<Contact><lFlag>8</lFlag><PIMID>00");
    text += L'\0';
    text += L"</PIMID></Contact>";
    Parse(text);
    ExpectNothingRead();
}

TEST_F(HostileContactXml, FiftyMegabytesOfTextAreReadWholeOrNotAtAllAndTheirMemoryIsGivenBack) {
    constexpr std::size_t kUnits = 25U << 20;  // of two bytes each
    const CString xml =
        L"<Contact><lFlag>8</lFlag><Body>" + CString(WideString(kUnits, L'x')) + L"</Body></Contact>";
    Parse(xml);
    m_contact.Reset();
    const std::size_t before = PrivateMemory();
    ASSERT_GT(before, xml.size() * sizeof(wchar_t)) << "the platform does not tell what memory is in use";
    for (int i = 0; i < 3; ++i) {
        Parse(xml);
        if (m_contact.m_lFlag == 8) {
            EXPECT_EQ(ValueOf(3002).size(), kUnits);
        } else {
            ExpectNothingRead();
        }
        m_contact.Reset();
    }
    // Less than one text more, where keeping anything would be three of them.
    EXPECT_LT(PrivateMemory(), before + xml.size() * sizeof(wchar_t));
}

TEST_F(HostileContactXml, FiftyMegabytesThatAreNoXmlAreNotRead) {
    Parse(CString(WideString(25U << 20, L'<')));
    ExpectNothingRead();
}

TEST_F(HostileContactXml, MemoryOfDocumentsIsGivenBack) {
    constexpr std::size_t kUnits = 2000000;
    const CString xml = L"<Contact><lFlag>8</lFlag><FirstName>" + CString(WideString(kUnits, L'x')) +
                        L"</FirstName><PICPath>C:\\a.jpg</PICPath></Contact>";
    const CString broken = xml.substr(0, xml.size() - 1);
    Parse(xml);
    EXPECT_EQ(ValueOf(1).size(), kUnits);
    m_contact.Reset();
    const std::size_t before = PrivateMemory();
    ASSERT_GT(before, xml.size() * sizeof(wchar_t)) << "the platform does not tell what memory is in use";
    for (int i = 0; i < 10; ++i) {
        Parse(xml);
        EXPECT_EQ(m_contact.m_lFlag, 8);
        Parse(broken);
        ExpectNothingRead();
    }
    // Two texts more at most, where keeping one of each document would be twenty.
    EXPECT_LT(PrivateMemory(), before + 2 * xml.size() * sizeof(wchar_t));
}

TEST_F(HostileContactXml, DocumentThatCannotBeMadeLeavesTheRecordWithoutALine) {
    TakeLog();
    EXPECT_EQ(
        DocumentsRefusedTo([this] { Parse(L"<Contact><lFlag>8</lFlag><Mobile>555</Mobile></Contact>"); }), 1);
    ExpectNothingRead();
    EXPECT_EQ(TakeLog(), LogLines());
}

}  // namespace
