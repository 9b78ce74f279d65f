// Documents of somebody who means harm, or of a broken program.

#include <gtest/gtest.h>

#include "calendar/calendar_xml_input.h"
#include "tests/unit/hostile_documents.h"
#include "tests/unit/recorded_log.h"
#include "tests/unit/temporary_folder.h"
#include "tests/unit/text_printer.h"

namespace {

class HostileCalendarXml : public testing::Test {
  protected:
    void SetUp() override { TakeLog(); }
    void TearDown() override { EXPECT_EQ(TakeLog(), LogLines()); }

    void Parse(const CString& xml) {
        m_calendar.Reset();
        EXPECT_EQ(ParseCalendarXml(xml, m_calendar), 1);
    }
    void ExpectNothingRead() const {
        EXPECT_EQ(m_calendar.m_lFlag, 0);
        EXPECT_EQ(m_calendar.m_lCalType, -1);
        EXPECT_EQ(m_calendar.m_strPIMID, L"");
        EXPECT_TRUE(m_calendar.m_dtStartTime.IsNoDate());
        EXPECT_TRUE(m_calendar.m_arrInfo.IsEmpty());
    }
    [[nodiscard]] CString ValueOf(std::int32_t id) const {
        for (const auto& entry : m_calendar.m_arrInfo) {
            if (entry->m_nFieldId == id) {
                return entry->m_strValue;
            }
        }
        return {};
    }

    CCalendarEx m_calendar;
};

TEST_F(HostileCalendarXml, WrongRootIsNotRead) {
    for (const wchar_t* const root : {L"calendar", L"Calendars", L"Contact", L"Calendar.1"}) {
        Parse(CString(L"<") + root + L"><lFlag>8</lFlag><Body>x</Body></" + root + L">");
        ExpectNothingRead();
    }
    Parse(L"<x><Calendar><lFlag>8</lFlag></Calendar></x>");
    ExpectNothingRead();
    Parse(L"<n:Calendar xmlns:n='urn:x'><lFlag>8</lFlag></n:Calendar>");
    ExpectNothingRead();
}

TEST_F(HostileCalendarXml, TextBehindTheRootMakesItNoDocument) {
    Parse(L"<Calendar><lFlag>8</lFlag></Calendar><Calendar><lFlag>4</lFlag></Calendar>");
    ExpectNothingRead();
    Parse(L"<Calendar><lFlag>8</lFlag></Calendar>x");
    ExpectNothingRead();
}

TEST_F(HostileCalendarXml, ElementsNestedBeyondReasonAreReadOrNotAndEndNoProcess) {
    constexpr std::size_t kDepth = 100000;
    Parse(L"<Calendar><lFlag>8</lFlag>" + Repeated(L"<a>", kDepth));
    ExpectNothingRead();
    Parse(L"<Calendar><lFlag>8</lFlag><Body>" + Repeated(L"<a>", kDepth) + Repeated(L"</a>", kDepth) +
          L"</Body></Calendar>");
    EXPECT_TRUE(m_calendar.m_lFlag == 0 || m_calendar.m_lFlag == 8);
    EXPECT_TRUE(m_calendar.m_arrInfo.IsEmpty());
}

TEST_F(HostileCalendarXml, DocumentThatDeclaresEntitiesIsNotRead) {
    Parse(L"<!DOCTYPE Calendar [<!ENTITY e 'text'>]><Calendar><lFlag>8</lFlag><Body>&e;</Body></Calendar>");
    ExpectNothingRead();
    CString text(L"<!DOCTYPE Calendar [<!ENTITY e0 'xxxxxxxxxx'>");
    for (int level = 1; level < 12; ++level) {
        text += CString::Format(L"<!ENTITY e%d '", level) +
                Repeated(CString::Format(L"&e%d;", level - 1), 10) + L"'>";
    }
    Parse(text + L"]><Calendar><lFlag>8</lFlag><Body>&e11;</Body></Calendar>");
    ExpectNothingRead();
}

TEST_F(HostileCalendarXml, ExternalEntityIsNotFetched) {
    const TemporaryFolder folder;
    folder.Write(L"secret.txt", "secret");
    folder.Write(L"secret.dtd", "<!ENTITY e 'secret'>");
    const CString entity = folder.File(L"secret.txt");
    const CString subset = folder.File(L"secret.dtd");
    Parse(
        CString::Format(L"<!DOCTYPE Calendar [<!ENTITY e SYSTEM '%s'>]><Calendar><Body>&e;</Body></Calendar>",
                        entity.c_str()));
    ExpectNothingRead();
    Parse(CString::Format(
        L"<?xml version='1.0'?><!DOCTYPE Calendar SYSTEM '%s'><Calendar><Body>&e;</Body></Calendar>",
        subset.c_str()));
    ExpectNothingRead();
}

TEST_F(HostileCalendarXml, OfTenThousandDuplicatesTheFirstCounts) {
    Parse(L"<Calendar><Body>first</Body>" + Repeated(L"<Body>other</Body>", 10000) +
          L"<lRecurType>2</lRecurType>" + Repeated(L"<lRecurType>9</lRecurType>", 10000) +
          L"<lFlag>8</lFlag></Calendar>");
    EXPECT_EQ(m_calendar.m_arrInfo.GetSize(), 1U);
    EXPECT_EQ(ValueOf(3002), L"first");
    EXPECT_EQ(m_calendar.m_lRecurType, 2);
    EXPECT_EQ(m_calendar.m_lFlag, 8);
}

TEST_F(HostileCalendarXml, IdentifierOfAnyLengthAndCharactersIsKeptAsItIs) {
    const CString strange(L"\"'%s%n\\..\\CON\x0085\x20AC\xD83D\xDE00 0x 00");
    Parse(L"<Calendar><PIMID><![CDATA[" + strange + L"]]></PIMID></Calendar>");
    EXPECT_EQ(m_calendar.m_strPIMID, strange);
    for (const std::size_t length : {399U, 400U, 401U, 3000U, 1000001U}) {
        const CString id(WideString(length, L'F'));
        Parse(L"<Calendar><PIMID>" + id + L"</PIMID></Calendar>");
        EXPECT_TRUE(m_calendar.m_strPIMID == id) << length;
    }
}

TEST_F(HostileCalendarXml, NullsAndOtherForbiddenCharactersMakeTheTextNoDocument) {
    for (const wchar_t* const text : {L"&#0;", L"&#x1F;", L"&#xFFFE;", L"&#xD800;", L"\x0001"}) {
        Parse(CString(L"<Calendar><lFlag>8</lFlag><PIMID>") + text + L"</PIMID></Calendar>");
        ExpectNothingRead();
    }
    CString text(L"<Calendar><lFlag>8</lFlag><PIMID>00");
    text += L'\0';
    text += L"</PIMID></Calendar>";
    Parse(text);
    ExpectNothingRead();
}

TEST_F(HostileCalendarXml, NumbersAndDatesOfAMillionCharactersAreReadOrNotAndEndNoProcess) {
    const CString digits(WideString(1000000, L'9'));
    Parse(L"<Calendar><lRecurInterval>" + digits + L"</lRecurInterval><lRecurDay>-" + digits +
          L"</lRecurDay><dtStartTime>" + digits + L"</dtStartTime><dtEndTime>1/2/2010" +
          CString(WideString(1000000, L' ')) + L"7:08:09" + digits + L"</dtEndTime><bAlldayEvent>TRUE" +
          digits + L"</bAlldayEvent></Calendar>");
    EXPECT_EQ(m_calendar.m_lRecurInterval, 2147483647);
    EXPECT_EQ(m_calendar.m_lRecurDay, -2147483647 - 1);
    EXPECT_EQ(m_calendar.m_dtStartTime.m_status, kDateInvalid);
    COleDateTime end;
    end.SetDateTime(2010, 1, 2, 7, 8, 9);
    EXPECT_EQ(m_calendar.m_dtEndTime.m_status, kDateValid);
    EXPECT_EQ(m_calendar.m_dtEndTime.m_dt, end.m_dt);
    EXPECT_EQ(m_calendar.m_bAlldayEvent, 0);
}

TEST_F(HostileCalendarXml, FormatsInADateAreOnlyText) {
    Parse(L"<Calendar><dtStartTime>%n%s%s%s%n</dtStartTime><dtEndTime>1/2/2010 %n</dtEndTime></Calendar>");
    EXPECT_EQ(m_calendar.m_dtStartTime.m_status, kDateInvalid);
    EXPECT_EQ(m_calendar.m_dtEndTime.m_status, kDateValid);
}

TEST_F(HostileCalendarXml, FiftyMegabytesOfTextAreReadWholeOrNotAtAllAndTheirMemoryIsGivenBack) {
    constexpr std::size_t kUnits = 25U << 20;  // of two bytes each
    const CString xml =
        L"<Calendar><lFlag>8</lFlag><Body>" + CString(WideString(kUnits, L'x')) + L"</Body></Calendar>";
    Parse(xml);
    m_calendar.Reset();
    const std::size_t before = PrivateMemory();
    ASSERT_GT(before, xml.size() * sizeof(wchar_t)) << "the platform does not tell what memory is in use";
    for (int i = 0; i < 3; ++i) {
        Parse(xml);
        if (m_calendar.m_lFlag == 8) {
            EXPECT_EQ(ValueOf(3002).size(), kUnits);
        } else {
            ExpectNothingRead();
        }
        m_calendar.Reset();
    }
    // Less than one text more, where keeping anything would be three of them.
    EXPECT_LT(PrivateMemory(), before + xml.size() * sizeof(wchar_t));
}

TEST_F(HostileCalendarXml, MegabytesThatAreNoXmlAreNotRead) {
    Parse(CString(WideString(25U << 20, L'<')));
    ExpectNothingRead();
}

TEST_F(HostileCalendarXml, DocumentThatCannotBeMadeLeavesTheRecord) {
    EXPECT_EQ(DocumentsRefusedTo([this] { Parse(L"<Calendar><lFlag>8</lFlag><Body>x</Body></Calendar>"); }),
              1);
    ExpectNothingRead();
}

}  // namespace
