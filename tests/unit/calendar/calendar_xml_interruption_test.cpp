// A document whose reading an exception ends: each allocation fails in turn.

#include <gtest/gtest.h>

#include <vector>

#include "calendar/calendar_xml_input.h"
#include "tests/unit/localstore/scarce_memory.h"
#include "tests/unit/recorded_log.h"
#include "tests/unit/support/com_balance.h"
#include "tests/unit/text_printer.h"

namespace {

constexpr const wchar_t* kDocument =
    L"<Calendar><lFlag>8</lFlag><PIMID>an identifier of some length</PIMID><Description>a subject of some "
    L"length</Description><Body>some notes of a length</Body><dtStartTime>03/09/2011 09:30:00</dtStartTime>"
    L"<lRecurType>2</lRecurType><ExceptionRule>a rule of some length</ExceptionRule></Calendar>";

const std::vector<CString> kValues{L"a subject of some length", L"some notes of a length",
                                   L"a rule of some length"};

std::vector<CString> ValuesOf(const CCalendarEx& calendar) {
    std::vector<CString> values;
    for (const auto& entry : calendar.m_arrInfo) {
        values.push_back(entry->m_strValue);
    }
    return values;
}

/// True if the values are some of the document's in their order. An entry for which there is no memory is
/// left out.
bool AreInOrder(const std::vector<CString>& values) {
    auto place = kValues.begin();
    for (const CString& value : values) {
        place = std::find(place, kValues.end(), value);
        if (place == kValues.end()) {
            return false;
        }
        ++place;
    }
    return true;
}

TEST(InterruptedCalendarXml, WhatHasBeenFoundStandsAndNoLineTellsOfTheEnd) {
    const CString xml(kDocument);
    for (const bool forever : {false, true}) {
        std::size_t interrupted = 0;
        bool hasFailed = true;
        for (std::size_t n = 1; hasFailed; ++n) {
            SCOPED_TRACE(testing::Message() << "allocation " << n << (forever ? " and all behind it" : ""));
            TakeLog();
            CCalendarEx calendar;
            int result = -1;
            {
                const localstore_test::ScarceMemory scarce(n, forever);
                result = ParseCalendarXml(xml, calendar);
                hasFailed = scarce.HasFailed();
            }
            EXPECT_EQ(result, 1);
            const std::vector<CString> values = ValuesOf(calendar);
            EXPECT_TRUE(AreInOrder(values)) << testing::PrintToString(values);
            // What comes later in the list is not there without what comes before.
            EXPECT_TRUE(calendar.m_lFlag == 8 || (calendar.m_strPIMID.empty() && values.empty()));
            EXPECT_TRUE(calendar.m_lRecurType == 0 || calendar.m_dtStartTime.m_dt != 0.0);
            EXPECT_EQ(TakeLog(), LogLines());
            if (hasFailed) {
                interrupted += calendar.m_lRecurType == 0 ? 1 : 0;
            } else {
                EXPECT_EQ(values, kValues);
                EXPECT_EQ(calendar.m_strPIMID, L"an identifier of some length");
                EXPECT_EQ(calendar.m_lRecurType, 2);
            }
        }
        EXPECT_GT(interrupted, 0U);
    }
}

TEST(InterruptedCalendarXml, LeavesComAsItWas) {
    for (const wchar_t* const xml : {kDocument, L"no document", L""}) {
        EXPECT_EQ(InitialisationsLeftBy([xml] {
                      CCalendarEx calendar;
                      EXPECT_EQ(ParseCalendarXml(xml, calendar), 1);
                  }),
                  3);
    }
    int result = -1;
    EXPECT_EQ(InitialisationsLeftBy([&result] {
                  const CString xml(kDocument);
                  CCalendarEx calendar;
                  const localstore_test::ScarceMemory scarce(1, true);
                  result = ParseCalendarXml(xml, calendar);
              }),
              3);
    EXPECT_EQ(result, 1);
    TakeLog();
}

TEST(InterruptedCalendarXml, TakesBackBothItsInitialisationsThoughTheThreadRefusesThem) {
    EXPECT_EQ(InitialisationsLeftBy(
                  [] {
                      CCalendarEx calendar;
                      EXPECT_EQ(ParseCalendarXml(kDocument, calendar), 1);
                      EXPECT_EQ(calendar.m_lFlag, 8);
                  },
                  COINIT_MULTITHREADED),
              1);
}

}  // namespace
